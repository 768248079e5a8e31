// The DER that the direct codecs write and read: identifiers of one octet, definite lengths in the
// fewest octets, minimal INTEGERs. Reading accepts exactly this shape and nothing else, so that
// whatever else a buffer holds is left to the object path. Internal to the library.
#ifndef KELM_ASN_DIRECT_DER_H
#define KELM_ASN_DIRECT_DER_H

#include <cstddef>

namespace kelm_direct_der {

// Identifier octets of the universal types that records use (X.690 (08/2015) 8.1.2).
inline constexpr unsigned char kInteger = 0x02;
inline constexpr unsigned char kOctetString = 0x04;
inline constexpr unsigned char kNull = 0x05;
inline constexpr unsigned char kUtf8String = 0x0C;
inline constexpr unsigned char kSequence = 0x30;

inline constexpr unsigned char kHeaderLength = 4;
inline constexpr unsigned char kMagic1 = 0xAC;
inline constexpr unsigned char kMagic2 = 0xDC;

// Octets of a definite length in the fewest octets (X.690 8.1.3.5).
inline size_t length_size(size_t n) {
    if (n < 128)
        return 1;
    size_t octets = 1;
    while (n > 0xFF) {
        n >>= 8;
        ++octets;
    }
    return 1 + octets;
}

inline size_t element_size(size_t contents) {
    return 1 + length_size(contents) + contents;
}

// The minimal two's-complement octets of `value` (X.690 8.3.2), as kelm_asn_integer writes them.
inline unsigned int integer_octets(int value, unsigned char (&octets)[5]) {
    unsigned int n = 0;
    const bool negative = value < 0;
    const unsigned int word = static_cast<unsigned int>(value);
    const unsigned char skip = negative ? 0xFF : 0x00;
    int shift = 24;
    while (shift >= 0 && static_cast<unsigned char>(word >> shift) == skip)
        shift -= 8;
    if (shift < 0) {
        octets[n++] = skip;
        return n;
    }
    const unsigned char first = static_cast<unsigned char>(word >> shift);
    if (!negative && (first & 0x80))
        octets[n++] = 0x00;
    if (negative && !(first & 0x80))
        octets[n++] = 0xFF;
    for (; shift >= 0; shift -= 8)
        octets[n++] = static_cast<unsigned char>(word >> shift);
    return n;
}

// The value of an INTEGER's contents as kelm_intvalue reads it: 0 when it cannot be read as a
// 32-bit value. Kept exactly as the value object computes it for existing buffers: past four
// octets (possible only after a leading 0x00) the octets fold onto lower ones, the shift taken
// modulo 32.
inline int integer_value(const unsigned char* octets, unsigned int n) {
    if (n > 4 && octets[0] != 0x00)
        return 0;
    unsigned int word = 0;
    for (unsigned int i = 0; i < n; ++i)
        word |= static_cast<unsigned int>(octets[i]) << (((n - 1 - i) * 8) % 32);
    if (n > 0 && n < 4 && (octets[0] & 0x80))
        word |= ~0u << (n * 8);
    return static_cast<int>(word);
}

// Whether an INTEGER's contents are read as a 32-bit value at all (kelm_asn_integer's get_value
// refuses the others): at most four octets, or more after a leading 0x00.
inline bool integer_fits(const unsigned char* octets, unsigned int n) {
    return n <= 4 || octets[0] == 0x00;
}

// Writes an element's identifier and definite length at `w`, front to back; returns past them.
inline unsigned char* put_header(unsigned char* w, unsigned char identifier, size_t n) {
    *w++ = identifier;
    const size_t octets = length_size(n) - 1;
    if (octets == 0) {
        *w++ = static_cast<unsigned char>(n);
        return w;
    }
    *w++ = static_cast<unsigned char>(0x80 | octets);
    for (size_t i = octets; i-- > 0;)
        *w++ = static_cast<unsigned char>(n >> (8 * i));
    return w;
}

// Bytes not owned, read front to back.
struct Span {
    const unsigned char* p = nullptr;
    const unsigned char* end = nullptr;

    bool empty() const { return p == end; }
    size_t size() const { return static_cast<size_t>(end - p); }
};

// Reads the next element when its identifier is the one octet `identifier` and its length is
// definite and in the fewest octets; `contents` then spans its contents. False, `in` unchanged,
// for anything else.
inline bool read_element(Span& in, unsigned char identifier, Span& contents) {
    if (in.size() < 2 || in.p[0] != identifier)
        return false;
    const unsigned char* p = in.p + 1;
    size_t length = *p++;
    if (length & 0x80) {
        const unsigned int octets = length & 0x7F;
        if (octets == 0 || octets > 4 || static_cast<size_t>(in.end - p) < octets || *p == 0)
            return false;
        length = 0;
        for (unsigned int i = 0; i < octets; ++i)
            length = (length << 8) | *p++;
        if (length < 128)
            return false;
    }
    if (static_cast<size_t>(in.end - p) < length)
        return false;
    contents = Span{p, p + length};
    in.p = p + length;
    return true;
}

// Reads the next element when it is a NULL in its one DER form, 05 00 (X.690 8.8); false, `in`
// unchanged, for anything else.
inline bool read_null(Span& in) {
    if (in.size() < 2 || in.p[0] != kNull || in.p[1] != 0x00)
        return false;
    in.p += 2;
    return true;
}

// The identifier octet of the next element; `in` is not empty.
inline unsigned char next_identifier(const Span& in) {
    return in.p[0];
}

} // namespace kelm_direct_der

#endif
