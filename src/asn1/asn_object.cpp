// The object core: state flags, the contents cache, defaults, and the tag-length-value frame.
#include <cstring>

#include "asn_der.h"
#include "asn_der_internal.h"
#include "asn_object.h"
#include "asn_source_site.h"
#include "asn_type_name_internal.h"

namespace {

// The positions that the refusals of this file report. Existing callers match these values in
// the exception line: they must never change, whatever becomes of this file's layout.
// A value object being copied.
constexpr kelm_source_site kObjectCopySite = {"src/asn1/asn_object.cpp", 42};
// A value object being assigned.
constexpr kelm_source_site kObjectAssignSite = {"src/asn1/asn_object.cpp", 46};

thread_local unsigned int decode_depth = 0;

// Appends "Y" or "N".
void append_flag(kelm_buffer_t& out, int flag) {
    out.append(flag ? "Y" : "N");
}

} // namespace

kelm_asn_nesting_guard::kelm_asn_nesting_guard() : admitted_(decode_depth < KELM_ASN_MAX_NESTING) {
    if (admitted_)
        ++decode_depth;
}

kelm_asn_nesting_guard::~kelm_asn_nesting_guard() {
    if (admitted_)
        --decode_depth;
}

unsigned int kelm_asn_nesting_guard::depth() {
    return decode_depth;
}

kelm_asn_object::kelm_asn_object(security_t sec)
    : encoding(sec), parent(nullptr), default_value(nullptr), optional(0), defaultable(0),
      value_valid(0), encoding_valid(0), security(sec), constructed(0), indefinite(0),
      generate_constructed(0), tag_class(0), tag(0), primitive_permitted(0),
      constructed_permitted(0), indefinite_permitted(0), preread(nullptr), postread(nullptr) {
    kelm_store_type_name(type_name, "OBJECT");
    kelm_asn_object::invalidate_value(KELM_INVALIDATE_NOTIFY);
}

kelm_asn_object::kelm_asn_object(const kelm_asn_object&) : encoding(KELM_SECURITY_PLAIN) {
    throw kelm_asn_unsupportederror(kObjectCopySite.file, kObjectCopySite.line,
                                    "Can't copy asn_objects");
}

kelm_asn_object& kelm_asn_object::operator=(const kelm_asn_object&) {
    throw kelm_asn_unsupportederror(kObjectAssignSite.file, kObjectAssignSite.line,
                                    "Can't assign asn_objects");
}

kelm_asn_object::~kelm_asn_object() {
    delete default_value;
    default_value = nullptr;
    kelm_store_type_name(type_name, "Deleted");
}

kelm_asn_primitive::~kelm_asn_primitive() = default;

// The bytes of strncpy into the field less its last octet (at most 16 characters, then zeros),
// in three steps whose lengths are known before copying.
void kelm_asn_object::set_type_name(const char* name) {
    const size_t n = strnlen(name, sizeof type_name - 1);
    std::memcpy(type_name, name, n);
    std::memset(type_name + n, 0, sizeof type_name - n);
}

int kelm_asn_object::check_valid(int) {
    return 0;
}

void kelm_asn_object::invalidate_encoding() const {
    encoding_valid = 0;
    if (parent != nullptr)
        parent->invalidate_encoding();
}

void kelm_asn_object::invalidate_value(invalidate_t mode) {
    value_valid = 0;
    invalidate_encoding();
    if (parent != nullptr && mode != KELM_INVALIDATE_LOCAL)
        parent->check_valid(0);
}

void kelm_asn_object::set_value_valid() {
    value_valid = 1;
    if (parent != nullptr)
        parent->check_valid(0);
}

int kelm_asn_object::check_type(unsigned int tag_number, int tag_class_number) const {
    return tag_number == tag && tag_class_number == tag_class ? 1 : 0;
}

int kelm_asn_object::set_default_value(kelm_asn_object* value) {
    defaultable = 0;
    invalidate_encoding();
    delete default_value;
    default_value = value;
    if (value != nullptr)
        value->set_parent(this);
    defaultable = 1;
    return 0;
}

unsigned int kelm_asn_object::get_encoding(kelm_buffer_t& output) const {
    const unsigned int status = get_encoding();
    if (status != KELM_ASN_OK)
        return status;
    output.append(encoding);
    return KELM_ASN_OK;
}

unsigned int kelm_asn_object::fill_cache_from_value() const {
    encoding.clear();
    unsigned int status;
    if (is_present())
        status = encode_value(encoding);
    else if (default_value != nullptr)
        status = default_value->get_encoding(encoding);
    else
        status = KELM_ASN_VALUE_MISSING;
    if (status != KELM_ASN_OK)
        return status;
    encoding_valid = 1;
    return KELM_ASN_OK;
}

unsigned int kelm_asn_object::get_encoding_kept_in_cache() const {
    if (encoding_valid)
        return KELM_ASN_OK;
    if (is_present()) {
        encoding_valid = 1;
        return KELM_ASN_OK;
    }
    return fill_cache_from_value();
}

unsigned int kelm_asn_object::get_encoding() const {
    if (encoding_valid)
        return KELM_ASN_OK;
    return fill_cache_from_value();
}

int kelm_asn_object::emptyi() {
    return 0;
}

unsigned int kelm_asn_object::get_child_count() const {
    throw "get_child_count() invoked on non-composite object";
}

int kelm_asn_object::encoding_primitive_permitted() const {
    return primitive_permitted;
}
int kelm_asn_object::encoding_constructed_permitted() const {
    return constructed_permitted;
}
int kelm_asn_object::encoding_indefinite_permitted() const {
    return indefinite_permitted;
}
int kelm_asn_object::is_constructed() const {
    return constructed;
}
int kelm_asn_object::is_indefinite_length() const {
    return indefinite;
}
int kelm_asn_object::is_polymorphic() const {
    return 0;
}
int kelm_asn_object::should_generate_constructed() const {
    return generate_constructed;
}

int kelm_asn_object::set_class(int tag_class_number) {
    tag_class = tag_class_number;
    if (encoding_valid)
        invalidate_encoding();
    return 0;
}

int kelm_asn_object::set_tag(unsigned int tag_number) {
    tag = tag_number;
    if (encoding_valid)
        invalidate_encoding();
    return 0;
}

unsigned int kelm_asn_object::display(kelm_buffer_t& output) const {
    if (is_present()) {
        output.append("OBJECT(tag=");
        output.append_int(static_cast<int>(tag));
        output.append(", class=");
        output.append_int(tag_class);
        output.append(")");
        return KELM_ASN_OK;
    }
    if (!is_defaultable() || default_value == nullptr)
        return KELM_ASN_VALUE_MISSING;
    output.append("Default:");
    return default_value->display(output);
}

int kelm_asn_object::empty() {
    emptyi();
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    check_valid(0);
    return 0;
}

int kelm_asn_object::normalize() {
    return 0;
}
int kelm_asn_object::is_optional() const {
    return optional;
}
int kelm_asn_object::is_defaultable() const {
    return defaultable;
}
int kelm_asn_object::is_encoding_valid() const {
    return encoding_valid;
}
kelm_asn_object* kelm_asn_object::get_default_value() const {
    return default_value;
}

int kelm_asn_object::is_default_value() const {
    if (!is_defaultable())
        return 0;
    if (!is_present())
        return 1;
    if (get_encoding() != KELM_ASN_OK || default_value == nullptr)
        return 0;
    kelm_buffer_t default_encoding(KELM_SECURITY_PLAIN);
    if (default_value->get_encoding(default_encoding) != KELM_ASN_OK)
        return 0;
    return encoding == default_encoding;
}

int kelm_asn_object::is_valid(int) const {
    return is_present() || is_defaultable() || is_optional() ? 1 : 0;
}

int kelm_asn_object::is_present() const {
    return value_valid;
}

int kelm_asn_object::set_secure(security_t sec) {
    security = sec;
    encoding.security = sec;
    return 0;
}

unsigned int kelm_asn_object::write_type(kelm_buffer_t& output) const {
    static const unsigned char class_bits[4] = {0x00, 0x40, 0x80, 0xC0};
    unsigned char first = class_bits[tag_class & 3];
    if (should_generate_constructed())
        first |= 0x20;
    if (tag <= 30) {
        output.append(static_cast<unsigned char>(first | tag));
        return KELM_ASN_OK;
    }
    output.append(static_cast<unsigned char>(first | 0x1F));
    unsigned int groups = 1;
    while (groups < 5 && (tag >> (7 * groups)) != 0)
        ++groups;
    for (unsigned int g = groups; g-- > 0;) {
        const unsigned char septet = (tag >> (7 * g)) & 0x7F;
        output.append(static_cast<unsigned char>(g != 0 ? septet | 0x80 : septet));
    }
    return KELM_ASN_OK;
}

unsigned int kelm_asn_object::write_length(kelm_buffer_t& output) const {
    if (!is_encoding_valid())
        return KELM_ASN_BAD_ENCODING;
    const unsigned int n = encoding.used();
    if (n < 128) {
        output.append(static_cast<unsigned char>(n));
        return KELM_ASN_OK;
    }
    const unsigned int octets = n <= 0xFF ? 1 : n <= 0xFFFF ? 2 : n <= 0xFFFFFF ? 3 : 4;
    output.append(static_cast<unsigned char>(0x80 | octets));
    for (unsigned int i = octets; i-- > 0;)
        output.append(static_cast<unsigned char>(n >> (8 * i)));
    return KELM_ASN_OK;
}

unsigned int kelm_asn_object::asnwrite(kelm_buffer_t& output) const {
    const unsigned int mark = output.used();
    if (is_optional() && !is_present())
        return KELM_ASN_OK;
    if (is_defaultable() && is_default_value())
        return KELM_ASN_OK; // a value equal to its default is omitted (X.690 11.5)
    if (!is_present() && !is_defaultable())
        return KELM_ASN_VALUE_MISSING;
    write_type(output);
    unsigned int status = get_encoding();
    if (status == KELM_ASN_OK)
        status = write_length(output);
    if (status != KELM_ASN_OK) {
        output.truncate(mark);
        return status;
    }
    output.append(encoding);
    return KELM_ASN_OK;
}

int kelm_asn_object::operator==(const kelm_asn_object& other) const {
    kelm_buffer_t mine(KELM_SECURITY_PLAIN), theirs(KELM_SECURITY_PLAIN);
    asnwrite(mine);
    other.asnwrite(theirs);
    return mine == theirs;
}

int kelm_asn_object::set_optional(int value) {
    optional = value;
    invalidate_encoding();
    return 0;
}

int kelm_asn_object::set_empty_permitted(int) {
    return 0;
}

int kelm_asn_object::check_encode_flags(int expected) const {
    if ((is_encoding_valid() != 0) != (expected != 0))
        return 0;
    return check_encode_flags();
}

int kelm_asn_object::check_encode_flags() const {
    return 1;
}

unsigned int kelm_asn_object::display_state_flags(kelm_buffer_t& output, int indent) const {
    for (int i = 0; i < indent; ++i)
        output.append(static_cast<unsigned char>(' '));
    output.append(type_name);
    output.append("(valid=");
    append_flag(output, is_valid(0));
    output.append(", present=");
    append_flag(output, is_present());
    output.append(", optional=");
    append_flag(output, is_optional());
    output.append(", defaultable=");
    append_flag(output, is_defaultable());
    output.append(", enc_valid=");
    append_flag(output, is_encoding_valid());
    output.append(")\n");
    return KELM_ASN_OK;
}

unsigned int kelm_asn_object::asnread(kelm_r_buffer_t& input) {
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    constructed = 0;
    indefinite = 0;
    if (preread != nullptr)
        preread(this, input);
    const unsigned int status = read_frame(input);
    if (postread != nullptr)
        postread(this, input, static_cast<int>(status));
    return status;
}

// Reads identifier, length and contents; every failure but a missing end-of-contents puts the
// input back where it was.
unsigned int kelm_asn_object::read_frame(kelm_r_buffer_t& input) {
    unsigned char* const saved_cursor = input.cursor;
    const unsigned int saved_remaining = input.remaining;
    auto restore = [&](unsigned int status) {
        input.cursor = saved_cursor;
        input.remaining = saved_remaining;
        return status;
    };
    const int absent_allowed = is_optional() || is_defaultable();

    // The identifier reader hands a high-tag position back through the slot after the cursor.
    unsigned char* slots[2] = {input.cursor, nullptr};
    unsigned int remaining = input.remaining;
    unsigned int read_tag = 0, read_constructed = 0, read_class = 0;
    if (kelm_asn_internal::read_identifier(&slots[0], &remaining, &read_tag, &read_constructed,
                                           &read_class) != 0)
        return restore(absent_allowed ? KELM_ASN_OK : KELM_ASN_INPUT_TOO_SHORT);
    unsigned char* cursor = slots[1] != nullptr ? slots[1] + 1 : slots[0];
    if (!check_type(read_tag, static_cast<int>(read_class)))
        return restore(absent_allowed ? KELM_ASN_OK : KELM_ASN_UNEXPECTED_TAG);
    set_tag(read_tag);
    set_class(static_cast<int>(read_class));
    constructed = static_cast<int>(read_constructed);
    if (constructed && !encoding_constructed_permitted())
        return restore(KELM_ASN_CONSTRUCTED_NOT_PERMITTED);
    if (!constructed && !encoding_primitive_permitted())
        return restore(KELM_ASN_PRIMITIVE_NOT_PERMITTED);

    unsigned int definite = 0, length = 0;
    const unsigned int length_status =
        kelm_asn_internal::read_length(&cursor, &remaining, &definite, &length);
    if (length_status != KELM_ASN_OK)
        return restore(length_status);
    indefinite = definite ? 0 : 1;
    if (indefinite && !encoding_indefinite_permitted())
        return restore(KELM_ASN_INDEFINITE_NOT_PERMITTED);
    if (remaining < length)
        return restore(KELM_ASN_INPUT_TOO_SHORT);

    // Only constructed contents can hold further elements: they count against the nesting limit.
    kelm_asn_nesting_guard level;
    if (constructed && !level.admitted())
        return restore(KELM_ASN_BAD_ENCODING);

    input.cursor = cursor;
    input.remaining = remaining;
    const unsigned int status = decode_value(input, length);
    if (status != KELM_ASN_OK) {
        invalidate_value(KELM_INVALIDATE_NOTIFY);
        return restore(status);
    }
    if (indefinite) {
        if (!check_EOC(input)) {
            // Deliberately not restored: the input stays where the contents ended.
            invalidate_value(KELM_INVALIDATE_NOTIFY);
            return KELM_ASN_BAD_ENCODING;
        }
        input.cursor += 2;
        input.remaining -= 2;
    }
    set_value_valid();
    // A container's presence follows from its children: a SEQUENCE whose contents held none of
    // its optional children, or an empty list, stays absent unless it may be empty.
    check_valid(0);
    return KELM_ASN_OK;
}
