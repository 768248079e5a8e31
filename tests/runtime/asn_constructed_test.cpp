// Composites, SEQUENCE, CHOICE, ANY and the always-present element.
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "asnbase.h"

using kelm_test::Bytes;
using kelm_test::decode;
using kelm_test::encode;
using kelm_test::tlv;

namespace {

// SEQUENCE { a INTEGER, b OCTET STRING OPTIONAL, c BOOLEAN DEFAULT FALSE }
struct Record : kelm_asn_sequence {
    explicit Record(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_sequence(sec) {
        b.set_optional(1);
        c.set_default_value(0);
        register_child(&a);
        register_child(&b);
        register_child(&c);
    }
    kelm_asn_integer a;
    kelm_asn_octetstring b;
    kelm_asn_boolean c;
};

// SEQUENCE { x INTEGER OPTIONAL, y OCTET STRING OPTIONAL }
struct AllOptional : kelm_asn_sequence {
    AllOptional() {
        x.set_optional(1);
        y.set_optional(1);
        register_child(&x);
        register_child(&y);
    }
    kelm_asn_integer x;
    kelm_asn_octetstring y;
};

// CHOICE { INTEGER, OCTET STRING }
struct IntOrText : kelm_asn_choice {
    IntOrText() {
        register_child(&number);
        register_child(&words);
    }
    kelm_asn_integer number;
    kelm_asn_octetstring words;
};

const unsigned char kHi[] = {'h', 'i'};

// The registry alone: a composite with contents coders that do nothing.
struct Bare : kelm_asn_composite {
    explicit Bare(security_t sec) : kelm_asn_composite(sec) {}
    Bare(unsigned int capacity, security_t sec) : kelm_asn_composite(capacity, sec) {}
    unsigned int decode_value(kelm_r_buffer_t&, unsigned int) override { return 0; }
    unsigned int encode_value(kelm_buffer_t&) const override { return 0; }
};

} // namespace

// --- composite registry ----------------------------------------------------------------------

TEST(Composite, AFreshCompositeHasNoArrayAndAcceptsBothLengthForms) {
    Bare c(KELM_SECURITY_PLAIN);
    EXPECT_EQ(c.get_child_count(), 0u);
    EXPECT_EQ(c.get_child_capacity(), 0u);
    EXPECT_EQ(c.get_child(0), nullptr);
    EXPECT_EQ(c.should_generate_constructed(), 1);
    EXPECT_EQ(c.encoding_primitive_permitted(), 0);
    EXPECT_EQ(c.encoding_constructed_permitted(), 1);
    EXPECT_EQ(c.encoding_indefinite_permitted(), 1);
    EXPECT_EQ(c.get_empty_permitted(), 1);
}

TEST(Composite, TheCapacityConstructorAllocatesAtOnceAndLeavesTheConstructedFlags) {
    Bare c(10, KELM_SECURITY_PLAIN);
    EXPECT_EQ(c.get_child_capacity(), 10u);
    EXPECT_EQ(c.get_child_count(), 0u);
    EXPECT_EQ(c.should_generate_constructed(), 0);
    EXPECT_EQ(c.is_constructed(), 0);
    EXPECT_EQ(c.encoding_indefinite_permitted(), 0);
    EXPECT_EQ(c.encoding_constructed_permitted(), 1);
}

TEST(Composite, RegisterChildBeforeOnAnEmptyArrayGrowsBy512) {
    Bare c(KELM_SECURITY_PLAIN);
    kelm_asn_null first;
    c.register_child_before(&first);
    EXPECT_EQ(c.get_child_capacity(), 512u);
    EXPECT_EQ(c.get_child_count(), 1u);
    EXPECT_EQ(c.get_child(0), &first);
    EXPECT_EQ(first.get_parent(), &c);
}

TEST(Composite, RegisterChildBeforeOnAPartlyFilledArrayMovesTheOthersUp) {
    Bare c(4, KELM_SECURITY_PLAIN);
    kelm_asn_null a, b, front;
    c.register_child(&a);
    c.register_child(&b);
    c.register_child_before(&front);
    EXPECT_EQ(c.get_child_capacity(), 4u);
    ASSERT_EQ(c.get_child_count(), 3u);
    EXPECT_EQ(c[0], &front);
    EXPECT_EQ(c[1], &a);
    EXPECT_EQ(c[2], &b);
}

TEST(Composite, RegisterChildBeforeOnAFullArrayOverwritesTheFirstSlot) {
    Bare c(2, KELM_SECURITY_PLAIN);
    kelm_asn_null a, b, front;
    c.register_child(&a);
    c.register_child(&b);
    c.register_child_before(&front);
    EXPECT_EQ(c.get_child_capacity(), 2u + 512u);
    ASSERT_EQ(c.get_child_count(), 3u);
    EXPECT_EQ(c[0], &front) << "the new child takes slot 0";
    EXPECT_EQ(c[1], &b);
    EXPECT_EQ(c[2], nullptr) << "the previous first child left the registry";
}

TEST(Composite, ChildrenOfASecureCompositeBecomeSecure) {
    kelm_asn_sequence c(KELM_SECURITY_SECURE);
    kelm_asn_octetstring child;
    c.register_child(&child);
    EXPECT_EQ(child.get_security(), KELM_SECURITY_SECURE);
}

TEST(Composite, ValidityFlowsUpward) {
    Record r;
    EXPECT_EQ(r.is_present(), 0) << "a is mandatory and absent";
    r.a.set_value(1);
    EXPECT_EQ(r.is_present(), 1);
    r.a.invalidate_value(KELM_INVALIDATE_NOTIFY);
    EXPECT_EQ(r.is_present(), 0);
}

TEST(Composite, DisplayEndsWithAnOpenBraceAndNoClosingOne) {
    Record r;
    r.a.set_value(3);
    kelm_buffer_t out;
    EXPECT_EQ(r.display(out), 0x106521A0u) << "b is absent and not defaultable";
    EXPECT_EQ(kelm_test::text(out), "COMPOSITE-OBJECT(tag=16, class=0) {OBJECT(tag=2, class=0)");
    r.b.set_value(kHi, 2);
    out.clear();
    EXPECT_EQ(r.display(out), 0u);
    EXPECT_EQ(kelm_test::text(out), "COMPOSITE-OBJECT(tag=16, class=0) {OBJECT(tag=2, class=0)"
                                    "OBJECT(tag=4, class=0)Default:OBJECT(tag=1, class=0)");
}

TEST(Composite, StateFlagsIndentTheChildren) {
    Record r;
    r.a.set_value(3);
    kelm_buffer_t out;
    r.display_state_flags(out, 0);
    EXPECT_EQ(kelm_test::text(out),
              "SEQUENCE(valid=Y, present=Y, optional=N, defaultable=N, enc_valid=N)\n"
              "  INTEGER(valid=Y, present=Y, optional=N, defaultable=N, enc_valid=Y)\n"
              "  OCTETSTRING(valid=Y, present=N, optional=Y, defaultable=N, enc_valid=N)\n"
              "  BOOLEAN(valid=Y, present=N, optional=N, defaultable=Y, enc_valid=N)\n");
}

// --- SEQUENCE --------------------------------------------------------------------------------

TEST(Sequence, WritesItsChildrenInOrderLeavingOutAbsentAndDefaultOnes) {
    Record r;
    r.a.set_value(5);
    EXPECT_EQ(encode(r), (Bytes{0x30, 0x03, 0x02, 0x01, 0x05}));
    r.b.set_value(kHi, 2);
    r.c.set_value(1);
    EXPECT_EQ(encode(r),
              (Bytes{0x30, 0x0A, 0x02, 0x01, 0x05, 0x04, 0x02, 'h', 'i', 0x01, 0x01, 0xFF}));
    r.c.set_value(0);
    EXPECT_EQ(encode(r), (Bytes{0x30, 0x07, 0x02, 0x01, 0x05, 0x04, 0x02, 'h', 'i'}));
}

// SEQUENCE { ANY } whose ANY codes an INTEGER syntax that holds no value: the ANY counts as
// present (its syntax is invalid), so the SEQUENCE is present too, but its contents cannot be
// written. The first failure of a child is the write's status, and what the output held before
// stays as it was.
TEST(Sequence, AChildThatCannotBeWrittenFailsTheWriteAndLeavesTheOutputAsItWas) {
    struct WithAny : kelm_asn_sequence {
        WithAny() { register_child(&any); }
        kelm_asn_any any;
    } sequence;
    kelm_asn_integer syntax;
    sequence.any.set_syntax(&syntax);
    ASSERT_EQ(sequence.is_present(), 1);
    kelm_buffer_t out;
    const unsigned char before[] = {0xAB, 0xCD};
    out.append(before, 2);
    EXPECT_EQ(sequence.asnwrite(out), 0x106521A0u);
    EXPECT_EQ(Bytes(out.cursor, out.cursor + out.used()), (Bytes{0xAB, 0xCD}));
}

TEST(Sequence, ReadsBackWithOptionalAndDefaultChildrenSkipped) {
    Record r;
    size_t consumed = 0;
    ASSERT_EQ(decode(r, {0x30, 0x06, 0x02, 0x01, 0x05, 0x01, 0x01, 0xFF}, &consumed), 0u);
    EXPECT_EQ(consumed, 8u);
    int a = 0, c = 0;
    EXPECT_EQ(r.a.get_value(a), 0u);
    EXPECT_EQ(a, 5);
    EXPECT_EQ(r.b.is_present(), 0);
    EXPECT_EQ(r.c.get_value(c), 0u);
    EXPECT_EQ(c, 1);
    EXPECT_EQ(r.is_present(), 1);
}

TEST(Sequence, IndefiniteLengthIsRead) {
    Record r;
    size_t consumed = 0;
    ASSERT_EQ(decode(r, {0x30, 0x80, 0x02, 0x01, 0x07, 0x00, 0x00, 0x05}, &consumed), 0u);
    EXPECT_EQ(consumed, 7u);
    int a = 0;
    EXPECT_EQ(r.a.get_value(a), 0u);
    EXPECT_EQ(a, 7);
    EXPECT_EQ(encode(r), (Bytes{0x30, 0x03, 0x02, 0x01, 0x07})) << "written back as DER";
}

TEST(Sequence, OneSurplusByteFailsAndRestoresTheInput) {
    Record r;
    size_t consumed = 99;
    EXPECT_EQ(decode(r, {0x30, 0x04, 0x02, 0x01, 0x05, 0x00}, &consumed), 0x106521A5u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(r.is_present(), 0);
}

TEST(Sequence, AnUnknownElementIsAnErrorNotSkipped) {
    Record r;
    EXPECT_EQ(decode(r, {0x30, 0x05, 0x02, 0x01, 0x05, 0x05, 0x00}), 0x106521A5u);
}

TEST(Sequence, AMissingMandatoryChildFails) {
    Record r;
    EXPECT_EQ(decode(r, {0x30, 0x02, 0x05, 0x00}), 0x106521A4u);
    EXPECT_EQ(decode(r, {0x30, 0x00}), 0x10652198u);
}

TEST(Sequence, EmptyContentsWithOnlyOptionalChildrenDependOnEmptyPermitted) {
    AllOptional permitted;
    ASSERT_EQ(decode(permitted, {0x30, 0x00}), 0u);
    EXPECT_EQ(permitted.is_present(), 1);

    AllOptional refused;
    refused.set_empty_permitted(0);
    ASSERT_EQ(decode(refused, {0x30, 0x00}), 0u);
    EXPECT_EQ(refused.is_present(), 0) << "no child is present or defaultable";
}

TEST(Sequence, EmptyContentsWithADefaultableChildArePresentEvenWhenEmptyIsRefused) {
    struct WithDefault : kelm_asn_sequence {
        WithDefault() {
            d.set_default_value(9);
            set_empty_permitted(0);
            register_child(&d);
        }
        kelm_asn_integer d;
    } s;
    ASSERT_EQ(decode(s, {0x30, 0x00}), 0u);
    EXPECT_EQ(s.is_present(), 1);
}

TEST(Sequence, AnOptionalSequenceWithAnotherTagIsAbsent) {
    Record r;
    r.set_optional(1);
    size_t consumed = 99;
    EXPECT_EQ(decode(r, {0x02, 0x01, 0x05}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(r.is_present(), 0);
}

// --- CHOICE ----------------------------------------------------------------------------------

TEST(Choice, ReadsTheFirstMatchingAlternative) {
    IntOrText c;
    ASSERT_EQ(decode(c, {0x04, 0x02, 'h', 'i'}), 0u);
    EXPECT_EQ(c.selected(), 1);
    EXPECT_EQ(c.is_present(), 1);
    EXPECT_EQ(encode(c), (Bytes{0x04, 0x02, 'h', 'i'}));
    ASSERT_EQ(decode(c, {0x02, 0x01, 0x09}), 0u);
    EXPECT_EQ(c.selected(), 0);
}

TEST(Choice, NoMatchingAlternativeIsAnUnexpectedTag) {
    IntOrText c;
    size_t consumed = 99;
    EXPECT_EQ(decode(c, {0x01, 0x01, 0xFF}, &consumed), 0x106521A4u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(c.selected(), -1);
}

TEST(Choice, AnOptionalChoiceMatchingNothingReadsNothingAndStaysAbsent) {
    IntOrText c;
    c.set_optional(1);
    size_t consumed = 99;
    EXPECT_EQ(decode(c, {0x01, 0x01, 0xFF}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(c.is_present(), 0);
    unsigned int status = 1;
    EXPECT_EQ(encode(c, &status), Bytes{});
    EXPECT_EQ(status, 0u);
}

TEST(Choice, AChoiceWithADefaultMatchingNothingReadsNothingAndStaysAbsent) {
    IntOrText c;
    auto* fallback = new IntOrText;
    fallback->number.set_value(5);
    ASSERT_EQ(fallback->select(0), 0u);
    c.set_default_value(fallback);
    size_t consumed = 99;
    EXPECT_EQ(decode(c, {0x01, 0x01, 0xFF}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(c.is_present(), 0);
    EXPECT_EQ(c.selected(), -1);
}

TEST(Choice, AChoiceWithoutAlternativesIsAnUnexpectedTagEvenWhenOptional) {
    kelm_asn_choice c;
    c.set_optional(1);
    EXPECT_EQ(decode(c, {0x02, 0x01, 0x00}), 0x106521A4u);
}

TEST(Choice, SelectOutOfRangeAndWritingWithoutSelection) {
    IntOrText c;
    EXPECT_EQ(c.select(2), 0x106521A7u);
    unsigned int status = 0;
    encode(c, &status);
    EXPECT_EQ(status, 0x106521A8u);
    EXPECT_EQ(c.select(0), 0u);
    EXPECT_EQ(c.select(0), 0u);
    c.number.set_value(-2);
    EXPECT_EQ(encode(c), (Bytes{0x02, 0x01, 0xFE}));
    EXPECT_EQ(c.is_present(), 1);
}

TEST(Choice, TheContentsCodersAreNeverToBeReached) {
    IntOrText c;
    kelm_buffer_t out;
    unsigned char byte = 0;
    kelm_r_buffer_t in(&byte, 1);
    try {
        c.encode_value(out);
        FAIL();
    } catch (const kelm_asn_unsupportederror& e) {
        EXPECT_STREQ(e.message, "Error: asn_choice::encode_value called");
        EXPECT_EQ(e.status, 0x10652197u);
    }
    try {
        c.decode_value(in, 1);
        FAIL();
    } catch (const kelm_asn_unsupportederror& e) {
        EXPECT_STREQ(e.message, "Error: asn_choice::decode_value called");
    }
}

TEST(Choice, SetTagThrowsAPlainTextAndSetTagUncheckedWorks) {
    IntOrText c;
    try {
        c.set_tag(3);
        FAIL();
    } catch (const char* text) {
        EXPECT_STREQ(text, "Attempt to change tag of ASN.1 CHOICE object");
    }
    EXPECT_EQ(c.set_tag_unchecked(3), 0);
    EXPECT_EQ(c.get_tag(), 3u);
    EXPECT_EQ(c.is_polymorphic(), 1);
}

TEST(Choice, EncodingValidityIsTheSelectedAlternatives) {
    IntOrText c;
    EXPECT_EQ(c.is_encoding_valid(), 0);
    EXPECT_EQ(c.check_encode_flags(), 1);
    c.select(0);
    c.number.set_value(1);
    EXPECT_EQ(c.is_encoding_valid(), 1);
    EXPECT_EQ(c.check_encode_flags(), 1);
}

TEST(Choice, StateFlagsMarkTheSelectedAlternative) {
    IntOrText c;
    c.select(1);
    c.words.set_value(kHi, 2);
    kelm_buffer_t out;
    c.display_state_flags(out, 2);
    EXPECT_EQ(kelm_test::text(out),
              "  CHOICE(valid=Y, present=Y, optional=N, defaultable=N, enc_valid=Y)\n"
              "    INTEGER(valid=N, present=N, optional=N, defaultable=N, enc_valid=N)\n"
              "   SELECTED:\n"
              "    OCTETSTRING(valid=Y, present=Y, optional=N, defaultable=N, enc_valid=Y)\n");
}

// --- ANY and the always-present element ------------------------------------------------------

TEST(Any, KeepsRawContentsOfAnyTagAndWritesThemBack) {
    kelm_asn_any any;
    const Bytes input = {0xA3, 0x03, 0x02, 0x01, 0x05};
    ASSERT_EQ(decode(any, input), 0u);
    EXPECT_EQ(any.get_tag(), 3u);
    EXPECT_EQ(any.get_class(), 2);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(any.get_value(octets, count), 0u);
    EXPECT_EQ(Bytes(octets, octets + count), (Bytes{0x02, 0x01, 0x05}));
    EXPECT_EQ(encode(any), input) << "written back constructed, as it was read";
    ASSERT_EQ(decode(any, {0x04, 0x01, 0x41}), 0u);
    EXPECT_EQ(encode(any), (Bytes{0x04, 0x01, 0x41})) << "and primitive when read primitive";
}

TEST(Any, IndefiniteLengthIsNotPermitted) {
    kelm_asn_any any;
    EXPECT_EQ(decode(any, {0x30, 0x80, 0x00, 0x00}), 0x1065219Du);
}

TEST(Any, SetValueMakesItPresent) {
    kelm_asn_any any;
    any.set_tag(4);
    EXPECT_EQ(any.set_value(kHi, 2), 0u);
    EXPECT_EQ(encode(any), (Bytes{0x04, 0x02, 'h', 'i'}));
}

TEST(Any, WithASyntaxTheRawAccessIsRefusedAndTheSyntaxIsCoded) {
    kelm_asn_any any;
    kelm_asn_integer syntax;
    any.set_syntax(&syntax);
    EXPECT_EQ(syntax.get_parent(), &any);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(any.set_value(kHi, 2), 0x106521A9u);
    EXPECT_EQ(any.get_value(octets, count), 0x106521A9u);
    syntax.set_value(12);
    EXPECT_EQ(encode(any), (Bytes{0x02, 0x01, 0x0C}));
    ASSERT_EQ(decode(any, {0x02, 0x01, 0x22}), 0u);
    int value = 0;
    EXPECT_EQ(syntax.get_value(value), 0u);
    EXPECT_EQ(value, 0x22);
}

TEST(Any, ValidityOfTheSyntaxIsTestedTheInvertedWay) {
    kelm_asn_any any;
    kelm_asn_integer syntax;
    any.set_syntax(&syntax); // syntax invalid, ANY absent: the ANY becomes present
    EXPECT_EQ(any.is_present(), 1);
    syntax.set_value(1); // syntax valid, ANY present: the ANY becomes absent
    EXPECT_EQ(any.is_present(), 0);
}

// Reading through the syntax follows the same inverted rule: a read that fails leaves the syntax
// invalid and so the ANY present, also when it fails again; a read that succeeds makes the
// syntax valid and so the ANY absent.
TEST(Any, AFailedReadThroughTheSyntaxLeavesTheSyntaxInvalidAndTheAnyPresent) {
    kelm_asn_any any;
    kelm_asn_integer syntax;
    any.set_syntax(&syntax);
    for (int attempt = 0; attempt < 2; ++attempt) {
        SCOPED_TRACE(::testing::Message() << "attempt " << attempt);
        size_t consumed = 99;
        EXPECT_EQ(decode(any, {0x04, 0x01, 0x41}, &consumed), 0x106521A4u);
        EXPECT_EQ(consumed, 0u);
        EXPECT_EQ(syntax.is_present(), 0);
        EXPECT_EQ(any.is_present(), 1);
    }
    ASSERT_EQ(decode(any, {0x02, 0x01, 0x07}), 0u);
    int value = 0;
    EXPECT_EQ(syntax.get_value(value), 0u);
    EXPECT_EQ(value, 7);
    EXPECT_EQ(syntax.is_present(), 1);
    EXPECT_EQ(any.is_present(), 0);
}

// An optional syntax is valid even while it holds nothing, so an element of another tag, which
// it reads as its absence, leaves the ANY absent.
TEST(Any, AnOptionalSyntaxMeetingAnotherTagReadsNothingAndLeavesTheAnyAbsent) {
    kelm_asn_any any;
    kelm_asn_integer syntax;
    syntax.set_optional(1);
    any.set_syntax(&syntax);
    EXPECT_EQ(any.is_present(), 0);
    size_t consumed = 99;
    EXPECT_EQ(decode(any, {0x04, 0x01, 0x41}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(syntax.is_present(), 0);
    EXPECT_EQ(any.is_present(), 0);
}

TEST(Any, TheRawContentsCodersRefuseToRunWithASyntax) {
    kelm_asn_any any;
    kelm_asn_integer syntax;
    any.set_syntax(&syntax);
    unsigned char contents[] = {0x05};
    kelm_r_buffer_t input(contents, 1);
    EXPECT_EQ(any.decode_value(input, 1), 0x106521A9u);
    EXPECT_EQ(input.remaining, 1u) << "nothing is read";
    kelm_buffer_t output;
    EXPECT_EQ(any.encode_value(output), 0x106521A9u);
    EXPECT_EQ(output.used(), 0u) << "nothing is written";
}

TEST(Any, ReplacingTheSyntaxDetachesThePreviousOne) {
    kelm_asn_any any;
    kelm_asn_integer first, second;
    any.set_syntax(&first);
    any.set_syntax(&second);
    EXPECT_EQ(first.get_parent(), nullptr);
    EXPECT_EQ(any.get_syntax(), &second);
}

TEST(Any, APreparseFailureIsReturnedAtOnce) {
    kelm_asn_any any;
    any.set_preparse([](kelm_asn_any*) { return 0x1234; });
    size_t consumed = 99;
    EXPECT_EQ(decode(any, {0x02, 0x01, 0x05}, &consumed), 0x1234u);
    EXPECT_EQ(consumed, 0u);
    any.set_preencode([](kelm_asn_any*) { return 0x4321; });
    unsigned int status = 0;
    encode(any, &status);
    EXPECT_EQ(status, 0x4321u);
}

TEST(Nothing, IsAlwaysPresentAndReadsAndWritesNothing) {
    kelm_asn_nothing nothing;
    EXPECT_EQ(nothing.is_present(), 1);
    EXPECT_EQ(nothing.is_valid(0), 1);
    size_t consumed = 99;
    EXPECT_EQ(decode(nothing, {0x02, 0x01, 0x05}, &consumed), 0u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(encode(nothing), Bytes{});
}
