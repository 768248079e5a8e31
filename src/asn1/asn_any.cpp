// ANY: an element of any tag kept as raw contents octets, or coded through a syntax object; and
// the element that is always present and writes nothing.
#include "asn_constructed.h"
#include "asn_type_name_internal.h"

kelm_asn_any::kelm_asn_any(security_t sec)
    : kelm_asn_object(sec), contents(sec), syntax(nullptr), preparse(nullptr), preencode(nullptr) {
    kelm_store_type_name(type_name, "ANY");
    primitive_permitted = 1;
    constructed_permitted = 1;
    indefinite_permitted = 0;
}

kelm_asn_any::~kelm_asn_any() = default;

unsigned int kelm_asn_any::set_value(const unsigned char* octets, unsigned int length) {
    if (syntax != nullptr)
        return KELM_ASN_ANY_WITHOUT_VALUE;
    invalidate_encoding();
    contents.clear();
    contents.append(octets, length);
    set_value_valid();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_any::get_value(unsigned char*& octets, unsigned int& length) const {
    if (syntax != nullptr)
        return KELM_ASN_ANY_WITHOUT_VALUE;
    if (!is_present() && !is_defaultable())
        return KELM_ASN_VALUE_MISSING;
    octets = contents.storage;
    length = contents.used();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_any::encode_value(kelm_buffer_t& output) const {
    if (syntax != nullptr)
        return KELM_ASN_ANY_WITHOUT_VALUE;
    output.append(contents);
    return KELM_ASN_OK;
}

unsigned int kelm_asn_any::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    if (syntax != nullptr)
        return KELM_ASN_ANY_WITHOUT_VALUE;
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    contents.clear();
    contents.append(input.cursor, length);
    input.cursor += length;
    input.remaining -= length;
    return KELM_ASN_OK;
}

void kelm_asn_any::set_syntax(kelm_asn_object* new_syntax) {
    if (syntax != nullptr) {
        syntax->set_parent(nullptr);
        syntax->invalidate_value(KELM_INVALIDATE_NOTIFY);
    }
    syntax = new_syntax;
    syntax->set_parent(this);
    check_valid(0);
    if (security == KELM_SECURITY_SECURE)
        syntax->set_secure(KELM_SECURITY_SECURE);
}

// Kept for compatibility with existing callers, the way round it has always been: a valid syntax
// makes a present ANY absent, and an invalid one makes an absent ANY present.
int kelm_asn_any::check_valid(int) {
    if (syntax == nullptr)
        return 0;
    const bool syntax_valid = syntax->is_valid(0) != 0;
    if (syntax_valid && is_present())
        invalidate_value(KELM_INVALIDATE_NOTIFY);
    else if (!syntax_valid && !is_present())
        set_value_valid();
    return 0;
}

void kelm_asn_any::invalidate_value(invalidate_t mode) {
    kelm_asn_object::invalidate_value(mode);
}

int kelm_asn_any::check_type(unsigned int, int) const {
    return 1;
}

int kelm_asn_any::set_secure(security_t sec) {
    kelm_asn_object::set_secure(sec);
    contents.security = sec;
    if (sec == KELM_SECURITY_SECURE && syntax != nullptr)
        syntax->set_secure(KELM_SECURITY_SECURE);
    return 0;
}

unsigned int kelm_asn_any::asnread(kelm_r_buffer_t& input) {
    if (preread != nullptr)
        preread(this, input);
    if (preparse != nullptr) {
        const int status = preparse(this);
        if (status != 0)
            return static_cast<unsigned int>(status);
    }
    if (syntax == nullptr) {
        const unsigned int status = kelm_asn_object::asnread(input);
        if (status != KELM_ASN_OK)
            return status;
        // Written back with the constructed bit it was read with.
        generate_constructed = constructed;
        if (postread != nullptr)
            postread(this, input, 0);
        return KELM_ASN_OK;
    }
    const unsigned int status = syntax->asnread(input);
    if (postread != nullptr)
        postread(this, input, static_cast<int>(status));
    return status;
}

unsigned int kelm_asn_any::asnwrite(kelm_buffer_t& output) const {
    if (preencode != nullptr) {
        const int status = preencode(const_cast<kelm_asn_any*>(this));
        if (status != 0)
            return static_cast<unsigned int>(status);
    }
    if (syntax == nullptr)
        return kelm_asn_object::asnwrite(output);
    return syntax->asnwrite(output);
}

kelm_asn_nothing::kelm_asn_nothing(security_t sec) : kelm_asn_primitive(sec) {
    kelm_store_type_name(type_name, "NOTHING");
}

kelm_asn_nothing::~kelm_asn_nothing() = default;

unsigned int kelm_asn_nothing::decode_value(kelm_r_buffer_t&, unsigned int) {
    return 0;
}
unsigned int kelm_asn_nothing::encode_value(kelm_buffer_t&) const {
    return 0;
}
int kelm_asn_nothing::is_valid(int) const {
    return 1;
}
int kelm_asn_nothing::is_present() const {
    return 1;
}
unsigned int kelm_asn_nothing::asnread(kelm_r_buffer_t&) {
    return 0;
}
unsigned int kelm_asn_nothing::asnwrite(kelm_buffer_t&) const {
    return 0;
}
