// INTEGER, BOOLEAN, NULL, BIT STRING, named bits and OCTET STRING: values, contents octets and
// the behaviours kept for existing buffers.
#include <cstring>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_test_util.h"
#include "asnbase.h"

using kelm_test::Bytes;
using kelm_test::contents;
using kelm_test::decode;
using kelm_test::encode;
using kelm_test::tlv;

// --- INTEGER ---------------------------------------------------------------------------------

TEST(Integer, SetValueWritesMinimalTwosComplement) {
    struct Row {
        int value;
        Bytes octets;
    } rows[] = {
        {0, {0x00}},
        {1, {0x01}},
        {127, {0x7F}},
        {128, {0x00, 0x80}},
        {255, {0x00, 0xFF}},
        {256, {0x01, 0x00}},
        {32767, {0x7F, 0xFF}},
        {32768, {0x00, 0x80, 0x00}},
        {0x7FFFFF, {0x7F, 0xFF, 0xFF}},
        {0x800000, {0x00, 0x80, 0x00, 0x00}},
        {0x7FFFFFFF, {0x7F, 0xFF, 0xFF, 0xFF}},
        {-1, {0xFF}},
        {-128, {0x80}},
        {-129, {0xFF, 0x7F}},
        {-256, {0xFF, 0x00}},
        {-32768, {0x80, 0x00}},
        {-32769, {0xFF, 0x7F, 0xFF}},
        {-8388608, {0x80, 0x00, 0x00}},
        {-8388609, {0xFF, 0x7F, 0xFF, 0xFF}},
        {INT32_MIN, {0x80, 0x00, 0x00, 0x00}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "value " << row.value);
        kelm_asn_integer value;
        ASSERT_EQ(value.set_value(row.value), 0u);
        EXPECT_EQ(contents(value), row.octets);
        Bytes expected = {0x02, static_cast<unsigned char>(row.octets.size())};
        expected.insert(expected.end(), row.octets.begin(), row.octets.end());
        EXPECT_EQ(encode(value), expected);
    }
}

TEST(Integer, RandomValuesRoundTrip) {
    std::mt19937 rng(7);
    for (int i = 0; i < 20000; ++i) {
        const int original = static_cast<int>(rng());
        kelm_asn_integer out;
        out.set_value(original);
        kelm_asn_integer in;
        ASSERT_EQ(decode(in, encode(out)), 0u) << original;
        int back = 0;
        ASSERT_EQ(in.get_value(back), 0u) << original;
        ASSERT_EQ(back, original);
        ASSERT_EQ(encode(in), encode(out)) << original;
    }
}

TEST(Integer, ContentsOfZeroToNineOctets) {
    struct Row {
        Bytes octets;
        unsigned int status; // of get_value(int&)
        int value;
    } rows[] = {
        {{}, 0, 0},
        {{0x05}, 0, 5},
        {{0x80}, 0, -128},
        {{0xFF, 0x7F}, 0, -129},
        {{0x00, 0x80}, 0, 128},
        {{0x80, 0x00, 0x00}, 0, -8388608},
        {{0x00, 0x00, 0x00, 0x01}, 0, 1},
        {{0xFF, 0xFF, 0xFF, 0xFF}, 0, -1},
        {{0x00, 0x00, 0x00, 0x00, 0x01}, 0, 1},
        {{0x00, 0xFF, 0xFF, 0xFF, 0xFF}, 0, -1},
        {{0x01, 0x00, 0x00, 0x00, 0x00}, 0x10652199, 0},
        {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 0x10652199, 0},
        // More than five octets fold the shift modulo 32: the 01 lands on the lowest octet.
        {{0x00, 0x01, 0x00, 0x00, 0x00, 0x00}, 0, 1},
        {{0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x02}, 0, 2},
        {{0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x03}, 0, 0x01000003},
        {{0x00, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 0, INT32_MIN},
        {{0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00}, 0x10652199, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.octets.size() << " octets, value " << row.value);
        kelm_asn_integer value;
        size_t consumed = 0;
        const Bytes input = tlv(0x02, row.octets);
        ASSERT_EQ(decode(value, input, &consumed), 0u);
        EXPECT_EQ(consumed, input.size());
        int read = 12345;
        EXPECT_EQ(value.get_value(read), row.status);
        if (row.status == 0) {
            EXPECT_EQ(read, row.value);
        }
        unsigned char* octets = nullptr;
        unsigned int count = 0;
        ASSERT_EQ(value.get_value(octets, count), 0u);
        EXPECT_EQ(Bytes(octets, octets + count), row.octets);
        EXPECT_EQ(encode(value), input) << "a non-minimal encoding is kept octet for octet";
    }
}

TEST(Integer, SetValueFromOctetsKeepsThemAsGiven) {
    kelm_asn_integer value;
    const unsigned char octets[] = {0x00, 0x00, 0x2A};
    ASSERT_EQ(value.set_value(octets, 3), 0u);
    int read = 0;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 42);
    EXPECT_EQ(encode(value), (Bytes{0x02, 0x03, 0x00, 0x00, 0x2A}));
    ASSERT_EQ(value.set_value(octets, 0), 0u);
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 0);
    EXPECT_EQ(encode(value), (Bytes{0x02, 0x00}));
}

TEST(Integer, GettersOfAnAbsentValueWithoutDefaultFail) {
    kelm_asn_integer value;
    int read = 0;
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(value.get_value(read), 0x106521A0u);
    EXPECT_EQ(value.get_value(octets, count), 0x106521A0u);
}

TEST(Integer, DefaultFromOctets) {
    kelm_asn_integer value;
    const unsigned char octets[] = {0xFF, 0x00};
    value.set_default_value(octets, 2);
    int read = 0;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, -256);
}

// --- BOOLEAN and NULL ------------------------------------------------------------------------

TEST(Boolean, DecodedOneReencodesAsFF) {
    kelm_asn_boolean value;
    ASSERT_EQ(decode(value, {0x01, 0x01, 0x01}), 0u);
    int read = 0;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 1);
    EXPECT_EQ(encode(value), (Bytes{0x01, 0x01, 0xFF}));
    ASSERT_EQ(decode(value, {0x01, 0x01, 0x00}), 0u);
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 0);
}

TEST(Boolean, SetValueKeepsTheIntegerGiven) {
    kelm_asn_boolean value;
    value.set_value(5);
    int read = 0;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 5);
    EXPECT_EQ(encode(value), (Bytes{0x01, 0x01, 0xFF}));
    value.set_value(0);
    EXPECT_EQ(encode(value), (Bytes{0x01, 0x01, 0x00}));
}

TEST(Boolean, WrongContentsLengthsAreBadEncodings) {
    for (Bytes input : {Bytes{0x01, 0x00}, Bytes{0x01, 0x02, 0xFF, 0xFF}}) {
        SCOPED_TRACE(::testing::Message() << "length " << int(input[1]));
        kelm_asn_boolean value;
        EXPECT_EQ(decode(value, input), 0x1065219Bu);
        EXPECT_EQ(value.is_present(), 0);
    }
}

TEST(Boolean, DefaultValue) {
    kelm_asn_boolean value;
    value.set_default_value(0);
    value.set_value(0);
    EXPECT_EQ(encode(value), Bytes{});
    value.set_value(1);
    EXPECT_EQ(encode(value), (Bytes{0x01, 0x01, 0xFF}));
}

TEST(Null, EncodesAsTwoOctetsAndIsAlwaysPresent) {
    kelm_asn_null value;
    EXPECT_EQ(value.is_present(), 1);
    EXPECT_EQ(value.is_valid(0), 1);
    EXPECT_EQ(encode(value), (Bytes{0x05, 0x00}));
    EXPECT_EQ(decode(value, {0x05, 0x00}), 0u);
}

TEST(Null, ContentsOfLengthOneAreABadEncoding) {
    kelm_asn_null value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x05, 0x01, 0x00}, &consumed), 0x1065219Bu);
    EXPECT_EQ(consumed, 0u);
}

// --- BIT STRING ------------------------------------------------------------------------------

TEST(BitString, ThreeBitsAreWrittenWithTheirUsedCount) {
    kelm_asn_bitstring value;
    const unsigned char bits[] = {0xFF};
    value.set_value(bits, 3);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x03, 0xE0}));
    kelm_asn_bitstring back;
    ASSERT_EQ(decode(back, {0x03, 0x02, 0x03, 0xE0}), 0u);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(back.get_value(octets, count), 0u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(octets[0], 0xE0);
}

TEST(BitString, WholeOctetsAndEmptyValues) {
    kelm_asn_bitstring value;
    const unsigned char bits[] = {0xAB, 0xCD};
    value.set_value(bits, 16);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x03, 0x00, 0xAB, 0xCD}));
    value.set_value(bits, 0);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x01, 0x00}));
    unsigned char* octets = nullptr;
    unsigned int count = 9;
    EXPECT_EQ(value.get_value(octets, count), 0u);
    EXPECT_EQ(count, 0u);
}

TEST(BitString, DecodingClearsTheLowBitsNamedByTheCountOctet) {
    kelm_asn_bitstring value;
    ASSERT_EQ(decode(value, {0x03, 0x03, 0x04, 0xFF, 0xFF}), 0u);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(value.get_value(octets, count), 0u);
    EXPECT_EQ(octets[0], 0xFF);
    EXPECT_EQ(octets[1], 0xF0);
    EXPECT_EQ(count, 12u); // 2 * 8 - 8 + 4: the count octet read back as bits used
}

TEST(BitString, BadPrimitiveContents) {
    for (Bytes input :
         {Bytes{0x03, 0x00}, Bytes{0x03, 0x02, 0x08, 0xFF}, Bytes{0x03, 0x01, 0x05}}) {
        SCOPED_TRACE(::testing::Message() << "length " << int(input[1]));
        kelm_asn_bitstring value;
        EXPECT_EQ(decode(value, input), 0x106521A2u);
        EXPECT_EQ(value.is_present(), 0);
    }
}

TEST(BitString, ConstructedDefiniteForm) {
    // Segments 0xAB (whole) and 0xC0 with count octet 6.
    const Bytes input = {0x23, 0x08, 0x03, 0x02, 0x00, 0xAB, 0x03, 0x02, 0x06, 0xC0};
    kelm_asn_bitstring value;
    size_t consumed = 0;
    ASSERT_EQ(decode(value, input, &consumed), 0u);
    EXPECT_EQ(consumed, input.size());
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(value.get_value(octets, count), 0u);
    // The segment with count octet 6 reads back as 6 bits, so the whole keeps count 2.
    EXPECT_EQ(count, 10u);
    EXPECT_EQ(octets[0], 0xAB);
    EXPECT_EQ(octets[1], 0xC0);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x03, 0x02, 0xAB, 0xC0}));
}

TEST(BitString, IndefiniteLengthIsNotPermitted) {
    kelm_asn_bitstring value;
    size_t consumed = 99;
    const Bytes input = {0x23, 0x80, 0x03, 0x02, 0x00, 0xAB, 0x00, 0x00};
    EXPECT_EQ(decode(value, input, &consumed), 0x1065219Du);
    EXPECT_EQ(consumed, 0u);
}

TEST(BitString, ConstructedSegmentsMayNest) {
    const Bytes input = {0x23, 0x09, 0x23, 0x04, 0x03, 0x02, 0x00, 0x11, 0x03, 0x01, 0x00};
    kelm_asn_bitstring value;
    ASSERT_EQ(decode(value, input), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x00, 0x11}));
}

TEST(BitString, ASegmentWithUnusedBitsFollowedByAnotherFails) {
    kelm_asn_bitstring value;
    const Bytes input = {0x23, 0x08, 0x03, 0x02, 0x04, 0xF0, 0x03, 0x02, 0x00, 0xAB};
    size_t consumed = 99;
    EXPECT_EQ(decode(value, input, &consumed), 0x106521A3u);
    EXPECT_EQ(consumed, 0u);
}

TEST(BitString, AConstructedFormWithoutSegmentsFails) {
    kelm_asn_bitstring value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x23, 0x00}, &consumed), 0x106521A2u);
    EXPECT_EQ(consumed, 0u);
}

TEST(BitString, IndefinitePrimitiveIsRefused) {
    kelm_asn_bitstring value;
    EXPECT_EQ(decode(value, {0x03, 0x80, 0x00, 0x00, 0x00}), 0x1065219Du);
}

// --- named bits ------------------------------------------------------------------------------

TEST(NamedBits, OnlyBitFiveIsWrittenWithCountOne) {
    kelm_asn_namedbits value;
    value.set_bit(5, 1);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x01, 0x04}));
}

TEST(NamedBits, OnlyBitZeroIsWrittenWithCountSeven) {
    kelm_asn_namedbits value;
    value.set_bit(0, 1);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x07, 0x80}));
}

TEST(NamedBits, BitSevenKeepsAPreviousCountOfZero) {
    kelm_asn_namedbits value;
    value.set_bit(7, 1);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x00, 0x01}));
}

TEST(NamedBits, TheCountOctetIsNeverTwo) {
    kelm_asn_namedbits value;
    value.set_bit(5, 1); // octet 0000 0100 ends in binary 100: a minimal count would be 2
    value.set_bit(0, 1);
    const Bytes out = encode(value);
    ASSERT_EQ(out.size(), 4u);
    EXPECT_EQ(out[2], 0x01);
    EXPECT_EQ(out[3], 0x84);
    for (unsigned int last = 1; last < 256; ++last) {
        SCOPED_TRACE(::testing::Message() << "last octet " << last);
        kelm_asn_namedbits bits;
        for (unsigned int b = 0; b < 8; ++b)
            if (last & (0x80 >> b))
                bits.set_bit(b, 1);
        const Bytes written = encode(bits);
        ASSERT_EQ(written.size(), 4u);
        EXPECT_NE(written[2], 0x02);
    }
}

TEST(NamedBits, AllBitsClearedIsTheEmptyValue) {
    kelm_asn_namedbits value;
    value.set_bit(3, 1);
    value.set_bit(12, 1);
    value.set_bit(3, 0);
    value.set_bit(12, 0);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x01, 0x00}));
}

TEST(NamedBits, TrailingZeroOctetsAreDropped) {
    kelm_asn_namedbits value;
    value.set_bit(1, 1);
    value.set_bit(20, 1);
    value.set_bit(20, 0);
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x02, 0x06, 0x40}));
}

TEST(NamedBits, GetBitReadsStoredBitsAndZeroBeyond) {
    kelm_asn_namedbits value;
    int on = 7;
    EXPECT_EQ(value.get_bit(0, on), 0x106521A0u);
    value.set_bit(9, 1);
    EXPECT_EQ(value.get_bit(9, on), 0u);
    EXPECT_EQ(on, 1);
    EXPECT_EQ(value.get_bit(8, on), 0u);
    EXPECT_EQ(on, 0);
    EXPECT_EQ(value.get_bit(100, on), 0u);
    EXPECT_EQ(on, 0);
    value.set_bit(100, 0); // clearing beyond the stored octets grows nothing
    EXPECT_EQ(encode(value), (Bytes{0x03, 0x03, 0x06, 0x00, 0x40}));
}

TEST(NamedBits, DecodedValuesReadBitByBit) {
    kelm_asn_namedbits value;
    ASSERT_EQ(decode(value, {0x03, 0x02, 0x07, 0x80}), 0u);
    int on = 0;
    EXPECT_EQ(value.get_bit(0, on), 0u);
    EXPECT_EQ(on, 1);
}

// --- OCTET STRING ----------------------------------------------------------------------------

TEST(OctetString, SizesAcrossOneToFourLengthOctets) {
    for (unsigned int n : {0u, 127u, 128u, 255u, 256u, 65535u, 65536u, 70000u}) {
        SCOPED_TRACE(::testing::Message() << n << " octets");
        Bytes data(n);
        for (unsigned int i = 0; i < n; ++i)
            data[i] = static_cast<unsigned char>(i * 7);
        kelm_asn_octetstring value;
        value.set_value(data.data(), n);
        const Bytes out = encode(value);
        EXPECT_EQ(out, tlv(0x04, data));
        kelm_asn_octetstring back;
        size_t consumed = 0;
        ASSERT_EQ(decode(back, out, &consumed), 0u);
        EXPECT_EQ(consumed, out.size());
        unsigned char* octets = nullptr;
        unsigned int count = 0;
        ASSERT_EQ(back.get_value(octets, count), 0u);
        ASSERT_EQ(count, n);
        EXPECT_EQ(Bytes(octets, octets + count), data);
        EXPECT_EQ(octets[n], 0x00) << "the hidden NUL after the data";
    }
}

TEST(OctetString, TheHiddenNulMakesTextUsableAsAString) {
    kelm_asn_octetstring value;
    const char* text = "hello";
    value.set_value(reinterpret_cast<const unsigned char*>(text), 5);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(value.get_value(octets, count), 0u);
    EXPECT_STREQ(reinterpret_cast<char*>(octets), "hello");
    EXPECT_EQ(encode(value), (Bytes{0x04, 0x05, 'h', 'e', 'l', 'l', 'o'}));
}

TEST(OctetString, TwoSegmentsAreConcatenated) {
    const Bytes definite = {0x24, 0x08, 0x04, 0x02, 'a', 'b', 0x04, 0x02, 'c', 'd'};
    const Bytes indefinite = {0x24, 0x80, 0x04, 0x02, 'a', 'b', 0x04, 0x02, 'c', 'd', 0x00, 0x00};
    for (const Bytes& input : {definite, indefinite}) {
        SCOPED_TRACE(input[1] == 0x80 ? "indefinite" : "definite");
        kelm_asn_octetstring value;
        size_t consumed = 0;
        ASSERT_EQ(decode(value, input, &consumed), 0u);
        EXPECT_EQ(consumed, input.size());
        unsigned char* octets = nullptr;
        unsigned int count = 0;
        ASSERT_EQ(value.get_value(octets, count), 0u);
        ASSERT_EQ(count, 4u);
        EXPECT_EQ(std::memcmp(octets, "abcd", 5), 0) << "abcd followed by a hidden 0x00";
        EXPECT_EQ(encode(value), (Bytes{0x04, 0x04, 'a', 'b', 'c', 'd'})) << "written as DER";
    }
}

TEST(OctetString, SegmentsMayThemselvesBeConstructed) {
    const Bytes input = {0x24, 0x80, 0x24, 0x04, 0x04, 0x02, 'x', 'y', 0x04, 0x01, 'z', 0x00, 0x00};
    kelm_asn_octetstring value;
    ASSERT_EQ(decode(value, input), 0u);
    EXPECT_EQ(kelm_test::contents(value), (Bytes{'x', 'y', 'z'}));
}

TEST(OctetString, AConstructedFormWithoutSegmentsIsEmpty) {
    kelm_asn_octetstring value;
    ASSERT_EQ(decode(value, {0x24, 0x00}), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x04, 0x00}));
}

TEST(OctetString, ASegmentOfTheWrongTypeFailsAndRestoresTheInput) {
    kelm_asn_octetstring value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x24, 0x03, 0x02, 0x01, 0x05}, &consumed), 0x106521A4u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(OctetString, ASegmentPastTheConstructedLengthIsTooShort) {
    kelm_asn_octetstring value;
    EXPECT_EQ(decode(value, {0x24, 0x03, 0x04, 0x05, 'a', 'b', 'c', 'd', 'e'}), 0x10652198u);
}

TEST(OctetString, DefaultValueReadsBack) {
    kelm_asn_octetstring value;
    const unsigned char fallback[] = {'d', 'e', 'f'};
    value.set_default_value(fallback, 3);
    unsigned char* octets = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(value.get_value(octets, count), 0u);
    EXPECT_EQ(Bytes(octets, octets + count), (Bytes{'d', 'e', 'f'}));
    value.set_value(fallback, 3);
    EXPECT_EQ(encode(value), Bytes{});
}

// --- allocation failures ---------------------------------------------------------------------

TEST(AllocationFailure, EveryAllocationOfAnOctetStringEncodeAndDecodeFailsCleanly) {
    const Bytes data(3000, 0x5A);
    const Bytes wire = tlv(0x04, data);
    unsigned long failures = 0;
    const unsigned long total = kelm_test::for_each_allocation_failure(
        [&] {
            try {
                kelm_asn_octetstring value;
                value.set_value(data.data(), static_cast<unsigned int>(data.size()));
                (void)encode(value);
                kelm_asn_octetstring back;
                decode(back, wire);
            } catch (const kelm_asn_memexception& e) {
                ++failures;
                EXPECT_EQ(e.status, 0x10652065u);
                EXPECT_STREQ(e.message, "Out of memory in buffer_t::extend");
            } catch (const std::bad_alloc&) {
                ++failures; // an allocation of the test's own helpers
            }
        },
        [](unsigned long) {});
    EXPECT_GT(total, 3u);
    EXPECT_EQ(failures, total);
}

TEST(AllocationFailure, AnObjectStaysUsableAfterAFailedSet) {
    kelm_asn_octetstring value;
    const Bytes data(500, 0x11);
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_THROW(value.set_value(data.data(), 500), kelm_asn_memexception);
    }
    ASSERT_EQ(value.set_value(data.data(), 500), 0u);
    EXPECT_EQ(encode(value), tlv(0x04, data));
}

TEST(AllocationFailure, EveryAllocationOfADefaultValueFailsCleanly) {
    const unsigned long total = kelm_test::for_each_allocation_failure(
        [] {
            kelm_asn_integer value;
            try {
                value.set_default_value(1234567);
                int read = 0;
                EXPECT_EQ(value.get_value(read), 0u);
                EXPECT_EQ(read, 1234567);
            } catch (const kelm_asn_memexception& e) {
                EXPECT_EQ(e.status, 0x10652065u);
                EXPECT_EQ(value.is_defaultable(), 0);
            }
        },
        [](unsigned long) {});
    EXPECT_GE(total, 2u); // the default object and its cache
}
