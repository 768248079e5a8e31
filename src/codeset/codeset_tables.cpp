// The PrintableString and VisibleString converters IA52P and IA52V, and the two exported tables
// between IA5 and the local code set.
#include "codeset.h"

namespace {

// The characters of both the PrintableString and the VisibleString table: space ' ( ) + , - . /
// digits : ? and the letters. The equals sign is in neither, and the VisibleString table is no
// wider than the PrintableString one; both kept deliberately for compatibility with existing
// buffers.
constexpr char kPrintableCharacters[] = " '()+,-./0123456789:?"
                                        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
static_assert(sizeof kPrintableCharacters - 1 == 73, "73 characters in the table");

// One 32-bit flag per IA5 octet, non-zero when the octet is in the table.
struct FlagTable {
    unsigned int flag[256];
};

constexpr FlagTable flags_for(const char* characters) {
    FlagTable t{};
    for (const char* c = characters; *c != 0; ++c)
        t.flag[static_cast<unsigned char>(*c)] = 1;
    return t;
}

constexpr FlagTable kPrintableFlags = flags_for(kPrintableCharacters);
constexpr FlagTable kVisibleFlags = flags_for(kPrintableCharacters);

// Checks every octet against the table, and only when all pass replaces the destination's
// content with the source.
unsigned int check_then_copy(const FlagTable& table, const kelm_r_buffer_t& src,
                             kelm_buffer_t& dst) {
    for (unsigned int i = 0; i < src.remaining; ++i)
        if (table.flag[src.cursor[i]] == 0)
            return KELM_ASN_UNREPRESENTABLE;
    dst.clear();
    dst.append(src);
    return KELM_ASN_OK;
}

constexpr unsigned int kNone = KELM_CODESET_NO_MAPPING;

} // namespace

unsigned int IA52P(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return check_then_copy(kPrintableFlags, src, dst);
}

unsigned int IA52V(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return check_then_copy(kVisibleFlags, src, dst);
}

// Written out in full because they are writable data, replaced as a whole by a port to another
// local code set. Eight entries per line.
// clang-format off
unsigned int IA52Local_table[256] = {
      0,   1,   2,   3,   4,   5,   6,   7,
      8,   9,  10,  11,  12,  13,  14,  15,
     16,  17,  18,  19,  20,  21,  22,  23,
     24,  25,  26,  27,  28,  29,  30,  31,
     32,  33,  34,  35,  36,  37,  38,  39,
     40,  41,  42,  43,  44,  45,  46,  47,
     48,  49,  50,  51,  52,  53,  54,  55,
     56,  57,  58,  59,  60,  61,  62,  63,
     64,  65,  66,  67,  68,  69,  70,  71,
     72,  73,  74,  75,  76,  77,  78,  79,
     80,  81,  82,  83,  84,  85,  86,  87,
     88,  89,  90,  91,  92,  93,  94,  95,
     96,  97,  98,  99, 100, 101, 102, 103,
    104, 105, 106, 107, 108, 109, 110, 111,
    112, 113, 114, 115, 116, 117, 118, 119,
    120, 121, 122, 123, 124, 125, 126, 127,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
};

unsigned int Local2IA5_table[256] = {
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
    kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
      0,   1,   2,   3,   4,   5,   6,   7,
      8,   9,  10,  11,  12,  13,  14,  15,
     16,  17,  18,  19,  20,  21,  22,  23,
     24,  25,  26,  27,  28,  29,  30,  31,
     32,  33,  34,  35,  36,  37,  38,  39,
     40,  41,  42,  43,  44,  45,  46,  47,
     48,  49,  50,  51,  52,  53,  54,  55,
     56,  57,  58,  59,  60,  61,  62,  63,
     64,  65,  66,  67,  68,  69,  70,  71,
     72,  73,  74,  75,  76,  77,  78,  79,
     80,  81,  82,  83,  84,  85,  86,  87,
     88,  89,  90,  91,  92,  93,  94,  95,
     96,  97,  98,  99, 100, 101, 102, 103,
    104, 105, 106, 107, 108, 109, 110, 111,
    112, 113, 114, 115, 116, 117, 118, 119,
    120, 121, 122, 123, 124, 125, 126, 127,
};
// clang-format on
