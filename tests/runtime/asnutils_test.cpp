// The field adapters, the string convention of OCTET STRING texts, and the message base's
// header.
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_test_util.h"
#include "asn_utf8string.h"
#include "asnutils.h"

using kelm_test::Bytes;
using kelm_test::decode;
using kelm_test::encode;

TEST(StringConvention, NullAndEmptyTextsAreStoredAsOneNulByte) {
    kelmasn_octetstring null_text, empty_text;
    kelm_set_strvalue(null_text, static_cast<const char*>(nullptr));
    kelm_set_strvalue(empty_text, "");
    EXPECT_EQ(encode(null_text), (Bytes{0x04, 0x01, 0x00}));
    EXPECT_EQ(encode(empty_text), (Bytes{0x04, 0x01, 0x00}));
    char* text = nullptr;
    kelm_get_strvalue(null_text, text);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "");
    std::free(text);
}

TEST(StringConvention, TextIsStoredWithItsNul) {
    kelmasn_octetstring value;
    value.set_value("abc");
    EXPECT_EQ(encode(value), (Bytes{0x04, 0x04, 'a', 'b', 'c', 0x00}));
    char* text = nullptr;
    value.get_value(text);
    EXPECT_STREQ(text, "abc");
    std::free(text);
}

TEST(StringConvention, ADecodedValueOfOneByteIsTheEmptyString) {
    kelmasn_octetstring value;
    ASSERT_EQ(decode(value, {0x04, 0x01, 0x41}), 0u);
    char* text = nullptr;
    kelm_get_strvalue(value, text);
    EXPECT_STREQ(text, "");
    std::free(text);
}

TEST(StringConvention, AValueFromElsewhereIsCopiedAsItIsWithoutAnAddedNul) {
    kelmasn_octetstring value;
    ASSERT_EQ(decode(value, {0x04, 0x02, 'h', 'i'}), 0u);
    unsigned char* text = nullptr;
    kelm_get_strvalue(value, text);
    EXPECT_EQ(text[0], 'h');
    EXPECT_EQ(text[1], 'i');
    std::free(text);
}

TEST(StringConvention, MemoryExceptionsNameTheirFixedSourcePositions) {
    kelmasn_octetstring copy_case, empty_case;
    copy_case.set_value("abc");
    empty_case.set_value("");
    for (int which = 0; which < 2; ++which) {
        kelmasn_octetstring& value = which == 0 ? copy_case : empty_case;
        char* text = nullptr;
        try {
            kelm_test::ScopedAllocationFailure failure(1);
            kelm_get_strvalue(value, text);
            FAIL() << "no exception";
        } catch (const kelm_asn_memexception& e) {
            EXPECT_EQ(e.status, 0x10652065u);
            EXPECT_STREQ(e.message, "Out of memory get_strvalue()");
            EXPECT_STREQ(e.file, "src/asn1/asnutils.cpp");
            EXPECT_EQ(e.line, which == 0 ? 36 : 46);
        }
    }
}

TEST(OctetStringAdapter, SingleCharactersAreStoredWithTheirNul) {
    kelmasn_octetstring a, zero;
    a.set_value(static_cast<unsigned char>('A'));
    zero.set_value(static_cast<unsigned char>(0));
    EXPECT_EQ(encode(a), (Bytes{0x04, 0x02, 0x41, 0x00}));
    EXPECT_EQ(encode(zero), (Bytes{0x04, 0x01, 0x00}));
    unsigned char c = 9;
    a.get_value(c);
    EXPECT_EQ(c, 0x41);
    zero.get_value(c);
    EXPECT_EQ(c, 0x00);
    kelmasn_octetstring empty;
    ASSERT_EQ(decode(empty, {0x04, 0x00}), 0u);
    c = 9;
    empty.get_value(c);
    EXPECT_EQ(c, 0) << "nothing stored reads as 0";
}

TEST(OctetStringAdapter, FixedReadsCopyExactlyTheirSize) {
    kelmasn_octetstring value;
    ASSERT_EQ(decode(value, {0x04, 0x08, 1, 2, 3, 4, 5, 6, 7, 8}), 0u);
    unsigned char node[6] = {};
    value.get_value(6, node);
    EXPECT_EQ(Bytes(node, node + 6), (Bytes{1, 2, 3, 4, 5, 6})) << "longer content is cut";
    ASSERT_EQ(decode(value, {0x04, 0x02, 9, 9}), 0u);
    std::memset(node, 0xEE, sizeof node);
    value.get_value(6, node);
    EXPECT_EQ(Bytes(node, node + 6), (Bytes{9, 9, 0, 0, 0, 0}))
        << "shorter content is not rejected; the rest reads as zeros";
}

TEST(OctetStringAdapter, CountedReadsAllocateACopyOrGiveNull) {
    kelmasn_octetstring value;
    ASSERT_EQ(decode(value, {0x04, 0x03, 7, 8, 9}), 0u);
    unsigned char* bytes = nullptr;
    unsigned int count = 0;
    value.get_value(bytes, count);
    ASSERT_EQ(count, 3u);
    EXPECT_EQ(bytes[2], 9);
    std::free(bytes);
    ASSERT_EQ(decode(value, {0x04, 0x00}), 0u);
    value.get_value(bytes, count);
    EXPECT_EQ(bytes, nullptr);
    EXPECT_EQ(count, 0u);
}

TEST(OctetStringAdapter, TheDefaultIsTheStoredFormOfAnEmptyString) {
    kelmasn_octetstring value;
    value.set_default_value();
    value.set_value("");
    EXPECT_EQ(encode(value), Bytes{}) << "equal to its default, so not written";
}

TEST(IntegerAdapter, NarrowReadsTruncateWithoutARangeCheck) {
    kelmasn_integer value;
    value.set_value(300);
    unsigned char byte = 0;
    value.get_value(byte);
    EXPECT_EQ(byte, 44);
    value.set_value(0x12345);
    unsigned short half = 0;
    value.get_value(half);
    EXPECT_EQ(half, 0x2345);
    value.set_value(-1);
    unsigned int word = 0;
    value.get_value(word);
    EXPECT_EQ(word, 0xFFFFFFFFu);
}

TEST(IntegerAdapter, AnUnreadableValueReadsAsZero) {
    kelmasn_integer value;
    ASSERT_EQ(decode(value, {0x02, 0x05, 0x01, 0x00, 0x00, 0x00, 0x00}), 0u);
    EXPECT_EQ(kelm_intvalue(value), 0);
    int read = 7;
    EXPECT_EQ(value.get_value(read), 0u);
    EXPECT_EQ(read, 0);
}

TEST(IntegerAdapter, TheDefaultIsZero) {
    kelmasn_integer value;
    value.set_default_value();
    value.set_value(0);
    EXPECT_EQ(encode(value), Bytes{});
}

TEST(TextAdapter, TheEmptyStringIsAZeroLengthValueUnlikeOctetStringTexts) {
    kelmasnUTF8String text;
    text.set_value("");
    EXPECT_EQ(encode(text), (Bytes{0x0C, 0x00}));
    text.set_value(static_cast<const char*>(nullptr));
    EXPECT_EQ(encode(text), (Bytes{0x0C, 0x00}));
    EXPECT_STREQ(text.get_type_name(), "kelmUTF8string");
}

TEST(TextAdapter, AZeroLengthValueReadsAsTheEmptyStringInBothModes) {
    for (security_t mode : {KELM_SECURITY_PLAIN, KELM_SECURITY_LOCAL_CODESET}) {
        kelmasnUTF8String text(mode);
        ASSERT_EQ(decode(text, {0x0C, 0x00}), 0u);
        char* out = nullptr;
        EXPECT_EQ(text.get_value(out), 0u);
        ASSERT_NE(out, nullptr);
        EXPECT_STREQ(out, "");
        std::free(out);
    }
}

TEST(TextAdapter, DecodesConstructedAndIndefiniteFormsWhoseSegmentsCarryItsTag) {
    kelmasnUTF8String text;
    // The segments are read as strings of the element's own tag, 12.
    EXPECT_EQ(decode(text, {0x2C, 0x80, 0x04, 0x02, 'h', 'i', 0x00, 0x00}), 0x106521A4u);
    ASSERT_EQ(decode(text, {0x2C, 0x80, 0x0C, 0x02, 'h', 'i', 0x00, 0x00}), 0u);
    char* out = nullptr;
    text.get_value(out);
    EXPECT_STREQ(out, "hi");
    std::free(out);
}

TEST(TextAdapter, AFailedAllocationIsAStatusAndANullText) {
    kelmasnUTF8String text;
    text.set_value("abc");
    char* out = reinterpret_cast<char*>(&text);
    unsigned int status;
    {
        kelm_test::ScopedAllocationFailure failure(1);
        status = text.get_value(out);
    }
    EXPECT_EQ(status, 0x10652065u);
    EXPECT_EQ(out, nullptr);
}

TEST(FreeStrings, ACountOfZeroReleasesOnlyTheArray) {
    char** array = static_cast<char**>(std::malloc(2 * sizeof(char*)));
    char* kept = static_cast<char*>(std::malloc(4));
    array[0] = kept;
    array[1] = nullptr;
    kelm_free_strings(0, array); // LeakSanitizer would report `kept` if it were lost too
    std::free(kept);
    char** full = static_cast<char**>(std::malloc(2 * sizeof(char*)));
    full[0] = static_cast<char*>(std::malloc(3));
    full[1] = static_cast<char*>(std::malloc(3));
    kelm_free_strings(2, full);
}

TEST(VersionedBase, TheVersionElementIsIntegerOne) {
    kelm_v37_asnbase base;
    EXPECT_EQ(encode(base), (Bytes{0x30, 0x03, 0x02, 0x01, 0x01}));
}

TEST(MessageBase, SaveEncodingLeavesTheBufferUntouchedOnFailure) {
    kelm_asn_integer missing; // absent and mandatory: writing it fails
    kelm_asn_buffer_t buffer{77, nullptr};
    EXPECT_EQ(kelm_asnbase::saveEncoding(missing, 2, buffer), 0x106521A0u);
    EXPECT_EQ(buffer.length, 77u);
    EXPECT_EQ(buffer.data, nullptr);
}
