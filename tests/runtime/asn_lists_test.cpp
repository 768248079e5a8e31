// SEQUENCE OF lists and positional arrays with holes.
#include <pthread.h>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_test_util.h"
#include "asnbase.h"

using kelm_test::Bytes;
using kelm_test::decode;
using kelm_test::encode;
using kelm_test::tlv;

namespace {

using IntegerList = kelm_asn_sequenceof<kelm_asn_integer>;
using IntegerArray = kelm_asn_arrayof<kelm_asn_integer>;

// A list of lists of lists..., as a recursive record type would be.
struct Nested : kelm_asn_sequenceof<Nested> {
    explicit Nested(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_sequenceof<Nested>(sec) {}
};

// SEQUENCE { n INTEGER, s OCTET STRING }
struct Pair : kelm_asn_sequence {
    explicit Pair(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_sequence(sec) {
        register_child(&n);
        register_child(&s);
    }
    kelm_asn_integer n;
    kelm_asn_octetstring s;
};

IntegerList& fill(IntegerList& list, std::initializer_list<int> values) {
    for (int v : values)
        list.add_child()->set_value(v);
    return list;
}

std::vector<int> values_of(const IntegerList& list) {
    std::vector<int> values;
    for (unsigned int i = 0; i < list.get_child_count(); ++i) {
        int v = 0;
        list.element(i)->get_value(v);
        values.push_back(v);
    }
    return values;
}

} // namespace

TEST(SequenceOf, ANewListIsPresentAndEmpty) {
    IntegerList list;
    EXPECT_EQ(list.is_present(), 1);
    EXPECT_STREQ(list.get_type_name(), "SEQUENCEOF");
    EXPECT_EQ(encode(list), (Bytes{0x30, 0x00}));
}

TEST(SequenceOf, ElementsAreWrittenInOrder) {
    IntegerList list;
    fill(list, {1, -1, 300});
    EXPECT_EQ(encode(list),
              (Bytes{0x30, 0x0A, 0x02, 0x01, 0x01, 0x02, 0x01, 0xFF, 0x02, 0x02, 0x01, 0x2C}));
}

TEST(SequenceOf, AddChildBeforePutsTheElementFirst) {
    IntegerList list;
    fill(list, {2, 3});
    list.add_child_before()->set_value(1);
    EXPECT_EQ(values_of(list), (std::vector<int>{1, 2, 3}));
}

TEST(SequenceOf, ZeroContentsOctetsDecodeToAPresentEmptyList) {
    IntegerList list;
    fill(list, {4, 5});
    ASSERT_EQ(decode(list, {0x30, 0x00}), 0u);
    EXPECT_EQ(list.is_present(), 1);
    EXPECT_EQ(list.get_child_count(), 0u);
}

TEST(SequenceOf, DefiniteAndIndefiniteFormsDecode) {
    const Bytes definite = {0x30, 0x06, 0x02, 0x01, 0x07, 0x02, 0x01, 0x08};
    const Bytes indefinite = {0x30, 0x80, 0x02, 0x01, 0x07, 0x02, 0x01, 0x08, 0x00, 0x00};
    for (const Bytes& input : {definite, indefinite}) {
        SCOPED_TRACE(input[1] == 0x80 ? "indefinite" : "definite");
        IntegerList list;
        size_t consumed = 0;
        ASSERT_EQ(decode(list, input, &consumed), 0u);
        EXPECT_EQ(consumed, input.size());
        EXPECT_EQ(values_of(list), (std::vector<int>{7, 8}));
        EXPECT_EQ(encode(list), definite);
    }
}

TEST(SequenceOf, AnIndefiniteListEndsAtTheFirstEndOfContents) {
    // The contents reader stops before the first 00 00 and leaves it to the frame reader.
    IntegerList list;
    Bytes contents = {0x02, 0x01, 0x07, 0x00, 0x00, 0x02, 0x01, 0x08};
    unsigned char identifier_and_length[] = {0x30, 0x80};
    kelm_r_buffer_t frame(identifier_and_length, 2);
    ASSERT_EQ(list.asnread(frame), 0x10652198u) << "a frame with no contents at all";
    IntegerList reader;
    ASSERT_EQ(decode(reader, {0x30, 0x80, 0x02, 0x01, 0x07, 0x00, 0x00, 0x00, 0x00}), 0u);
    EXPECT_EQ(values_of(reader), (std::vector<int>{7}));
    size_t consumed = 0;
    IntegerList second;
    Bytes input = {0x30, 0x80};
    input.insert(input.end(), contents.begin(), contents.end());
    ASSERT_EQ(decode(second, input, &consumed), 0u);
    EXPECT_EQ(consumed, 7u) << "the list ends at the first end-of-contents";
    EXPECT_EQ(values_of(second), (std::vector<int>{7}));
}

TEST(SequenceOf, AnElementOfTheWrongTypeFails) {
    IntegerList list;
    size_t consumed = 99;
    EXPECT_EQ(decode(list, {0x30, 0x06, 0x02, 0x01, 0x07, 0x01, 0x01, 0xFF}, &consumed),
              0x106521A4u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(list.is_present(), 0);
}

TEST(SequenceOf, AnIndefiniteListWithoutEndOfContentsIsTooShort) {
    IntegerList list;
    EXPECT_EQ(decode(list, {0x30, 0x80, 0x02, 0x01, 0x07}), 0x10652198u);
}

TEST(SequenceOf, DeletingTheFirstMiddleAndLastElement) {
    IntegerList list;
    fill(list, {1, 2, 3, 4, 5});
    EXPECT_EQ(list.delete_child(0), 0u);
    EXPECT_EQ(values_of(list), (std::vector<int>{2, 3, 4, 5}));
    EXPECT_EQ(list.delete_child(1), 0u);
    EXPECT_EQ(values_of(list), (std::vector<int>{2, 4, 5}));
    EXPECT_EQ(list.delete_child(2), 0u);
    EXPECT_EQ(values_of(list), (std::vector<int>{2, 4}));
    EXPECT_EQ(list.get_child(2), nullptr) << "the vacated slot is cleared";
    EXPECT_EQ(list.delete_child(2), 0x1065219Cu);
    EXPECT_EQ(encode(list), (Bytes{0x30, 0x06, 0x02, 0x01, 0x02, 0x02, 0x01, 0x04}));
}

TEST(SequenceOf, EmptyDeletesEveryElement) {
    IntegerList list;
    fill(list, {1, 2, 3});
    list.empty();
    EXPECT_EQ(list.get_child_count(), 0u);
    EXPECT_EQ(list.is_present(), 1);
}

TEST(SequenceOf, AnOptionalEmptyListWritesNothing) {
    IntegerList list;
    list.set_optional(1);
    EXPECT_EQ(list.is_present(), 0);
    unsigned int status = 1;
    EXPECT_EQ(encode(list, &status), Bytes{});
    EXPECT_EQ(status, 0u);
    fill(list, {9});
    EXPECT_EQ(list.is_present(), 1);
    EXPECT_EQ(encode(list), (Bytes{0x30, 0x03, 0x02, 0x01, 0x09}));
}

TEST(SequenceOf, AnOptionalListDecodedEmptyIsAbsent) {
    IntegerList list;
    list.set_optional(1);
    ASSERT_EQ(decode(list, {0x30, 0x00}), 0u);
    EXPECT_EQ(list.is_present(), 0);
}

TEST(SequenceOf, ListsOfSequencesRoundTrip) {
    kelm_asn_sequenceof<Pair> list;
    for (int i = 0; i < 3; ++i) {
        Pair* p = list.add_child();
        p->n.set_value(i);
        const unsigned char text[] = {static_cast<unsigned char>('a' + i)};
        p->s.set_value(text, 1);
    }
    const Bytes out = encode(list);
    kelm_asn_sequenceof<Pair> back;
    ASSERT_EQ(decode(back, out), 0u);
    ASSERT_EQ(back.get_child_count(), 3u);
    int n = 0;
    back.element(2)->n.get_value(n);
    EXPECT_EQ(n, 2);
    EXPECT_EQ(encode(back), out);
}

TEST(SequenceOf, ChildArrayGrowthSteps) {
    kelm_asn_sequenceof<kelm_asn_null> list;
    unsigned int previous = 0;
    unsigned int capacity_at_33 = 0, step_at_8192 = 0, step_at_65536 = 0, step_at_69632 = 0;
    for (unsigned int n = 1; n <= 80000; ++n) {
        ASSERT_NE(list.add_child(), nullptr);
        const unsigned int capacity = list.get_child_capacity();
        if (n == 33)
            capacity_at_33 = capacity;
        if (capacity != previous) {
            const unsigned int count_before = n - 1;
            const unsigned int step = capacity - count_before;
            if (count_before >= 8192 && step_at_8192 == 0)
                step_at_8192 = step;
            if (count_before >= 65536 && step_at_65536 == 0)
                step_at_65536 = step;
            if (count_before >= 69632 && step_at_69632 == 0)
                step_at_69632 = step;
            if (n == 1) {
                EXPECT_EQ(capacity, 32u);
            }
            previous = capacity;
        }
    }
    EXPECT_EQ(capacity_at_33, 544u);
    EXPECT_EQ(step_at_8192, 1024u);
    EXPECT_EQ(step_at_65536, 8192u);
    EXPECT_EQ(step_at_69632, 512u);
}

TEST(SequenceOf, AHundredThousandElementsEncodeAndDecode) {
    IntegerList list;
    for (int i = 0; i < 100000; ++i)
        ASSERT_NE(list.add_child(), nullptr);
    for (unsigned int i = 0; i < list.get_child_count(); ++i)
        list.element(i)->set_value(static_cast<int>(i));
    const Bytes out = encode(list);
    IntegerList back;
    ASSERT_EQ(decode(back, out), 0u);
    ASSERT_EQ(back.get_child_count(), 100000u);
    int last = 0;
    back.element(99999)->get_value(last);
    EXPECT_EQ(last, 99999);
}

// --- nesting ---------------------------------------------------------------------------------

namespace {

Bytes nested_lists(unsigned int levels, bool indefinite) {
    return kelm_test::nested(levels, 0x30, {}, indefinite);
}

struct Job {
    Bytes input;
    unsigned int status = 0;
    size_t consumed = 99;
};

void* decode_nested(void* arg) {
    Job* job = static_cast<Job*>(arg);
    Nested list;
    job->status = decode(list, job->input, &job->consumed);
    return nullptr;
}

Job run_with_small_stack(Bytes input) {
    Job job;
    job.input = std::move(input);
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 256 * 1024);
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attr, decode_nested, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    return job;
}

} // namespace

TEST(ListNesting, ListsNestedToTheLimitDecode) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const Job job = run_with_small_stack(nested_lists(KELM_ASN_MAX_NESTING, indefinite));
        EXPECT_EQ(job.status, 0u);
        EXPECT_EQ(job.consumed, job.input.size());
    }
}

TEST(ListNesting, OnePastTheLimitAndAHundredThousandDeepAreRefused) {
    for (unsigned int levels : {KELM_ASN_MAX_NESTING + 1u, 1000u, 100000u}) {
        for (bool indefinite : {false, true}) {
            SCOPED_TRACE(::testing::Message()
                         << levels << (indefinite ? " indefinite" : " definite"));
            const Job job = run_with_small_stack(nested_lists(levels, indefinite));
            EXPECT_EQ(job.status, 0x1065219Bu);
            EXPECT_EQ(job.consumed, 0u);
        }
    }
}

// --- arrays with holes -----------------------------------------------------------------------

TEST(ArrayOf, OnlySlotTwoFilledIsWrittenAsTwoNullsAndTheValue) {
    IntegerArray array;
    kelm_asn_integer* slot = array.fill_slot(2);
    ASSERT_NE(slot, nullptr);
    slot->set_value(42);
    EXPECT_EQ(array.get_child_count(), 3u);
    EXPECT_EQ(encode(array), (Bytes{0x30, 0x07, 0x05, 0x00, 0x05, 0x00, 0x02, 0x01, 0x2A}));
}

TEST(ArrayOf, SlotsKeepTheirPositionsThroughDecoding) {
    IntegerArray array;
    ASSERT_EQ(decode(array, {0x30, 0x07, 0x05, 0x00, 0x05, 0x00, 0x02, 0x01, 0x2A}), 0u);
    ASSERT_EQ(array.get_child_count(), 3u);
    EXPECT_EQ(array.slot_value(0), nullptr);
    EXPECT_EQ(array.slot_value(1), nullptr);
    ASSERT_NE(array.slot_value(2), nullptr);
    int value = 0;
    array.slot_value(2)->get_value(value);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(array.slots().element(0)->selected(), 0);
    EXPECT_EQ(array.slots().element(2)->selected(), 1);
}

TEST(ArrayOf, AnArrayOfOnlyFillersRoundTrips) {
    IntegerArray array;
    const Bytes input = {0x30, 0x04, 0x05, 0x00, 0x05, 0x00};
    ASSERT_EQ(decode(array, input), 0u);
    EXPECT_EQ(array.get_child_count(), 2u);
    EXPECT_EQ(array.slot_value(0), nullptr);
    EXPECT_EQ(encode(array), input);
}

TEST(ArrayOf, FillingASlotBelowTheWrittenOnesIsRefused) {
    IntegerArray array;
    ASSERT_NE(array.fill_slot(1), nullptr);
    EXPECT_EQ(array.fill_slot(0), nullptr);
}

TEST(ArrayOf, AnElementThatIsNeitherNullNorTFails) {
    IntegerArray array;
    EXPECT_EQ(decode(array, {0x30, 0x03, 0x01, 0x01, 0xFF}), 0x106521A4u);
}

TEST(ArrayOf, FlagsAnswerWithTheMembersValues) {
    IntegerArray array;
    EXPECT_EQ(array.is_present(), 1);
    EXPECT_EQ(array.is_polymorphic(), 1);
    array.set_optional(1);
    EXPECT_EQ(array.is_optional(), 1);
    EXPECT_EQ(array.is_present(), 0) << "an optional empty array is absent";
    unsigned int status = 1;
    EXPECT_EQ(encode(array, &status), Bytes{});
    EXPECT_EQ(status, 0u);
    try {
        array.set_tag(4);
        FAIL();
    } catch (const char* text) {
        EXPECT_STREQ(text, "Attempt to change tag of ASN.1 CHOICE object");
    }
}

TEST(ArrayOf, AnArrayInsideASequenceInvalidatesItsContainer) {
    struct Holder : kelm_asn_sequence {
        Holder() { register_child(&array); }
        IntegerArray array;
    } holder;
    holder.array.fill_slot(0)->set_value(1);
    const Bytes first = encode(holder);
    holder.array.fill_slot(1)->set_value(2);
    EXPECT_NE(encode(holder), first);
    EXPECT_EQ(encode(holder), (Bytes{0x30, 0x08, 0x30, 0x06, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02}));
}

// --- allocation failures ---------------------------------------------------------------------

TEST(ListAllocationFailure, EveryAllocationOfBuildingEncodingAndDecodingAListFailsCleanly) {
    Bytes wire;
    {
        kelm_asn_sequenceof<Pair> list;
        for (int i = 0; i < 40; ++i) {
            Pair* p = list.add_child();
            p->n.set_value(i * 1000);
            const unsigned char text[] = "element";
            p->s.set_value(text, 7);
        }
        wire = encode(list);
    }
    unsigned long memory_exceptions = 0, null_children = 0;
    const unsigned long total = kelm_test::for_each_allocation_failure(
        [&] {
            try {
                kelm_asn_sequenceof<Pair> list;
                for (int i = 0; i < 40; ++i) {
                    Pair* p = list.add_child();
                    if (p == nullptr) {
                        ++null_children;
                        return;
                    }
                    p->n.set_value(i * 1000);
                    const unsigned char text[] = "element";
                    p->s.set_value(text, 7);
                }
                kelm_buffer_t out;
                list.asnwrite(out);
                kelm_asn_sequenceof<Pair> back;
                kelm_r_buffer_t in(wire.data(), static_cast<unsigned int>(wire.size()));
                back.asnread(in);
            } catch (const kelm_asn_memexception& e) {
                ++memory_exceptions;
                EXPECT_EQ(e.status, 0x10652065u);
            }
        },
        [](unsigned long) {});
    EXPECT_GT(total, 100u);
    EXPECT_EQ(memory_exceptions + null_children, total);
    EXPECT_GT(null_children, 0u);
    EXPECT_GT(memory_exceptions, 0u);
}
