// BIT STRING (X.690 8.6), primitive or constructed, and the named-bit variant.
#include "asn_der.h"
#include "asn_primitives.h"
#include "asn_type_name_internal.h"
#include "asn_value_internal.h"

using kelm_asn_internal::install_default;
using kelm_asn_internal::value_source;

namespace {

// Keeps the top n bits of an octet, for n from 0 to 7 (0 keeps all).
constexpr unsigned char kKeepTopBits[8] = {0xFF, 0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0xFE};
// Clears the low n bits of an octet, for n from 0 to 7.
constexpr unsigned char kClearLowBits[8] = {0xFF, 0xFE, 0xFC, 0xF8, 0xF0, 0xE0, 0xC0, 0x80};

} // namespace

kelm_asn_bitstring::kelm_asn_bitstring(security_t sec)
    : kelm_asn_primitive(sec), bits(sec), count(0) {
    kelm_store_type_name(type_name, "BITSTRING");
    tag = 3;
    tag_class = 0;
    primitive_permitted = 1;
    constructed_permitted = 1;
}

kelm_asn_bitstring::~kelm_asn_bitstring() = default;

unsigned int kelm_asn_bitstring::set_value(const unsigned char* bit_octets,
                                           unsigned int bit_count) {
    invalidate_encoding();
    bits.clear();
    count = static_cast<unsigned char>(bit_count % 8);
    bits.append(bit_octets, bit_count / 8);
    if (count != 0)
        bits.append(static_cast<unsigned char>(bit_octets[bit_count / 8] & kKeepTopBits[count]));
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_bitstring::get_value(unsigned char*& bit_octets,
                                           unsigned int& bit_count) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_bitstring* source = value_source(*this, status);
    if (source == nullptr)
        return status;
    const unsigned int octets = source->bits.used();
    bit_octets = source->bits.storage;
    bit_count = source->count == 0 ? octets * 8 : octets * 8 - 8 + source->count;
    return KELM_ASN_OK;
}

unsigned int kelm_asn_bitstring::encode_value(kelm_buffer_t& output) const {
    output.append(count);
    output.append(bits);
    return KELM_ASN_OK;
}

unsigned int kelm_asn_bitstring::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    bits.clear();
    count = 0;
    if (!constructed) {
        // A count octet with no bit octets after it must be 0 (X.690 8.6.2.3); refusing it also
        // keeps the bit count that get_value reports from underflowing.
        if (length == 0 || input.cursor[0] > 7 || (length == 1 && input.cursor[0] != 0))
            return KELM_ASN_BAD_BITSTRING;
        count = input.cursor[0];
        bits.append(input.cursor + 1, length - 1);
        input.cursor += length;
        input.remaining -= length;
    } else {
        const unsigned int status = decode_segments(input, length);
        if (status != KELM_ASN_OK)
            return status;
    }
    if (count != 0 && bits.used() != 0)
        bits.storage[bits.used() - 1] &= kClearLowBits[count];
    return KELM_ASN_OK;
}

// Constructed form (X.690 8.6.3): segments are read by a BIT STRING of this object's tag from a
// copy of the input limited to the contents, or to the end-of-contents mark for an indefinite
// length. Only the last segment may have a non-zero count octet.
unsigned int kelm_asn_bitstring::decode_segments(kelm_r_buffer_t& input, unsigned int length) {
    kelm_asn_bitstring segment(security);
    segment.set_tag(tag);
    segment.set_class(tag_class);
    kelm_r_buffer_t contents = input;
    if (!indefinite)
        contents.remaining = length;
    unsigned int segments = 0;
    for (;;) {
        if (indefinite ? check_EOC(contents) == 1 : contents.remaining == 0)
            break;
        if (!indefinite && count != 0)
            return KELM_ASN_BAD_BITSTRING_PADDING;
        const unsigned int status = segment.asnread(contents);
        if (status != KELM_ASN_OK)
            return status;
        unsigned char* octets = nullptr;
        unsigned int bit_count = 0;
        segment.get_value(octets, bit_count);
        count = static_cast<unsigned char>((8 - bit_count % 8) % 8);
        bits.append(octets, (bit_count + 7) / 8);
        ++segments;
    }
    if (segments == 0)
        return KELM_ASN_BAD_BITSTRING;
    if (indefinite) {
        input.cursor = contents.cursor;
        input.remaining = contents.remaining;
    } else {
        input.cursor += length;
        input.remaining -= length;
    }
    return KELM_ASN_OK;
}

int kelm_asn_bitstring::set_default_value(kelm_asn_object* fallback) {
    return kelm_asn_object::set_default_value(fallback);
}

unsigned int kelm_asn_bitstring::set_default_value(const unsigned char* bit_octets,
                                                   unsigned int bit_count) {
    return install_default(*this, bit_octets, bit_count);
}

int kelm_asn_bitstring::set_secure(security_t sec) {
    bits.security = sec;
    return kelm_asn_object::set_secure(sec);
}

kelm_asn_namedbits::kelm_asn_namedbits(security_t sec) : kelm_asn_bitstring(sec) {}

kelm_asn_namedbits::~kelm_asn_namedbits() = default;

unsigned int kelm_asn_namedbits::set_bit(unsigned int bit, int on) {
    if (!is_present())
        bits.clear();
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    const unsigned int octet = bit / 8;
    const unsigned char mask = static_cast<unsigned char>(0x80 >> (bit % 8));
    const unsigned char last_used = static_cast<unsigned char>(7 - bit % 8);
    if (on) {
        if (octet >= bits.used()) {
            while (bits.used() <= octet)
                bits.append(static_cast<unsigned char>(0x00));
            count = last_used;
        } else if (count > last_used) {
            count = last_used;
        }
        bits.storage[octet] |= mask;
    } else if (octet < bits.used()) {
        bits.storage[octet] &= static_cast<unsigned char>(~mask);
    }
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_namedbits::get_bit(unsigned int bit, int& on) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_bitstring* source = value_source<kelm_asn_bitstring>(*this, status);
    if (source == nullptr)
        return status;
    const kelm_buffer_t& stored = stored_bits(*source);
    const unsigned int octet = bit / 8;
    on = octet < stored.used() && (stored.storage[octet] & (0x80 >> (bit % 8))) ? 1 : 0;
    return KELM_ASN_OK;
}

// Named bits are written in their distinguished form (X.690 11.2.2): trailing zero octets are
// dropped, and the count octet is recomputed from the last octet. Kept for compatibility with
// existing buffers: the test order below never yields 2 (an octet ending in binary 100 gets 1),
// and an octet whose bit 0 is set keeps the count octet it had.
unsigned int kelm_asn_namedbits::asnwrite(kelm_buffer_t& output) const {
    if (is_optional() && !is_present())
        return KELM_ASN_OK;
    if (is_defaultable() && is_default_value())
        return KELM_ASN_OK;
    if (!is_present() && !is_defaultable())
        return KELM_ASN_VALUE_MISSING;
    const unsigned int octets_before = bits.used();
    const unsigned char count_before = count;
    while (bits.used() > 0 && bits.storage[bits.used() - 1] == 0x00) {
        bits.truncate(bits.used() - 1);
        count = 0;
    }
    if (bits.used() > 0) {
        const unsigned char last = bits.storage[bits.used() - 1];
        if ((last & 0x7F) == 0)
            count = 7;
        else if ((last & 0x3F) == 0)
            count = 6;
        else if ((last & 0x1F) == 0)
            count = 5;
        else if ((last & 0x0F) == 0)
            count = 4;
        else if ((last & 0x07) == 0)
            count = 3;
        else if ((last & 0x01) == 0)
            count = 1;
    }
    if (bits.used() != octets_before || count != count_before)
        encoding_valid = 0;
    return kelm_asn_object::asnwrite(output);
}
