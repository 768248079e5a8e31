// UTF-8 in the six-octet form of RFC 2279 (up to U+7FFFFFFF): UTF82IA5 and UTF82BMP read it,
// IA52UTF8, BMP2UTF8 and U2UTF8 write it.
#include <algorithm>
#include <cstdint>

#include "codeset.h"
#include "codeset_internal.h"

using kelm_codeset::kChunkOctets;
using kelm_codeset::octet_or_filler;
using kelm_codeset::reserve;
using kelm_codeset::Units;

namespace {

// ---- Writing ------------------------------------------------------------------------------------

// The longest form a character may take.
constexpr unsigned int kMaxSequence = 6;

inline unsigned char continuation(uint32_t c, unsigned shift) {
    return static_cast<unsigned char>(0x80 | ((c >> shift) & 0x3F));
}

// Writes c (below 0x80000000) at `out` and returns the number of octets written.
inline unsigned int utf8_encode(uint32_t c, unsigned char* out) {
    if (c < 0x80) {
        out[0] = static_cast<unsigned char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<unsigned char>(0xC0 | (c >> 6));
        out[1] = continuation(c, 0);
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<unsigned char>(0xE0 | (c >> 12));
        out[1] = continuation(c, 6);
        out[2] = continuation(c, 0);
        return 3;
    }
    if (c < 0x200000) {
        // Only two payload bits in the lead octet, so bit 20 is not carried: kept deliberately
        // for compatibility with existing buffers.
        out[0] = static_cast<unsigned char>(0xF0 | ((c >> 18) & 0x3));
        out[1] = continuation(c, 12);
        out[2] = continuation(c, 6);
        out[3] = continuation(c, 0);
        return 4;
    }
    if (c < 0x4000000) {
        out[0] = static_cast<unsigned char>(0xF8 | (c >> 24));
        out[1] = continuation(c, 18);
        out[2] = continuation(c, 12);
        out[3] = continuation(c, 6);
        out[4] = continuation(c, 0);
        return 5;
    }
    out[0] = static_cast<unsigned char>(0xFC | (c >> 30));
    out[1] = continuation(c, 24);
    out[2] = continuation(c, 18);
    out[3] = continuation(c, 12);
    out[4] = continuation(c, 6);
    out[5] = continuation(c, 0);
    return 6;
}

// The character held in a unit of `Size` big-endian octets.
template <unsigned Size> uint32_t character_of(const unsigned char* unit) {
    uint32_t c = 0;
    for (unsigned k = 0; k < Size; ++k)
        c = c << 8 | unit[k];
    return c;
}

// Writes every unit of `Size` octets as UTF-8. Room for one octet per character is made up
// front: exact for ASCII text, and counting the exact size first measured slower than letting
// the few longer characters grow the buffer.
template <unsigned Size>
unsigned int units_to_utf8(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    const Units<Size> units(src);
    reserve(dst, units.count());
    unsigned char out[kChunkOctets];
    unsigned long u = 0;
    while (u < units.count()) {
        unsigned int n = 0;
        for (; u < units.count() && n <= kChunkOctets - kMaxSequence; ++u) {
            const uint32_t c = character_of<Size>(units[u]);
            if (c < 0x80)
                out[n++] = static_cast<unsigned char>(c);
            else if (c < 0x80000000u) // higher characters have no form and are skipped
                n += utf8_encode(c, out + n);
        }
        dst.append(out, n);
    }
    return KELM_ASN_OK;
}

// ---- Reading ------------------------------------------------------------------------------------

// Length of the sequence a lead octet starts, 0 for an octet that cannot lead one.
struct SequenceLengths {
    unsigned char length[256];
};

constexpr SequenceLengths make_sequence_lengths() {
    SequenceLengths t{};
    for (unsigned b = 0x00; b <= 0x7F; ++b)
        t.length[b] = 1;
    for (unsigned b = 0xC0; b <= 0xDF; ++b)
        t.length[b] = 2;
    for (unsigned b = 0xE0; b <= 0xEF; ++b)
        t.length[b] = 3;
    for (unsigned b = 0xF0; b <= 0xF7; ++b)
        t.length[b] = 4;
    for (unsigned b = 0xF8; b <= 0xFB; ++b)
        t.length[b] = 5;
    t.length[0xFC] = t.length[0xFD] = 6;
    return t;
}

constexpr SequenceLengths kSequenceLengths = make_sequence_lengths();

// The payload bits of a lead octet, by sequence length.
constexpr unsigned char kLeadPayload[kMaxSequence + 1] = {0, 0x7F, 0x1F, 0x0F, 0x07, 0x03, 0x01};

// A two-octet sequence whose lead * 64 + second octet falls below this is refused. Over-long
// forms are otherwise accepted (C0 80 is U+0000); kept as it is for compatibility with existing
// buffers.
constexpr unsigned int kLowestTwoOctetSequence = 0x3080;

// Reads the sequence that starts at in[i] into c and returns its length, or 0 when it is
// malformed. Continuation octets are not checked for the form 10xxxxxx; octets past the end of
// the source read as the filler octet.
inline unsigned int utf8_decode(const unsigned char* in, unsigned long size, unsigned long i,
                                uint32_t& c) {
    const unsigned char lead = in[i];
    const unsigned int length = kSequenceLengths.length[lead];
    if (length <= 1) {
        c = lead;
        return length;
    }
    const unsigned int available = static_cast<unsigned int>(std::min<unsigned long>(size - i, 8));
    c = lead & kLeadPayload[length];
    for (unsigned k = 1; k < length; ++k)
        c = c << 6 | (octet_or_filler(in + i, available, k) & 0x3F);
    if (length == 2 && lead * 64u + octet_or_filler(in + i, available, 1) < kLowestTwoOctetSequence)
        return 0;
    return length;
}

// Writes each character of a UTF-8 source as `Out` big-endian octets. A malformed sequence or a
// character above `Highest` stops the conversion; what was written before it stays.
template <unsigned Out, uint32_t Highest>
unsigned int utf8_to_units(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    const unsigned char* in = src.cursor;
    const unsigned long size = src.remaining;
    reserve(dst, size * Out); // exact for ASCII, an upper bound otherwise
    unsigned char out[kChunkOctets];
    unsigned long i = 0;
    while (i < size) {
        unsigned int n = 0;
        for (; i < size && n < kChunkOctets;) {
            if (in[i] < 0x80) { // ASCII, the common case, needs no decoding
                for (unsigned k = 1; k < Out; ++k)
                    out[n++] = 0;
                out[n++] = in[i++];
                continue;
            }
            uint32_t c;
            const unsigned int length = utf8_decode(in, size, i, c);
            if (length == 0 || c > Highest) {
                dst.append(out, n);
                return KELM_ASN_UNREPRESENTABLE;
            }
            i += length;
            for (unsigned k = Out; k-- > 0;)
                out[n++] = static_cast<unsigned char>(c >> (8 * k));
        }
        dst.append(out, n);
    }
    return KELM_ASN_OK;
}

} // namespace

unsigned int UTF82IA5(kelm_r_buffer_t src, kelm_buffer_t& dst) {
    return utf8_to_units<1, 0xFF>(src, dst);
}

unsigned int UTF82BMP(kelm_r_buffer_t src, kelm_buffer_t& dst) {
    return utf8_to_units<2, 0xFFFF>(src, dst);
}

unsigned int IA52UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst) {
    return units_to_utf8<1>(src, dst);
}

unsigned int BMP2UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst) {
    return units_to_utf8<2>(src, dst);
}

unsigned int U2UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst) {
    return units_to_utf8<4>(src, dst);
}
