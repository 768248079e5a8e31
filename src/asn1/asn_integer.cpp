// INTEGER (X.690 8.3): minimal two's-complement octets in the cache and a 32-bit value beside.
#include "asn_primitives.h"
#include "asn_type_name_internal.h"
#include "asn_value_internal.h"

using kelm_asn_internal::install_default;
using kelm_asn_internal::value_source;

kelm_asn_integer::kelm_asn_integer(security_t sec)
    : kelm_asn_primitive(sec), value(0), int_valid(0) {
    kelm_store_type_name(type_name, "INTEGER");
    tag = 2;
    tag_class = 0;
    primitive_permitted = 1;
}

kelm_asn_integer::~kelm_asn_integer() = default;

// Kept for compatibility with existing buffers: the shift is taken modulo 32, so for more than
// four octets (possible only after a leading 0x00) the octets further than four from the end fold
// onto lower octets, and a leading 0x00 contributes nothing.
void kelm_asn_integer::compute_value() {
    const unsigned int n = encoding.used();
    const unsigned char* octets = encoding.storage;
    if (n > 4 && octets[0] != 0x00) {
        int_valid = 0;
        return;
    }
    int_valid = 1;
    unsigned int word = 0;
    for (unsigned int i = 0; i < n; ++i)
        word |= static_cast<unsigned int>(octets[i]) << (((n - 1 - i) * 8) % 32);
    if (n > 0 && n < 4 && (octets[0] & 0x80))
        word |= ~0u << (n * 8);
    value = static_cast<int>(word);
}

unsigned int kelm_asn_integer::set_value(int new_value) {
    invalidate_encoding();
    // Built on the stack and appended as one block: the cache then grows once, to 64 bytes.
    unsigned char octets[5];
    unsigned int n = 0;
    const bool negative = new_value < 0;
    const unsigned int word = static_cast<unsigned int>(new_value);
    const unsigned char skip = negative ? 0xFF : 0x00;
    int shift = 24;
    while (shift >= 0 && static_cast<unsigned char>(word >> shift) == skip)
        shift -= 8;
    if (shift < 0) {
        octets[n++] = skip; // 0 or -1
    } else {
        const unsigned char first = static_cast<unsigned char>(word >> shift);
        if (!negative && (first & 0x80))
            octets[n++] = 0x00;
        if (negative && !(first & 0x80))
            octets[n++] = 0xFF;
        for (; shift >= 0; shift -= 8)
            octets[n++] = static_cast<unsigned char>(word >> shift);
    }
    encoding.clear();
    encoding.append(octets, n);
    value = new_value;
    int_valid = 1;
    encoding_valid = 1;
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_integer::set_value(const unsigned char* octets, unsigned int length) {
    invalidate_encoding();
    value = 0;
    encoding.clear();
    encoding.append(octets, length);
    compute_value();
    encoding_valid = 1;
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_integer::get_value(int& result) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_integer* source = value_source(*this, status);
    if (source == nullptr)
        return status;
    if (source != this)
        return source->get_value(result);
    if (!int_valid)
        return KELM_ASN_INTEGER_RANGE;
    result = value;
    return KELM_ASN_OK;
}

unsigned int kelm_asn_integer::get_value(unsigned char*& octets, unsigned int& length) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_integer* source = value_source(*this, status);
    if (source == nullptr)
        return status;
    octets = source->encoding.storage;
    length = source->encoding.used();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_integer::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    encoding.clear();
    int_valid = 0;
    encoding.append(input.cursor, length);
    input.cursor += length;
    input.remaining -= length;
    compute_value();
    encoding_valid = 1;
    return KELM_ASN_OK;
}

// The contents octets already are the cache.
unsigned int kelm_asn_integer::encode_value(kelm_buffer_t&) const {
    return KELM_ASN_OK;
}

// The contents octets live in the cache itself.
unsigned int kelm_asn_integer::get_encoding() const {
    return get_encoding_kept_in_cache();
}

int kelm_asn_integer::set_default_value(kelm_asn_object* fallback) {
    return kelm_asn_object::set_default_value(fallback);
}

unsigned int kelm_asn_integer::set_default_value(int fallback) {
    return install_default(*this, fallback);
}

unsigned int kelm_asn_integer::set_default_value(const unsigned char* octets, unsigned int length) {
    return install_default(*this, octets, length);
}

int kelm_asn_integer::set_secure(security_t sec) {
    return kelm_asn_object::set_secure(sec);
}
