// Audit events, elements and attributes through their typed entry points: contiguous arrays at
// every level, elements that nest to any depth a decode accepts, and inputs nested past the
// runtime's limit refused on a small stack without a leak.
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "record_test_support.h"
#include "test_locale.h"
#include "zuauditidl_asn.h"

using kelm_test::bytes_of;
using kelm_test::dup_text;
using kelm_test::tlv;
using kelm_test::with_header;
using Bytes = std::vector<unsigned char>;

namespace {

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

unsigned char* dup_bytes(const Bytes& bytes) {
    if (bytes.empty())
        return nullptr;
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size()));
    std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

template <class Record> Bytes encode(Record& record) {
    kelm_asn_buffer_t out{0, nullptr};
    EXPECT_EQ(kelmAsnEncodeObj(out, record), 0u);
    Bytes bytes = bytes_of(out);
    kelm_asn_buffer_free(out);
    return bytes;
}

template <class Record> unsigned int decode(const Bytes& wire, Record& record) {
    // An exact-size copy, so that the sanitizers catch any read past the input.
    std::unique_ptr<unsigned char[]> exact(new unsigned char[wire.size() + 1]);
    std::copy(wire.begin(), wire.end(), exact.get());
    kelm_asn_buffer_t in{wire.size(), exact.get()};
    return kelmAsnDecodeObj(in, record);
}

// Records the test owns, released with the free entry point when they go.
using Event = kelm_record_holder<zuauditevent_s_t>;
using Element = kelm_record_holder<zuauditelement_s_t>;
using Attribute = kelm_record_holder<zuauditattribute_s_t>;

// Fills `element` (zeroed) with a name, a value and `attrs` attributes.
void fill_element(zuauditelement_s_t& element, const std::string& name, const Bytes& value,
                  unsigned int attrs) {
    element.name = dup_text(name);
    element.value_length = static_cast<uint32_t>(value.size());
    element.value = dup_bytes(value);
    element.attr_count = attrs;
    element.attrs =
        attrs ? static_cast<zuauditattribute_s_t*>(std::calloc(attrs, sizeof(zuauditattribute_s_t)))
              : nullptr;
    for (unsigned int i = 0; i < attrs; ++i) {
        element.attrs[i].name = dup_text(name + ".attr" + std::to_string(i));
        element.attrs[i].value_length = 1;
        element.attrs[i].value = dup_bytes({static_cast<unsigned char>(i)});
    }
}

// Gives `element` `count` nested elements, each zeroed, and returns them.
zuauditelement_s_t* add_children(zuauditelement_s_t& element, unsigned int count) {
    element.element_count = count;
    element.elements =
        static_cast<zuauditelement_s_t*>(std::calloc(count, sizeof(zuauditelement_s_t)));
    return element.elements;
}

// A chain of `levels` elements, each the only nested element of the one before, starting at
// `element`; the deepest is named "leaf".
void fill_chain(zuauditelement_s_t& element, unsigned int levels) {
    zuauditelement_s_t* at = &element;
    for (unsigned int level = 1; level < levels; ++level) {
        fill_element(*at, "level" + std::to_string(level), {static_cast<unsigned char>(level)}, 1);
        at = add_children(*at, 1);
    }
    fill_element(*at, "leaf", {}, 0);
}

// Checks a chain built by fill_chain and returns its number of levels.
unsigned int chain_levels(const zuauditelement_s_t& element) {
    unsigned int levels = 1;
    const zuauditelement_s_t* at = &element;
    while (at->element_count != 0) {
        EXPECT_EQ(at->element_count, 1u);
        EXPECT_EQ(std::string(at->name), "level" + std::to_string(levels));
        EXPECT_EQ(at->value_length, 1u);
        EXPECT_EQ(at->attr_count, 1u);
        at = at->elements;
        ++levels;
    }
    EXPECT_STREQ(at->name, "leaf");
    EXPECT_EQ(at->elements, nullptr);
    return levels;
}

} // namespace

// --- exact bytes -----------------------------------------------------------------------------

TEST(AuditElement, AnElementWithNothingButANameIsItsNameAnEmptyValueAndTwoEmptyLists) {
    Element element;
    element.record().name = dup_text("ab");
    const Bytes wire = encode(element.record());
    EXPECT_EQ(wire,
              with_header({0x30, 0x0A, 0x0C, 0x02, 'a', 'b', 0x04, 0x00, 0x30, 0x00, 0x30, 0x00}));
    Element back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    EXPECT_STREQ(back.record().name, "ab");
    EXPECT_EQ(back.record().value_length, 0u);
    EXPECT_EQ(back.record().value, nullptr);
    EXPECT_EQ(back.record().attr_count, 0u);
    EXPECT_EQ(back.record().attrs, nullptr);
    EXPECT_EQ(back.record().element_count, 0u);
    EXPECT_EQ(back.record().elements, nullptr);
}

TEST(AuditAttribute, NameAndValueAreAUtf8StringAndAnOctetString) {
    Attribute attribute;
    attribute.record().name = dup_text("u");
    attribute.record().value_length = 3;
    attribute.record().value = dup_bytes({0x00, 0xFF, 0x41});
    const Bytes wire = encode(attribute.record());
    EXPECT_EQ(wire, with_header({0x30, 0x08, 0x0C, 0x01, 'u', 0x04, 0x03, 0x00, 0xFF, 0x41}));
    Attribute back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    EXPECT_STREQ(back.record().name, "u");
    ASSERT_EQ(back.record().value_length, 3u);
    EXPECT_EQ(Bytes(back.record().value, back.record().value + 3), (Bytes{0x00, 0xFF, 0x41}));
}

TEST(AuditAttribute, ConstructedAndIndefiniteValuesAreAccepted) {
    // OCTET STRING in two segments with an indefinite length, UTF8String in two segments.
    const Bytes wire =
        with_header({0x30, 0x80, 0x2C, 0x06, 0x0C, 0x01, 'n', 0x0C, 0x01, 'm',  0x24,
                     0x80, 0x04, 0x01, 'A',  0x04, 0x01, 'B', 0x00, 0x00, 0x00, 0x00});
    Attribute back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    EXPECT_STREQ(back.record().name, "nm");
    ASSERT_EQ(back.record().value_length, 2u);
    EXPECT_EQ(Bytes(back.record().value, back.record().value + 2), (Bytes{'A', 'B'}));
}

TEST(AuditEvent, AnEventWithoutElementsDecodesToAZeroCountAndANullArray) {
    Event event;
    event.record().event_number1 = 1;
    event.record().event_number2 = 2;
    event.record().event_text = dup_text("t");
    const Bytes wire = encode(event.record());
    EXPECT_EQ(wire, with_header({0x30, 0x0B, 0x02, 0x01, 0x01, 0x0C, 0x01, 't', 0x02, 0x01, 0x02,
                                 0x30, 0x00}));
    zuauditevent_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode(wire, back), 0u);
    EXPECT_EQ(back.event_number1, 1u);
    EXPECT_STREQ(back.event_text, "t");
    EXPECT_EQ(back.event_number2, 2u);
    EXPECT_EQ(back.element_count, 0u);
    EXPECT_EQ(back.elements, nullptr);
    kelmAsnFreeObj(back);
}

TEST(AuditEvent, NumbersAreWrittenSignedAndReadBackWithTheirBitPatterns) {
    struct Row {
        uint32_t value;
        Bytes integer;
    } rows[] = {
        {0, {0x02, 0x01, 0x00}},
        {0x80, {0x02, 0x02, 0x00, 0x80}},
        {0x7FFFFFFF, {0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF}},
        {0x80000000, {0x02, 0x04, 0x80, 0x00, 0x00, 0x00}},
        {0xFFFFFF7F, {0x02, 0x02, 0xFF, 0x7F}},
        {0xFFFFFFFF, {0x02, 0x01, 0xFF}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << std::hex << row.value);
        Event event;
        event.record().event_number1 = row.value;
        event.record().event_number2 = row.value;
        const Bytes wire = encode(event.record());
        EXPECT_EQ(wire, with_header(tlv(
                            0x30, concat({row.integer, {0x0C, 0x00}, row.integer, {0x30, 0x00}}))));
        Event back;
        ASSERT_EQ(decode(wire, back.record()), 0u);
        EXPECT_EQ(back.record().event_number1, row.value);
        EXPECT_EQ(back.record().event_number2, row.value);
    }
}

TEST(AuditEvent, AnIndefiniteOrConstructedNumberIsRefused) {
    // INTEGER is primitive only.
    const Bytes constructed = with_header(
        {0x30, 0x0B, 0x22, 0x03, 0x02, 0x01, 0x01, 0x0C, 0x00, 0x02, 0x01, 0x02, 0x30, 0x00});
    Event back;
    EXPECT_NE(decode(constructed, back.record()), 0u);
}

// --- nesting ---------------------------------------------------------------------------------

TEST(AuditNesting, ElementsNestedInElementsDecodeIntoTheirOwnArrays) {
    Event event;
    event.record().event_text = dup_text("event");
    event.record().element_count = 2;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(2, sizeof(zuauditelement_s_t)));
    fill_element(event.record().elements[0], "first", {1, 2, 3}, 2);
    fill_element(event.record().elements[1], "second", {}, 0);
    zuauditelement_s_t* children = add_children(event.record().elements[0], 3);
    fill_element(children[0], "child0", {9}, 1);
    fill_element(children[1], "child1", {}, 0);
    fill_chain(children[2], 4);

    const Bytes wire = encode(event.record());
    Event back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    ASSERT_EQ(back.record().element_count, 2u);
    const zuauditelement_s_t& first = back.record().elements[0];
    EXPECT_STREQ(first.name, "first");
    ASSERT_EQ(first.value_length, 3u);
    ASSERT_EQ(first.attr_count, 2u);
    EXPECT_STREQ(first.attrs[1].name, "first.attr1");
    ASSERT_EQ(first.element_count, 3u);
    EXPECT_STREQ(first.elements[0].name, "child0");
    EXPECT_STREQ(first.elements[0].attrs[0].name, "child0.attr0");
    EXPECT_STREQ(first.elements[1].name, "child1");
    EXPECT_EQ(first.elements[1].elements, nullptr);
    EXPECT_EQ(chain_levels(first.elements[2]), 4u);
    EXPECT_STREQ(back.record().elements[1].name, "second");
    EXPECT_EQ(back.record().elements[1].element_count, 0u);
    EXPECT_EQ(encode(back.record()), wire) << "decoding then encoding gives the same bytes";
    // Event and back are released by the free entry point at every level; the leak checker of
    // the sanitizer build sees anything left.
}

namespace {

// An element as its level of a chain on the wire: name, empty value, attribute list, element
// list holding the next level.
const Bytes kElementHead = {0x0C, 0x00, 0x04, 0x00, 0x30, 0x00};
const Bytes kLeafElement = {0x30, 0x08, 0x0C, 0x00, 0x04, 0x00, 0x30, 0x00, 0x30, 0x00};
// The deepest element with one attribute: one constructed level more.
const Bytes kLeafWithAttribute = {0x30, 0x0C, 0x0C, 0x00, 0x04, 0x00, 0x30, 0x06,
                                  0x30, 0x04, 0x0C, 0x00, 0x04, 0x00, 0x30, 0x00};

// Appends the identifier and definite length of a value whose octets, reversed, are already in
// `reversed`, in reverse order too.
void wrap_reversed(Bytes& reversed, unsigned char identifier) {
    const size_t n = reversed.size();
    if (n < 128) {
        reversed.push_back(static_cast<unsigned char>(n));
    } else {
        int octets = n <= 0xFF ? 1 : n <= 0xFFFF ? 2 : n <= 0xFFFFFF ? 3 : 4;
        for (int k = 0; k < octets; ++k)
            reversed.push_back(static_cast<unsigned char>(n >> (8 * k)));
        reversed.push_back(static_cast<unsigned char>(0x80 | octets));
    }
    reversed.push_back(identifier);
}

// A chain of `levels` elements around `leaf` (which is the deepest), built from the inside out
// in one pass so that deep inputs cost linear time, as kelm_test::nested does for plain levels.
Bytes element_chain(unsigned int levels, const Bytes& leaf, bool indefinite) {
    if (indefinite) {
        Bytes out;
        out.reserve(levels * 14 + leaf.size());
        for (unsigned int i = 1; i < levels; ++i) {
            out.insert(out.end(), {0x30, 0x80});
            out.insert(out.end(), kElementHead.begin(), kElementHead.end());
            out.insert(out.end(), {0x30, 0x80});
        }
        out.insert(out.end(), leaf.begin(), leaf.end());
        out.insert(out.end(), 4 * static_cast<size_t>(levels - 1), 0x00);
        return out;
    }
    Bytes reversed(leaf.rbegin(), leaf.rend());
    for (unsigned int i = 1; i < levels; ++i) {
        wrap_reversed(reversed, 0x30); // the element list
        reversed.insert(reversed.end(), kElementHead.rbegin(), kElementHead.rend());
        wrap_reversed(reversed, 0x30); // the element
    }
    return Bytes(reversed.rbegin(), reversed.rend());
}

// An event around a chain of `levels` elements.
Bytes event_chain(unsigned int levels, const Bytes& leaf, bool indefinite) {
    const Bytes chain = element_chain(levels, leaf, indefinite);
    const Bytes head = {0x02, 0x01, 0x05, 0x0C, 0x00, 0x02, 0x01, 0x06};
    if (indefinite)
        return with_header(concat({{0x30, 0x80}, head, {0x30, 0x80}, chain, {0, 0, 0, 0}}));
    return with_header(tlv(0x30, concat({head, tlv(0x30, chain)})));
}

// Constructed levels of an event around a chain of n elements: the event and its list, then two
// per element (the element and its lists), one more for an attribute of the deepest.
unsigned int event_depth(unsigned int elements, bool attribute) {
    return 2 + 2 * elements + (attribute ? 1 : 0);
}

// The number of levels of a decoded chain, following the first nested element.
unsigned int chain_depth(const zuauditelement_s_t& element) {
    unsigned int levels = 1;
    for (const zuauditelement_s_t* at = &element; at->element_count != 0; at = at->elements)
        ++levels;
    return levels;
}

struct Job {
    Bytes input;
    bool event = true;
    unsigned int status = 99;
    unsigned int levels_read = 0;
    bool record_untouched = false;
};

// Decodes the job's input as an event or an element, counts the levels of what was decoded,
// and releases the record with the free entry point.
void* decode_job(void* arg) {
    Job* job = static_cast<Job*>(arg);
    std::unique_ptr<unsigned char[]> exact(new unsigned char[job->input.size()]);
    std::copy(job->input.begin(), job->input.end(), exact.get());
    kelm_asn_buffer_t in{job->input.size(), exact.get()};
    if (job->event) {
        zuauditevent_s_t record{};
        job->status = kelmAsnDecodeObj(in, record);
        if (job->status == 0 && record.element_count == 1)
            job->levels_read = chain_depth(record.elements[0]);
        job->record_untouched = record.element_count == 0 && record.elements == nullptr &&
                                record.event_text == nullptr && record.event_number1 == 0;
        kelmAsnFreeObj(record);
    } else {
        zuauditelement_s_t record{};
        job->status = kelmAsnDecodeObj(in, record);
        if (job->status == 0)
            job->levels_read = chain_depth(record);
        job->record_untouched =
            record.name == nullptr && record.elements == nullptr && record.element_count == 0;
        kelmAsnFreeObj(record);
    }
    return nullptr;
}

// Runs the decode on a thread with a 256 KiB stack.
Job run_on_small_stack(Bytes input, bool event) {
    Job job;
    job.input = std::move(input);
    job.event = event;
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 256 * 1024);
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attr, decode_job, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    return job;
}

} // namespace

TEST(AuditNesting, TheDeepestEventTheLimitAllowsDecodesOnASmallStack) {
    // Each element takes two constructed levels, so the limit admits this many of them.
    const unsigned int elements = (KELM_ASN_MAX_NESTING - 2) / 2;
    ASSERT_EQ(event_depth(elements, false), static_cast<unsigned int>(KELM_ASN_MAX_NESTING))
        << "the chain reaches exactly the limit";
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const Job job = run_on_small_stack(event_chain(elements, kLeafElement, indefinite), true);
        EXPECT_EQ(job.status, 0u);
        EXPECT_EQ(job.levels_read, elements);
    }
}

TEST(AuditNesting, TheDeepestElementTheLimitAllowsDecodesOnASmallStack) {
    // As a record of its own, an element chain of n levels is 2n constructed levels deep.
    const unsigned int elements = KELM_ASN_MAX_NESTING / 2;
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const Job job = run_on_small_stack(
            with_header(element_chain(elements, kLeafElement, indefinite)), false);
        EXPECT_EQ(job.status, 0u);
        EXPECT_EQ(job.levels_read, elements);
    }
}

TEST(AuditNesting, OneLevelPastTheLimitIsRefusedAndTheRecordIsUntouched) {
    const unsigned int elements = (KELM_ASN_MAX_NESTING - 2) / 2;
    ASSERT_EQ(event_depth(elements, true), KELM_ASN_MAX_NESTING + 1u);
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        // An attribute in the deepest element is the one level too many.
        Job job = run_on_small_stack(event_chain(elements, kLeafWithAttribute, indefinite), true);
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_TRUE(job.record_untouched);
        // So is one more element (two levels past the limit).
        job = run_on_small_stack(event_chain(elements + 1, kLeafElement, indefinite), true);
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_TRUE(job.record_untouched);
        // And for an element decoded as a record of its own.
        job = run_on_small_stack(
            with_header(element_chain(KELM_ASN_MAX_NESTING / 2, kLeafWithAttribute, indefinite)),
            false);
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_TRUE(job.record_untouched);
    }
}

TEST(AuditNesting, AHundredThousandLevelsAreRefusedOnASmallStack) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        Job job = run_on_small_stack(event_chain(100000, kLeafElement, indefinite), true);
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_TRUE(job.record_untouched);
        job =
            run_on_small_stack(with_header(element_chain(100000, kLeafElement, indefinite)), false);
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_TRUE(job.record_untouched);
    }
}

TEST(AuditNesting, ARecordAFewLevelsDeepRoundTripsOnASmallStack) {
    Event event;
    event.record().element_count = 1;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(1, sizeof(zuauditelement_s_t)));
    fill_chain(event.record().elements[0], 6);
    Job job;
    job.input = encode(event.record());
    const Job done = run_on_small_stack(job.input, true);
    EXPECT_EQ(done.status, 0u);
    EXPECT_EQ(done.levels_read, 6u);
    Event back;
    ASSERT_EQ(decode(job.input, back.record()), 0u);
    ASSERT_EQ(back.record().element_count, 1u);
    EXPECT_EQ(chain_levels(back.record().elements[0]), 6u);
}

// --- names -----------------------------------------------------------------------------------

TEST(AuditNames, TypeNamesAreCutToSixteenCharacters) {
    asn_zuauditattribute_t attribute;
    asn_zuauditelement_t element;
    asn_zuauditevent_t event;
    EXPECT_STREQ(attribute.get_type_name(), "zuauditattribute");
    EXPECT_STREQ(element.get_type_name(), "zuauditelement_t");
    EXPECT_STREQ(event.get_type_name(), "zuauditevent_t");
    EXPECT_STREQ(element.element(3)->get_type_name(), "SEQUENCEOF");
}

// --- local code set --------------------------------------------------------------------------

TEST(AuditLocalCodeSet, Latin1TextsTravelAsUtf8AndBytesPassUnchanged) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    Event event;
    event.record().event_text = dup_text("\xC9v\xE9nement");
    event.record().element_count = 1;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(1, sizeof(zuauditelement_s_t)));
    fill_element(event.record().elements[0], "\xFC", {0xE9}, 0);
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, event.record()), 0u);
    const Bytes element =
        tlv(0x30, concat({{0x0C, 0x02, 0xC3, 0xBC}, {0x04, 0x01, 0xE9}, {0x30, 0x00, 0x30, 0x00}}));
    EXPECT_EQ(bytes_of(out), with_header(tlv(0x30, concat({{0x02, 0x01, 0x00},
                                                           {0x0C, 0x0B, 0xC3, 0x89, 'v', 0xC3, 0xA9,
                                                            'n', 'e', 'm', 'e', 'n', 't'},
                                                           {0x02, 0x01, 0x00},
                                                           tlv(0x30, element)}))));
    Event back;
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back.record()), 0u);
    EXPECT_STREQ(back.record().event_text, "\xC9v\xE9nement");
    ASSERT_EQ(back.record().element_count, 1u);
    EXPECT_STREQ(back.record().elements[0].name, "\xFC");
    ASSERT_EQ(back.record().elements[0].value_length, 1u);
    EXPECT_EQ(back.record().elements[0].value[0], 0xE9) << "byte values are not converted";
    kelm_asn_buffer_free(out);
}

// --- failures --------------------------------------------------------------------------------

TEST(AuditFailure, AListEntryThatCannotBeAddedIsReportedAsTheModulesMemoryError) {
    Event event;
    event.record().element_count = 2;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(2, sizeof(zuauditelement_s_t)));
    fill_element(event.record().elements[0], "a", {1}, 2);
    fill_chain(event.record().elements[1], 3);
    const std::string event_line =
        kelm_test::exception_line("ASN: Memory error", 0x10652065, "base_idls/zuauditidl_asn.cpp",
                                  kelm_zuauditevent_type.source_line);
    const std::string element_line =
        kelm_test::exception_line("ASN: Memory error", 0x10652065, "base_idls/zuauditidl_asn.cpp",
                                  kelm_zuauditelement_type.source_line);
    std::set<std::string> lines;
    kelm_asn_buffer_t out{0, nullptr};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, event.record());
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                EXPECT_EQ(out.data, nullptr);
                lines.insert(err);
            } else {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(err, "");
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_GT(total, 20u);
    EXPECT_EQ(lines.count(event_line), 1u) << "expected among the lines: " << event_line;
    EXPECT_EQ(lines.count(element_line), 1u) << "expected among the lines: " << element_line;
}

TEST(AuditFailure, EveryAllocationOfADecodeFailsAndThePartialEventFreesCleanly) {
    Event event;
    event.record().event_text = dup_text("e");
    event.record().element_count = 2;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(2, sizeof(zuauditelement_s_t)));
    fill_element(event.record().elements[0], "a", {1}, 2);
    fill_chain(event.record().elements[1], 3);
    const Bytes wire = encode(event.record());
    kelm_asn_buffer_t in{wire.size(), const_cast<unsigned char*>(wire.data())};
    const std::string element_line =
        kelm_test::exception_line("ASN: Memory error", 0x10652065, "base_idls/zuauditidl_asn.cpp",
                                  kelm_zuauditelement_type.source_line);
    std::set<std::string> lines;
    zuauditevent_s_t back{};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            back = zuauditevent_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
                lines.insert(err);
            } else {
                EXPECT_EQ(status, 0u);
                ASSERT_EQ(back.element_count, 2u);
                EXPECT_EQ(chain_levels(back.elements[1]), 3u);
            }
            kelmAsnFreeObj(back);
        });
    EXPECT_GT(total, 20u);
    EXPECT_EQ(lines.count(element_line), 1u) << "expected among the lines: " << element_line;
}

TEST(AuditFailure, EveryTruncationOfANestedEventGivesAStatusAndFreesCleanly) {
    Event event;
    event.record().element_count = 1;
    event.record().elements =
        static_cast<zuauditelement_s_t*>(std::calloc(1, sizeof(zuauditelement_s_t)));
    fill_chain(event.record().elements[0], 3);
    const Bytes wire = encode(event.record());
    for (size_t n = 0; n < wire.size(); ++n) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " bytes");
        Event back;
        EXPECT_NE(decode(Bytes(wire.begin(), wire.begin() + n), back.record()), 0u);
    }
}
