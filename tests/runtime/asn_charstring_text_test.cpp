// Character strings set from text: IA5 with conversion, the local code set in both directions,
// the in-place conversions, and the directory string's preferred code set and normalisation.
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "charstring_test_util.h"

using charstring_test::Bytes;
using charstring_test::c_text;
using charstring_test::store_raw;
using charstring_test::stored;
using charstring_test::string_class;
using charstring_test::StringClass;
using charstring_test::written;
using kelm_test::encode;

namespace {

// One text given to a class, and what the class must hold afterwards.
struct TextRow {
    StringClass cls;
    std::string text;
    unsigned int status;
    unsigned int codeset; // when status is 0
    Bytes octets;         // when status is 0
};

// Sets `row.text` through `set` on a value that already holds "old" in its own code set, and
// checks the outcome; a failure must leave "old" and the code set untouched.
void expect_text_row(const TextRow& row,
                     const std::function<unsigned int(kelm_asn_charstring&, char*)>& set) {
    SCOPED_TRACE(::testing::Message() << row.cls.name << " given \"" << row.text << "\"");
    auto value = row.cls.make();
    const unsigned int before = value->get_codeset();
    const Bytes old = before == 28   ? Bytes{0, 0, 0, 'o'}
                      : before == 30 ? Bytes{0, 'o'}
                                     : Bytes{'o', 'l', 'd'};
    if (before != 0) {
        ASSERT_EQ(store_raw(*value, before, old), 0u);
    }
    std::vector<char> text = c_text(row.text);
    EXPECT_EQ(set(*value, text.data()), row.status);
    if (row.status != 0) {
        EXPECT_EQ(value->get_codeset(), before);
        EXPECT_EQ(value->get_tag(), before == 0 ? 4u : before);
        if (before != 0) {
            EXPECT_EQ(stored(*value), old);
        }
        return;
    }
    EXPECT_EQ(value->get_codeset(), row.codeset);
    EXPECT_EQ(value->get_tag(), row.codeset);
    EXPECT_EQ(stored(*value), row.octets);
}

const StringClass kDirectory = string_class<kelm_asn_directoryString>("directoryString");
const StringClass kIA5 = string_class<kelm_asn_ia5String>("ia5String");
const StringClass kPrintable = string_class<kelm_asn_printableString>("printableString");
const StringClass kVisible = string_class<kelm_asn_visibleString>("visibleString");
const StringClass kTeletex = string_class<kelm_asn_teletexString>("teletexString");
const StringClass kBMP = string_class<kelm_asn_bmpString>("bmpString");
const StringClass kUniversal = string_class<kelm_asn_universalString>("universalString");
const StringClass kUTF8 = string_class<kelm_asn_UTF8String>("UTF8String");
const StringClass kBare = string_class<kelm_asn_charstring>("charstring");

// Replaces one entry of a local code-set table for the life of the object.
class TableEntry {
  public:
    TableEntry(unsigned int (&table)[256], unsigned int index, unsigned int value)
        : table_(table), index_(index), saved_(table[index]) {
        table_[index_] = value;
    }
    ~TableEntry() { table_[index_] = saved_; }
    TableEntry(const TableEntry&) = delete;
    TableEntry& operator=(const TableEntry&) = delete;

  private:
    unsigned int (&table_)[256];
    unsigned int index_;
    unsigned int saved_;
};

// A directory string holding `octets` in `codeset`.
std::unique_ptr<kelm_asn_directoryString> directory_holding(unsigned int codeset, Bytes octets) {
    std::unique_ptr<kelm_asn_directoryString> value(new kelm_asn_directoryString);
    EXPECT_EQ(store_raw(*value, codeset, octets), 0u);
    return value;
}

} // namespace

// --- set_value_IA5 with conversion -----------------------------------------------------------

TEST(SetValueIA5, WithConversionTakesTheFirstCodeSetThatHoldsTheText) {
    const TextRow rows[] = {
        {kDirectory, "Ab 1", 0, 19, {'A', 'b', ' ', '1'}},
        {kDirectory, "a=b@c", 0, 20, {'a', '=', 'b', '@', 'c'}},
        {kDirectory, "caf\xE9", 0, 20, {'c', 'a', 'f', 0xC2, 0x65}},
        {kDirectory, "a#b", 0, 20, {'a', 0xA6, 'b'}},
        // The copyright sign has no T.61 form: UTF-8 is the next code set the class prefers.
        {kDirectory, "\xA9 2024", 0, 12, {0xC2, 0xA9, ' ', '2', '0', '2', '4'}},
        {kIA5, "caf\xE9", 0, 22, {'c', 'a', 'f', 0xE9}},
        {kUTF8, "caf\xE9", 0, 12, {'c', 'a', 'f', 0xC3, 0xA9}},
        {kBMP, "A\xE9", 0, 30, {0, 'A', 0, 0xE9}},
        {kUniversal, "A", 0, 28, {0, 0, 0, 'A'}},
        {kVisible, "abc", 0, 26, {'a', 'b', 'c'}},
        {kVisible, "a=b", 0x106521AB, 0, {}},
        {kPrintable, "a=b", 0x106521AB, 0, {}},
        {kTeletex, "\xA9", 0x106521AB, 0, {}},
        {kBare, "a", 0x106521AB, 0, {}},
        {kDirectory, "", 0, 19, {}},
    };
    for (const TextRow& row : rows)
        expect_text_row(row, [](kelm_asn_charstring& v, char* t) { return v.set_value_IA5(t, 1); });
}

TEST(SetValueIA5, WithoutConversionStoresTheOctetsOnlyWhereIA5IsAccepted) {
    const TextRow rows[] = {
        {kIA5, "caf\xE9", 0, 22, {'c', 'a', 'f', 0xE9}},
        {kDirectory, "a=b\x01", 0, 22, {'a', '=', 'b', 0x01}},
        {kPrintable, "abc", 0x106521AC, 0, {}},
        {kUTF8, "abc", 0x106521AC, 0, {}},
    };
    for (const TextRow& row : rows)
        expect_text_row(row, [](kelm_asn_charstring& v, char* t) { return v.set_value_IA5(t, 0); });
}

// --- set_value_C -----------------------------------------------------------------------------

TEST(SetValueC, TakesTheNarrowestCodeSetTheClassPrefersAndThatHoldsTheText) {
    const TextRow rows[] = {
        {kDirectory, "Abc 123", 0, 19, {'A', 'b', 'c', ' ', '1', '2', '3'}},
        {kDirectory, "cn=admin", 0, 20, {'c', 'n', '=', 'a', 'd', 'm', 'i', 'n'}},
        {kDirectory,
         "user@example",
         0,
         20,
         {'u', 's', 'e', 'r', '@', 'e', 'x', 'a', 'm', 'p', 'l', 'e'}},
        // A control octet has no T.61 form; UTF-8 holds anything.
        {kDirectory,
         "a\x01"
         "b",
         0,
         12,
         {'a', 0x01, 'b'}},
        {kDirectory, "", 0, 19, {}},
        {kDirectory, "caf\xE9", 0x106521AB, 0, {}},
        {kDirectory, "\x80", 0x106521AB, 0, {}},
        {kIA5, "a\x01", 0, 22, {'a', 0x01}},
        {kTeletex, "a\x01", 0x106521AB, 0, {}},
        {kTeletex, "$5", 0, 20, {0xA4, '5'}},
        {kUniversal, "AB", 0, 28, {0, 0, 0, 'A', 0, 0, 0, 'B'}},
        {kVisible, "A B", 0, 26, {'A', ' ', 'B'}},
        {kUTF8, "x=y", 0, 12, {'x', '=', 'y'}},
        {kBMP, "hi", 0, 30, {0, 'h', 0, 'i'}},
        {kPrintable, "x=y", 0x106521AB, 0, {}},
        {kBare, "a", 0x106521AB, 0, {}},
    };
    for (const TextRow& row : rows)
        expect_text_row(row, [](kelm_asn_charstring& v, char* t) { return v.set_value_C(t); });
}

TEST(SetValueC, MapsEachLocalOctetThroughTheWritableTable) {
    // Local octet 0xE9 sits at index -23 + 128 = 105 of Local2IA5_table.
    TableEntry latin_e_acute(Local2IA5_table, 105, 0xE9);
    TableEntry x_as_y(Local2IA5_table, 'x' + 128, 'y');
    kelm_asn_directoryString value;
    char text[] = "caf\xE9x";
    ASSERT_EQ(value.set_value_C(text), 0u);
    EXPECT_EQ(value.get_codeset(), 20u);
    EXPECT_EQ(stored(value), (Bytes{'c', 'a', 'f', 0xC2, 0x65, 'y'}));
}

// --- get_value_C -----------------------------------------------------------------------------

TEST(GetValueC, ATeletexAccentedLetterBecomesTheSubstitute) {
    auto value = directory_holding(20, {'c', 'a', 'f', 0xC2, 0x65});
    kelm_buffer_t out;
    out.append("> ");
    ASSERT_EQ(value->get_value_C(out, 0x3F), 0u);
    EXPECT_EQ(kelm_test::text(out), "> caf?");
}

TEST(GetValueC, WithoutASubstituteAnOctetWithoutLocalFormEmptiesTheBuffer) {
    auto value = directory_holding(20, {'c', 'a', 'f', 0xC2, 0x65});
    kelm_buffer_t out;
    out.append("kept before");
    EXPECT_EQ(value->get_value_C(out, 0), 0x106521ABu);
    EXPECT_EQ(out.used(), 0u);
}

TEST(GetValueC, AppendsTextThatHasALocalForm) {
    auto value = directory_holding(30, {0, 'a', 0, '=', 0, 'b'});
    kelm_buffer_t out;
    out.append("[");
    ASSERT_EQ(value->get_value_C(out, 0), 0u);
    EXPECT_EQ(kelm_test::text(out), "[a=b");
}

TEST(GetValueC, AValueWithoutIA5FormFailsAndLeavesTheBuffer) {
    struct Row {
        unsigned int codeset;
        Bytes octets;
    } rows[] = {{26, {'a', 'b'}}, {30, {0x01, 0x41}}, {12, {0xE2, 0x82, 0xAC}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "code set " << row.codeset);
        auto value = directory_holding(row.codeset, row.octets);
        kelm_buffer_t out;
        out.append("kept");
        EXPECT_EQ(value->get_value_C(out, '?'), 0x106521ABu);
        EXPECT_EQ(kelm_test::text(out), "kept");
    }
}

TEST(GetValueC, MapsEachIA5OctetThroughTheWritableTable) {
    TableEntry e_acute_as_e(IA52Local_table, 0xE9, 'e');
    auto value = directory_holding(20, {'c', 'a', 'f', 0xC2, 0x65});
    kelm_buffer_t out;
    ASSERT_EQ(value->get_value_C(out, 0), 0u);
    EXPECT_EQ(kelm_test::text(out), "cafe");
}

// --- in-place conversions --------------------------------------------------------------------

TEST(Convert, EachConversionStoresTheValueInItsCodeSetAndRetags) {
    using Convert = unsigned int (kelm_asn_charstring::*)();
    struct Row {
        const char* name;
        Convert convert;
        unsigned int status;
        unsigned int codeset;
        Bytes octets;
    } rows[] = {
        {"convert2BMP", &kelm_asn_charstring::convert2BMP, 0, 30, {0, 'c', 0, 'a', 0, 0xE9}},
        {"convert2Univ",
         &kelm_asn_charstring::convert2Univ,
         0,
         28,
         {0, 0, 0, 'c', 0, 0, 0, 'a', 0, 0, 0, 0xE9}},
        {"convert2UTF8", &kelm_asn_charstring::convert2UTF8, 0, 12, {'c', 'a', 0xC3, 0xA9}},
        {"convert2IA5", &kelm_asn_charstring::convert2IA5, 0, 22, {'c', 'a', 0xE9}},
        {"convert2T61", &kelm_asn_charstring::convert2T61, 0, 20, {'c', 'a', 0xC2, 0x65}},
        {"convert2printable",
         &kelm_asn_charstring::convert2printable,
         0x106521AB,
         20,
         {'c', 'a', 0xC2, 0x65}},
        {"convert2visible",
         &kelm_asn_charstring::convert2visible,
         0x106521AB,
         20,
         {'c', 'a', 0xC2, 0x65}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto value = directory_holding(20, {'c', 'a', 0xC2, 0x65});
        EXPECT_EQ(((*value).*row.convert)(), row.status);
        EXPECT_EQ(value->get_codeset(), row.codeset);
        EXPECT_EQ(value->get_tag(), row.codeset);
        EXPECT_EQ(stored(*value), row.octets);
        Bytes expected = kelm_test::tlv(static_cast<unsigned char>(row.codeset), row.octets);
        EXPECT_EQ(encode(*value), expected);
    }
}

TEST(Convert, AValueAlreadyInTheCodeSetIsLeftAlone) {
    auto value = directory_holding(19, {'a', '=', 'b'});
    EXPECT_EQ(value->convert2printable(), 0u) << "not re-checked against the table";
    EXPECT_EQ(stored(*value), (Bytes{'a', '=', 'b'}));
}

TEST(Convert, AClassRefusesACodeSetItDoesNotAccept) {
    kelm_asn_ia5String value;
    char text[] = "abc";
    ASSERT_EQ(value.set_value_IA5(text, 0), 0u);
    EXPECT_EQ(value.convert2BMP(), 0x106521ACu);
    EXPECT_EQ(value.convert2IA5(), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x16, 0x03, 'a', 'b', 'c'}));
}

TEST(Convert, AnAbsentValueIsNeverConverted) {
    kelm_asn_directoryString value;
    EXPECT_EQ(value.convert2BMP(), 0x106521A0u);
    auto* fallback = new kelm_asn_directoryString;
    char text[] = "dflt";
    ASSERT_EQ(fallback->set_value_C(text), 0u);
    value.set_default_value(fallback);
    EXPECT_EQ(value.convert2BMP(), 0u);
    EXPECT_EQ(value.is_present(), 0) << "the default is not copied into the value";
    EXPECT_EQ(value.get_codeset(), 19u);
}

// --- the directory string's preferred code set and normalize --------------------------------

TEST(DirectoryString, SetPreferredCodesetKeepsAPrintableValueAndChoosesNothing) {
    auto value = directory_holding(12, {'a', 'b', 'c'});
    EXPECT_EQ(value->set_preferred_codeset(30), 0u);
    EXPECT_EQ(value->get_codeset(), 19u) << "converted to PrintableString";
    char next[] = "xyz";
    ASSERT_EQ(value->set_value_C(next), 0u);
    EXPECT_EQ(value->get_codeset(), 19u) << "no preferred code set was chosen";
}

TEST(DirectoryString, SetPreferredCodesetChoosesTheCodeSetOfAValueThatIsNotPrintable) {
    auto value = directory_holding(22, {'c', 'a', 'f', 0xE9});
    EXPECT_EQ(value->set_preferred_codeset(30), 0u);
    EXPECT_EQ(value->get_codeset(), 30u);
    EXPECT_EQ(stored(*value), (Bytes{0, 'c', 0, 'a', 0, 'f', 0, 0xE9}));
    char next[] = "xy";
    ASSERT_EQ(value->set_value_C(next), 0u);
    EXPECT_EQ(value->get_codeset(), 30u) << "the preferred code set is tried first";
    EXPECT_EQ(stored(*value), (Bytes{0, 'x', 0, 'y'}));
    char ia5[] = "q=1";
    ASSERT_EQ(value->set_value_IA5(ia5, 1), 0u);
    EXPECT_EQ(value->get_codeset(), 30u);
}

TEST(DirectoryString, SetPreferredCodesetOfAnotherNumberReturnsThePrintableFailure) {
    for (unsigned int number : {19u, 22u, 26u, 4u}) {
        SCOPED_TRACE(::testing::Message() << "code set " << number);
        auto value = directory_holding(22, {'a', '=', 'b'});
        EXPECT_EQ(value->set_preferred_codeset(number), 0x106521ABu);
        EXPECT_EQ(value->get_codeset(), 22u);
        char next[] = "x=y";
        ASSERT_EQ(value->set_value_C(next), 0u);
        EXPECT_EQ(value->get_codeset(), 20u) << "no preferred code set was chosen";
    }
}

TEST(DirectoryString, SetPreferredCodesetReturnsAFailedConversion) {
    auto value = directory_holding(30, {0x01, 0x41});
    EXPECT_EQ(value->set_preferred_codeset(20), 0x106521ABu);
    EXPECT_EQ(value->get_codeset(), 30u);
    EXPECT_EQ(stored(*value), (Bytes{0x01, 0x41}));
    kelm_asn_directoryString absent;
    EXPECT_EQ(absent.set_preferred_codeset(12), 0x106521A0u);
}

TEST(DirectoryString, NormalizeTakesTheFirstPreferredCodeSetThatHoldsTheValue) {
    struct Row {
        unsigned int codeset;
        Bytes octets;
        unsigned int normal_codeset;
        Bytes normal_octets;
    } rows[] = {
        {12, {'a', 'b', 'c'}, 19, {'a', 'b', 'c'}},
        {30, {0, 'a', 0, 0xE9}, 20, {'a', 0xC2, 0x65}},
        {22, {'a', 0x01}, 12, {'a', 0x01}},
        {28, {0, 0x01, 0xF6, 0x00}, 12, {0xF0, 0x9F, 0x98, 0x80}},
        {20, {'x', '=', 'y'}, 20, {'x', '=', 'y'}},
        // No preferred code set holds a VisibleString value: it stays as it is.
        {26, {'a', 'b', 'c'}, 26, {'a', 'b', 'c'}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "stored as " << row.codeset);
        auto value = directory_holding(row.codeset, row.octets);
        EXPECT_EQ(value->normalize(), 0);
        EXPECT_EQ(value->get_codeset(), row.normal_codeset);
        EXPECT_EQ(stored(*value), row.normal_octets);
    }
}

TEST(DirectoryString, NormalizeConvertsToAChosenPreferredCodeSet) {
    auto value = directory_holding(20, {0xC2, 0x65});
    ASSERT_EQ(value->set_preferred_codeset(28), 0u);
    char text[] = "abc";
    ASSERT_EQ(value->set_value_printable(text), 0u);
    EXPECT_EQ(value->normalize(), 0);
    EXPECT_EQ(value->get_codeset(), 28u);
    EXPECT_EQ(stored(*value), (Bytes{0, 0, 0, 'a', 0, 0, 0, 'b', 0, 0, 0, 'c'}));
    ASSERT_EQ(store_raw(*value, 26, {'a', 'b', 'c'}), 0u);
    EXPECT_EQ(value->normalize(), 0) << "a value without a form there keeps its own";
    EXPECT_EQ(value->get_codeset(), 26u);
    EXPECT_EQ(stored(*value), (Bytes{'a', 'b', 'c'}));
}

TEST(DirectoryString, NormalizeOfAnAbsentValue) {
    kelm_asn_directoryString value;
    EXPECT_EQ(value.normalize(), static_cast<int>(0x106521A0u));
    const unsigned char octets[] = {'d'};
    value.set_default_value(octets, 1);
    EXPECT_EQ(value.normalize(), 0);
    EXPECT_EQ(value.is_present(), 0);
}
