// The object core: identifier and length octets, the read frame with its restore rules,
// defaults, state flags, parent notification and the dump format.
#include <pthread.h>

#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "asnbase.h"

using kelm_test::Bytes;
using kelm_test::contents;
using kelm_test::decode;
using kelm_test::encode;

namespace {

// A container for white-box tests of the core: it writes its one child as its contents and
// counts how often the child asks it to re-check its validity.
class Holder : public kelm_asn_object {
  public:
    explicit Holder(kelm_asn_object& held) : kelm_asn_object(KELM_SECURITY_PLAIN), child(held) {
        tag = 16;
        generate_constructed = 1;
        constructed_permitted = 1;
        child.set_parent(this);
    }
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int) override {
        return child.asnread(input);
    }
    unsigned int encode_value(kelm_buffer_t& output) const override {
        return child.asnwrite(output);
    }
    int check_valid(int) override {
        ++checks;
        return 0;
    }
    void rename(const char* name) { set_type_name(name); }
    std::string raw_name() const { return std::string(type_name, sizeof type_name); }
    void forbid_primitive() { primitive_permitted = 0; }

    kelm_asn_object& child;
    int checks = 0;
};

int last_postread_status = -1;
int preread_calls = 0;
void count_preread(kelm_asn_object*, kelm_r_buffer_t&) {
    ++preread_calls;
}
void record_postread(kelm_asn_object*, kelm_r_buffer_t&, int status) {
    last_postread_status = status;
}

} // namespace

TEST(IdentifierOctets, TagThirtyIsOneOctetAndThirtyOneTakesTheHighTagForm) {
    kelm_asn_integer value;
    value.set_value(5);
    value.set_tag(30);
    EXPECT_EQ(encode(value), (Bytes{0x1E, 0x01, 0x05}));
    value.set_tag(31);
    EXPECT_EQ(encode(value), (Bytes{0x1F, 0x1F, 0x01, 0x05}));
    value.set_class(2);
    EXPECT_EQ(encode(value), (Bytes{0x9F, 0x1F, 0x01, 0x05}));
}

TEST(IdentifierOctets, HighTagNumbersUseTheFewestBase128Groups) {
    struct Row {
        unsigned int tag;
        Bytes identifier;
    } rows[] = {
        {127, {0x5F, 0x7F}},
        {128, {0x5F, 0x81, 0x00}},
        {16383, {0x5F, 0xFF, 0x7F}},
        {16384, {0x5F, 0x81, 0x80, 0x00}},
        {0x1FFFFF, {0x5F, 0xFF, 0xFF, 0x7F}},
        {0x200000, {0x5F, 0x81, 0x80, 0x80, 0x00}},
        {0xFFFFFFF, {0x5F, 0xFF, 0xFF, 0xFF, 0x7F}},
        {0x10000000, {0x5F, 0x81, 0x80, 0x80, 0x80, 0x00}},
        {0xFFFFFFFF, {0x5F, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "tag " << row.tag);
        kelm_asn_null value;
        value.set_class(1);
        value.set_tag(row.tag);
        Bytes expected = row.identifier;
        expected.push_back(0x00);
        EXPECT_EQ(encode(value), expected);
    }
}

TEST(IdentifierOctets, TagsThirtyAndThirtyOneReadBack) {
    for (unsigned int tag : {30u, 31u}) {
        SCOPED_TRACE(::testing::Message() << "tag " << tag);
        kelm_asn_integer out;
        out.set_tag(tag);
        out.set_value(-7);
        kelm_asn_integer in;
        in.set_tag(tag);
        ASSERT_EQ(decode(in, encode(out)), 0u);
        int value = 0;
        EXPECT_EQ(in.get_value(value), 0u);
        EXPECT_EQ(value, -7);
    }
}

TEST(LengthOctets, DefiniteLengthsTakeTheFewestOctets) {
    struct Row {
        unsigned int length;
        size_t header; // identifier plus length octets
    } rows[] = {{0, 2},   {127, 2},   {128, 3},   {255, 3},
                {256, 4}, {65535, 4}, {65536, 5}, {0x1000000, 6}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "length " << row.length);
        Bytes data(row.length, 0x41);
        kelm_asn_octetstring value;
        value.set_value(data.data(), row.length);
        const Bytes out = encode(value);
        ASSERT_EQ(out.size(), row.header + row.length);
        if (row.header > 2) {
            EXPECT_EQ(out[1], 0x80 | (row.header - 2));
        }
        kelm_asn_octetstring back;
        ASSERT_EQ(decode(back, out), 0u);
        unsigned char* octets = nullptr;
        unsigned int count = 0;
        ASSERT_EQ(back.get_value(octets, count), 0u);
        EXPECT_EQ(count, row.length);
    }
}

TEST(LengthOctets, WriteLengthOfAnInvalidCacheIsABadEncodingAndWritesNothing) {
    kelm_asn_integer value;
    kelm_buffer_t out;
    EXPECT_EQ(value.write_length(out), 0x1065219Bu);
    EXPECT_EQ(out.used(), 0u);
}

TEST(ReadFrame, AnOptionalElementWithAnotherTagReadsNothingAndCallsPostreadWithZero) {
    kelm_asn_integer value;
    value.set_optional(1);
    value.set_preread(count_preread);
    value.set_postread(record_postread);
    preread_calls = 0;
    last_postread_status = -1;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x04, 0x01, 0x00}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(value.is_present(), 0);
    EXPECT_EQ(preread_calls, 1);
    EXPECT_EQ(last_postread_status, 0);
}

TEST(ReadFrame, AnOptionalElementAtTheEndOfTheInputIsAbsent) {
    kelm_asn_integer value;
    value.set_optional(1);
    EXPECT_EQ(decode(value, {}), 0u);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(ReadFrame, AMandatoryElementAtTheEndOfTheInputIsTooShort) {
    kelm_asn_integer value;
    value.set_postread(record_postread);
    EXPECT_EQ(decode(value, {}), 0x10652198u);
    EXPECT_EQ(last_postread_status, 0x10652198);
}

TEST(ReadFrame, AMandatoryElementWithAnotherTagIsAnUnexpectedTag) {
    kelm_asn_integer value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x01, 0x01, 0xFF}, &consumed), 0x106521A4u);
    EXPECT_EQ(consumed, 0u);
}

TEST(ReadFrame, EveryFailureRestoresTheInput) {
    struct Row {
        const char* what;
        Bytes input;
        unsigned int status;
    } rows[] = {
        {"length octets cut short", {0x02, 0x82, 0x01}, 0x10652198},
        {"length past the end", {0x02, 0x05, 0x01}, 0x10652198},
        {"constructed integer", {0x22, 0x03, 0x02, 0x01, 0x05}, 0x1065219E},
        {"indefinite integer", {0x02, 0x80, 0x05, 0x00, 0x00}, 0x1065219D},
        {"huge length", {0x02, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x01}, 0x10652198},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        kelm_asn_integer value;
        value.set_postread(record_postread);
        size_t consumed = 99;
        EXPECT_EQ(decode(value, row.input, &consumed), row.status);
        EXPECT_EQ(consumed, 0u);
        EXPECT_EQ(value.is_present(), 0);
        EXPECT_EQ(last_postread_status, static_cast<int>(row.status));
    }
}

TEST(ReadFrame, AContentsFailureRestoresTheInput) {
    kelm_asn_boolean value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x01, 0x02, 0xFF, 0xFF}, &consumed), 0x1065219Bu);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(ReadFrame, IndefiniteLengthIsRefusedBeforeTheContentsAreRead) {
    kelm_asn_boolean value; // a decode of its contents would fail on the length instead
    EXPECT_EQ(decode(value, {0x01, 0x80, 0xFF, 0x00, 0x00}), 0x1065219Du);
}

TEST(ReadFrame, PrimitiveEncodingRefusedWhenNotPermitted) {
    kelm_asn_integer inner;
    Holder holder(inner);
    holder.forbid_primitive();
    size_t consumed = 99;
    EXPECT_EQ(decode(holder, {0x10, 0x00}, &consumed), 0x1065219Fu);
    EXPECT_EQ(consumed, 0u);
}

TEST(ReadFrame, AMissingEndOfContentsLeavesTheInputWhereTheContentsEnded) {
    kelm_asn_octetstring value;
    size_t consumed = 0;
    // A primitive OCTET STRING with an indefinite length has empty contents; 61 62 is not 00 00.
    EXPECT_EQ(decode(value, {0x04, 0x80, 0x61, 0x62}, &consumed), 0x1065219Bu);
    EXPECT_EQ(consumed, 2u);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(ReadFrame, IndefiniteLengthWithEndOfContentsIsConsumed) {
    kelm_asn_octetstring value;
    size_t consumed = 0;
    EXPECT_EQ(decode(value, {0x24, 0x80, 0x04, 0x01, 0x61, 0x00, 0x00, 0x05}, &consumed), 0u);
    EXPECT_EQ(consumed, 7u);
    EXPECT_EQ(value.is_indefinite_length(), 1);
    EXPECT_EQ(value.is_constructed(), 1);
}

TEST(ReadFrame, ReadingStoresTheTagAndClassItRead) {
    kelm_asn_integer value;
    EXPECT_EQ(decode(value, {0x02, 0x01, 0x09}), 0u);
    EXPECT_EQ(value.get_tag(), 2u);
    EXPECT_EQ(value.get_class(), 0);
    EXPECT_EQ(value.is_encoding_valid(), 1);
    EXPECT_EQ(value.is_present(), 1);
}

TEST(Defaults, AValueEqualToItsDefaultIsNotWritten) {
    kelm_asn_integer value;
    value.set_default_value(7);
    value.set_value(7);
    unsigned int status = 1;
    EXPECT_EQ(encode(value, &status), Bytes{});
    EXPECT_EQ(status, 0u);
    EXPECT_EQ(value.is_default_value(), 1);
    value.set_value(8);
    EXPECT_EQ(encode(value), (Bytes{0x02, 0x01, 0x08}));
    EXPECT_EQ(value.is_default_value(), 0);
}

TEST(Defaults, AfterDecodingWithoutItTheEncodingIsTheDefaults) {
    kelm_asn_integer value;
    value.set_default_value(300);
    EXPECT_EQ(decode(value, {0x04, 0x00}), 0u);
    EXPECT_EQ(value.is_present(), 0);
    EXPECT_EQ(contents(value), (Bytes{0x01, 0x2C}));
    int read = 0;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 300);
}

TEST(Defaults, TheDefaultTakesTheTagAndClassOfItsOwner) {
    kelm_asn_integer value;
    value.set_tag(9);
    value.set_class(2);
    value.set_default_value(1);
    ASSERT_NE(value.get_default_value(), nullptr);
    EXPECT_EQ(value.get_default_value()->get_tag(), 9u);
    EXPECT_EQ(value.get_default_value()->get_class(), 2);
    EXPECT_EQ(value.get_default_value()->get_parent(), &value);
    EXPECT_EQ(value.is_defaultable(), 1);
}

TEST(Defaults, ReplacingTheDefaultReleasesThePreviousOne) {
    kelm_asn_octetstring value;
    const unsigned char a[] = {1, 2, 3};
    value.set_default_value(a, 3);
    value.set_default_value(a, 1);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(value.get_value(octets, count), 0u);
    EXPECT_EQ(count, 1u);
}

TEST(Write, AnAbsentMandatoryElementIsAMissingValue) {
    kelm_asn_integer value;
    unsigned int status = 0;
    EXPECT_EQ(encode(value, &status), Bytes{});
    EXPECT_EQ(status, 0x106521A0u);
}

TEST(Write, AnAbsentOptionalElementWritesNothing) {
    kelm_asn_integer value;
    value.set_optional(1);
    unsigned int status = 1;
    EXPECT_EQ(encode(value, &status), Bytes{});
    EXPECT_EQ(status, 0u);
}

TEST(Write, ChangingTheTagAfterEncodingKeepsTheValue) {
    kelm_asn_integer value;
    value.set_value(1000);
    EXPECT_EQ(encode(value), (Bytes{0x02, 0x02, 0x03, 0xE8}));
    value.set_tag(10);
    value.set_optional(1);
    EXPECT_EQ(encode(value), (Bytes{0x0A, 0x02, 0x03, 0xE8}));
}

TEST(Equality, TwoObjectsAreEqualWhenTheirWrittenElementsAre) {
    kelm_asn_integer a, b;
    a.set_value(5);
    b.set_value(5);
    EXPECT_EQ(a == b, 1);
    b.set_tag(3);
    EXPECT_EQ(a == b, 0);
    b.set_tag(2);
    b.set_value(6);
    EXPECT_EQ(a == b, 0);
}

TEST(CopyAndAssignment, BothAreRefused) {
    kelm_asn_integer a;
    try {
        kelm_asn_integer copy(a);
        FAIL() << "copied";
    } catch (const kelm_asn_unsupportederror& e) {
        EXPECT_EQ(e.status, 0x10652197u);
        EXPECT_STREQ(e.message, "Can't copy asn_objects");
    }
    kelm_asn_integer b;
    try {
        b = a;
        FAIL() << "assigned";
    } catch (const kelm_asn_unsupportederror& e) {
        EXPECT_EQ(e.status, 0x10652197u);
        EXPECT_STREQ(e.message, "Can't assign asn_objects");
    }
}

TEST(ChildCount, ANonCompositeThrowsAPlainText) {
    kelm_asn_integer value;
    try {
        value.get_child_count();
        FAIL() << "no exception";
    } catch (const char* text) {
        EXPECT_STREQ(text, "get_child_count() invoked on non-composite object");
    }
}

TEST(TypeName, LongNamesAreCutToSixteenCharacters) {
    kelm_asn_integer inner;
    Holder holder(inner);
    holder.rename("aznadmin_getobjectlist_in");
    EXPECT_STREQ(holder.get_type_name(), "aznadmin_getobje");
    holder.rename("short");
    EXPECT_STREQ(holder.get_type_name(), "short");
    EXPECT_STREQ(inner.get_type_name(), "INTEGER");
}

// The field holds the name and zeros to its end, as strncpy leaves it: a shorter name stored after
// a longer one leaves nothing of the longer one behind.
TEST(TypeName, TheFieldIsTheNameFollowedByZerosToItsEnd) {
    kelm_asn_integer inner;
    Holder holder(inner);
    holder.rename("aznadmin_getobjectlist_in");
    EXPECT_EQ(holder.raw_name(), std::string("aznadmin_getobje") + std::string(1, '\0'));
    holder.rename("short");
    EXPECT_EQ(holder.raw_name(), std::string("short") + std::string(12, '\0'));
    holder.rename("");
    EXPECT_EQ(holder.raw_name(), std::string(17, '\0'));
}

// Each value class stores its own name over its base's, zero-padded.
TEST(TypeName, EachValueClassStoresItsNameOverItsBasesZeroPadded) {
    struct Integer : kelm_asn_integer {
        std::string raw() const { return std::string(type_name, sizeof type_name); }
    } integer;
    struct Octets : kelm_asn_octetstring {
        std::string raw() const { return std::string(type_name, sizeof type_name); }
    } octets;
    struct Sequence : kelm_asn_sequence {
        std::string raw() const { return std::string(type_name, sizeof type_name); }
    } sequence;
    EXPECT_EQ(integer.raw(), std::string("INTEGER") + std::string(10, '\0'));
    EXPECT_EQ(octets.raw(), std::string("OCTETSTRING") + std::string(6, '\0'));
    EXPECT_EQ(sequence.raw(), std::string("SEQUENCE") + std::string(9, '\0'));
}

TEST(ParentNotification, AChangeOfValueInvalidatesTheContainersEncoding) {
    kelm_asn_integer inner;
    Holder holder(inner);
    inner.set_value(1);
    holder.set_value_valid();
    EXPECT_EQ(encode(holder), (Bytes{0x30, 0x03, 0x02, 0x01, 0x01}));
    EXPECT_EQ(holder.is_encoding_valid(), 1);
    const int checks = holder.checks;
    inner.set_value(2);
    EXPECT_EQ(holder.is_encoding_valid(), 0);
    EXPECT_GT(holder.checks, checks) << "the child asks the container to re-check";
    EXPECT_EQ(encode(holder), (Bytes{0x30, 0x03, 0x02, 0x01, 0x02}));
}

TEST(ParentNotification, LocalInvalidationDoesNotAskTheContainer) {
    kelm_asn_integer inner;
    Holder holder(inner);
    const int checks = holder.checks;
    inner.invalidate_value(KELM_INVALIDATE_LOCAL);
    EXPECT_EQ(holder.checks, checks);
    inner.invalidate_value(KELM_INVALIDATE_NOTIFY);
    EXPECT_EQ(holder.checks, checks + 1);
}

TEST(StateFlags, ValidityFollowsPresenceOptionalityAndDefault) {
    kelm_asn_integer value;
    EXPECT_EQ(value.is_valid(0), 0);
    value.set_optional(1);
    EXPECT_EQ(value.is_valid(0), 1);
    kelm_asn_integer with_default;
    with_default.set_default_value(0);
    EXPECT_EQ(with_default.is_valid(0), 1);
    EXPECT_EQ(with_default.is_present(), 0);
}

TEST(StateFlags, CheckEncodeFlagsComparesTheCacheState) {
    kelm_asn_integer value;
    EXPECT_EQ(value.check_encode_flags(0), 1);
    EXPECT_EQ(value.check_encode_flags(1), 0);
    value.set_value(3);
    EXPECT_EQ(value.check_encode_flags(1), 1);
    EXPECT_EQ(value.check_encode_flags(0), 0);
}

TEST(StateFlags, EmptyMakesAnObjectAbsent) {
    kelm_asn_integer value;
    value.set_value(3);
    EXPECT_EQ(value.empty(), 0);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(Dump, DisplayOfAPresentAnAbsentAndADefaultedObject) {
    kelm_asn_integer value;
    kelm_buffer_t out;
    EXPECT_EQ(value.display(out), 0x106521A0u);
    EXPECT_EQ(out.used(), 0u);
    value.set_default_value(4);
    EXPECT_EQ(value.display(out), 0u);
    EXPECT_EQ(kelm_test::text(out), "Default:OBJECT(tag=2, class=0)");
    out.clear();
    value.set_value(1);
    value.set_class(2);
    value.set_tag(17);
    EXPECT_EQ(value.display(out), 0u);
    EXPECT_EQ(kelm_test::text(out), "OBJECT(tag=17, class=2)");
}

TEST(Dump, StateFlagsLineCharacterForCharacter) {
    kelm_asn_integer value;
    kelm_buffer_t out;
    value.display_state_flags(out, 3);
    EXPECT_EQ(kelm_test::text(out),
              "   INTEGER(valid=N, present=N, optional=N, defaultable=N, enc_valid=N)\n");
    out.clear();
    value.set_optional(1);
    value.set_value(9);
    value.display_state_flags(out, 0);
    EXPECT_EQ(kelm_test::text(out),
              "INTEGER(valid=Y, present=Y, optional=Y, defaultable=N, enc_valid=Y)\n");
}

TEST(Secure, SetSecureReachesTheCache) {
    kelm_asn_octetstring value;
    EXPECT_EQ(value.get_security(), KELM_SECURITY_PLAIN);
    value.set_secure(KELM_SECURITY_SECURE);
    EXPECT_EQ(value.get_security(), KELM_SECURITY_SECURE);
}

// --- nesting limit ---------------------------------------------------------------------------

namespace {

// `levels` constructed OCTET STRINGs, each holding the next, around one primitive segment.
Bytes nested_octet_strings(unsigned int levels, bool indefinite) {
    return kelm_test::nested(levels, 0x24, {0x04, 0x01, 0x61}, indefinite);
}

struct DeepDecode {
    Bytes input;
    unsigned int status = 0;
    size_t consumed = 99;
};

void* run_deep_decode(void* arg) {
    DeepDecode* job = static_cast<DeepDecode*>(arg);
    kelm_asn_octetstring value;
    job->status = decode(value, job->input, &job->consumed);
    return nullptr;
}

// Decodes on a thread whose stack is 256 KiB.
DeepDecode decode_on_small_stack(Bytes input) {
    DeepDecode job;
    job.input = std::move(input);
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 256 * 1024);
    pthread_t thread;
    EXPECT_EQ(pthread_create(&thread, &attr, run_deep_decode, &job), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attr);
    return job;
}

} // namespace

TEST(NestingLimit, ConstructedStringsAtTheLimitDecode) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const DeepDecode job =
            decode_on_small_stack(nested_octet_strings(KELM_ASN_MAX_NESTING, indefinite));
        EXPECT_EQ(job.status, 0u);
        EXPECT_EQ(job.consumed, job.input.size());
    }
}

TEST(NestingLimit, OneLevelPastTheLimitIsRefusedAndTheInputRestored) {
    for (bool indefinite : {false, true}) {
        SCOPED_TRACE(indefinite ? "indefinite" : "definite");
        const DeepDecode job =
            decode_on_small_stack(nested_octet_strings(KELM_ASN_MAX_NESTING + 1, indefinite));
        EXPECT_EQ(job.status, 0x1065219Bu);
        EXPECT_EQ(job.consumed, 0u);
    }
}

TEST(NestingLimit, AHundredThousandLevelsAreRefusedWithoutExhaustingTheStack) {
    const DeepDecode indefinite = decode_on_small_stack(nested_octet_strings(100000, true));
    EXPECT_EQ(indefinite.status, 0x1065219Bu);
    EXPECT_EQ(indefinite.consumed, 0u);
    const DeepDecode definite = decode_on_small_stack(nested_octet_strings(100000, false));
    EXPECT_EQ(definite.status, 0x1065219Bu);
    EXPECT_EQ(definite.consumed, 0u);
}

TEST(NestingLimit, TheDepthReturnsToZeroAfterEveryDecode) {
    kelm_asn_octetstring value;
    decode(value, nested_octet_strings(KELM_ASN_MAX_NESTING + 5, true));
    EXPECT_EQ(kelm_asn_nesting_guard::depth(), 0u);
    decode(value, nested_octet_strings(3, false));
    EXPECT_EQ(kelm_asn_nesting_guard::depth(), 0u);
}
