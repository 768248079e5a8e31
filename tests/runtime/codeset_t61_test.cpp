// Latin-1 to T.61 (IA52T61), T.61 to BMP (T612BMP) and T.61 to IA5 (T612IA5). The expected
// results are written out here, one row per character, from the behaviour the converters must
// have, irregularities included.
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

// ---- IA52T61 ------------------------------------------------------------------------------------

// Latin-1 octets whose T.61 form is not the octet itself.
const std::map<unsigned, const char*> kLatin1ToT61Changed = {
    {0x23, "A6"},    {0x24, "A4"},    {0xA4, "A8"},    {0xBA, "EB"},    {0xC0, "C1 41"},
    {0xC1, "C2 41"}, {0xC2, "C3 41"}, {0xC3, "C4 41"}, {0xC4, "C8 41"}, {0xC5, "CA 41"},
    {0xC6, "E1"},    {0xC7, "CB 43"}, {0xC8, "C1 45"}, {0xC9, "C2 45"}, {0xCA, "C3 45"},
    {0xCB, "C8 45"}, {0xCC, "C1 49"}, {0xCD, "C2 49"}, {0xCE, "C3 49"}, {0xCF, "C8 49"},
    {0xD0, "E2"},    {0xD1, "C4 4E"}, {0xD2, "C1 4F"}, {0xD3, "C2 4F"}, {0xD4, "C3 4F"},
    {0xD5, "C4 4F"}, {0xD6, "C8 4F"}, {0xD7, "B4"},    {0xD8, "E9"},    {0xD9, "C1 55"},
    {0xDA, "C2 55"}, {0xDB, "C3 55"}, {0xDC, "C8 55"}, {0xDD, "C2 59"}, {0xDE, "EC"},
    {0xDF, "FB"},    {0xE0, "C1 61"}, {0xE1, "C2 61"}, {0xE2, "C3 61"}, {0xE3, "C4 61"},
    {0xE4, "C8 61"}, {0xE5, "CA 61"}, {0xE6, "F1"},    {0xE7, "CB 63"}, {0xE8, "C1 65"},
    {0xE9, "C2 65"}, {0xEA, "C3 65"}, {0xEB, "C8 65"}, {0xEC, "C1 69"}, {0xED, "C2 69"},
    {0xEE, "C3 69"}, {0xEF, "C8 69"}, {0xF0, "F2"},    {0xF1, "C4 6E"}, {0xF2, "C1 6F"},
    {0xF3, "C2 6F"}, {0xF4, "C3 6F"}, {0xF5, "C4 6F"}, {0xF6, "C8 6F"}, {0xF7, "B8"},
    {0xF8, "F9"},    {0xF9, "C1 75"}, {0xFA, "C2 75"}, {0xFB, "C3 75"}, {0xFC, "C8 75"},
    {0xFD, "C2 79"}, {0xFE, "FC"},    {0xFF, "C8 79"},
};

// Latin-1 octets that T.61 writes unchanged, apart from the letters and digits.
const unsigned kSharedLatin1Symbols[] = {0xA1, 0xA2, 0xA3, 0xA5, 0xA7, 0xAB, 0xB0, 0xB1, 0xB2,
                                         0xB3, 0xB5, 0xB6, 0xB7, 0xBB, 0xBC, 0xBD, 0xBE, 0xBF};
const unsigned kFormatEffectors[] = {0x08, 0x0A, 0x0C, 0x0D, 0x1A};

// The T.61 form of every Latin-1 octet that has one.
std::map<unsigned, Octets> expected_t61_forms() {
    std::map<unsigned, Octets> forms;
    for (unsigned c : kFormatEffectors)
        forms[c] = {static_cast<unsigned char>(c)};
    for (unsigned c = 0x20; c <= 0x7E; ++c)
        forms[c] = {static_cast<unsigned char>(c)};
    for (unsigned c : kSharedLatin1Symbols)
        forms[c] = {static_cast<unsigned char>(c)};
    for (const auto& row : kLatin1ToT61Changed)
        forms[row.first] = hex(row.second);
    return forms;
}

// The octets stated to have no T.61 form.
std::set<unsigned> latin1_without_t61_form() {
    std::set<unsigned> none;
    for (unsigned c = 0x00; c <= 0x1F; ++c)
        none.insert(c);
    for (unsigned c : kFormatEffectors)
        none.erase(c);
    for (unsigned c = 0x7F; c <= 0xA0; ++c)
        none.insert(c);
    for (unsigned c : {0xA6, 0xA8, 0xA9, 0xAA, 0xAC, 0xAD, 0xAE, 0xAF, 0xB4, 0xB8, 0xB9})
        none.insert(c);
    return none;
}

TEST(IA52T61, TheExpectedTableCoversEveryOctetOnce) {
    const auto forms = expected_t61_forms();
    const auto none = latin1_without_t61_form();
    EXPECT_EQ(forms.size() + none.size(), 256u);
    for (unsigned c : none)
        EXPECT_EQ(forms.count(c), 0u) << std::hex << c;
}

TEST(IA52T61, EveryOctetGivesItsStatedFormOrFails) {
    const auto forms = expected_t61_forms();
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "octet 0x" << std::hex << b);
        const auto form = forms.find(b);
        const Outcome expected =
            form != forms.end() ? succeeds_with(form->second) : fails_leaving({});
        EXPECT_EQ(convert(IA52T61, {static_cast<unsigned char>(b)}), expected);
    }
}

TEST(IA52T61, EthBecomesF2AsInExistingBuffers) {
    EXPECT_EQ(convert(IA52T61, hex("F0")), succeeds_with(hex("F2")));
}

TEST(IA52T61, AccentedLetterAndNumberSign) {
    EXPECT_EQ(convert(IA52T61, hex("E9 23")), succeeds_with(hex("C2 65 A6")));
}

TEST(IA52T61, FailureLeavesTheDestinationAsItWasOnEntry) {
    EXPECT_EQ(convert(IA52T61, hex("A9")), fails_leaving({}));
    EXPECT_EQ(convert(IA52T61, hex("41 E9 42 A9 43"), hex("50 52 45")),
              fails_leaving(hex("50 52 45")));
}

TEST(IA52T61, AppendsToWhatTheDestinationHolds) {
    EXPECT_EQ(convert(IA52T61, hex("E9"), hex("50")), succeeds_with(hex("50 C2 65")));
}

TEST(IA52T61, LongTextEqualsItsCharactersConvertedOneByOne) {
    const auto forms = expected_t61_forms();
    Octets text, expected;
    for (unsigned i = 0; text.size() < 5000; ++i) {
        auto form = forms.begin();
        std::advance(form, (i * 7) % forms.size());
        text.push_back(static_cast<unsigned char>(form->first));
        expected.insert(expected.end(), form->second.begin(), form->second.end());
    }
    EXPECT_EQ(convert(IA52T61, text), succeeds_with(expected));
    text.push_back(0x7F);
    EXPECT_EQ(convert(IA52T61, text, hex("01")), fails_leaving(hex("01")));
}

// ---- T612BMP ------------------------------------------------------------------------------------

// T.61 octets without an accent in front that give another character than their own value.
const char* const kT61Characters = "A4 0024, A6 0023, A8 00A4, B4 00D7, B8 00F7, E0 03A9, "
                                   "E1 00C6, E2 00D0, E3 00AA, E4 0126, E6 0132, E7 013F, "
                                   "E8 0141, E9 00D8, EA 0152, EB 00BA, EC 00DE, ED 0166, "
                                   "EE 014A, EF 0149, F0 039A, F1 00E6, F2 0111, F3 03B4, "
                                   "F4 0127, F5 0131, F6 0133, F7 0140, F8 0142, F9 00F8, "
                                   "FA 0153, FB 00DF, FC 00FE, FD 0167, FE 014B";

// Each accent with the letters it takes, as "letter code point" pairs.
struct AccentLetters {
    unsigned accent;
    unsigned listed; // how many letters the row lists
    const char* letters;
};

const char* const kDiaeresisLetters = "A 00C4, E 00CB, I 00CF, O 00D6, U 00DC, Y 0178, a 00E4, "
                                      "e 00EB, i 00EF, o 00F6, u 00FC, y 00FF";

const AccentLetters kAccents[] = {
    {0xC1, 10, "A 00C0, E 00C8, I 00CC, O 00D2, U 00D9, a 00E0, e 00E8, i 00EC, o 00F2, u 00F9"},
    {0xC2, 24,
     "A 00C1, C 0106, E 00C9, I 00CD, L 0139, N 0143, O 00D3, R 0154, S 015A, U 00DA, "
     "Y 00DD, Z 0179, a 00E1, c 0107, e 00E9, i 00ED, l 013A, n 0144, o 00F3, r 0155, "
     "s 015B, u 00FA, y 00FD, z 017A"},
    {0xC3, 24,
     "A 00C2, C 0108, E 00CA, G 011C, H 0124, I 00CE, J 0134, O 00D4, S 015C, U 00DB, "
     "W 0174, Y 0176, a 00E2, c 0109, e 00EA, g 011D, h 0125, i 00EE, j 0135, o 00F4, "
     "s 015D, u 00FB, w 0175, y 0177"},
    {0xC4, 10, "A 00C3, I 0128, N 00D1, O 00D5, U 0168, a 00E3, i 0129, n 00F1, o 00F5, u 0169"},
    {0xC5, 9, "E 0112, I 012A, O 014C, U 016A, a 0101, e 0113, i 012B, o 014D, u 016B"},
    {0xC6, 11,
     "E 0114, G 011E, I 012C, O 014E, U 016C, a 0103, e 0115, g 011F, i 012D, o 014F, "
     "u 016D"},
    {0xC7, 9, "C 010A, E 0116, G 0120, I 0130, Z 017B, c 010B, e 0117, g 0121, z 017C"},
    {0xC8, 12, kDiaeresisLetters},
    {0xC9, 12, kDiaeresisLetters},
    {0xCA, 4, "A 00C5, U 016E, a 00E5, u 016F"},
    {0xCB, 16,
     "C 00C7, G 0122, K 0136, L 013B, N 0145, R 0156, S 015E, T 0162, c 00E7, g 0123, "
     "k 0137, l 013C, n 0146, r 0157, s 015F, t 0163"},
    {0xCC, 0, ""},
    {0xCD, 4, "O 0150, U 0170, o 0151, u 0171"},
    {0xCE, 7, "E 0118, I 012E, U 0172, a 0105, e 0119, i 012F, u 0173"},
    {0xCF, 18,
     "C 010C, D 010E, E 011A, L 013D, N 0147, R 0158, S 0160, T 0164, Z 017D, c 010D, "
     "d 010F, e 011B, l 013E, n 0048, r 0159, s 0161, t 0165, z 017E"},
};

Octets ucs2(unsigned c) {
    return {static_cast<unsigned char>(c >> 8), static_cast<unsigned char>(c)};
}

// "K HHHH, K HHHH, ..." where K is one character (as_hex false) or a hex octet (as_hex true).
std::map<unsigned, unsigned> parse_pairs(const char* text, bool as_hex) {
    std::map<unsigned, unsigned> pairs;
    std::istringstream in(text);
    std::string key, value;
    while (in >> key >> value) {
        if (value.back() == ',')
            value.pop_back();
        const unsigned k =
            as_hex ? std::strtoul(key.c_str(), nullptr, 16) : static_cast<unsigned char>(key[0]);
        pairs[k] = std::strtoul(value.c_str(), nullptr, 16);
    }
    return pairs;
}

// Octets written as 00 xx that also drop a pending accent; 0x24 is written as U+00A4.
bool breaks_accent(unsigned b) {
    return b == 0x08 || b == 0x0A || b == 0x0C || b == 0x0D || b == 0x1A || b == 0x24;
}

// The result of one T.61 octet read without an accent in front.
Outcome expected_single_t61(unsigned b) {
    static const std::map<unsigned, unsigned> others = parse_pairs(kT61Characters, true);
    if (b == 0x24)
        return succeeds_with(hex("00 A4"));
    if (breaks_accent(b))
        return succeeds_with(ucs2(b));
    if (b >= 0xC1 && b <= 0xCF)
        return succeeds_with({}); // an accent alone at the end is dropped
    if (others.count(b))
        return succeeds_with(ucs2(others.at(b)));
    const bool shared = std::find(std::begin(kSharedLatin1Symbols), std::end(kSharedLatin1Symbols),
                                  b) != std::end(kSharedLatin1Symbols);
    if ((b >= 0x20 && b <= 0x7E) || shared)
        return succeeds_with(ucs2(b));
    return fails_leaving({});
}

TEST(T612BMP, TheAccentRowsListTheStatedNumberOfLetters) {
    for (const AccentLetters& row : kAccents) {
        SCOPED_TRACE(::testing::Message() << "accent 0x" << std::hex << row.accent);
        EXPECT_EQ(parse_pairs(row.letters, false).size(), row.listed);
    }
}

TEST(T612BMP, EverySingleOctetGivesItsCharacterOrFails) {
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "octet 0x" << std::hex << b);
        EXPECT_EQ(convert(T612BMP, {static_cast<unsigned char>(b)}), expected_single_t61(b));
    }
}

TEST(T612BMP, EveryAccentWithEveryFollowingOctet) {
    for (const AccentLetters& row : kAccents) {
        const auto letters = parse_pairs(row.letters, false);
        for (unsigned b = 0; b <= 0xFF; ++b) {
            SCOPED_TRACE(::testing::Message()
                         << "accent 0x" << std::hex << row.accent << " then 0x" << b);
            Outcome expected = fails_leaving({});
            if (b == 0x24)
                expected = succeeds_with(hex("00 A4"));
            else if (breaks_accent(b))
                expected = succeeds_with(ucs2(b));
            else if (letters.count(b))
                expected = succeeds_with(ucs2(letters.at(b)));
            const Octets input = {static_cast<unsigned char>(row.accent),
                                  static_cast<unsigned char>(b)};
            EXPECT_EQ(convert(T612BMP, input), expected);
        }
    }
}

TEST(T612BMP, EveryAccentRefusesAtLeastOneLetterItDoesNotList) {
    for (const AccentLetters& row : kAccents) {
        SCOPED_TRACE(::testing::Message() << "accent 0x" << std::hex << row.accent);
        const auto letters = parse_pairs(row.letters, false);
        unsigned unlisted = 'A';
        while (letters.count(unlisted))
            ++unlisted;
        ASSERT_LE(unlisted, unsigned('Z'));
        const Octets input = {static_cast<unsigned char>(row.accent),
                              static_cast<unsigned char>(unlisted)};
        EXPECT_EQ(convert(T612BMP, input), fails_leaving({}));
    }
}

TEST(T612BMP, AccentC0IsRefusedWhateverFollows) {
    for (unsigned b = 0; b <= 0xFF; ++b) {
        SCOPED_TRACE(::testing::Message() << "C0 then 0x" << std::hex << b);
        EXPECT_EQ(convert(T612BMP, {0xC0, static_cast<unsigned char>(b)}), fails_leaving({}));
    }
}

TEST(T612BMP, StatedEdgeCases) {
    struct Row {
        const char* input;
        Outcome expected;
    } rows[] = {
        {"C2 65", succeeds_with(hex("00 E9"))},
        {"CF 6E", succeeds_with(hex("00 48"))}, // caron n, kept as in existing buffers
        {"C5 41", fails_leaving({})},           // no macron on capital A
        {"C6 41", fails_leaving({})},           // no breve on capital A
        {"CE 41", fails_leaving({})},           // no ogonek on capital A
        {"C5 61", succeeds_with(hex("01 01"))},
        {"C2", succeeds_with({})},
        {"41 C2", succeeds_with(hex("00 41"))},
        {"C2 C2 65", fails_leaving({})},
        {"C8 41", succeeds_with(hex("00 C4"))},
        {"C9 41", succeeds_with(hex("00 C4"))},
        {"C2 20", fails_leaving({})},
        {"C2 31", fails_leaving({})},
        {"C2 0D 41", succeeds_with(hex("00 0D 00 41"))},
        {"C2 24 65", succeeds_with(hex("00 A4 00 65"))},
        {"CC 0A", succeeds_with(hex("00 0A"))},
        {"CC 41", fails_leaving({})},
        {"E0 F0 F3", succeeds_with(hex("03 A9 03 9A 03 B4"))},
        {"C0", fails_leaving({})},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(convert(T612BMP, hex(row.input)), row.expected);
    }
}

TEST(T612BMP, FailureLeavesTheDestinationAsItWasOnEntry) {
    EXPECT_EQ(convert(T612BMP, hex("41 C2 65 C2 20"), hex("50 52 45")),
              fails_leaving(hex("50 52 45")));
    EXPECT_EQ(convert(T612BMP, hex("41 42 FF"), hex("50")), fails_leaving(hex("50")));
}

TEST(T612BMP, FailureAfterALongTextStillLeavesTheDestinationAsItWasOnEntry) {
    Octets text(3000, 'x');
    text.push_back(0xC2);
    text.push_back(0x20);
    EXPECT_EQ(convert(T612BMP, text, hex("50")), fails_leaving(hex("50")));
    EXPECT_EQ(convert(T612IA5, text, hex("50")), fails_leaving(hex("50")));
}

TEST(T612BMP, LongTextEqualsItsCharactersConvertedOneByOne) {
    Octets text, expected;
    for (unsigned i = 0; text.size() < 6000; ++i) {
        const AccentLetters& row = kAccents[i % (sizeof kAccents / sizeof kAccents[0])];
        const auto letters = parse_pairs(row.letters, false);
        if (!letters.empty()) {
            auto letter = letters.begin();
            std::advance(letter, i % letters.size());
            text.push_back(static_cast<unsigned char>(row.accent));
            text.push_back(static_cast<unsigned char>(letter->first));
            const Octets c = ucs2(letter->second);
            expected.insert(expected.end(), c.begin(), c.end());
        }
        const unsigned char plain = static_cast<unsigned char>(0x20 + i % 0x5F);
        text.push_back(plain);
        const Octets c = expected_single_t61(plain).output;
        expected.insert(expected.end(), c.begin(), c.end());
    }
    EXPECT_EQ(convert(T612BMP, text), succeeds_with(expected));
}

// ---- T612IA5 ------------------------------------------------------------------------------------

TEST(T612IA5, ConvertsThroughBmpToLatin1) {
    struct Row {
        const char* input;
        Outcome expected;
    } rows[] = {
        {"C2 65 41", succeeds_with(hex("E9 41"))},
        {"24 A4 A6", succeeds_with(hex("A4 24 23"))},
        {"C8 79 FB", succeeds_with(hex("FF DF"))},
        {"C2 63", fails_leaving({})}, // c acute is above U+00FF
        {"E0", fails_leaving({})},    // U+03A9
        {"C5 41", fails_leaving({})}, // no T.61 form
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.input);
        EXPECT_EQ(convert(T612IA5, hex(row.input)), row.expected);
    }
}

TEST(T612IA5, EitherStepFailingLeavesTheDestinationAsItWasOnEntry) {
    EXPECT_EQ(convert(T612IA5, hex("41 C5 41"), hex("50 52")), fails_leaving(hex("50 52")));
    EXPECT_EQ(convert(T612IA5, hex("41 C2 63"), hex("50 52")), fails_leaving(hex("50 52")));
}

// Context hooks that record, for every block released, whether it was all zeros by then.
struct ReleaseLog {
    int released = 0;
    int released_zeroed = 0;
    std::map<void*, unsigned long> sizes;
};

void* logged_malloc(void* ctx, unsigned long size) {
    void* block = std::malloc(size);
    static_cast<ReleaseLog*>(ctx)->sizes[block] = size;
    return block;
}

void* logged_realloc(void* ctx, void* block, unsigned long size) {
    ReleaseLog* log = static_cast<ReleaseLog*>(ctx);
    log->sizes.erase(block);
    void* grown = std::realloc(block, size);
    log->sizes[grown] = size;
    return grown;
}

void logged_free(void* ctx, void* block) {
    ReleaseLog* log = static_cast<ReleaseLog*>(ctx);
    const unsigned char* p = static_cast<const unsigned char*>(block);
    bool zero = true;
    for (unsigned long i = 0; i < log->sizes[block]; ++i)
        zero = zero && p[i] == 0;
    ++log->released;
    log->released_zeroed += zero ? 1 : 0;
    log->sizes.erase(block);
    std::free(block);
}

TEST(T612IA5, TheIntermediateTextUsesTheDestinationsHooksAndIsWipedWhenSecure) {
    ReleaseLog log;
    kelm_memory_funcs_t hooks{};
    hooks.ctx_hooks_set = 1;
    hooks.ctx_malloc = logged_malloc;
    hooks.ctx_realloc = logged_realloc;
    hooks.ctx_free = logged_free;
    hooks.ctx = &log;
    Octets text = hex("C2 65 41 42");
    kelm_r_buffer_t src(text.data(), static_cast<unsigned int>(text.size()));
    {
        kelm_buffer_t dst(64, hooks, KELM_SECURITY_SECURE);
        ASSERT_EQ(T612IA5(src, dst), KELM_ASN_OK);
        EXPECT_EQ(written(dst), hex("E9 41 42"));
        EXPECT_EQ(log.released, 1) << "the intermediate buffer was not released through the hooks";
        EXPECT_EQ(log.released_zeroed, 1) << "the intermediate text was not wiped";
    }
    EXPECT_EQ(log.released, 2);
}

} // namespace
