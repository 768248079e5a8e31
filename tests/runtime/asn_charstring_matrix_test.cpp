// The read-conversion matrix, cell by cell: a value stored in each of the seven code sets, read
// through each of the seven getters, for values set through the raw setters and for values
// decoded from their encodings.
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "charstring_test_util.h"

using charstring_test::Bytes;
using charstring_test::getters;
using charstring_test::store_raw;
using charstring_test::written;

namespace {

constexpr unsigned int kStoredOrder[] = {12, 19, 20, 22, 26, 28, 30};

// One sample text: its octets in each code set that can hold it (for Printable and Visible, the
// octets a raw setter would store, checked or not), and for each stored code set the outcome of
// the seven getters, in the order IA5, Printable, Visible, T.61, BMP, Universal, UTF-8:
//   Y  the sample's octets in the getter's code set
//   C  the stored octets, copied unchanged
//   -  fails with 0x106521AB
// A stored code set the sample has no octets in is not tried.
struct Sample {
    const char* name;
    std::map<unsigned int, Bytes> forms;
    std::map<unsigned int, const char*> outcomes;
};

const Sample kSamples[] = {
    {"Ab 1 (printable characters only)",
     {{12, {0x41, 0x62, 0x20, 0x31}},
      {19, {0x41, 0x62, 0x20, 0x31}},
      {20, {0x41, 0x62, 0x20, 0x31}},
      {22, {0x41, 0x62, 0x20, 0x31}},
      {26, {0x41, 0x62, 0x20, 0x31}},
      {28, {0, 0, 0, 0x41, 0, 0, 0, 0x62, 0, 0, 0, 0x20, 0, 0, 0, 0x31}},
      {30, {0, 0x41, 0, 0x62, 0, 0x20, 0, 0x31}}},
     {{12, "YYYYYYC"},
      {19, "CC-YYYC"},
      {20, "YYYCYYY"},
      {22, "CYYYYYY"},
      {26, "--C----"},
      {28, "YYYYYCY"},
      {30, "YYYYCYY"}}},
    {"a=b (the equals sign is in neither table)",
     {{12, {0x61, 0x3D, 0x62}},
      {19, {0x61, 0x3D, 0x62}},
      {20, {0x61, 0x3D, 0x62}},
      {22, {0x61, 0x3D, 0x62}},
      {26, {0x61, 0x3D, 0x62}},
      {28, {0, 0, 0, 0x61, 0, 0, 0, 0x3D, 0, 0, 0, 0x62}},
      {30, {0, 0x61, 0, 0x3D, 0, 0x62}}},
     {{12, "Y--YYYC"},
      {19, "CC-YYYC"},
      {20, "Y--CYYY"},
      {22, "C--YYYY"},
      {26, "--C----"},
      {28, "Y--YYCY"},
      {30, "Y--YCYY"}}},
    // A Printable value read as UTF-8 is copied, so the Latin-1 octet stays a single octet.
    {"e acute (U+00E9)",
     {{12, {0xC3, 0xA9}},
      {19, {0xE9}},
      {20, {0xC2, 0x65}},
      {22, {0xE9}},
      {26, {0xE9}},
      {28, {0, 0, 0, 0xE9}},
      {30, {0, 0xE9}}},
     {{12, "Y--YYYC"},
      {19, "CC-YYYC"},
      {20, "Y--CYYY"},
      {22, "C--YYYY"},
      {26, "--C----"},
      {28, "Y--YYCY"},
      {30, "Y--YCYY"}}},
    // T.61 has a form of L with stroke (E8), but every route into T.61 goes through IA5.
    {"L with stroke (U+0141)",
     {{12, {0xC5, 0x81}}, {20, {0xE8}}, {28, {0, 0, 0x01, 0x41}}, {30, {0x01, 0x41}}},
     {{12, "----YYC"}, {20, "---CYYY"}, {28, "----YCY"}, {30, "----CYY"}}},
    // UTF-8 read as Universal goes through BMP: a character above U+FFFF has no form there.
    {"grinning face (U+1F600)",
     {{12, {0xF0, 0x9F, 0x98, 0x80}}, {28, {0, 0x01, 0xF6, 0x00}}},
     {{12, "------C"}, {28, "-----CY"}}},
};

// The outcome letter `cell` as an expected status and octets.
void expect_cell(char cell, const Sample& sample, unsigned int stored, unsigned int target,
                 unsigned int status, const Bytes& got) {
    if (cell == '-') {
        EXPECT_EQ(status, 0x106521ABu);
        EXPECT_EQ(got, Bytes{}) << "a failed getter leaves the caller's buffer as it was";
        return;
    }
    ASSERT_EQ(status, 0u);
    const Bytes& expected = cell == 'C' ? sample.forms.at(stored) : sample.forms.at(target);
    EXPECT_EQ(got, expected);
}

// Reads `value` through every getter and compares with the sample's row for `stored`.
void expect_row(const kelm_asn_charstring& value, const Sample& sample, unsigned int stored) {
    const std::string row = sample.outcomes.at(stored);
    ASSERT_EQ(row.size(), getters().size());
    for (size_t g = 0; g < getters().size(); ++g) {
        const charstring_test::Getter& getter = getters()[g];
        SCOPED_TRACE(getter.name);
        kelm_buffer_t out;
        const unsigned char prefix[] = {'<', '>'};
        out.append(prefix, 2);
        const unsigned int status = (value.*getter.read)(out);
        const Bytes all = written(out);
        ASSERT_GE(all.size(), 2u);
        EXPECT_EQ(all[0], '<') << "a getter appends to what the buffer holds";
        EXPECT_EQ(all[1], '>');
        expect_cell(row[g], sample, stored, getter.codeset, status,
                    Bytes(all.begin() + 2, all.end()));
    }
}

} // namespace

TEST(ReadMatrix, EveryCellOfEveryStoredCodeSetForValuesSetThroughTheRawSetters) {
    for (const Sample& sample : kSamples) {
        for (unsigned int stored : kStoredOrder) {
            if (sample.outcomes.count(stored) == 0)
                continue;
            SCOPED_TRACE(::testing::Message() << sample.name << ", stored as " << stored);
            kelm_asn_directoryString value;
            ASSERT_EQ(store_raw(value, stored, sample.forms.at(stored)), 0u);
            ASSERT_EQ(value.get_codeset(), stored);
            expect_row(value, sample, stored);
        }
    }
}

TEST(ReadMatrix, EveryCellOfEveryStoredCodeSetForDecodedValues) {
    for (const Sample& sample : kSamples) {
        for (unsigned int stored : kStoredOrder) {
            if (sample.outcomes.count(stored) == 0)
                continue;
            SCOPED_TRACE(::testing::Message() << sample.name << ", decoded with tag " << stored);
            // A directory string does not decode tag 26; a VisibleString does.
            kelm_asn_directoryString directory;
            kelm_asn_visibleString visible;
            kelm_asn_charstring& value =
                stored == 26 ? static_cast<kelm_asn_charstring&>(visible) : directory;
            const Bytes input =
                kelm_test::tlv(static_cast<unsigned char>(stored), sample.forms.at(stored));
            ASSERT_EQ(kelm_test::decode(value, input), 0u);
            ASSERT_EQ(value.get_codeset(), stored);
            expect_row(value, sample, stored);
        }
    }
}

TEST(ReadMatrix, UTF8ReadAsPrintableIsCheckedOctetByOctetNotDecoded) {
    // C1 81 is an over-long form of "A": decoded it is printable, as octets it is not.
    kelm_asn_UTF8String value;
    ASSERT_EQ(store_raw(value, 12, {0xC1, 0x81}), 0u);
    kelm_buffer_t ia5, printable, visible;
    ASSERT_EQ(value.get_value_IA5(ia5), 0u);
    EXPECT_EQ(written(ia5), Bytes{0x41});
    EXPECT_EQ(value.get_value_printable(printable), 0x106521ABu);
    EXPECT_EQ(value.get_value_visible(visible), 0x106521ABu);
}

TEST(ReadMatrix, AVisibleStringValueReadWithGetValueIA5Fails) {
    kelm_asn_visibleString value;
    char text[] = "plain";
    ASSERT_EQ(value.set_value_visible(text), 0u);
    kelm_buffer_t out;
    EXPECT_EQ(value.get_value_IA5(out), 0x106521ABu);
    EXPECT_EQ(out.used(), 0u);
    kelm_buffer_t same;
    ASSERT_EQ(value.get_value_visible(same), 0u);
    EXPECT_EQ(written(same), (Bytes{'p', 'l', 'a', 'i', 'n'}));
}

TEST(ReadMatrix, EveryGetterOfAnAbsentValueWithoutDefaultFails) {
    kelm_asn_directoryString value;
    for (const charstring_test::Getter& getter : getters()) {
        SCOPED_TRACE(getter.name);
        kelm_buffer_t out;
        EXPECT_EQ((value.*getter.read)(out), 0x106521A0u);
        EXPECT_EQ(out.used(), 0u);
    }
    kelm_buffer_t local;
    EXPECT_EQ(value.get_value_C(local, '?'), 0x106521A0u);
}
