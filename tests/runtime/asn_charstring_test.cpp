// The character-string classes: their code sets, tags and names, the raw setters and the code
// sets each class refuses, encoding after a setter, and decoding (the directory string as a
// CHOICE of tags).
#include <cstdint>
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "charstring_test_util.h"

using charstring_test::Bytes;
using charstring_test::c_text;
using charstring_test::cursor_over;
using charstring_test::store_raw;
using charstring_test::stored;
using charstring_test::string_class;
using charstring_test::StringClass;
using charstring_test::written;
using kelm_test::decode;
using kelm_test::encode;
using kelm_test::tlv;

namespace {

const unsigned int kCodeSets[] = {12, 19, 20, 22, 26, 28, 30};

// Each class with what it must report when new.
struct ClassRow {
    StringClass cls;
    unsigned int tag;
    unsigned int codeset;
    const char* type_name;
    int polymorphic;
    std::set<unsigned int> accepted;
    std::set<unsigned int> preferred;
};

const std::vector<ClassRow>& class_rows() {
    static const std::vector<ClassRow> rows = {
        {string_class<kelm_asn_charstring>("charstring"), 4, 0, "CHARSTRING", 1, {}, {}},
        {string_class<kelm_asn_ia5String>("ia5String"), 22, 22, "IA5String", 0, {22}, {22}},
        {string_class<kelm_asn_printableString>("printableString"),
         19,
         19,
         "PrintableString",
         1,
         {19},
         {19}},
        {string_class<kelm_asn_visibleString>("visibleString"),
         26,
         26,
         "VisibleString",
         1,
         {26},
         {26}},
        {string_class<kelm_asn_teletexString>("teletexString"),
         20,
         20,
         "TeletexString",
         0,
         {20},
         {20}},
        {string_class<kelm_asn_bmpString>("bmpString"), 30, 30, "BMPString", 0, {30}, {30}},
        {string_class<kelm_asn_universalString>("universalString"),
         28,
         28,
         "UniversalString",
         0,
         {28},
         {28}},
        {string_class<kelm_asn_UTF8String>("UTF8String"), 12, 12, "UTF8String", 0, {12}, {12}},
        {string_class<kelm_asn_directoryString>("directoryString"),
         19,
         19,
         "DirectoryString",
         1,
         {19, 26, 20, 28, 30, 22, 12},
         {19, 20, 28, 12}},
    };
    return rows;
}

// Every way of setting a value without conversion, with the code set it stores in.
struct RawSetter {
    const char* name;
    unsigned int codeset;
    std::function<unsigned int(kelm_asn_charstring&)> set;
};

char kSample[] = "Ab 1";

const std::vector<RawSetter>& raw_setters() {
    static unsigned short units[] = {0x0041, 0};
    static unsigned int characters[] = {0x41, 0};
    static const std::vector<RawSetter> all = {
        {"set_value_printable(char*)", 19, [](auto& v) { return v.set_value_printable(kSample); }},
        {"set_value_printable(r)", 19, [](auto& v) { return store_raw(v, 19, {'A'}); }},
        {"set_value_visible(char*)", 26, [](auto& v) { return v.set_value_visible(kSample); }},
        {"set_value_visible(r)", 26, [](auto& v) { return store_raw(v, 26, {'A'}); }},
        {"set_value_T61(char*)", 20, [](auto& v) { return v.set_value_T61(kSample); }},
        {"set_value_T61(r)", 20, [](auto& v) { return store_raw(v, 20, {'A'}); }},
        {"set_value_IA5(char*, 0)", 22, [](auto& v) { return v.set_value_IA5(kSample, 0); }},
        {"set_value_IA5(r, 0)", 22, [](auto& v) { return store_raw(v, 22, {'A'}); }},
        {"set_value_BMP(unsigned short*)", 30, [](auto& v) { return v.set_value_BMP(units); }},
        {"set_value_BMP(r)", 30,
         [](auto& v) {
             return store_raw(v, 30, {0, 'A'});
         }},
        {"set_value_Univ(unsigned int*)", 28, [](auto& v) { return v.set_value_Univ(characters); }},
        {"set_value_Univ(r)", 28,
         [](auto& v) {
             return store_raw(v, 28, {0, 0, 0, 'A'});
         }},
        {"set_value_UTF8(char*)", 12, [](auto& v) { return v.set_value_UTF8(kSample); }},
        {"set_value_UTF8(r)", 12, [](auto& v) { return store_raw(v, 12, {'A'}); }},
    };
    return all;
}

// SEQUENCE { name DirectoryString }
struct Named : kelm_asn_sequence {
    Named() { register_child(&name); }
    kelm_asn_directoryString name;
};

} // namespace

// --- the virtual operations ------------------------------------------------------------------

namespace {

using kelm_test::slot_of;

using C = kelm_asn_charstring;
using Text = unsigned int (C::*)(char*);
using Cursor = unsigned int (C::*)(kelm_r_buffer_t&);

} // namespace

TEST(CharString, TheAddedVirtualOperationsFollowTheObjectsLastSlotInOrder) {
    const struct Row {
        const char* name;
        std::uintptr_t slot;
        std::uintptr_t expected;
    } rows[] = {
        // Slots of the object overridden here, and its last slot.
        {"check_type", slot_of(&kelm_asn_directoryString::check_type), 6},
        {"is_polymorphic", slot_of(&C::is_polymorphic), 17},
        {"set_tag", slot_of(&C::set_tag), 20},
        {"normalize", slot_of(&kelm_asn_directoryString::normalize), 23},
        {"display_state_flags", slot_of(&C::display_state_flags), 41},
        {"check_accepted_codeset", slot_of(&C::check_accepted_codeset), 42},
        {"check_preferred_codeset", slot_of(&C::check_preferred_codeset), 43},
        {"set_codeset", slot_of(&C::set_codeset), 44},
        {"get_value_C", slot_of(&C::get_value_C), 45},
        {"set_value_C", slot_of(&C::set_value_C), 46},
        {"get_value_IA5", slot_of(&C::get_value_IA5), 47},
        {"set_value_IA5(char*, int)",
         slot_of(static_cast<unsigned int (C::*)(char*, int)>(&C::set_value_IA5)), 48},
        {"set_value_IA5(kelm_r_buffer_t&, int)",
         slot_of(static_cast<unsigned int (C::*)(kelm_r_buffer_t&, int)>(&C::set_value_IA5)), 49},
        {"get_value_printable", slot_of(&C::get_value_printable), 50},
        {"set_value_printable(char*)", slot_of(static_cast<Text>(&C::set_value_printable)), 51},
        {"set_value_printable(r)", slot_of(static_cast<Cursor>(&C::set_value_printable)), 52},
        {"get_value_visible", slot_of(&C::get_value_visible), 53},
        {"set_value_visible(char*)", slot_of(static_cast<Text>(&C::set_value_visible)), 54},
        {"set_value_visible(r)", slot_of(static_cast<Cursor>(&C::set_value_visible)), 55},
        {"get_value_T61", slot_of(&C::get_value_T61), 56},
        {"set_value_T61(char*)", slot_of(static_cast<Text>(&C::set_value_T61)), 57},
        {"set_value_T61(r)", slot_of(static_cast<Cursor>(&C::set_value_T61)), 58},
        {"get_value_BMP", slot_of(&C::get_value_BMP), 59},
        {"set_value_BMP(unsigned short*)",
         slot_of(static_cast<unsigned int (C::*)(unsigned short*)>(&C::set_value_BMP)), 60},
        {"set_value_BMP(r)", slot_of(static_cast<Cursor>(&C::set_value_BMP)), 61},
        {"get_value_Univ", slot_of(&C::get_value_Univ), 62},
        {"set_value_Univ(unsigned int*)",
         slot_of(static_cast<unsigned int (C::*)(unsigned int*)>(&C::set_value_Univ)), 63},
        {"set_value_Univ(r)", slot_of(static_cast<Cursor>(&C::set_value_Univ)), 64},
        {"get_value_UTF8", slot_of(&C::get_value_UTF8), 65},
        {"set_value_UTF8(char*)", slot_of(static_cast<Text>(&C::set_value_UTF8)), 66},
        {"set_value_UTF8(r)", slot_of(static_cast<Cursor>(&C::set_value_UTF8)), 67},
        {"get_codeset", slot_of(&C::get_codeset), 68},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.slot, row.expected);
    }
}

// --- the classes -----------------------------------------------------------------------------

TEST(CharString, EachClassStartsWithItsTagCodeSetAndName) {
    for (const ClassRow& row : class_rows()) {
        SCOPED_TRACE(row.cls.name);
        auto value = row.cls.make();
        EXPECT_EQ(value->get_tag(), row.tag);
        EXPECT_EQ(value->get_class(), 0);
        EXPECT_EQ(value->get_codeset(), row.codeset);
        EXPECT_STREQ(value->get_type_name(), row.type_name);
        EXPECT_EQ(value->is_polymorphic(), row.polymorphic);
        EXPECT_EQ(value->is_present(), 0);
        for (unsigned int number = 0; number < 64; ++number) {
            SCOPED_TRACE(::testing::Message() << "code set " << number);
            EXPECT_EQ(value->check_accepted_codeset(number), row.accepted.count(number) ? 1 : 0);
            EXPECT_EQ(value->check_preferred_codeset(number), row.preferred.count(number) ? 1 : 0);
        }
    }
}

TEST(CharString, EachClassRefusesSettersOfCodeSetsItDoesNotAcceptAndKeepsItsValue) {
    for (const ClassRow& row : class_rows()) {
        for (const RawSetter& setter : raw_setters()) {
            SCOPED_TRACE(::testing::Message() << row.cls.name << ", " << setter.name);
            auto value = row.cls.make();
            // The class's own value first, where it has a code set.
            const bool has_own = row.codeset != 0;
            if (has_own) {
                ASSERT_EQ(store_raw(*value, row.codeset, {'o', 'w', 'n'}), 0u);
            }
            const unsigned int status = setter.set(*value);
            if (row.accepted.count(setter.codeset)) {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(value->get_codeset(), setter.codeset);
                EXPECT_EQ(value->get_tag(), setter.codeset);
                EXPECT_EQ(value->is_present(), 1);
                continue;
            }
            EXPECT_EQ(status, 0x106521ACu);
            EXPECT_EQ(value->get_codeset(), row.codeset);
            EXPECT_EQ(value->get_tag(), row.tag);
            EXPECT_EQ(value->is_present(), has_own ? 1 : 0);
            if (has_own) {
                EXPECT_EQ(stored(*value), (Bytes{'o', 'w', 'n'}));
            }
        }
    }
}

TEST(CharString, AnIA5StringRefusesSetValueUTF8AndKeepsItsValue) {
    kelm_asn_ia5String value;
    char text[] = "mail";
    char other[] = "other";
    ASSERT_EQ(value.set_value_IA5(text, 0), 0u);
    EXPECT_EQ(value.set_value_UTF8(other), 0x106521ACu);
    EXPECT_EQ(encode(value), (Bytes{0x16, 0x04, 'm', 'a', 'i', 'l'}));
}

TEST(CharString, SetCodesetRetagsWithoutConvertingAndRefusesOtherCodeSets) {
    kelm_asn_directoryString value;
    ASSERT_EQ(store_raw(value, 19, {'a', 'b'}), 0u);
    EXPECT_EQ(value.set_codeset(30), 0u);
    EXPECT_EQ(value.get_tag(), 30u);
    EXPECT_EQ(encode(value), (Bytes{0x1E, 0x02, 'a', 'b'})) << "the octets are not converted";
    EXPECT_EQ(value.set_codeset(4), 0x106521ACu);
    EXPECT_EQ(value.get_codeset(), 30u);
    EXPECT_EQ(value.get_tag(), 30u);
    EXPECT_EQ(value.set_tag(22), 0) << "set_tag is set_codeset";
    EXPECT_EQ(value.get_codeset(), 22u);
    EXPECT_EQ(value.set_tag(3), static_cast<int>(0x106521ACu));
    EXPECT_EQ(value.get_tag(), 22u);

    kelm_asn_ia5String ia5;
    EXPECT_EQ(ia5.set_tag(12), static_cast<int>(0x106521ACu));
    EXPECT_EQ(ia5.get_tag(), 22u);
}

TEST(CharString, SetValueBMPCopiesTheUnitsAsTheyLieInMemory) {
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the library targets x86-64");
    unsigned short units[] = {0x0041, 0x20AC, 0, 0x0042};
    kelm_asn_bmpString value;
    ASSERT_EQ(value.set_value_BMP(units), 0u);
    // Low octet first, as x86-64 keeps them: not the big-endian UCS-2 of the other setters.
    EXPECT_EQ(stored(value), (Bytes{0x41, 0x00, 0xAC, 0x20})) << "stops at the first zero unit";
    EXPECT_EQ(encode(value), (Bytes{0x1E, 0x04, 0x41, 0x00, 0xAC, 0x20}));
}

TEST(CharString, SetValueUnivFromAnArrayStoresAPresentEmptyValue) {
    unsigned int characters[] = {0x41, 0x42, 0x1F600, 0};
    kelm_asn_universalString value;
    ASSERT_EQ(store_raw(value, 28, {0, 0, 0, 'x'}), 0u);
    ASSERT_EQ(value.set_value_Univ(characters), 0u);
    EXPECT_EQ(value.is_present(), 1);
    EXPECT_EQ(value.get_codeset(), 28u);
    EXPECT_EQ(stored(value), Bytes{});
    EXPECT_EQ(encode(value), (Bytes{0x1C, 0x00}));
}

TEST(CharString, CharPointerSettersStopAtTheTerminatingZeroAndTakeNullAsEmpty) {
    kelm_asn_UTF8String value;
    char text[] = "ab\0cd";
    ASSERT_EQ(value.set_value_UTF8(text), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x0C, 0x02, 'a', 'b'}));
    ASSERT_EQ(value.set_value_UTF8(static_cast<char*>(nullptr)), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x0C, 0x00}));
}

TEST(CharString, RawSettersDoNotCheckTheCharacters) {
    kelm_asn_printableString value;
    char text[] = "a=b@c";
    ASSERT_EQ(value.set_value_printable(text), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x13, 0x05, 'a', '=', 'b', '@', 'c'}));
}

TEST(CharString, AValueCanBeSetFromACursorOverItsOwnOctets) {
    kelm_asn_UTF8String value;
    char text[] = "hello";
    ASSERT_EQ(value.set_value_UTF8(text), 0u);
    unsigned char* octets = nullptr;
    unsigned int length = 0;
    ASSERT_EQ(value.get_value(octets, length), 0u);
    kelm_r_buffer_t own(octets + 1, length - 1);
    ASSERT_EQ(value.set_value_UTF8(own), 0u);
    EXPECT_EQ(encode(value), (Bytes{0x0C, 0x04, 'e', 'l', 'l', 'o'}));
}

// --- encoding after a setter -----------------------------------------------------------------

TEST(CharString, EverySetterLeavesTheValueReadyToEncode) {
    struct Row {
        StringClass cls;
        std::function<unsigned int(kelm_asn_charstring&)> set;
        Bytes encoding;
    };
    char ascii[] = "Ab 1";
    char latin[] = "caf\xE9";
    const Row rows[] = {
        {string_class<kelm_asn_ia5String>("IA5 raw"),
         [&](auto& v) { return v.set_value_IA5(latin, 0); },
         {0x16, 0x04, 'c', 'a', 'f', 0xE9}},
        {string_class<kelm_asn_printableString>("Printable"),
         [&](auto& v) { return v.set_value_printable(ascii); },
         {0x13, 0x04, 'A', 'b', ' ', '1'}},
        {string_class<kelm_asn_visibleString>("Visible"),
         [&](auto& v) { return v.set_value_visible(ascii); },
         {0x1A, 0x04, 'A', 'b', ' ', '1'}},
        {string_class<kelm_asn_teletexString>("T.61 from IA5"),
         [&](auto& v) { return v.set_value_IA5(latin, 1); },
         {0x14, 0x05, 'c', 'a', 'f', 0xC2, 0x65}},
        {string_class<kelm_asn_bmpString>("BMP from local text"),
         [&](auto& v) { return v.set_value_C(ascii); },
         {0x1E, 0x08, 0, 'A', 0, 'b', 0, ' ', 0, '1'}},
        {string_class<kelm_asn_universalString>("Universal from IA5"),
         [&](auto& v) { return v.set_value_IA5(ascii, 1); },
         {0x1C, 0x10, 0, 0, 0, 'A', 0, 0, 0, 'b', 0, 0, 0, ' ', 0, 0, 0, '1'}},
        {string_class<kelm_asn_UTF8String>("UTF-8 from IA5"),
         [&](auto& v) { return v.set_value_IA5(latin, 1); },
         {0x0C, 0x05, 'c', 'a', 'f', 0xC3, 0xA9}},
        {string_class<kelm_asn_directoryString>("directory from local text"),
         [&](auto& v) { return v.set_value_C(ascii); },
         {0x13, 0x04, 'A', 'b', ' ', '1'}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.cls.name);
        auto value = row.cls.make();
        ASSERT_EQ(row.set(*value), 0u);
        EXPECT_EQ(value->is_encoding_valid(), 1) << "the cache holds the value as set";
        EXPECT_EQ(encode(*value), row.encoding);
    }
}

TEST(CharString, ASetterInvalidatesTheContainersEncoding) {
    Named record;
    char first[] = "Alice";
    char second[] = "a=b";
    ASSERT_EQ(record.name.set_value_C(first), 0u);
    EXPECT_EQ(encode(record), (Bytes{0x30, 0x07, 0x13, 0x05, 'A', 'l', 'i', 'c', 'e'}));
    ASSERT_EQ(record.name.set_value_C(second), 0u);
    EXPECT_EQ(record.is_encoding_valid(), 0);
    EXPECT_EQ(encode(record), (Bytes{0x30, 0x05, 0x14, 0x03, 'a', '=', 'b'}));
    ASSERT_EQ(record.name.set_codeset(12), 0u);
    EXPECT_EQ(encode(record), (Bytes{0x30, 0x05, 0x0C, 0x03, 'a', '=', 'b'}));
}

// --- decoding --------------------------------------------------------------------------------

TEST(DirectoryString, ChecksTheClassAndTheTagsOfItsAlternatives) {
    kelm_asn_directoryString value;
    for (unsigned int number = 0; number < 64; ++number) {
        SCOPED_TRACE(::testing::Message() << "tag " << number);
        const bool alternative = std::set<unsigned int>{19, 20, 22, 28, 30, 12}.count(number);
        EXPECT_EQ(value.check_type(number, 0), alternative ? 1 : 0);
        EXPECT_EQ(value.check_type(number, 2), 0);
    }
}

TEST(DirectoryString, DecodesEachAlternativeKeepingTheOctetsAndTakingTheTag) {
    const Bytes octets = {0x00, 0x41, 0x00, 0xE9};
    for (unsigned int number : {19u, 20u, 22u, 28u, 30u, 12u}) {
        SCOPED_TRACE(::testing::Message() << "tag " << number);
        kelm_asn_directoryString value;
        const Bytes input = tlv(static_cast<unsigned char>(number), octets);
        size_t consumed = 0;
        ASSERT_EQ(decode(value, input, &consumed), 0u);
        EXPECT_EQ(consumed, input.size());
        EXPECT_EQ(value.get_codeset(), number);
        EXPECT_EQ(value.get_tag(), number);
        EXPECT_EQ(stored(value), octets);
        EXPECT_EQ(encode(value), input) << "written back as it was read";
    }
}

TEST(DirectoryString, ATaggedBMPValueReadsBackAsUTF8) {
    kelm_asn_directoryString value;
    ASSERT_EQ(decode(value, {0x1E, 0x06, 0x00, 0x41, 0x00, 0xE9, 0x20, 0xAC}), 0u);
    EXPECT_EQ(value.get_codeset(), 30u);
    kelm_buffer_t out;
    ASSERT_EQ(value.get_value_UTF8(out), 0u);
    EXPECT_EQ(written(out), (Bytes{0x41, 0xC3, 0xA9, 0xE2, 0x82, 0xAC}));
}

TEST(DirectoryString, RefusesAVisibleStringTag) {
    kelm_asn_directoryString value;
    size_t consumed = 99;
    EXPECT_EQ(decode(value, {0x1A, 0x01, 'a'}, &consumed), 0x106521A4u);
    EXPECT_EQ(consumed, 0u);
    EXPECT_EQ(value.is_present(), 0);
}

TEST(DirectoryString, ListElementsEachKeepTheTagTheyWereReadWith) {
    kelm_asn_sequenceof<kelm_asn_directoryString> names(KELM_SECURITY_SECURE);
    Bytes body = tlv(0x13, {'a', 'b'});
    for (const Bytes& element : {tlv(0x0C, {0xC3, 0xA9}), tlv(0x1E, {0x00, 0x41})})
        body.insert(body.end(), element.begin(), element.end());
    const Bytes input = tlv(0x30, body);
    ASSERT_EQ(decode(names, input), 0u);
    ASSERT_EQ(names.get_child_count(), 3u);
    const unsigned int expected[] = {19, 12, 30};
    for (unsigned int i = 0; i < 3; ++i) {
        SCOPED_TRACE(::testing::Message() << "element " << i);
        EXPECT_EQ(names.element(i)->get_codeset(), expected[i]);
        EXPECT_EQ(names.element(i)->get_security(), KELM_SECURITY_SECURE);
    }
    EXPECT_EQ(encode(names), input);
}

TEST(CharString, EachSingleCodeSetClassDecodesOnlyItsOwnTag) {
    for (const ClassRow& row : class_rows()) {
        if (row.accepted.size() != 1)
            continue;
        for (unsigned int number : kCodeSets) {
            SCOPED_TRACE(::testing::Message() << row.cls.name << ", tag " << number);
            auto value = row.cls.make();
            const unsigned int status =
                decode(*value, tlv(static_cast<unsigned char>(number), {0, 0, 0, 'A'}));
            EXPECT_EQ(status, number == row.tag ? 0u : 0x106521A4u);
        }
    }
}

TEST(CharString, AConstructedEncodingIsConcatenated) {
    kelm_asn_UTF8String value;
    const Bytes input = {0x2C, 0x80, 0x0C, 0x01, 'a', 0x0C, 0x02, 0xC3, 0xA9, 0x00, 0x00};
    ASSERT_EQ(decode(value, input), 0u);
    kelm_buffer_t ia5;
    ASSERT_EQ(value.get_value_IA5(ia5), 0u);
    EXPECT_EQ(written(ia5), (Bytes{'a', 0xE9}));
    EXPECT_EQ(encode(value), (Bytes{0x0C, 0x03, 'a', 0xC3, 0xA9}));
}

TEST(CharString, ADecodedValueKeepsTheHiddenZeroAfterItsOctets) {
    kelm_asn_ia5String value;
    ASSERT_EQ(decode(value, {0x16, 0x03, 'x', 'y', 'z'}), 0u);
    unsigned char* octets = nullptr;
    unsigned int length = 0;
    ASSERT_EQ(value.get_value(octets, length), 0u);
    ASSERT_EQ(length, 3u);
    EXPECT_EQ(std::memcmp(octets, "xyz", 4), 0);
}

// --- defaults --------------------------------------------------------------------------------

TEST(CharString, GettersReadADefaultInItsOwnCodeSet) {
    kelm_asn_UTF8String value;
    auto* fallback = new kelm_asn_ia5String;
    char text[] = "d\xE9";
    ASSERT_EQ(fallback->set_value_IA5(text, 0), 0u);
    value.set_default_value(fallback);
    kelm_buffer_t utf8;
    ASSERT_EQ(value.get_value_UTF8(utf8), 0u);
    EXPECT_EQ(written(utf8), (Bytes{'d', 0xC3, 0xA9})) << "read as IA5, the default's code set";
    EXPECT_EQ(encode(value), Bytes{}) << "an absent value with a default is not written";
}

TEST(CharString, ADefaultGivenAsOctetsIsReadInTheCodeSetOfItsTag) {
    kelm_asn_UTF8String value;
    const unsigned char octets[] = {0xC3, 0xA9};
    ASSERT_EQ(value.set_default_value(octets, 2), 0u);
    kelm_buffer_t ia5;
    ASSERT_EQ(value.get_value_IA5(ia5), 0u);
    EXPECT_EQ(written(ia5), Bytes{0xE9});
    ASSERT_EQ(store_raw(value, 12, {0xC3, 0xA9}), 0u);
    EXPECT_EQ(encode(value), Bytes{}) << "a value equal to its default is left out";
}
