// The PrintableString and VisibleString converters IA52P and IA52V, and the two exported tables
// between IA5 and the local code set.
#include <set>

#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

// The 73 characters both tables hold: space, apostrophe, parentheses, plus, comma, hyphen, full
// stop, solidus, digits, colon, question mark and the letters; no equals sign.
std::set<unsigned> printable_characters() {
    std::set<unsigned> chars = {0x20, 0x27, 0x28, 0x29, 0x3F};
    for (unsigned c = 0x2B; c <= 0x2F; ++c)
        chars.insert(c);
    for (unsigned c = 0x30; c <= 0x3A; ++c)
        chars.insert(c);
    for (unsigned c = 0x41; c <= 0x5A; ++c)
        chars.insert(c);
    for (unsigned c = 0x61; c <= 0x7A; ++c)
        chars.insert(c);
    return chars;
}

const NamedConverter kTableCheckers[] = {{"IA52P", IA52P}, {"IA52V", IA52V}};

TEST(PrintableAndVisible, BothTablesHoldTheSame73Characters) {
    const std::set<unsigned> chars = printable_characters();
    ASSERT_EQ(chars.size(), 73u);
    for (const NamedConverter& checker : kTableCheckers) {
        for (unsigned b = 0; b <= 0xFF; ++b) {
            SCOPED_TRACE(::testing::Message() << checker.name << " of 0x" << std::hex << b);
            const unsigned char c = static_cast<unsigned char>(b);
            const Outcome expected = chars.count(b) ? succeeds_with({c}) : fails_leaving({});
            EXPECT_EQ(convert(checker.convert, {c}), expected);
        }
    }
}

TEST(PrintableAndVisible, StatedEdgeCases) {
    for (const NamedConverter& checker : kTableCheckers) {
        SCOPED_TRACE(checker.name);
        EXPECT_EQ(convert(checker.convert, hex("61 3D 62")), fails_leaving({}));
        EXPECT_EQ(convert(checker.convert, hex("41 62 20 31")), succeeds_with(hex("41 62 20 31")));
        EXPECT_EQ(convert(checker.convert, hex("41 40")), fails_leaving({})); // commercial at
        EXPECT_EQ(convert(checker.convert, hex("21")), fails_leaving({}));    // not even Visible
    }
}

TEST(PrintableAndVisible, SuccessReplacesTheDestinationsContent) {
    for (const NamedConverter& checker : kTableCheckers) {
        SCOPED_TRACE(checker.name);
        EXPECT_EQ(convert(checker.convert, hex("41 62 20 31"), hex("50 52 45")),
                  succeeds_with(hex("41 62 20 31")));
    }
}

TEST(PrintableAndVisible, FailureDoesNotTouchTheDestination) {
    for (const NamedConverter& checker : kTableCheckers) {
        SCOPED_TRACE(checker.name);
        Octets text = hex("41 42 3D");
        kelm_r_buffer_t src(text.data(), static_cast<unsigned int>(text.size()));
        kelm_buffer_t dst;
        dst.append(reinterpret_cast<const unsigned char*>("PRE"), 3);
        const unsigned char* storage = dst.storage;
        const unsigned int capacity = dst.capacity;
        EXPECT_EQ(checker.convert(src, dst), KELM_ASN_UNREPRESENTABLE);
        EXPECT_EQ(written(dst), hex("50 52 45"));
        EXPECT_EQ(dst.storage, storage);
        EXPECT_EQ(dst.capacity, capacity);
    }
}

TEST(PrintableAndVisible, LongTextIsCopiedWhole) {
    Octets text;
    const std::set<unsigned> chars = printable_characters();
    while (text.size() < 5000)
        for (unsigned c : chars)
            text.push_back(static_cast<unsigned char>(c));
    for (const NamedConverter& checker : kTableCheckers) {
        SCOPED_TRACE(checker.name);
        EXPECT_EQ(convert(checker.convert, text, hex("50")), succeeds_with(text));
        Octets spoiled = text;
        spoiled.back() = '=';
        EXPECT_EQ(convert(checker.convert, spoiled, hex("50")), fails_leaving(hex("50")));
    }
}

// ---- Local code-set tables ----------------------------------------------------------------------

TEST(LocalCodeSetTables, Ia5ToLocalMapsTheLowerHalfToItselfAndNothingElse) {
    for (unsigned i = 0; i < 256; ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(IA52Local_table[i], i < 128 ? i : 0xFFFFFFFFu);
    }
}

TEST(LocalCodeSetTables, LocalToIa5IsIndexedByTheSignedOctetPlus128) {
    for (unsigned octet = 0; octet < 256; ++octet) {
        SCOPED_TRACE(::testing::Message() << "local octet 0x" << std::hex << octet);
        const int index = static_cast<signed char>(octet) + 128;
        EXPECT_EQ(Local2IA5_table[index], octet < 0x80 ? octet : 0xFFFFFFFFu);
    }
    EXPECT_EQ(Local2IA5_table[0], 0xFFFFFFFFu); // local octet 0x80
    EXPECT_EQ(Local2IA5_table[128], 0u);        // local octet 0x00
    EXPECT_EQ(Local2IA5_table[255], 0x7Fu);     // local octet 0x7F
}

TEST(LocalCodeSetTables, BothTablesCanBeRewrittenByAPort) {
    const unsigned int saved_ia5 = IA52Local_table[0xE9];
    const unsigned int saved_local = Local2IA5_table[0x69];
    IA52Local_table[0xE9] = 0x82;
    Local2IA5_table[0x69] = 0xE9;
    EXPECT_EQ(IA52Local_table[0xE9], 0x82u);
    EXPECT_EQ(Local2IA5_table[0x69], 0xE9u);
    IA52Local_table[0xE9] = saved_ia5;
    Local2IA5_table[0x69] = saved_local;
}

} // namespace
