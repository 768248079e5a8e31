// The UTF-8 converters: UTF82BMP and UTF82IA5 read it, IA52UTF8, BMP2UTF8 and U2UTF8 write it.
#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

static_assert(KELM_CODESET_FILLER_OCTET == 0x00, "the rows below assume a zero filler octet");

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

// The ordinary UTF-8 form of a code point up to U+FFFF.
Octets utf8_of(unsigned c) {
    if (c < 0x80)
        return {static_cast<unsigned char>(c)};
    if (c < 0x800)
        return {static_cast<unsigned char>(0xC0 + c / 64),
                static_cast<unsigned char>(0x80 + c % 64)};
    return {static_cast<unsigned char>(0xE0 + c / 4096),
            static_cast<unsigned char>(0x80 + c / 64 % 64),
            static_cast<unsigned char>(0x80 + c % 64)};
}

Octets ucs2(unsigned c) {
    return {static_cast<unsigned char>(c >> 8), static_cast<unsigned char>(c & 0xFF)};
}

// ---- Reading UTF-8 ------------------------------------------------------------------------------

TEST(Utf8RoundTrip, EveryBmpCodePointThroughUtf82BmpAndBackThroughBmp2Utf8) {
    for (unsigned c = 0; c <= 0xFFFF; ++c) {
        const Octets utf8 = utf8_of(c);
        const Outcome bmp = convert(UTF82BMP, utf8);
        ASSERT_EQ(bmp, succeeds_with(ucs2(c))) << "U+" << std::hex << c;
        ASSERT_EQ(convert(BMP2UTF8, bmp.output), succeeds_with(utf8)) << "U+" << std::hex << c;
    }
}

TEST(Utf8RoundTrip, TheWholeBmpInOneText) {
    Octets utf8, bmp;
    for (unsigned c = 0; c <= 0xFFFF; ++c) {
        const Octets u = utf8_of(c), b = ucs2(c);
        utf8.insert(utf8.end(), u.begin(), u.end());
        bmp.insert(bmp.end(), b.begin(), b.end());
    }
    EXPECT_EQ(convert(UTF82BMP, utf8), succeeds_with(bmp));
    EXPECT_EQ(convert(BMP2UTF8, bmp), succeeds_with(utf8));
}

TEST(Utf82Ia5, EveryLatin1CodePointGivesOneOctetAndHigherOnesFail) {
    for (unsigned c = 0; c <= 0x7FF; ++c) {
        SCOPED_TRACE(::testing::Message() << "U+" << std::hex << c);
        const Outcome expected =
            c <= 0xFF ? succeeds_with({static_cast<unsigned char>(c)}) : fails_leaving({});
        EXPECT_EQ(convert(UTF82IA5, utf8_of(c)), expected);
    }
}

TEST(Utf8Reading, LeadOctetsAndOddForms) {
    expect_rows({
        {"UTF82BMP", UTF82BMP, "C3 A9", succeeds_with(hex("00 E9"))},
        {"UTF82BMP", UTF82BMP, "F0 9F 98 80", fails_leaving({})}, // above U+FFFF
        {"UTF82BMP", UTF82BMP, "80", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "BF", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "FE", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "FF", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "C0 80", succeeds_with(hex("00 00"))},
        {"UTF82BMP", UTF82BMP, "C0 BF", succeeds_with(hex("00 3F"))},
        {"UTF82BMP", UTF82BMP, "C0 7F", fails_leaving({})}, // 0xC0 * 64 + 0x7F < 0x3080
        {"UTF82BMP", UTF82BMP, "C1 3F", fails_leaving({})}, // 0xC1 * 64 + 0x3F < 0x3080
        {"UTF82BMP", UTF82BMP, "C1 40", succeeds_with(hex("00 40"))},
        {"UTF82BMP", UTF82BMP, "C1 BF", succeeds_with(hex("00 7F"))},
        {"UTF82BMP", UTF82BMP, "C2 00", succeeds_with(hex("00 80"))}, // 10xxxxxx not checked
        {"UTF82BMP", UTF82BMP, "C3 41", succeeds_with(hex("00 C1"))},
        {"UTF82BMP", UTF82BMP, "E0 80 80", succeeds_with(hex("00 00"))},
        {"UTF82BMP", UTF82BMP, "ED A0 80", succeeds_with(hex("D8 00"))}, // a surrogate
        {"UTF82BMP", UTF82BMP, "EF BF BF", succeeds_with(hex("FF FF"))},
        {"UTF82BMP", UTF82BMP, "F0 80 80 80", succeeds_with(hex("00 00"))},
        {"UTF82BMP", UTF82BMP, "F0 80 81 81", succeeds_with(hex("00 41"))},
        {"UTF82BMP", UTF82BMP, "F0 90 80 80", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "F4 8F BF BF", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "F8 80 80 81 81", succeeds_with(hex("00 41"))},
        {"UTF82BMP", UTF82BMP, "FB BF BF BF BF", fails_leaving({})},
        {"UTF82BMP", UTF82BMP, "FC 80 80 80 81 81", succeeds_with(hex("00 41"))},
        {"UTF82BMP", UTF82BMP, "FD BF BF BF BF BF", fails_leaving({})},
        {"UTF82IA5", UTF82IA5, "C3 A9", succeeds_with(hex("E9"))},
        {"UTF82IA5", UTF82IA5, "C3 BF", succeeds_with(hex("FF"))},
        {"UTF82IA5", UTF82IA5, "C4 80", fails_leaving({})}, // U+0100
        {"UTF82IA5", UTF82IA5, "E0 83 BF", succeeds_with(hex("FF"))},
        {"UTF82IA5", UTF82IA5, "E0 84 80", fails_leaving({})},
        {"UTF82IA5", UTF82IA5, "C0 80", succeeds_with(hex("00"))},
        {"UTF82IA5", UTF82IA5, "80", fails_leaving({})},
        {"UTF82IA5", UTF82IA5, "FF", fails_leaving({})},
    });
}

TEST(Utf8Reading, FailureKeepsWhatWasAppendedBeforeIt) {
    expect_rows({
        {"UTF82BMP", UTF82BMP, "41 42 80 43", fails_leaving(hex("00 41 00 42"))},
        {"UTF82BMP", UTF82BMP, "41 F0 9F 98 80 43", fails_leaving(hex("00 41"))},
        {"UTF82IA5", UTF82IA5, "41 C3 A9 C4 80 42", fails_leaving(hex("41 E9"))},
    });
    EXPECT_EQ(convert(UTF82BMP, hex("41 80"), hex("50")), fails_leaving(hex("50 00 41")));
    EXPECT_EQ(convert(UTF82IA5, hex("41 80"), hex("50")), fails_leaving(hex("50 41")));
}

TEST(Utf8Reading, FailureAfterALongTextKeepsAllOfItsCharacters) {
    Octets text(5000, 'x');
    text.push_back(0xFF);
    const Outcome bmp = convert(UTF82BMP, text);
    EXPECT_EQ(bmp.status, KELM_ASN_UNREPRESENTABLE);
    EXPECT_EQ(bmp.output.size(), 10000u);
    EXPECT_EQ(convert(UTF82IA5, text), fails_leaving(Octets(5000, 'x')));
}

TEST(ShortLastCharacter, AUtf8SequenceCutShortReadsTheFillerOctet) {
    // The octets right after each source would change the result if they were read.
    EXPECT_EQ(convert_before(UTF82BMP, hex("C3"), hex("A9")), succeeds_with(hex("00 C0")));
    EXPECT_EQ(convert_before(UTF82BMP, hex("E2 82"), hex("AC")), succeeds_with(hex("20 80")));
    EXPECT_EQ(convert_before(UTF82BMP, hex("41 EF"), hex("BF BF")),
              succeeds_with(hex("00 41 F0 00")));
    EXPECT_EQ(convert_before(UTF82BMP, hex("F0 80"), hex("81 81")), succeeds_with(hex("00 00")));
    EXPECT_EQ(convert_before(UTF82BMP, hex("C0"), hex("80")), fails_leaving({}));
    EXPECT_EQ(convert_before(UTF82BMP, hex("C1"), hex("BF")), fails_leaving({}));
    EXPECT_EQ(convert_before(UTF82IA5, hex("C3"), hex("A9")), succeeds_with(hex("C0")));
    EXPECT_EQ(convert_before(UTF82IA5, hex("41 C2"), hex("BF")), succeeds_with(hex("41 80")));
}

// ---- Writing UTF-8 ------------------------------------------------------------------------------

TEST(Ia52Utf8, EveryOctetIsWrittenAsItsLatin1CodePoint) {
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "octet 0x" << std::hex << b);
        EXPECT_EQ(convert(IA52UTF8, {static_cast<unsigned char>(b)}), succeeds_with(utf8_of(b)));
    }
    EXPECT_EQ(convert(IA52UTF8, hex("41 E9 FF 7F")), succeeds_with(hex("41 C3 A9 C3 BF 7F")));
}

TEST(Bmp2Utf8, SurrogatesAreWrittenLikeAnyOtherValue) {
    expect_rows({
        {"BMP2UTF8", BMP2UTF8, "D8 00", succeeds_with(hex("ED A0 80"))},
        {"BMP2UTF8", BMP2UTF8, "DB FF", succeeds_with(hex("ED AF BF"))},
        {"BMP2UTF8", BMP2UTF8, "DC 00", succeeds_with(hex("ED B0 80"))},
        {"BMP2UTF8", BMP2UTF8, "DF FF", succeeds_with(hex("ED BF BF"))},
        {"BMP2UTF8", BMP2UTF8, "D8 3D DE 00", succeeds_with(hex("ED A0 BD ED B8 80"))},
    });
}

TEST(Bmp2Utf8, AnOddLengthTakesTheFillerOctetAsTheLastLowOctet) {
    expect_rows({
        {"BMP2UTF8", BMP2UTF8, "00 41 00", succeeds_with(hex("41 00"))},
        {"BMP2UTF8", BMP2UTF8, "00 41 01", succeeds_with(hex("41 C4 80"))},
        {"BMP2UTF8", BMP2UTF8, "08", succeeds_with(hex("E0 A0 80"))},
    });
    EXPECT_EQ(convert_before(BMP2UTF8, hex("00 41 01"), hex("41")), succeeds_with(hex("41 C4 80")));
}

TEST(U2Utf8, EveryLengthClass) {
    const struct {
        const char* ucs4;
        const char* utf8;
    } rows[] = {
        {"00 00 00 00", "00"},
        {"00 00 00 7F", "7F"},
        {"00 00 00 80", "C2 80"},
        {"00 00 07 FF", "DF BF"},
        {"00 00 08 00", "E0 A0 80"},
        {"00 00 FF FF", "EF BF BF"},
        {"00 01 00 00", "F0 90 80 80"},
        {"00 0F FF FF", "F3 BF BF BF"},
        // Bit 20 is not carried into the lead octet, kept as in existing buffers.
        {"00 10 00 00", "F0 80 80 80"},
        {"00 10 FF FF", "F0 8F BF BF"},
        {"00 1F FF FF", "F3 BF BF BF"},
        {"00 20 00 00", "F8 88 80 80 80"},
        {"03 FF FF FF", "FB BF BF BF BF"},
        {"04 00 00 00", "FC 84 80 80 80 80"},
        {"12 34 56 78", "FC 92 8D 85 99 B8"},
        {"7F FF FF FF", "FD BF BF BF BF BF"},
        {"80 00 00 00", ""},
        {"FF FF FF FF", ""},
        {"00 00 00 41 80 00 00 00 00 00 00 42", "41 42"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ucs4);
        EXPECT_EQ(convert(U2UTF8, hex(row.ucs4)), succeeds_with(hex(row.utf8)));
    }
}

TEST(U2Utf8, AShortLastGroupTakesTheFillerOctet) {
    EXPECT_EQ(convert_before(U2UTF8, hex("00 00 41"), hex("42")), succeeds_with(hex("E4 84 80")));
    EXPECT_EQ(convert_before(U2UTF8, hex("00"), hex("41 42 43")), succeeds_with(hex("00")));
    EXPECT_EQ(convert_before(U2UTF8, hex("01 02 03"), hex("04")),
              succeeds_with(hex("F9 80 A0 8C 80")));
    EXPECT_EQ(convert_before(U2UTF8, hex("00 00 00 41 80"), hex("00 00 41")),
              succeeds_with(hex("41")));
}

TEST(U2Utf8, LongTextOfEveryLengthClass) {
    const unsigned values[] = {0x41, 0xE9, 0x20AC, 0x1F600, 0x123456, 0x4000000, 0x80000001};
    Octets ucs4, expected;
    for (int i = 0; i < 3000; ++i) {
        const unsigned c = values[i % 7];
        for (int shift = 24; shift >= 0; shift -= 8)
            ucs4.push_back(static_cast<unsigned char>(c >> shift));
        const Outcome one = convert(
            U2UTF8, {static_cast<unsigned char>(c >> 24), static_cast<unsigned char>(c >> 16),
                     static_cast<unsigned char>(c >> 8), static_cast<unsigned char>(c)});
        expected.insert(expected.end(), one.output.begin(), one.output.end());
    }
    EXPECT_EQ(convert(U2UTF8, ucs4), succeeds_with(expected));
    // 428 rounds of 1 + 2 + 3 + 4 + 4 + 6 octets (the last value is skipped), then 1 + 2 + 3 + 4.
    EXPECT_EQ(expected.size(), 428u * 20 + 10);
}

} // namespace
