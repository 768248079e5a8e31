// OCTET STRING (X.690 8.7), primitive or constructed from segments.
#include "asn_der.h"
#include "asn_primitives.h"
#include "asn_type_name_internal.h"
#include "asn_value_internal.h"

using kelm_asn_internal::install_default;
using kelm_asn_internal::value_source;

kelm_asn_octetstring::kelm_asn_octetstring(security_t sec) : kelm_asn_primitive(sec) {
    kelm_store_type_name(type_name, "OCTETSTRING");
    tag = 4;
    tag_class = 0;
    primitive_permitted = 1;
    constructed_permitted = 1;
    indefinite_permitted = 1;
}

kelm_asn_octetstring::~kelm_asn_octetstring() = default;

void kelm_asn_octetstring::store_contents(const unsigned char* octets, unsigned int length) {
    encoding.clear();
    encoding.append(octets, length);
    encoding.append(static_cast<unsigned char>(0x00));
    encoding.truncate(length);
}

unsigned int kelm_asn_octetstring::set_value(const unsigned char* octets, unsigned int length) {
    invalidate_encoding();
    store_contents(octets, length);
    encoding_valid = 1;
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_octetstring::get_value(unsigned char*& octets, unsigned int& length) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_octetstring* source = value_source(*this, status);
    if (source == nullptr)
        return status;
    octets = source->encoding.storage;
    length = source->encoding.used();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_octetstring::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    if (!constructed) {
        store_contents(input.cursor, length);
        input.cursor += length;
        input.remaining -= length;
        encoding_valid = 1;
        return KELM_ASN_OK;
    }
    // Constructed form (X.690 8.7.3): the segments' octets are concatenated. The segments are
    // read by an OCTET STRING of this object's tag from a copy of the input limited to the
    // contents, or running to the end-of-contents mark for an indefinite length.
    encoding.clear();
    kelm_asn_octetstring segment(security);
    segment.set_tag(tag);
    segment.set_class(tag_class);
    kelm_r_buffer_t contents = input;
    if (!indefinite)
        contents.remaining = length;
    for (;;) {
        if (indefinite ? check_EOC(contents) == 1 : contents.remaining == 0)
            break;
        const unsigned int status = segment.asnread(contents);
        if (status != KELM_ASN_OK)
            return status;
        unsigned char* octets = nullptr;
        unsigned int count = 0;
        segment.get_value(octets, count);
        encoding.append(octets, count);
    }
    const unsigned int total = encoding.used();
    encoding.append(static_cast<unsigned char>(0x00));
    encoding.truncate(total);
    if (indefinite) {
        input.cursor = contents.cursor;
        input.remaining = contents.remaining;
    } else {
        input.cursor += length;
        input.remaining -= length;
    }
    encoding_valid = 1;
    return KELM_ASN_OK;
}

// The contents octets already are the cache.
unsigned int kelm_asn_octetstring::encode_value(kelm_buffer_t&) const {
    return KELM_ASN_OK;
}

// The contents octets live in the cache itself.
unsigned int kelm_asn_octetstring::get_encoding() const {
    return get_encoding_kept_in_cache();
}

int kelm_asn_octetstring::set_default_value(kelm_asn_object* fallback) {
    return kelm_asn_object::set_default_value(fallback);
}

unsigned int kelm_asn_octetstring::set_default_value(const unsigned char* octets,
                                                     unsigned int length) {
    return install_default(*this, octets, length);
}

int kelm_asn_octetstring::set_secure(security_t sec) {
    return kelm_asn_object::set_secure(sec);
}
