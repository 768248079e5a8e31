// An untagged CHOICE: the selected alternative is written in its place, and reading tries the
// alternatives in order.
#include "asn_constructed.h"
#include "asn_source_site.h"
#include "asn_type_name_internal.h"

namespace {

// The positions that the refusals of this file report. Existing callers match these values in
// the exception line: they must never change, whatever becomes of this file's layout.
// A CHOICE asked to read its own contents.
constexpr kelm_source_site kChoiceDecodeValueSite = {"src/asn1/asn_choice.cpp", 12};
// A CHOICE asked to write its own contents.
constexpr kelm_source_site kChoiceEncodeValueSite = {"src/asn1/asn_choice.cpp", 16};

} // namespace

kelm_asn_choice::kelm_asn_choice(security_t sec) : kelm_asn_composite(sec), selection(-1) {
    kelm_store_type_name(type_name, "CHOICE");
}

kelm_asn_choice::~kelm_asn_choice() = default;

unsigned int kelm_asn_choice::decode_value(kelm_r_buffer_t&, unsigned int) {
    throw kelm_asn_unsupportederror(kChoiceDecodeValueSite.file, kChoiceDecodeValueSite.line,
                                    "Error: asn_choice::decode_value called");
}

unsigned int kelm_asn_choice::encode_value(kelm_buffer_t&) const {
    throw kelm_asn_unsupportederror(kChoiceEncodeValueSite.file, kChoiceEncodeValueSite.line,
                                    "Error: asn_choice::encode_value called");
}

unsigned int kelm_asn_choice::select(unsigned int index) {
    if (index >= child_count)
        return KELM_ASN_CHOICE_RANGE;
    if (selection == static_cast<int>(index))
        return KELM_ASN_OK;
    selection = static_cast<int>(index);
    invalidate_encoding();
    check_valid(1);
    return KELM_ASN_OK;
}

int kelm_asn_choice::check_valid(int deep) {
    if (selection < 0)
        return 0;
    const bool valid = children[selection]->is_valid(deep) != 0;
    if (valid && !is_present())
        set_value_valid();
    else if (!valid && is_present())
        invalidate_value(KELM_INVALIDATE_CONTAINER);
    return 0;
}

int kelm_asn_choice::is_polymorphic() const {
    return 1;
}

int kelm_asn_choice::set_tag(unsigned int) {
    throw "Attempt to change tag of ASN.1 CHOICE object";
}

int kelm_asn_choice::set_tag_unchecked(unsigned int tag_number) {
    return kelm_asn_object::set_tag(tag_number);
}

int kelm_asn_choice::normalize() {
    return selection < 0 ? 0 : children[selection]->normalize();
}

int kelm_asn_choice::is_encoding_valid() const {
    return selection < 0 ? 0 : children[selection]->is_encoding_valid();
}

int kelm_asn_choice::check_encode_flags(int expected) const {
    return kelm_asn_object::check_encode_flags(expected);
}

int kelm_asn_choice::check_encode_flags() const {
    if (!is_encoding_valid())
        return 1;
    if (selection < 0)
        return 0;
    return children[selection]->check_encode_flags(1) != 0 ? 1 : 0;
}

unsigned int kelm_asn_choice::asnread(kelm_r_buffer_t& input) {
    if (preread != nullptr)
        preread(this, input);
    selection = -1;
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    unsigned int status = KELM_ASN_UNEXPECTED_TAG;
    for (unsigned int i = 0; i < child_count; ++i) {
        if (children[i]->asnread(input) == KELM_ASN_OK) {
            selection = static_cast<int>(i);
            set_value_valid();
            status = KELM_ASN_OK;
            break;
        }
    }
    if (status != KELM_ASN_OK && child_count != 0 && (is_optional() || is_defaultable()))
        status = KELM_ASN_OK;
    if (postread != nullptr)
        postread(this, input, static_cast<int>(status));
    return status;
}

unsigned int kelm_asn_choice::asnwrite(kelm_buffer_t& output) const {
    if (is_optional() && !is_present())
        return KELM_ASN_OK;
    if (is_defaultable() && is_default_value())
        return KELM_ASN_OK;
    if (selection < 0)
        return KELM_ASN_CHOICE_UNSELECTED;
    return children[selection]->asnwrite(output);
}

unsigned int kelm_asn_choice::display_state_flags(kelm_buffer_t& output, int indent) const {
    kelm_asn_object::display_state_flags(output, indent);
    for (unsigned int i = 0; i < child_count; ++i) {
        if (static_cast<int>(i) == selection) {
            for (int s = 0; s < indent + 1; ++s)
                output.append(static_cast<unsigned char>(' '));
            output.append("SELECTED:\n");
        }
        children[i]->display_state_flags(output, indent + 2);
    }
    return KELM_ASN_OK;
}
