// kelm_asn_charstring: the code set, the setters and getters of every code set, text from and to
// the local code set, and the in-place conversions.
#include <cstdint>
#include <cstring>

#include "asn_charstring.h"
#include "asn_charstring_routes.h"
#include "asn_type_name_internal.h"
#include "codeset.h"
#include "codeset_internal.h"

using kelm_charstring::TextPasses;

namespace {

// The octets before the terminating zero; a null pointer gives none.
kelm_r_buffer_t text_octets(char* text) {
    if (text == nullptr)
        return kelm_r_buffer_t();
    return kelm_r_buffer_t(reinterpret_cast<unsigned char*>(text),
                           static_cast<unsigned int>(std::strlen(text)));
}

// True when `octets` lie inside the block `buffer` holds.
bool lies_in(const kelm_r_buffer_t& octets, const kelm_buffer_t& buffer) {
    if (octets.remaining == 0 || buffer.storage == nullptr)
        return false;
    const auto first = reinterpret_cast<std::uintptr_t>(octets.cursor);
    const auto block = reinterpret_cast<std::uintptr_t>(buffer.storage);
    return first >= block && first - block < buffer.capacity;
}

} // namespace

kelm_asn_charstring::kelm_asn_charstring(security_t sec)
    : kelm_asn_octetstring(sec), codeset(KELM_CODESET_NONE), preferred_codeset(KELM_CODESET_NONE) {
    kelm_store_type_name(type_name, "CHARSTRING");
}

kelm_asn_charstring::~kelm_asn_charstring() = default;

int kelm_asn_charstring::set_tag(unsigned int tag_number) {
    return static_cast<int>(set_codeset(tag_number));
}

int kelm_asn_charstring::is_polymorphic() const {
    return 1;
}

int kelm_asn_charstring::check_accepted_codeset(unsigned int) const {
    return 0;
}

int kelm_asn_charstring::check_preferred_codeset(unsigned int number) const {
    return check_accepted_codeset(number);
}

unsigned int kelm_asn_charstring::set_codeset(unsigned int number) {
    if (!check_accepted_codeset(number))
        return KELM_ASN_CODESET_REJECTED;
    invalidate_encoding();
    codeset = number;
    tag = number;
    return KELM_ASN_OK;
}

unsigned int kelm_asn_charstring::get_codeset() const {
    return codeset;
}

// --- storing ---------------------------------------------------------------------------------

void kelm_asn_charstring::replace_value(const kelm_r_buffer_t& octets, unsigned int target) {
    // A cursor over this object's own value is copied out first: storing reuses that block.
    if (lies_in(octets, encoding)) {
        kelm_buffer_t copy(encoding.hooks, encoding.security);
        copy.append(octets);
        replace_value(copy, target);
        return;
    }
    // Room for the octets and the hidden 0x00 is made before anything changes, so that running
    // out of memory leaves the value as it was.
    const unsigned long needed = static_cast<unsigned long>(octets.remaining) + 1;
    if (needed > encoding.capacity)
        encoding.extend(static_cast<unsigned int>(needed - encoding.capacity));
    invalidate_value(KELM_INVALIDATE_NOTIFY);
    set_codeset(target);
    store_contents(octets.cursor, octets.remaining);
    encoding_valid = 1;
    set_value_valid();
}

unsigned int kelm_asn_charstring::store_as(unsigned int target, const kelm_r_buffer_t& octets) {
    if (!check_accepted_codeset(target))
        return KELM_ASN_CODESET_REJECTED;
    replace_value(octets, target);
    return KELM_ASN_OK;
}

bool kelm_asn_charstring::try_ia5_text_as(const kelm_r_buffer_t& ia5, unsigned int target) {
    if (!check_accepted_codeset(target))
        return false;
    kelm_buffer_t converted(encoding.hooks, encoding.security);
    if (kelm_charstring::ia5_to(ia5, target, converted) != KELM_ASN_OK)
        return false;
    replace_value(converted, target);
    return true;
}

unsigned int kelm_asn_charstring::take_ia5_text(const kelm_r_buffer_t& ia5, bool from_local_text) {
    if (preferred_codeset != KELM_CODESET_NONE && try_ia5_text_as(ia5, preferred_codeset))
        return KELM_ASN_OK;
    const TextPasses& passes =
        from_local_text ? kelm_charstring::local_text_passes() : kelm_charstring::ia5_text_passes();
    for (unsigned int i = 0; i < passes.preferred_count; ++i)
        if (check_preferred_codeset(passes.preferred[i]) &&
            try_ia5_text_as(ia5, passes.preferred[i]))
            return KELM_ASN_OK;
    for (unsigned int i = 0; i < passes.accepted_count; ++i)
        if (check_accepted_codeset(passes.accepted[i]) && try_ia5_text_as(ia5, passes.accepted[i]))
            return KELM_ASN_OK;
    return KELM_ASN_UNREPRESENTABLE;
}

// --- reading ---------------------------------------------------------------------------------

unsigned int kelm_asn_charstring::value_to_read(kelm_r_buffer_t& octets,
                                                unsigned int& stored) const {
    unsigned char* data = nullptr;
    unsigned int length = 0;
    const unsigned int status = kelm_asn_octetstring::get_value(data, length);
    if (status != KELM_ASN_OK)
        return status;
    octets = kelm_r_buffer_t(data, length);
    if (is_present()) {
        stored = codeset;
        return KELM_ASN_OK;
    }
    // A default installed from octets is a plain OCTET STRING made with this object's tag, which
    // is the code set its octets were given in.
    const kelm_asn_object* fallback = get_default_value();
    const auto* text = dynamic_cast<const kelm_asn_charstring*>(fallback);
    stored = text != nullptr ? text->get_codeset() : fallback->get_tag();
    return KELM_ASN_OK;
}

unsigned int kelm_asn_charstring::read_as(unsigned int target, kelm_buffer_t& output) const {
    kelm_r_buffer_t octets;
    unsigned int stored = KELM_CODESET_NONE;
    const unsigned int status = value_to_read(octets, stored);
    if (status != KELM_ASN_OK)
        return status;
    return kelm_charstring::read_as(octets, stored, target, output, security);
}

unsigned int kelm_asn_charstring::get_value_IA5(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_IA5, output);
}
unsigned int kelm_asn_charstring::get_value_printable(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_PRINTABLE, output);
}
unsigned int kelm_asn_charstring::get_value_visible(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_VISIBLE, output);
}
unsigned int kelm_asn_charstring::get_value_T61(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_T61, output);
}
unsigned int kelm_asn_charstring::get_value_BMP(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_BMP, output);
}
unsigned int kelm_asn_charstring::get_value_Univ(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_UNIVERSAL, output);
}
unsigned int kelm_asn_charstring::get_value_UTF8(kelm_buffer_t& output) const {
    return read_as(KELM_CODESET_UTF8, output);
}

// --- the raw setters -------------------------------------------------------------------------

unsigned int kelm_asn_charstring::set_value_printable(char* text) {
    return store_as(KELM_CODESET_PRINTABLE, text_octets(text));
}
unsigned int kelm_asn_charstring::set_value_printable(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_PRINTABLE, text);
}
unsigned int kelm_asn_charstring::set_value_visible(char* text) {
    return store_as(KELM_CODESET_VISIBLE, text_octets(text));
}
unsigned int kelm_asn_charstring::set_value_visible(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_VISIBLE, text);
}
unsigned int kelm_asn_charstring::set_value_T61(char* text) {
    return store_as(KELM_CODESET_T61, text_octets(text));
}
unsigned int kelm_asn_charstring::set_value_T61(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_T61, text);
}
unsigned int kelm_asn_charstring::set_value_UTF8(char* text) {
    return store_as(KELM_CODESET_UTF8, text_octets(text));
}
unsigned int kelm_asn_charstring::set_value_UTF8(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_UTF8, text);
}
unsigned int kelm_asn_charstring::set_value_BMP(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_BMP, text);
}
unsigned int kelm_asn_charstring::set_value_Univ(kelm_r_buffer_t& text) {
    return store_as(KELM_CODESET_UNIVERSAL, text);
}

unsigned int kelm_asn_charstring::set_value_BMP(unsigned short* units) {
    unsigned int count = 0;
    while (units != nullptr && units[count] != 0)
        ++count;
    return store_as(KELM_CODESET_BMP,
                    kelm_r_buffer_t(reinterpret_cast<unsigned char*>(units), 2 * count));
}

unsigned int kelm_asn_charstring::set_value_Univ(unsigned int*) {
    return store_as(KELM_CODESET_UNIVERSAL, kelm_r_buffer_t());
}

// --- IA5 and local text ----------------------------------------------------------------------

unsigned int kelm_asn_charstring::set_value_IA5(char* text, int convert) {
    kelm_r_buffer_t octets = text_octets(text);
    return set_value_IA5(octets, convert);
}

unsigned int kelm_asn_charstring::set_value_IA5(kelm_r_buffer_t& text, int convert) {
    if (convert == 0)
        return store_as(KELM_CODESET_IA5, text);
    return take_ia5_text(text, false);
}

unsigned int kelm_asn_charstring::set_value_C(char* text) {
    const kelm_r_buffer_t local = text_octets(text);
    kelm_buffer_t ia5(encoding.hooks, encoding.security);
    kelm_codeset::reserve(ia5, local.remaining);
    for (unsigned int i = 0; i < local.remaining; ++i) {
        // The table is indexed by the local octet taken as signed, plus 128.
        const int index = static_cast<signed char>(local.cursor[i]) + 128;
        const unsigned int mapped = Local2IA5_table[index];
        if (mapped == KELM_CODESET_NO_MAPPING)
            return KELM_ASN_UNREPRESENTABLE;
        ia5.append(static_cast<unsigned char>(mapped));
    }
    return take_ia5_text(ia5, true);
}

unsigned int kelm_asn_charstring::get_value_C(kelm_buffer_t& output, char substitute) const {
    kelm_buffer_t ia5(output.hooks, security == KELM_SECURITY_SECURE ? security : output.security);
    const unsigned int status = get_value_IA5(ia5);
    if (status != KELM_ASN_OK)
        return status;
    for (unsigned int i = 0; i < ia5.used(); ++i) {
        const unsigned int mapped = IA52Local_table[ia5.cursor[i]];
        if (mapped != KELM_CODESET_NO_MAPPING) {
            output.append(static_cast<unsigned char>(mapped));
        } else if (substitute != 0) {
            output.append(static_cast<unsigned char>(substitute));
        } else {
            output.clear();
            return KELM_ASN_UNREPRESENTABLE;
        }
    }
    return KELM_ASN_OK;
}

// --- in-place conversions --------------------------------------------------------------------

unsigned int kelm_asn_charstring::convert_to(unsigned int target) {
    if (!check_accepted_codeset(target))
        return KELM_ASN_CODESET_REJECTED;
    if (!is_present())
        return is_defaultable() ? KELM_ASN_OK : KELM_ASN_VALUE_MISSING;
    if (codeset == target)
        return KELM_ASN_OK;
    kelm_buffer_t converted(encoding.hooks, encoding.security);
    const unsigned int status = read_as(target, converted);
    if (status != KELM_ASN_OK)
        return status;
    replace_value(converted, target);
    return KELM_ASN_OK;
}

unsigned int kelm_asn_charstring::convert2printable() {
    return convert_to(KELM_CODESET_PRINTABLE);
}
unsigned int kelm_asn_charstring::convert2visible() {
    return convert_to(KELM_CODESET_VISIBLE);
}
unsigned int kelm_asn_charstring::convert2T61() {
    return convert_to(KELM_CODESET_T61);
}
unsigned int kelm_asn_charstring::convert2IA5() {
    return convert_to(KELM_CODESET_IA5);
}
unsigned int kelm_asn_charstring::convert2BMP() {
    return convert_to(KELM_CODESET_BMP);
}
unsigned int kelm_asn_charstring::convert2Univ() {
    return convert_to(KELM_CODESET_UNIVERSAL);
}
unsigned int kelm_asn_charstring::convert2UTF8() {
    return convert_to(KELM_CODESET_UTF8);
}
