// The widening converters IA52BMP, IA52U and BMP2U and the narrowing converters BMP2IA5, U2IA5
// and U2BMP.
#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

struct Row {
    const char* name;
    Converter convert;
    const char* input;
    Outcome expected;
};

void expect_rows(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.name << " of [" << row.input << "]");
        EXPECT_EQ(convert(row.convert, hex(row.input)), row.expected);
    }
}

TEST(Widening, EveryIa5OctetGetsZerosInFront) {
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "octet 0x" << std::hex << b);
        const unsigned char c = static_cast<unsigned char>(b);
        EXPECT_EQ(convert(IA52BMP, {c}), succeeds_with({0, c}));
        EXPECT_EQ(convert(IA52U, {c}), succeeds_with({0, 0, 0, c}));
    }
}

TEST(Widening, BmpCharactersGetTwoZeroOctetsInFront) {
    expect_rows({
        {"BMP2U", BMP2U, "12 34", succeeds_with(hex("00 00 12 34"))},
        {"BMP2U", BMP2U, "D8 00 DC 00", succeeds_with(hex("00 00 D8 00 00 00 DC 00"))},
        {"BMP2U", BMP2U, "FF FF 00 41", succeeds_with(hex("00 00 FF FF 00 00 00 41"))},
        {"IA52BMP", IA52BMP, "41 E9", succeeds_with(hex("00 41 00 E9"))},
        {"IA52U", IA52U, "41 E9", succeeds_with(hex("00 00 00 41 00 00 00 E9"))},
    });
}

TEST(Narrowing, EveryLatin1CharacterPassesIntoIa5) {
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "U+00" << std::hex << b);
        const unsigned char c = static_cast<unsigned char>(b);
        EXPECT_EQ(convert(BMP2IA5, {0, c}), succeeds_with({c}));
        EXPECT_EQ(convert(U2IA5, {0, 0, 0, c}), succeeds_with({c}));
    }
}

TEST(Narrowing, LeadingOctetsMustBeZero) {
    expect_rows({
        {"BMP2IA5", BMP2IA5, "00 E9", succeeds_with(hex("E9"))},
        {"BMP2IA5", BMP2IA5, "01 00", fails_leaving({})},
        {"BMP2IA5", BMP2IA5, "80 41", fails_leaving({})},
        {"U2IA5", U2IA5, "00 00 01 00", fails_leaving({})},
        {"U2IA5", U2IA5, "00 01 00 41", fails_leaving({})},
        {"U2IA5", U2IA5, "80 00 00 41", fails_leaving({})},
        {"U2BMP", U2BMP, "00 00 20 AC", succeeds_with(hex("20 AC"))},
        {"U2BMP", U2BMP, "00 00 FF FF", succeeds_with(hex("FF FF"))},
        {"U2BMP", U2BMP, "00 01 00 00", fails_leaving({})},
        {"U2BMP", U2BMP, "01 00 00 00", fails_leaving({})},
    });
}

TEST(Narrowing, FailureLeavesTheDestinationAsItWasOnEntry) {
    const Octets prior = hex("50 52 45");
    EXPECT_EQ(convert(BMP2IA5, hex("00 41 00 42 01 00"), prior), fails_leaving(prior));
    EXPECT_EQ(convert(U2IA5, hex("00 00 00 41 00 00 01 41"), prior), fails_leaving(prior));
    EXPECT_EQ(convert(U2BMP, hex("00 00 00 41 00 01 00 00"), prior), fails_leaving(prior));
}

TEST(Narrowing, FailureAfterALongTextStillLeavesTheDestinationAsItWasOnEntry) {
    const struct {
        const char* name;
        Converter convert;
        unsigned width;
    } rows[] = {{"BMP2IA5", BMP2IA5, 2}, {"U2IA5", U2IA5, 4}, {"U2BMP", U2BMP, 4}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Octets text;
        for (int i = 0; i < 3000; ++i) {
            text.insert(text.end(), row.width - 1, 0x00);
            text.push_back(static_cast<unsigned char>('a' + i % 26));
        }
        text.push_back(0x01); // the last character is out of range
        text.insert(text.end(), row.width - 2, 0x00);
        text.push_back(0x41);
        EXPECT_EQ(convert(row.convert, text, hex("50")), fails_leaving(hex("50")));
    }
}

TEST(ShortLastCharacter, MissingOctetsReadAsTheFillerOctet) {
    ASSERT_EQ(KELM_CODESET_FILLER_OCTET, 0x00);
    expect_rows({
        {"BMP2U", BMP2U, "12 34 56", succeeds_with(hex("00 00 12 34 00 00 56 00"))},
        {"BMP2IA5", BMP2IA5, "00 41 00", succeeds_with(hex("41 00"))},
        {"BMP2IA5", BMP2IA5, "00 41 01", fails_leaving({})},
        {"U2IA5", U2IA5, "00 00 00", succeeds_with(hex("00"))},
        {"U2IA5", U2IA5, "00 00 00 41 00", succeeds_with(hex("41 00"))},
        {"U2IA5", U2IA5, "00 00 41", fails_leaving({})}, // the group is 00 00 41 00
        {"U2BMP", U2BMP, "00 00 12", succeeds_with(hex("12 00"))},
        {"U2BMP", U2BMP, "00", succeeds_with(hex("00 00"))},
        {"U2BMP", U2BMP, "00 00 00 41 00 01", fails_leaving({})},
    });
}

TEST(ShortLastCharacter, NoOctetPastTheSourceIsRead) {
    // The octets right after each source would change the result if they were read.
    EXPECT_EQ(convert_before(BMP2U, hex("12 34 56"), hex("77")),
              succeeds_with(hex("00 00 12 34 00 00 56 00")));
    EXPECT_EQ(convert_before(BMP2IA5, hex("00 41 00"), hex("42")), succeeds_with(hex("41 00")));
    EXPECT_EQ(convert_before(U2IA5, hex("00 00 00"), hex("42")), succeeds_with(hex("00")));
    EXPECT_EQ(convert_before(U2BMP, hex("00 00 12"), hex("34")), succeeds_with(hex("12 00")));
}

TEST(WideningAndNarrowing, LongTextRoundTripsThroughEveryWidth) {
    Octets latin1;
    for (int i = 0; i < 5000; ++i)
        latin1.push_back(static_cast<unsigned char>(i * 31));
    const Outcome bmp = convert(IA52BMP, latin1);
    const Outcome ucs4 = convert(IA52U, latin1);
    ASSERT_EQ(bmp.status, KELM_ASN_OK);
    ASSERT_EQ(ucs4.status, KELM_ASN_OK);
    ASSERT_EQ(bmp.output.size(), 2 * latin1.size());
    ASSERT_EQ(ucs4.output.size(), 4 * latin1.size());
    for (size_t i = 0; i < latin1.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_EQ(bmp.output[2 * i], 0);
        ASSERT_EQ(bmp.output[2 * i + 1], latin1[i]);
        ASSERT_EQ(ucs4.output[4 * i + 3], latin1[i]);
    }
    EXPECT_EQ(convert(BMP2U, bmp.output), ucs4);
    EXPECT_EQ(convert(U2BMP, ucs4.output), bmp);
    EXPECT_EQ(convert(BMP2IA5, bmp.output), succeeds_with(latin1));
    EXPECT_EQ(convert(U2IA5, ucs4.output), succeeds_with(latin1));
}

} // namespace
