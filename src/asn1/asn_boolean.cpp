// BOOLEAN (X.690 8.2) and NULL (X.690 8.8).
#include "asn_primitives.h"
#include "asn_type_name_internal.h"
#include "asn_value_internal.h"

using kelm_asn_internal::install_default;
using kelm_asn_internal::value_source;

kelm_asn_boolean::kelm_asn_boolean(security_t sec) : kelm_asn_primitive(sec), value(0) {
    kelm_store_type_name(type_name, "BOOLEAN");
    tag = 1;
    tag_class = 0;
    primitive_permitted = 1;
}

kelm_asn_boolean::~kelm_asn_boolean() = default;

// DER writes TRUE as 0xFF (X.690 11.1).
unsigned int kelm_asn_boolean::encode_value(kelm_buffer_t& output) const {
    output.append(static_cast<unsigned char>(value != 0 ? 0xFF : 0x00));
    return KELM_ASN_OK;
}

unsigned int kelm_asn_boolean::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    if (length != 1)
        return KELM_ASN_BAD_ENCODING;
    value = input.cursor[0] != 0 ? 1 : 0;
    input.cursor += 1;
    input.remaining -= 1;
    return KELM_ASN_OK;
}

unsigned int kelm_asn_boolean::set_value(int new_value) {
    invalidate_encoding();
    value = new_value;
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_boolean::get_value(int& result) const {
    unsigned int status = KELM_ASN_OK;
    const kelm_asn_boolean* source = value_source(*this, status);
    if (source == nullptr)
        return status;
    result = source->value;
    return KELM_ASN_OK;
}

int kelm_asn_boolean::set_default_value(kelm_asn_object* fallback) {
    return kelm_asn_object::set_default_value(fallback);
}

unsigned int kelm_asn_boolean::set_default_value(int fallback) {
    return install_default(*this, fallback);
}

kelm_asn_null::kelm_asn_null(security_t sec) : kelm_asn_primitive(sec) {
    kelm_store_type_name(type_name, "NULL");
    tag = 5;
    tag_class = 0;
    primitive_permitted = 1;
}

kelm_asn_null::~kelm_asn_null() = default;

unsigned int kelm_asn_null::encode_value(kelm_buffer_t&) const {
    return KELM_ASN_OK;
}

unsigned int kelm_asn_null::decode_value(kelm_r_buffer_t&, unsigned int length) {
    return length != 0 ? KELM_ASN_BAD_ENCODING : KELM_ASN_OK;
}

int kelm_asn_null::set_default_value(kelm_asn_object* fallback) {
    return kelm_asn_object::set_default_value(fallback);
}

int kelm_asn_null::is_valid(int) const {
    return 1;
}
int kelm_asn_null::is_present() const {
    return 1;
}
