// Latin-1 and T.61 (teletex): IA52T61, T612BMP and T612IA5, with the tables that drive them.
//
// T.61 writes an accented letter as a non-spacing accent octet (0xC1..0xCF) followed by the base
// letter, as in the supplementary set of ITU-T T.61 (03/1993). The tables below follow it only
// in part: their irregularities are kept deliberately for compatibility with existing buffers
// and are marked where they occur.
#include <cstdint>

#include "codeset.h"
#include "codeset_internal.h"

using kelm_codeset::cut_back_and_refuse;
using kelm_codeset::kChunkOctets;
using kelm_codeset::reserve;

namespace {

// The accent octets.
enum : unsigned char {
    kFirstAccent = 0xC0, // C0 lies in the accent range but is refused
    kGrave = 0xC1,
    kAcute = 0xC2,
    kCircumflex = 0xC3,
    kTilde = 0xC4,
    kMacron = 0xC5,
    kBreve = 0xC6,
    kDotAbove = 0xC7,
    kDiaeresis = 0xC8,
    kUmlaut = 0xC9, // read as diaeresis
    kRing = 0xCA,
    kCedilla = 0xCB,
    kNoLetters = 0xCC, // an accent that no letter may follow
    kDoubleAcute = 0xCD,
    kOgonek = 0xCE,
    kCaron = 0xCF,
    kLastAccent = 0xCF,
};

// Latin-1 symbols written unchanged in both directions.
constexpr unsigned char kSharedSymbols[] = {0xA1, 0xA2, 0xA3, 0xA5, 0xA7, 0xAB, 0xB0, 0xB1, 0xB2,
                                            0xB3, 0xB5, 0xB6, 0xB7, 0xBB, 0xBC, 0xBD, 0xBE, 0xBF};

// Format effectors written unchanged in both directions.
constexpr unsigned char kControls[] = {0x08, 0x0A, 0x0C, 0x0D, 0x1A};

// ---- Latin-1 to T.61 ----------------------------------------------------------------------------

// A run of consecutive Latin-1 capitals on one base letter, with the accent of each in order.
// The small letters are the same runs 0x20 higher, on the small base letter.
struct AccentedRun {
    unsigned char first;
    unsigned char base;
    unsigned char count;
    unsigned char accents[6];
};

constexpr AccentedRun kAccentedCapitals[] = {
    {0xC0, 'A', 6, {kGrave, kAcute, kCircumflex, kTilde, kDiaeresis, kRing}},
    {0xC7, 'C', 1, {kCedilla}},
    {0xC8, 'E', 4, {kGrave, kAcute, kCircumflex, kDiaeresis}},
    {0xCC, 'I', 4, {kGrave, kAcute, kCircumflex, kDiaeresis}},
    {0xD1, 'N', 1, {kTilde}},
    {0xD2, 'O', 5, {kGrave, kAcute, kCircumflex, kTilde, kDiaeresis}},
    {0xD9, 'U', 4, {kGrave, kAcute, kCircumflex, kDiaeresis}},
    {0xDD, 'Y', 1, {kAcute}},
};

struct OctetPair {
    unsigned char from;
    unsigned char to;
};

// Latin-1 octets written as a different single T.61 octet. Eth (F0) becomes F2, not F3: kept
// deliberately for compatibility with existing buffers.
constexpr OctetPair kSingleOctetForms[] = {
    {0x23, 0xA6}, {0x24, 0xA4}, {0xA4, 0xA8}, {0xBA, 0xEB}, {0xC6, 0xE1},
    {0xD0, 0xE2}, {0xD7, 0xB4}, {0xD8, 0xE9}, {0xDE, 0xEC}, {0xDF, 0xFB},
    {0xE6, 0xF1}, {0xF0, 0xF2}, {0xF7, 0xB8}, {0xF8, 0xF9}, {0xFE, 0xFC},
};

// The T.61 form of one Latin-1 octet: size 0 (no form), 1, or 2 (accent, then base letter).
struct T61Form {
    unsigned char size;
    unsigned char octets[2];
};

struct Latin1ToT61Table {
    T61Form form[256];
};

constexpr Latin1ToT61Table make_latin1_to_t61() {
    Latin1ToT61Table t{};
    for (unsigned char c : kControls)
        t.form[c] = {1, {c, 0}};
    for (unsigned c = 0x20; c <= 0x7E; ++c)
        t.form[c] = {1, {static_cast<unsigned char>(c), 0}};
    for (unsigned char c : kSharedSymbols)
        t.form[c] = {1, {c, 0}};
    for (const AccentedRun& run : kAccentedCapitals) {
        const unsigned char small_base = static_cast<unsigned char>(run.base + 0x20);
        for (unsigned i = 0; i < run.count; ++i) {
            t.form[run.first + i] = {2, {run.accents[i], run.base}};
            t.form[run.first + 0x20 + i] = {2, {run.accents[i], small_base}};
        }
    }
    t.form[0xFF] = {2, {kDiaeresis, 'y'}}; // its capital is not in Latin-1
    for (const OctetPair& p : kSingleOctetForms)
        t.form[p.from] = {1, {p.to, 0}};
    return t;
}

constexpr Latin1ToT61Table kLatin1ToT61 = make_latin1_to_t61();

// ---- T.61 to UCS-2 ------------------------------------------------------------------------------

struct LetterForm {
    char letter;
    uint16_t ucs2;
};

// The letters that may follow one accent and the character each pair writes. A list ends at the
// first entry whose letter is 0.
struct AccentRow {
    unsigned char accent;
    LetterForm forms[25];
};

// Irregular on purpose and kept exactly for compatibility with existing buffers: capital A has
// no macron, breve or ogonek form while small a has all three, and caron with small n writes
// U+0048.
constexpr AccentRow kAccentRows[] = {
    {kGrave,
     {{'A', 0x00C0},
      {'E', 0x00C8},
      {'I', 0x00CC},
      {'O', 0x00D2},
      {'U', 0x00D9},
      {'a', 0x00E0},
      {'e', 0x00E8},
      {'i', 0x00EC},
      {'o', 0x00F2},
      {'u', 0x00F9}}},
    {kAcute,
     {{'A', 0x00C1}, {'C', 0x0106}, {'E', 0x00C9}, {'I', 0x00CD}, {'L', 0x0139}, {'N', 0x0143},
      {'O', 0x00D3}, {'R', 0x0154}, {'S', 0x015A}, {'U', 0x00DA}, {'Y', 0x00DD}, {'Z', 0x0179},
      {'a', 0x00E1}, {'c', 0x0107}, {'e', 0x00E9}, {'i', 0x00ED}, {'l', 0x013A}, {'n', 0x0144},
      {'o', 0x00F3}, {'r', 0x0155}, {'s', 0x015B}, {'u', 0x00FA}, {'y', 0x00FD}, {'z', 0x017A}}},
    {kCircumflex,
     {{'A', 0x00C2}, {'C', 0x0108}, {'E', 0x00CA}, {'G', 0x011C}, {'H', 0x0124}, {'I', 0x00CE},
      {'J', 0x0134}, {'O', 0x00D4}, {'S', 0x015C}, {'U', 0x00DB}, {'W', 0x0174}, {'Y', 0x0176},
      {'a', 0x00E2}, {'c', 0x0109}, {'e', 0x00EA}, {'g', 0x011D}, {'h', 0x0125}, {'i', 0x00EE},
      {'j', 0x0135}, {'o', 0x00F4}, {'s', 0x015D}, {'u', 0x00FB}, {'w', 0x0175}, {'y', 0x0177}}},
    {kTilde,
     {{'A', 0x00C3},
      {'I', 0x0128},
      {'N', 0x00D1},
      {'O', 0x00D5},
      {'U', 0x0168},
      {'a', 0x00E3},
      {'i', 0x0129},
      {'n', 0x00F1},
      {'o', 0x00F5},
      {'u', 0x0169}}},
    {kMacron,
     {{'E', 0x0112},
      {'I', 0x012A},
      {'O', 0x014C},
      {'U', 0x016A},
      {'a', 0x0101},
      {'e', 0x0113},
      {'i', 0x012B},
      {'o', 0x014D},
      {'u', 0x016B}}},
    {kBreve,
     {{'E', 0x0114},
      {'G', 0x011E},
      {'I', 0x012C},
      {'O', 0x014E},
      {'U', 0x016C},
      {'a', 0x0103},
      {'e', 0x0115},
      {'g', 0x011F},
      {'i', 0x012D},
      {'o', 0x014F},
      {'u', 0x016D}}},
    {kDotAbove,
     {{'C', 0x010A},
      {'E', 0x0116},
      {'G', 0x0120},
      {'I', 0x0130},
      {'Z', 0x017B},
      {'c', 0x010B},
      {'e', 0x0117},
      {'g', 0x0121},
      {'z', 0x017C}}},
    {kDiaeresis,
     {{'A', 0x00C4},
      {'E', 0x00CB},
      {'I', 0x00CF},
      {'O', 0x00D6},
      {'U', 0x00DC},
      {'Y', 0x0178},
      {'a', 0x00E4},
      {'e', 0x00EB},
      {'i', 0x00EF},
      {'o', 0x00F6},
      {'u', 0x00FC},
      {'y', 0x00FF}}},
    {kRing, {{'A', 0x00C5}, {'U', 0x016E}, {'a', 0x00E5}, {'u', 0x016F}}},
    {kCedilla,
     {{'C', 0x00C7},
      {'G', 0x0122},
      {'K', 0x0136},
      {'L', 0x013B},
      {'N', 0x0145},
      {'R', 0x0156},
      {'S', 0x015E},
      {'T', 0x0162},
      {'c', 0x00E7},
      {'g', 0x0123},
      {'k', 0x0137},
      {'l', 0x013C},
      {'n', 0x0146},
      {'r', 0x0157},
      {'s', 0x015F},
      {'t', 0x0163}}},
    {kNoLetters, {}},
    {kDoubleAcute, {{'O', 0x0150}, {'U', 0x0170}, {'o', 0x0151}, {'u', 0x0171}}},
    {kOgonek,
     {{'E', 0x0118},
      {'I', 0x012E},
      {'U', 0x0172},
      {'a', 0x0105},
      {'e', 0x0119},
      {'i', 0x012F},
      {'u', 0x0173}}},
    {kCaron,
     {{'C', 0x010C},
      {'D', 0x010E},
      {'E', 0x011A},
      {'L', 0x013D},
      {'N', 0x0147},
      {'R', 0x0158},
      {'S', 0x0160},
      {'T', 0x0164},
      {'Z', 0x017D},
      {'c', 0x010D},
      {'d', 0x010F},
      {'e', 0x011B},
      {'l', 0x013E},
      {'n', 0x0048},
      {'r', 0x0159},
      {'s', 0x0161},
      {'t', 0x0165},
      {'z', 0x017E}}},
};

// T.61 octets without an accent in front that are written as another character.
struct OctetToUcs2 {
    unsigned char octet;
    uint16_t ucs2;
};

// E0, F0 and F3 give the Greek letters U+03A9, U+039A and U+03B4; these are the intended
// targets of this table.
constexpr OctetToUcs2 kOtherCharacters[] = {
    {0xA4, 0x0024}, {0xA6, 0x0023}, {0xA8, 0x00A4}, {0xB4, 0x00D7}, {0xB8, 0x00F7}, {0xE0, 0x03A9},
    {0xE1, 0x00C6}, {0xE2, 0x00D0}, {0xE3, 0x00AA}, {0xE4, 0x0126}, {0xE6, 0x0132}, {0xE7, 0x013F},
    {0xE8, 0x0141}, {0xE9, 0x00D8}, {0xEA, 0x0152}, {0xEB, 0x00BA}, {0xEC, 0x00DE}, {0xED, 0x0166},
    {0xEE, 0x014A}, {0xEF, 0x0149}, {0xF0, 0x039A}, {0xF1, 0x00E6}, {0xF2, 0x0111}, {0xF3, 0x03B4},
    {0xF4, 0x0127}, {0xF5, 0x0131}, {0xF6, 0x0133}, {0xF7, 0x0140}, {0xF8, 0x0142}, {0xF9, 0x00F8},
    {0xFA, 0x0153}, {0xFB, 0x00DF}, {0xFC, 0x00FE}, {0xFD, 0x0167}, {0xFE, 0x014B},
};

// What one T.61 octet does when it is read.
enum T61Role : unsigned char {
    kNoForm,    // fails (also C0, the refused accent)
    kCharacter, // writes `ucs2`, or with an accent pending is looked up as a base letter
    kAccent,    // becomes the pending accent
    kBreaker,   // writes `ucs2` and silently drops a pending accent
};

struct T61Octet {
    uint16_t ucs2;
    T61Role role;
};

struct T61ToUcs2Table {
    T61Octet octet[256];
    // The character an accent and a base letter write, 0 when the pair has no form; indexed by
    // the accent minus C0 and the letter.
    uint16_t accented[16][128];
};

constexpr T61ToUcs2Table make_t61_to_ucs2() {
    T61ToUcs2Table t{};
    for (unsigned c = 0x20; c <= 0x7E; ++c)
        t.octet[c] = {static_cast<uint16_t>(c), kCharacter};
    for (unsigned char c : kSharedSymbols)
        t.octet[c] = {c, kCharacter};
    for (const OctetToUcs2& p : kOtherCharacters)
        t.octet[p.octet] = {p.ucs2, kCharacter};
    for (unsigned char c : kControls)
        t.octet[c] = {c, kBreaker};
    t.octet[0x24] = {0x00A4, kBreaker};
    for (unsigned a = kGrave; a <= kLastAccent; ++a)
        t.octet[a] = {0, kAccent};
    for (const AccentRow& row : kAccentRows)
        for (const LetterForm& f : row.forms)
            if (f.letter != 0)
                t.accented[row.accent - kFirstAccent][static_cast<unsigned char>(f.letter)] =
                    f.ucs2;
    for (unsigned letter = 0; letter < 128; ++letter)
        t.accented[kUmlaut - kFirstAccent][letter] = t.accented[kDiaeresis - kFirstAccent][letter];
    return t;
}

constexpr T61ToUcs2Table kT61ToUcs2 = make_t61_to_ucs2();

// The character an accent and the octet after it write, 0 when the pair has no form.
inline uint16_t accented_letter(unsigned char accent, unsigned char octet) {
    return octet < 0x80 ? kT61ToUcs2.accented[accent - kFirstAccent][octet] : 0;
}

} // namespace

unsigned int IA52T61(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    const unsigned char* in = src.cursor;
    const unsigned int size = src.remaining;
    const unsigned int entry_length = dst.used();
    reserve(dst, size); // most text has one T.61 octet per character
    unsigned char out[kChunkOctets];
    unsigned int i = 0;
    while (i < size) {
        unsigned int n = 0;
        for (; i < size && n <= kChunkOctets - 2; ++i) {
            const T61Form form = kLatin1ToT61.form[in[i]];
            if (form.size == 0)
                return cut_back_and_refuse(dst, entry_length);
            out[n] = form.octets[0];
            out[n + 1] = form.octets[1];
            n += form.size;
        }
        dst.append(out, n);
    }
    return KELM_ASN_OK;
}

unsigned int T612BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    const unsigned char* in = src.cursor;
    const unsigned int size = src.remaining;
    const unsigned int entry_length = dst.used();
    reserve(dst, 2UL * size);
    unsigned char pending_accent = 0;
    unsigned char out[kChunkOctets];
    unsigned int i = 0;
    while (i < size) {
        unsigned int n = 0;
        for (; i < size && n <= kChunkOctets - 2; ++i) {
            const unsigned char b = in[i];
            const T61Octet octet = kT61ToUcs2.octet[b];
            uint16_t c;
            if (octet.role == kCharacter && pending_accent == 0) {
                c = octet.ucs2; // the common case first
            } else if (octet.role == kBreaker) {
                c = octet.ucs2;
                pending_accent = 0;
            } else if (octet.role == kAccent) {
                if (pending_accent != 0)
                    return cut_back_and_refuse(dst, entry_length);
                pending_accent = b;
                continue;
            } else if (pending_accent != 0) {
                c = accented_letter(pending_accent, b);
                if (c == 0)
                    return cut_back_and_refuse(dst, entry_length);
                pending_accent = 0;
            } else {
                return cut_back_and_refuse(dst, entry_length);
            }
            out[n++] = static_cast<unsigned char>(c >> 8);
            out[n++] = static_cast<unsigned char>(c);
        }
        dst.append(out, n);
    }
    // An accent at the very end has no letter to go on and is dropped.
    return KELM_ASN_OK;
}

unsigned int T612IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    // The intermediate text is as sensitive as the destination, so it is held the same way.
    kelm_buffer_t ucs2(dst.hooks, dst.security);
    if (T612BMP(src, ucs2) != KELM_ASN_OK)
        return KELM_ASN_UNREPRESENTABLE;
    return BMP2IA5(ucs2, dst);
}
