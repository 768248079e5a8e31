// The DER inspection functions, including the behaviours kept for existing callers.
#include <cstdlib>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "kelm/kelm_der.h"

namespace {

// A cursor over a copy of some bytes, with a second pointer slot directly after the cursor for
// the high-tag hand-over of kelmAsnGetType.
struct Input {
    explicit Input(std::vector<unsigned char> b) : bytes(std::move(b)) {
        slots[0] = bytes.data();
        slots[1] = nullptr;
        remaining = static_cast<unsigned int>(bytes.size());
    }
    unsigned char** cursor() { return &slots[0]; }
    size_t consumed() const { return static_cast<size_t>(slots[0] - bytes.data()); }

    std::vector<unsigned char> bytes;
    unsigned char* slots[2];
    unsigned int remaining;
};

} // namespace

// --- kelmAsnGetType ---------------------------------------------------------------------------

TEST(GetType, EmptyInputIsTooShort) {
    Input in({});
    unsigned int tag = 7, cons = 7, cls = 7;
    EXPECT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0x10652198u);
    EXPECT_EQ(tag, 7u);
    EXPECT_EQ(cons, 7u);
    EXPECT_EQ(cls, 7u);
}

TEST(GetType, SequenceIdentifier) {
    Input in({0x30, 0, 0, 0, 0});
    unsigned int tag, cons, cls;
    ASSERT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0u);
    EXPECT_EQ(tag, 16u);
    EXPECT_EQ(cons, 1u);
    EXPECT_EQ(cls, 0u);
    EXPECT_EQ(in.consumed(), 1u);
    EXPECT_EQ(in.remaining, 4u);
    EXPECT_EQ(in.slots[1], nullptr);
}

TEST(GetType, ClassAndConstructedBitsOfEveryLowTagForm) {
    struct Row {
        unsigned char b;
        unsigned int tag, cons, cls;
    } rows[] = {{0x02, 2, 0, 0}, {0x1E, 30, 0, 0}, {0x41, 1, 0, 1}, {0x7E, 30, 1, 1},
                {0xA3, 3, 1, 2}, {0xC0, 0, 0, 3},  {0xE5, 5, 1, 3}, {0x00, 0, 0, 0}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "identifier " << std::hex << int(row.b));
        Input in({row.b});
        unsigned int tag, cons, cls;
        ASSERT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0u);
        EXPECT_EQ(tag, row.tag);
        EXPECT_EQ(cons, row.cons);
        EXPECT_EQ(cls, row.cls);
        EXPECT_EQ(in.remaining, 0u);
    }
}

TEST(GetType, HighTagHandsThePositionOverThroughTheNextPointerSlot) {
    Input in({0x9F, 0x05});
    unsigned int tag, cons, cls;
    ASSERT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0u);
    EXPECT_EQ(tag, 0x1Fu) << "the masked identifier octet, not 5";
    EXPECT_EQ(cons, 0u);
    EXPECT_EQ(cls, 2u);
    EXPECT_EQ(in.remaining, 0u);
    EXPECT_EQ(in.consumed(), 0u) << "the caller's cursor does not move";
    EXPECT_EQ(in.slots[1], in.bytes.data() + 1) << "the slot points at the 05 octet";
}

TEST(GetType, HighTagWithContinuationOctetsAccumulatesAllButTheLast) {
    Input in({0xBF, 0x81, 0x82, 0x03, 0xAA});
    unsigned int tag, cons, cls;
    ASSERT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0u);
    EXPECT_EQ(tag, (0x3Fu * 128 + 1) * 128 + 2);
    EXPECT_EQ(cons, 1u);
    EXPECT_EQ(cls, 2u);
    EXPECT_EQ(in.remaining, 5u - 2 - 2);
    EXPECT_EQ(in.slots[1], in.bytes.data() + 3);
    EXPECT_EQ(in.consumed(), 0u);
}

TEST(GetType, HighTagAloneIsTooShortAfterWritingClassAndConstructed) {
    Input in({0x3F});
    unsigned int tag = 99, cons = 99, cls = 99;
    EXPECT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0x10652198u);
    EXPECT_EQ(tag, 0u);
    EXPECT_EQ(cons, 1u);
    EXPECT_EQ(cls, 0u);
    EXPECT_EQ(in.remaining, 1u);
    EXPECT_EQ(in.slots[1], nullptr);
}

TEST(GetType, HighTagCutShortInsideTheContinuationIsTooShort) {
    for (std::vector<unsigned char> bytes :
         {std::vector<unsigned char>{0x1F, 0x81}, {0x1F, 0x81, 0x82}, {0x5F, 0xFF, 0xFF, 0xFF}}) {
        SCOPED_TRACE(::testing::Message() << bytes.size() << " octets");
        Input in(bytes);
        unsigned int tag, cons, cls;
        EXPECT_EQ(kelmAsnGetType(in.cursor(), &in.remaining, &tag, &cons, &cls), 0x10652198u);
        EXPECT_EQ(in.remaining, bytes.size());
        EXPECT_EQ(in.slots[1], nullptr);
    }
}

// --- kelmAsnGetLength -------------------------------------------------------------------------

TEST(GetLength, EmptyInputIsTooShortAndWritesNothing) {
    Input in({});
    unsigned int def = 5, len = 5;
    EXPECT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0x10652198u);
    EXPECT_EQ(def, 5u);
    EXPECT_EQ(len, 5u);
}

TEST(GetLength, ShortIndefiniteAndLongForms) {
    struct Row {
        std::vector<unsigned char> bytes;
        unsigned int definite, length, consumed;
    } rows[] = {
        {{0x00}, 1, 0, 1},
        {{0x7F}, 1, 127, 1},
        {{0x80}, 0, 0, 1},
        {{0x81, 0x80}, 1, 128, 2},
        {{0x81, 0xFF}, 1, 255, 2},
        {{0x82, 0x01, 0x00}, 1, 256, 3},
        {{0x82, 0xFF, 0xFF}, 1, 65535, 3},
        {{0x83, 0x01, 0x00, 0x00}, 1, 65536, 4},
        {{0x84, 0x01, 0x00, 0x00, 0x00}, 1, 0x1000000, 5},
        {{0x81, 0x05}, 1, 5, 2},                         // non-minimal forms are accepted
        {{0x85, 0x01, 0x00, 0x00, 0x00, 0x07}, 1, 7, 6}, // five octets overflow 32 bits
        {{0x88, 0, 0, 0, 0, 0, 0, 1, 2}, 1, 0x102, 9},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "length octets " << row.bytes.size());
        std::vector<unsigned char> bytes = row.bytes;
        bytes.push_back(0xEE); // something after the length
        Input in(bytes);
        unsigned int def = 9, len = 9;
        ASSERT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0u);
        EXPECT_EQ(def, row.definite);
        EXPECT_EQ(len, row.length);
        EXPECT_EQ(in.consumed(), row.consumed);
        EXPECT_EQ(in.remaining, row.bytes.size() + 1 - row.consumed);
    }
}

TEST(GetLength, LongFormWithZeroOctetsGivesLengthZero) {
    // 0x80 is the indefinite form; the shortest long form of zero is 81 00.
    Input zero({0x81, 0x00});
    unsigned int def, len;
    ASSERT_EQ(kelmAsnGetLength(zero.cursor(), &zero.remaining, &def, &len), 0u);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(def, 1u);
}

TEST(GetLength, LongFormCutShortIsTooShortWithThePartialLength) {
    Input in({0x82, 0x01});
    unsigned int def = 9, len = 9;
    EXPECT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0x10652198u);
    EXPECT_EQ(def, 1u);
    EXPECT_EQ(len, 1u) << "the output is updated after every octet";
    EXPECT_EQ(in.remaining, 2u);
    EXPECT_EQ(in.consumed(), 0u);
}

TEST(GetLength, LongFormOctetAloneIsTooShortWithLengthZero) {
    Input in({0x84});
    unsigned int def = 9, len = 9;
    EXPECT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0x10652198u);
    EXPECT_EQ(def, 1u);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(in.remaining, 1u);
}

TEST(GetLength, EveryTruncationOfAFourOctetLengthFails) {
    const std::vector<unsigned char> full = {0x84, 0x12, 0x34, 0x56, 0x78};
    for (size_t n = 1; n < full.size(); ++n) {
        SCOPED_TRACE(::testing::Message() << n << " octets");
        Input in(std::vector<unsigned char>(full.begin(), full.begin() + n));
        unsigned int def, len;
        EXPECT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0x10652198u);
        EXPECT_EQ(in.remaining, n);
    }
    Input in(full);
    unsigned int def, len;
    ASSERT_EQ(kelmAsnGetLength(in.cursor(), &in.remaining, &def, &len), 0u);
    EXPECT_EQ(len, 0x12345678u);
}

// --- kelmAsnGetIntegerValue (value form) ------------------------------------------------------

TEST(GetIntegerValue, TwosComplementValues) {
    struct Row {
        std::vector<unsigned char> bytes;
        int64_t value;
    } rows[] = {
        {{0x00}, 0},
        {{0x7F}, 127},
        {{0x80}, -128},
        {{0xFF}, -1},
        {{0x00, 0x80}, 128},
        {{0xFF, 0x7F}, -129},
        {{0x01, 0x00}, 256},
        {{0x80, 0x00, 0x00, 0x00}, INT32_MIN},
        {{0x7F, 0xFF, 0xFF, 0xFF}, INT32_MAX},
        {{0x00, 0xFF, 0xFF, 0xFF, 0xFF}, 0xFFFFFFFFLL},
        {{0x80, 0, 0, 0, 0, 0, 0, 0}, INT64_MIN},
        {{0x7F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, INT64_MAX},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "value " << row.value);
        Input in(row.bytes);
        int64_t value = 12345;
        const unsigned int size = static_cast<unsigned int>(row.bytes.size());
        ASSERT_EQ(kelmAsnGetIntegerValue(in.cursor(), &in.remaining, size, &value), 0u);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(in.remaining, 0u);
        EXPECT_EQ(in.consumed(), size);
    }
}

TEST(GetIntegerValue, SizeNineIsOutOfRange) {
    Input in(std::vector<unsigned char>(9, 0));
    int64_t value = 5;
    EXPECT_EQ(kelmAsnGetIntegerValue(in.cursor(), &in.remaining, 9, &value), 0x10652199u);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(in.remaining, 9u);
}

TEST(GetIntegerValue, ContentsLongerThanTheInputAreTooShort) {
    Input in({0x01, 0x02});
    int64_t value = 5;
    EXPECT_EQ(kelmAsnGetIntegerValue(in.cursor(), &in.remaining, 3, &value), 0x10652198u);
    EXPECT_EQ(in.remaining, 2u);
}

TEST(GetIntegerValue, SizeZeroTakesTheSignOfTheNextByteAndConsumesNothing) {
    Input neg({0x90});
    int64_t value = 5;
    ASSERT_EQ(kelmAsnGetIntegerValue(neg.cursor(), &neg.remaining, 0, &value), 0u);
    EXPECT_EQ(value, -1);
    EXPECT_EQ(neg.remaining, 1u);
    Input pos({0x10});
    ASSERT_EQ(kelmAsnGetIntegerValue(pos.cursor(), &pos.remaining, 0, &value), 0u);
    EXPECT_EQ(value, 0);
}

TEST(GetIntegerValue, SizeZeroOnEmptyInputReadsNothingPastTheEnd) {
    Input in({});
    int64_t value = 5;
    ASSERT_EQ(kelmAsnGetIntegerValue(in.cursor(), &in.remaining, 0, &value), 0u);
    EXPECT_EQ(value, 0);
}

// --- byte form and the LongInteger functions -------------------------------------------------

TEST(GetLongIntegerValue, LittleEndianReversesTheOctets) {
    Input in({0x01, 0x02, 0x03});
    unsigned char* bytes = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(kelmAsnGetLongIntegerValueLittleEndian(in.cursor(), &in.remaining, 3, &bytes, &count),
              0u);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(bytes[0], 0x03);
    EXPECT_EQ(bytes[1], 0x02);
    EXPECT_EQ(bytes[2], 0x01);
    EXPECT_EQ(in.remaining, 0u);
    std::free(bytes);
}

TEST(GetLongIntegerValue, BigEndianKeepsTheWireOrderWithoutSignHandling) {
    Input in({0xFF, 0x00, 0x10, 0x99});
    unsigned char* bytes = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(kelmAsnGetLongIntegerValueBigEndian(in.cursor(), &in.remaining, 3, &bytes, &count),
              0u);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(bytes[0], 0xFF);
    EXPECT_EQ(bytes[1], 0x00);
    EXPECT_EQ(bytes[2], 0x10);
    EXPECT_EQ(in.remaining, 1u);
    EXPECT_EQ(in.consumed(), 3u);
    std::free(bytes);
}

TEST(GetLongIntegerValue, ByteFormStatusesInOrder) {
    unsigned char* bytes = nullptr;
    unsigned int count = 77;
    Input nine(std::vector<unsigned char>(9, 1));
    EXPECT_EQ(kelmAsnGetIntegerValue(nine.cursor(), &nine.remaining, 9, &bytes, &count, 0),
              0x10652199u);
    Input zero({1});
    EXPECT_EQ(kelmAsnGetIntegerValue(zero.cursor(), &zero.remaining, 0, &bytes, &count, 0),
              0x1065219Au);
    Input short_in({1, 2});
    EXPECT_EQ(kelmAsnGetIntegerValue(short_in.cursor(), &short_in.remaining, 3, &bytes, &count, 1),
              0x10652198u);
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(count, 77u);
    EXPECT_EQ(short_in.remaining, 2u);
}

TEST(GetLongIntegerValue, EightOctetsAreAccepted) {
    Input in({1, 2, 3, 4, 5, 6, 7, 8});
    unsigned char* bytes = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(kelmAsnGetIntegerValue(in.cursor(), &in.remaining, 8, &bytes, &count, 1), 0u);
    EXPECT_EQ(count, 8u);
    EXPECT_EQ(bytes[0], 8);
    EXPECT_EQ(bytes[7], 1);
    std::free(bytes);
}

// --- kelmAsnGetNullValue ----------------------------------------------------------------------

TEST(GetNullValue, AlwaysSucceedsAndTouchesNothing) {
    Input in({0x05, 0x00});
    EXPECT_EQ(kelmAsnGetNullValue(in.cursor(), &in.remaining, 0), 0u);
    EXPECT_EQ(kelmAsnGetNullValue(in.cursor(), &in.remaining, 100), 0u);
    EXPECT_EQ(kelmAsnGetNullValue(nullptr, nullptr, 0), 0u);
    EXPECT_EQ(in.remaining, 2u);
    EXPECT_EQ(in.consumed(), 0u);
}

// --- kelmAsnGetBitstringValue -----------------------------------------------------------------

TEST(GetBitstringValue, MasksTheCallersInputAndCountsOneByteLess) {
    Input in({0x03, 0xFF});
    unsigned char* bytes = nullptr;
    unsigned int bits = 0;
    ASSERT_EQ(kelmAsnGetBitstringValue(in.cursor(), &in.remaining, 2, &bytes, &bits), 0u);
    EXPECT_EQ(bytes[0], 0xFF) << "the copy keeps the unused bits";
    EXPECT_EQ(bits, 5u);
    EXPECT_EQ(in.bytes[1], 0xF8) << "the masking lands in the input";
    EXPECT_EQ(in.consumed(), 2u);
    EXPECT_EQ(in.remaining, 1u) << "the remaining count decreases by size - 1";
    std::free(bytes);
}

TEST(GetBitstringValue, EveryUnusedBitCountMasksItsBits) {
    const unsigned char masks[8] = {0xFF, 0xFE, 0xFC, 0xF8, 0xF0, 0xE0, 0xC0, 0x80};
    for (unsigned int u = 0; u < 8; ++u) {
        SCOPED_TRACE(::testing::Message() << u << " unused bits");
        Input in({static_cast<unsigned char>(u), 0xAA, 0xFF});
        unsigned char* bytes = nullptr;
        unsigned int bits = 0;
        ASSERT_EQ(kelmAsnGetBitstringValue(in.cursor(), &in.remaining, 3, &bytes, &bits), 0u);
        EXPECT_EQ(bits, 16u - u);
        EXPECT_EQ(in.bytes[2], masks[u]);
        EXPECT_EQ(in.bytes[1], 0xAA) << "only the last octet is masked";
        EXPECT_EQ(bytes[1], 0xFF);
        std::free(bytes);
    }
}

TEST(GetBitstringValue, EmptyBitStringSucceedsWithZeroBits) {
    Input in({0x00});
    unsigned char* bytes = nullptr;
    unsigned int bits = 99;
    ASSERT_EQ(kelmAsnGetBitstringValue(in.cursor(), &in.remaining, 1, &bytes, &bits), 0u);
    EXPECT_EQ(bits, 0u);
    EXPECT_EQ(in.consumed(), 1u);
    EXPECT_EQ(in.remaining, 1u) << "size - 1 = 0 is subtracted";
    std::free(bytes);
}

TEST(GetBitstringValue, BadUnusedBitsOctets) {
    unsigned char* bytes = nullptr;
    unsigned int bits = 0;
    Input one({0x01});
    EXPECT_EQ(kelmAsnGetBitstringValue(one.cursor(), &one.remaining, 1, &bytes, &bits),
              0x1065219Bu);
    Input eight({0x08, 0xFF});
    EXPECT_EQ(kelmAsnGetBitstringValue(eight.cursor(), &eight.remaining, 2, &bytes, &bits),
              0x1065219Bu);
    EXPECT_EQ(eight.bytes[1], 0xFF);
    EXPECT_EQ(eight.remaining, 2u);
    EXPECT_EQ(bytes, nullptr);
}

TEST(GetBitstringValue, SizeChecksComeFirst) {
    unsigned char* bytes = nullptr;
    unsigned int bits = 0;
    Input nine(std::vector<unsigned char>(9, 0));
    EXPECT_EQ(kelmAsnGetBitstringValue(nine.cursor(), &nine.remaining, 9, &bytes, &bits),
              0x10652199u);
    Input zero({0x00});
    EXPECT_EQ(kelmAsnGetBitstringValue(zero.cursor(), &zero.remaining, 0, &bytes, &bits),
              0x1065219Au);
    Input short_in({0x00, 0x01});
    EXPECT_EQ(kelmAsnGetBitstringValue(short_in.cursor(), &short_in.remaining, 3, &bytes, &bits),
              0x10652198u);
}

// --- kelmAsnGetCharstringValue ----------------------------------------------------------------

TEST(GetCharstringValue, CopyStopsAtAnEmbeddedNulButConsumesEverything) {
    Input in({0x61, 0x00, 0x62});
    char* text = nullptr;
    ASSERT_EQ(kelmAsnGetCharstringValue(in.cursor(), &in.remaining, 3, &text), 0u);
    EXPECT_STREQ(text, "a");
    EXPECT_EQ(text[2], '\0') << "the rest is filled with NULs";
    EXPECT_EQ(text[3], '\0');
    EXPECT_EQ(in.consumed(), 3u);
    EXPECT_EQ(in.remaining, 0u);
    std::free(text);
}

TEST(GetCharstringValue, PlainTextIsTerminated) {
    Input in({'h', 'e', 'l', 'l', 'o', '!'});
    char* text = nullptr;
    ASSERT_EQ(kelmAsnGetCharstringValue(in.cursor(), &in.remaining, 5, &text), 0u);
    EXPECT_STREQ(text, "hello");
    EXPECT_EQ(in.remaining, 1u);
    std::free(text);
}

TEST(GetCharstringValue, EmptyAndShortContentsFail) {
    char* text = nullptr;
    Input in({'a'});
    EXPECT_EQ(kelmAsnGetCharstringValue(in.cursor(), &in.remaining, 0, &text), 0x1065219Au);
    EXPECT_EQ(kelmAsnGetCharstringValue(in.cursor(), &in.remaining, 2, &text), 0x10652198u);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(in.remaining, 1u);
}

// --- kelmAsnGetOctetstringValue ---------------------------------------------------------------

TEST(GetOctetstringValue, CopiesTheContentsOctets) {
    std::vector<unsigned char> data(300);
    for (size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned char>(i);
    Input in(data);
    unsigned char* bytes = nullptr;
    unsigned int count = 0;
    ASSERT_EQ(kelmAsnGetOctetstringValue(in.cursor(), &in.remaining, 299, &bytes, &count), 0u);
    EXPECT_EQ(count, 299u);
    EXPECT_EQ(std::memcmp(bytes, data.data(), 299), 0);
    EXPECT_EQ(in.remaining, 1u);
    std::free(bytes);
}

TEST(GetOctetstringValue, EmptyAndShortContentsFail) {
    unsigned char* bytes = nullptr;
    unsigned int count = 5;
    Input in({1, 2});
    EXPECT_EQ(kelmAsnGetOctetstringValue(in.cursor(), &in.remaining, 0, &bytes, &count),
              0x1065219Au);
    EXPECT_EQ(kelmAsnGetOctetstringValue(in.cursor(), &in.remaining, 3, &bytes, &count),
              0x10652198u);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(in.remaining, 2u);
}

// --- kelmAsnGetOIDValue -----------------------------------------------------------------------

TEST(GetOIDValue, CopiesTheContentsAsTheyStand) {
    Input in({0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D});
    kelm_asn_oid_t oid{0, nullptr};
    ASSERT_EQ(kelmAsnGetOIDValue(in.cursor(), &in.remaining, 6, &oid), 0u);
    ASSERT_EQ(oid.count, 6u);
    EXPECT_EQ(std::memcmp(oid.bytes, in.bytes.data(), 6), 0);
    EXPECT_EQ(in.remaining, 0u);
    std::free(oid.bytes);
}

TEST(GetOIDValue, NullRecordIsTestedBeforeTheInput) {
    Input in({});
    EXPECT_EQ(kelmAsnGetOIDValue(in.cursor(), &in.remaining, 0, nullptr), 0x1065219Cu);
    kelm_asn_oid_t oid{3, nullptr};
    EXPECT_EQ(kelmAsnGetOIDValue(in.cursor(), &in.remaining, 0, &oid), 0x1065219Au);
    EXPECT_EQ(kelmAsnGetOIDValue(in.cursor(), &in.remaining, 1, &oid), 0x10652198u);
    EXPECT_EQ(oid.count, 3u);
}

// --- exhausted memory --------------------------------------------------------------------------

// Every function that copies contents into a malloc'ed block returns the out-of-memory status when
// that block cannot be had, and, as every failing call, leaves the cursor and the remaining count
// where they were and the caller's input as it was.

TEST(GetLongIntegerValue, ExhaustedMemoryIsAStatusAndMovesNothing) {
    for (int order : {0, 1}) {
        SCOPED_TRACE(::testing::Message() << "order " << order);
        Input in({0x01, 0x02, 0x03});
        unsigned char sentinel = 0;
        unsigned char* bytes = &sentinel;
        unsigned int count = 77;
        unsigned int status = 0;
        bool failed = false;
        {
            kelm_test::ScopedAllocationFailure failure(1);
            status = kelmAsnGetIntegerValue(in.cursor(), &in.remaining, 3, &bytes, &count, order);
            failed = kelm_test::failure_delivered();
        }
        EXPECT_TRUE(failed);
        EXPECT_EQ(status, 0x10652065u);
        EXPECT_EQ(bytes, &sentinel);
        EXPECT_EQ(count, 77u);
        EXPECT_EQ(in.consumed(), 0u);
        EXPECT_EQ(in.remaining, 3u);
    }
}

TEST(GetBitstringValue, ExhaustedMemoryIsAStatusAndLeavesTheInputUnmasked) {
    Input in({0x03, 0xAA, 0xFF});
    unsigned char sentinel = 0;
    unsigned char* bytes = &sentinel;
    unsigned int bits = 99;
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_EQ(kelmAsnGetBitstringValue(in.cursor(), &in.remaining, 3, &bytes, &bits),
                  0x10652065u);
        EXPECT_TRUE(kelm_test::failure_delivered());
    }
    EXPECT_EQ(bytes, &sentinel);
    EXPECT_EQ(bits, 99u);
    EXPECT_EQ(in.bytes[2], 0xFF) << "the unused bits are cleared only by a successful read";
    EXPECT_EQ(in.consumed(), 0u);
    EXPECT_EQ(in.remaining, 3u);
}

TEST(GetBitstringValue, AnEmptyBitStringNeedsNoMemory) {
    // Only the unused-bits octet: nothing is copied, so a request for no bytes that fails is no
    // failure of the read.
    Input in({0x00, 0x42});
    unsigned char sentinel = 0;
    unsigned char* bytes = &sentinel;
    unsigned int bits = 99;
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_EQ(kelmAsnGetBitstringValue(in.cursor(), &in.remaining, 1, &bytes, &bits), 0u);
    }
    EXPECT_EQ(bits, 0u);
    EXPECT_EQ(in.consumed(), 1u);
    EXPECT_EQ(in.remaining, 2u) << "size - 1 = 0 is subtracted";
    std::free(bytes);
}

TEST(GetCharstringValue, ExhaustedMemoryIsAStatusAndMovesNothing) {
    Input in({'t', 'e', 'x', 't'});
    char sentinel = 0;
    char* text = &sentinel;
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_EQ(kelmAsnGetCharstringValue(in.cursor(), &in.remaining, 4, &text), 0x10652065u);
        EXPECT_TRUE(kelm_test::failure_delivered());
    }
    EXPECT_EQ(text, &sentinel);
    EXPECT_EQ(in.consumed(), 0u);
    EXPECT_EQ(in.remaining, 4u);
}

TEST(GetOctetstringValue, ExhaustedMemoryIsAStatusAndMovesNothing) {
    Input in({1, 2, 3});
    unsigned char sentinel = 0;
    unsigned char* bytes = &sentinel;
    unsigned int count = 5;
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_EQ(kelmAsnGetOctetstringValue(in.cursor(), &in.remaining, 2, &bytes, &count),
                  0x10652065u);
        EXPECT_TRUE(kelm_test::failure_delivered());
    }
    EXPECT_EQ(bytes, &sentinel);
    EXPECT_EQ(count, 5u);
    EXPECT_EQ(in.consumed(), 0u);
    EXPECT_EQ(in.remaining, 3u);
}

TEST(GetOIDValue, ExhaustedMemoryIsAStatusWithNoCopyAndMovesNothing) {
    Input in({0x2A, 0x03});
    unsigned char sentinel = 0;
    kelm_asn_oid_t oid{9, &sentinel};
    {
        kelm_test::ScopedAllocationFailure failure(1);
        EXPECT_EQ(kelmAsnGetOIDValue(in.cursor(), &in.remaining, 2, &oid), 0x10652065u);
        EXPECT_TRUE(kelm_test::failure_delivered());
    }
    EXPECT_EQ(oid.bytes, nullptr) << "the record holds no copy";
    EXPECT_EQ(oid.count, 9u);
    EXPECT_EQ(in.consumed(), 0u);
    EXPECT_EQ(in.remaining, 2u);
}

// --- check_EOC ------------------------------------------------------------------------------

TEST(CheckEOC, TwoZeroOctetsAreAnEndOfContentsMarker) {
    unsigned char data[3] = {0, 0, 5};
    kelm_r_buffer_t r(data, 3);
    EXPECT_EQ(check_EOC(r), 1);
    EXPECT_EQ(r.remaining, 3u);
    EXPECT_EQ(r.cursor, data);
}

TEST(CheckEOC, OneByteLeftIsNotAMarkerEvenIfZero) {
    unsigned char data[2] = {0, 0};
    kelm_r_buffer_t r(data, 1);
    EXPECT_EQ(check_EOC(r), 0);
}

TEST(CheckEOC, OtherBytesAreNotAMarker) {
    unsigned char a[2] = {0, 1};
    unsigned char b[2] = {1, 0};
    EXPECT_EQ(check_EOC(kelm_r_buffer_t(a, 2)), 0);
    EXPECT_EQ(check_EOC(kelm_r_buffer_t(b, 2)), 0);
    EXPECT_EQ(check_EOC(kelm_r_buffer_t()), 0);
}

TEST(CheckEOC, AWrittenBufferIsReadAsACursor) {
    kelm_buffer_t out;
    out.append(static_cast<unsigned char>(0));
    out.append(static_cast<unsigned char>(0));
    EXPECT_EQ(check_EOC(out), 1);
}
