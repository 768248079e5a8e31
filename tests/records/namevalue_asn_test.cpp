// Name/value entries and lists, remote log requests and entitlements queries through the typed
// entry points, with the nesting limit probed at the limit, one past it and far past it.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "namevalue_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::dup_text;
using kelm_test::with_header;
using Bytes = kelm_test::RecordBytes;

namespace {

const char kSource[] = "base_idls/namevalue_asn";

template <class Record> Bytes encoded(Record& record) {
    unsigned int status = 99;
    Bytes bytes = kelm_test::encode_record(record, status);
    EXPECT_EQ(status, 0u);
    return bytes;
}

char** texts(std::initializer_list<const char*> values) {
    auto** array = static_cast<char**>(std::calloc(values.size(), sizeof(char*)));
    size_t i = 0;
    for (const char* value : values)
        array[i++] = value != nullptr ? dup_text(value) : nullptr;
    return array;
}

// A malloc'ed entry named `name` with `values`, and no nested entries.
namevalue_s_t* make_entry(const std::string& name, std::initializer_list<const char*> values) {
    auto* entry = static_cast<namevalue_s_t*>(std::calloc(1, sizeof(namevalue_s_t)));
    entry->name = dup_text(name);
    entry->value_count = static_cast<uint32_t>(values.size());
    entry->values = values.size() ? texts(values) : nullptr;
    return entry;
}

// Appends `child` to the nested entries of `parent`.
void nest(namevalue_s_t* parent, namevalue_s_t* child) {
    auto** grown = static_cast<namevalue_s_t**>(
        std::realloc(parent->nested, (parent->nested_count + 1) * sizeof(namevalue_s_t*)));
    grown[parent->nested_count++] = child;
    parent->nested = grown;
}

// A chain of `levels` entries, each the single nested entry of the one before, named after
// their level (or all with empty names and no values when `named` is false); built and released
// without recursion, so that any depth can be made.
namevalue_s_t* make_chain(unsigned int levels, bool named = true) {
    namevalue_s_t* top = named ? make_entry("level0", {"v"}) : make_entry("", {});
    namevalue_s_t* at = top;
    for (unsigned int level = 1; level < levels; ++level) {
        namevalue_s_t* child = make_entry(named ? "level" + std::to_string(level) : "", {});
        nest(at, child);
        at = child;
    }
    return top;
}

void free_chain(namevalue_s_t* top) {
    while (top != nullptr) {
        namevalue_s_t* next = top->nested_count ? top->nested[0] : nullptr;
        top->nested_count = 0;
        kelmAsnFreeObj(*top);
        std::free(top);
        top = next;
    }
}

// The depth of the first-entry chain below `entry`, itself included.
unsigned int chain_depth(const namevalue_s_t* entry) {
    unsigned int depth = 0;
    for (; entry != nullptr; entry = entry->nested_count ? entry->nested[0] : nullptr)
        ++depth;
    return depth;
}

// The body of a name/value entry nested `levels` deep (each level one entry with an empty
// name, no values and the next level as its only nested entry). Built in one pass from the
// inside out, so that deep inputs cost linear time.
Bytes nested_entries(unsigned int levels, bool indefinite) {
    const Bytes innermost = {0x30, 0x06, 0x0C, 0x00, 0x30, 0x00, 0x30, 0x00};
    if (indefinite) {
        // Each outer level: SEQUENCE (indefinite) { "", {}, SEQUENCE OF (indefinite) { ... } }.
        const Bytes open = {0x30, 0x80, 0x0C, 0x00, 0x30, 0x00, 0x30, 0x80};
        Bytes out;
        out.reserve((levels - 1) * 12 + innermost.size());
        for (unsigned int i = 1; i < levels; ++i)
            out.insert(out.end(), open.begin(), open.end());
        out.insert(out.end(), innermost.begin(), innermost.end());
        out.insert(out.end(), 4 * static_cast<size_t>(levels - 1), 0x00);
        return out;
    }
    // Built reversed: each wrap appends the reversed length octets and identifier.
    Bytes reversed(innermost.rbegin(), innermost.rend());
    auto wrap = [&reversed](unsigned char identifier) {
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
    };
    const unsigned char prefix_reversed[] = {0x00, 0x30, 0x00, 0x0C}; // 0C 00 30 00
    for (unsigned int i = 1; i < levels; ++i) {
        wrap(0x30); // the SEQUENCE OF holding the next level
        reversed.insert(reversed.end(), std::begin(prefix_reversed), std::end(prefix_reversed));
        wrap(0x30); // this level's SEQUENCE
    }
    return Bytes(reversed.rbegin(), reversed.rend());
}

// A name/value list holding one entry nested `levels` deep.
Bytes nested_list(unsigned int levels, bool indefinite) {
    Bytes entry = nested_entries(levels, indefinite);
    if (indefinite) {
        Bytes out = {0x30, 0x80, 0x30, 0x80};
        out.insert(out.end(), entry.begin(), entry.end());
        out.insert(out.end(), {0x00, 0x00, 0x00, 0x00});
        return out;
    }
    return kelm_test::nested(2, 0x30, entry, false);
}

// Record levels that fit the nesting limit: each entry is two constructed levels (itself and
// its innermost lists), and a list adds two more around its entries.
constexpr unsigned int kDeepestEntry = KELM_ASN_MAX_NESTING / 2;
constexpr unsigned int kDeepestListEntry = (KELM_ASN_MAX_NESTING - 2) / 2;

struct DeepResult {
    unsigned int status = 99;
    unsigned int depth = 0;
    bool untouched = false;
};

// Decodes `body` as a name/value entry on a thread with a 256 KiB stack.
DeepResult decode_entry_on_small_stack(const Bytes& body) {
    DeepResult result;
    kelm_test::run_on_small_stack([&] {
        namevalue_s_t back{};
        result.status = kelm_test::decode_record(with_header(body), back);
        const namevalue_s_t zero{};
        result.untouched = std::memcmp(&back, &zero, sizeof back) == 0;
        result.depth = back.name != nullptr ? chain_depth(&back) : 0;
        kelmAsnFreeObj(back);
    });
    return result;
}

DeepResult decode_list_on_small_stack(const Bytes& body) {
    DeepResult result;
    kelm_test::run_on_small_stack([&] {
        namevalueList_s_t back{};
        result.status = kelm_test::decode_record(with_header(body), back);
        result.untouched = back.entry_count == 0 && back.entries == nullptr;
        result.depth = back.entry_count ? chain_depth(back.entries[0]) : 0;
        kelmAsnFreeObj(back);
    });
    return result;
}

} // namespace

// --- namevalue_s_t ---------------------------------------------------------------------------

TEST(NameValue, AnEntryWithoutValuesOrNestedEntriesIsTheNameAndTwoEmptyLists) {
    namevalue_s_t* entry = make_entry("k", {});
    const Bytes wire = encoded(*entry);
    EXPECT_EQ(wire, with_header({0x30, 0x07, 0x0C, 0x01, 'k', 0x30, 0x00, 0x30, 0x00}));
    namevalue_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.name, "k");
    EXPECT_EQ(back.value_count, 0u);
    EXPECT_EQ(back.values, nullptr);
    EXPECT_EQ(back.nested_count, 0u);
    EXPECT_EQ(back.nested, nullptr);
    kelmAsnFreeObj(back);
    free_chain(entry);
}

TEST(NameValue, ValuesAndNestedEntriesAreWrittenInOrder) {
    namevalue_s_t* entry = make_entry("a", {"x", nullptr});
    nest(entry, make_entry("b", {}));
    nest(entry, make_entry("c", {"y"}));
    const Bytes wire = encoded(*entry);
    EXPECT_EQ(wire,
              with_header({0x30, 0x21, 0x0C, 0x01, 'a',  0x30, 0x05, 0x0C, 0x01, 'x',  0x0C, 0x00,
                           0x30, 0x15, 0x30, 0x07, 0x0C, 0x01, 'b',  0x30, 0x00, 0x30, 0x00, 0x30,
                           0x0A, 0x0C, 0x01, 'c',  0x30, 0x03, 0x0C, 0x01, 'y',  0x30, 0x00}));
    namevalue_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.value_count, 2u);
    EXPECT_STREQ(back.values[0], "x");
    EXPECT_STREQ(back.values[1], "");
    ASSERT_EQ(back.nested_count, 2u);
    EXPECT_STREQ(back.nested[0]->name, "b");
    EXPECT_STREQ(back.nested[1]->name, "c");
    ASSERT_EQ(back.nested[1]->value_count, 1u);
    EXPECT_STREQ(back.nested[1]->values[0], "y");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(*entry);
    std::free(entry);
}

TEST(NameValue, ThreeLevelsDecodeIntoSeparateBlocksThatTheFreeReleases) {
    namevalue_s_t* top = make_chain(3);
    nest(top, make_entry("sibling", {"s1", "s2"}));
    const Bytes wire = encoded(*top);
    namevalue_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(chain_depth(&back), 3u);
    ASSERT_EQ(back.nested_count, 2u);
    namevalue_s_t* level1 = back.nested[0];
    ASSERT_EQ(level1->nested_count, 1u);
    namevalue_s_t* level2 = level1->nested[0];
    EXPECT_STREQ(level1->name, "level1");
    EXPECT_STREQ(level2->name, "level2");
    EXPECT_NE(static_cast<void*>(level1), static_cast<void*>(back.nested));
    EXPECT_NE(level1, level2);
    EXPECT_NE(back.nested[1], level1);
    EXPECT_STREQ(back.nested[1]->values[1], "s2");
    EXPECT_EQ(encoded(back), wire);
    // Freeing the outer entry releases every level; the sanitizers' leak check stands behind it.
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(*top);
    std::free(top);
}

TEST(NameValue, TheStoredTypeNamesAreTheClassNames) {
    asn_namevalue_t entry;
    EXPECT_STREQ(entry.get_type_name(), "namevalue_t");
    asn_namevalueList_t list;
    EXPECT_STREQ(list.get_type_name(), "namevalueList_t");
    asn_RemoteLogRequest log;
    EXPECT_STREQ(log.get_type_name(), "RemoteLogRequest");
    asn_azn_get_entitlements_in_t in;
    EXPECT_STREQ(in.get_type_name(), "azn_get_entitlem");
    asn_azn_get_entitlements_out_t out;
    EXPECT_STREQ(out.get_type_name(), "azn_get_entitlem");
}

// --- namevalueList_s_t -----------------------------------------------------------------------

TEST(NameValueList, AnEmptyListIsANestedEmptySequenceAndDecodesToANullArray) {
    namevalueList_s_t list{};
    const Bytes wire = encoded(list);
    EXPECT_EQ(wire, with_header({0x30, 0x02, 0x30, 0x00}));
    namevalueList_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.entry_count, 0u);
    EXPECT_EQ(back.entries, nullptr);
    uint32_t after_count;
    std::memcpy(&after_count, reinterpret_cast<unsigned char*>(&back) + 4, sizeof after_count);
    EXPECT_EQ(after_count, 0u) << "the 32 bits after the count are cleared too";
    kelmAsnFreeObj(back);
}

TEST(NameValueList, EntriesAreSeparateBlocks) {
    namevalueList_s_t list{};
    list.entry_count = 2;
    list.entries = static_cast<namevalue_s_t**>(std::calloc(2, sizeof(void*)));
    list.entries[0] = make_chain(2);
    list.entries[1] = make_entry("second", {"a", "b", "c"});
    const Bytes wire = encoded(list);
    namevalueList_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.entry_count, 2u);
    EXPECT_EQ(chain_depth(back.entries[0]), 2u);
    EXPECT_STREQ(back.entries[1]->name, "second");
    EXPECT_EQ(back.entries[1]->value_count, 3u);
    EXPECT_NE(back.entries[0], back.entries[1]);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(list);
}

// --- nesting ---------------------------------------------------------------------------------

TEST(NameValueNesting, AnEntryNestedToTheLimitDecodes) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const DeepResult result =
            decode_entry_on_small_stack(nested_entries(kDeepestEntry, indefinite));
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.depth, kDeepestEntry);
    }
}

TEST(NameValueNesting, OnePastTheLimitAndAHundredThousandDeepAreRefusedUntouched) {
    for (unsigned int levels : {kDeepestEntry + 1, 100000u}) {
        for (bool indefinite : {false, true}) {
            SCOPED_TRACE(::testing::Message()
                         << levels << (indefinite ? " indefinite" : " definite"));
            const DeepResult result =
                decode_entry_on_small_stack(nested_entries(levels, indefinite));
            EXPECT_EQ(result.status, 0x1065219Bu);
            EXPECT_TRUE(result.untouched)
                << "the entries read before the refusal belong to the object tree, not the record";
        }
    }
}

TEST(NameValueNesting, AListNestedToTheLimitDecodesAndOnePastIsRefused) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        DeepResult result = decode_list_on_small_stack(nested_list(kDeepestListEntry, indefinite));
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.depth, kDeepestListEntry);
        result = decode_list_on_small_stack(nested_list(kDeepestListEntry + 1, indefinite));
        EXPECT_EQ(result.status, 0x1065219Bu);
        EXPECT_TRUE(result.untouched);
        result = decode_list_on_small_stack(nested_list(100000, indefinite));
        EXPECT_EQ(result.status, 0x1065219Bu);
        EXPECT_TRUE(result.untouched);
    }
}

TEST(NameValueNesting, EncodingRefusesWhatDecodingWouldRefuseWithoutExhaustingTheStack) {
    for (unsigned int levels : {kDeepestEntry, kDeepestEntry + 1, 100000u}) {
        SCOPED_TRACE(levels);
        namevalue_s_t* top = make_chain(levels, false);
        unsigned int status = 99;
        Bytes wire;
        std::string err;
        kelm_test::run_on_small_stack([&] {
            ::testing::internal::CaptureStderr();
            wire = kelm_test::encode_record(*top, status);
            err = ::testing::internal::GetCapturedStderr();
        });
        if (levels <= kDeepestEntry) {
            EXPECT_EQ(status, 0u);
            EXPECT_EQ(wire, with_header(nested_entries(levels, false)));
            namevalue_s_t back{};
            ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
            EXPECT_EQ(chain_depth(&back), levels);
            kelmAsnFreeObj(back);
        } else {
            EXPECT_EQ(status, 0x1065219Bu);
            EXPECT_TRUE(wire.empty()) << "no buffer is handed out";
            EXPECT_EQ(err, "") << "a refusal is a status, not an exception";
        }
        free_chain(top);
    }
}

TEST(NameValueNesting, AnEntryThatContainsItselfIsRefused) {
    namevalue_s_t* entry = make_entry("loop", {});
    nest(entry, entry);
    unsigned int status = 99;
    kelm_test::run_on_small_stack([&] { kelm_test::encode_record(*entry, status); });
    EXPECT_EQ(status, 0x1065219Bu);
    std::free(entry->nested);
    entry->nested = nullptr;
    entry->nested_count = 0;
    kelmAsnFreeObj(*entry);
    std::free(entry);
}

// --- remote_log_request ----------------------------------------------------------------------

TEST(RemoteLog, EmptyDataIsAnEmptyOctetStringAndDecodesToANullPointer) {
    remote_log_request log{dup_text("a"), nullptr, 0xFFFFFFFF, 0x80000000, 0, nullptr};
    const Bytes wire = encoded(log);
    EXPECT_EQ(wire, with_header({0x30, 0x10, 0x0C, 0x01, 'a', 0x0C, 0x00, 0x02, 0x01, 0xFF, 0x02,
                                 0x04, 0x80, 0x00, 0x00, 0x00, 0x04, 0x00}));
    remote_log_request back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.log_text1, "a");
    EXPECT_STREQ(back.log_text2, "");
    EXPECT_EQ(back.log_number1, 0xFFFFFFFFu);
    EXPECT_EQ(back.log_number2, 0x80000000u);
    EXPECT_EQ(back.data_length, 0u);
    EXPECT_EQ(back.data, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(log);
}

TEST(RemoteLog, DataBytesTravelUnchangedAlsoInTheLocalCodeSetMode) {
    const unsigned char bytes[] = {0x00, 0xE9, 0xFF, 0x0A};
    auto* data = static_cast<unsigned char*>(std::malloc(sizeof bytes));
    std::memcpy(data, bytes, sizeof bytes);
    remote_log_request log{nullptr, nullptr, 1, 2, sizeof bytes, data};
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, log), 0u);
    EXPECT_EQ(Bytes(out.data, out.data + out.length),
              with_header({0x30, 0x10, 0x0C, 0x00, 0x0C, 0x00, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02,
                           0x04, 0x04, 0x00, 0xE9, 0xFF, 0x0A}));
    remote_log_request back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    ASSERT_EQ(back.data_length, sizeof bytes);
    EXPECT_EQ(std::memcmp(back.data, bytes, sizeof bytes), 0);
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(log);
}

// --- entitlements ----------------------------------------------------------------------------

TEST(Entitlements, TheQueryIsANameTheAttributeListAndTheChain) {
    azn_get_entitlements_in_s_t in{};
    in.name = dup_text("n");
    const Bytes wire = encoded(in);
    EXPECT_EQ(wire, with_header({0x30, 0x0D, 0x0C, 0x01, 'n', 0x30, 0x02, 0x30, 0x00, 0x30, 0x04,
                                 0x0C, 0x00, 0x30, 0x00}));
    azn_get_entitlements_in_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.name, "n");
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_STREQ(back.chain.chain_name, "");
    EXPECT_EQ(back.chain.principal_count, 0u);
    EXPECT_EQ(back.chain.principals, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(in);
}

TEST(Entitlements, TheReplyStatusKeepsItsBitPattern) {
    azn_get_entitlements_out_s_t out{{0, nullptr}, 0xFFFFFFFF};
    const Bytes wire = encoded(out);
    EXPECT_EQ(wire, with_header({0x30, 0x07, 0x30, 0x02, 0x30, 0x00, 0x02, 0x01, 0xFF}));
    azn_get_entitlements_out_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.status, 0xFFFFFFFFu);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    kelmAsnFreeObj(back);
}

// --- local code set --------------------------------------------------------------------------

TEST(NameValueLocalCodeSet, Latin1NamesAndValuesAtEveryLevelTravelAsUtf8) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    namevalue_s_t* top = make_entry("\xE9t\xE9", {"\xE0"});
    nest(top, make_entry("d\xFB", {"\xA9"}));
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, *top), 0u);
    EXPECT_EQ(Bytes(out.data, out.data + out.length),
              with_header({0x30, 0x1E, 0x0C, 0x05, 0xC3, 0xA9, 't',  0xC3, 0xA9, 0x30, 0x04,
                           0x0C, 0x02, 0xC3, 0xA0, 0x30, 0x0F, 0x30, 0x0D, 0x0C, 0x03, 'd',
                           0xC3, 0xBB, 0x30, 0x04, 0x0C, 0x02, 0xC2, 0xA9, 0x30, 0x00}));
    namevalue_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    EXPECT_STREQ(back.name, "\xE9t\xE9");
    EXPECT_STREQ(back.values[0], "\xE0");
    ASSERT_EQ(back.nested_count, 1u);
    EXPECT_STREQ(back.nested[0]->name, "d\xFB");
    EXPECT_STREQ(back.nested[0]->values[0], "\xA9");
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(*top);
    std::free(top);
}

// --- memory exceptions -----------------------------------------------------------------------

TEST(NameValueFailure, EveryAllocationOfANestedDecodeFailsAndThePartialRecordFreesCleanly) {
    namevalue_s_t* top = make_chain(3);
    nest(top, make_entry("sibling", {"s1", "s2"}));
    Bytes wire = encoded(*top);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    namevalue_s_t back{};
    unsigned long partial = 0;
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            back = namevalue_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, bool failed) {
            if (failed && back.name != nullptr)
                ++partial;
            if (!failed) {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(chain_depth(&back), 3u);
            }
            kelmAsnFreeObj(back);
        });
    EXPECT_GT(partial, 0u) << "some failures leave a partly filled record for the free";
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_namevalue_type.source_line)),
              1u);
    kelmAsnFreeObj(*top);
    std::free(top);
}

TEST(NameValueFailure, EveryAllocationOfAListEncodeFailsWithTheModulesLine) {
    namevalueList_s_t list{};
    list.entry_count = 2;
    list.entries = static_cast<namevalue_s_t**>(std::calloc(2, sizeof(void*)));
    list.entries[0] = make_chain(2);
    list.entries[1] = make_entry("second", {"a"});
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, list);
        },
        [&](unsigned int status, bool) {
            if (status != 0) {
                EXPECT_EQ(out.data, nullptr);
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_namevalueList_type.source_line)),
              1u)
        << "an entry that cannot be added to the list";
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_namevalue_type.source_line)),
              1u)
        << "a value or nested entry that cannot be added";
    kelmAsnFreeObj(list);
}
