// The eight character-string types: each is one row of a table (type name, code set, the code
// sets it accepts and prefers, polymorphism), and the directory string adds its CHOICE of
// incoming tags, its preferred code set and its normalisation.
#include <initializer_list>

#include "asn_charstring.h"

namespace {

// A set of code sets: bit n stands for code set n (every code-set number is below 32).
constexpr unsigned int codesets(std::initializer_list<unsigned int> numbers) {
    unsigned int set = 0;
    for (unsigned int n : numbers)
        set |= 1u << n;
    return set;
}

bool holds(unsigned int set, unsigned int number) {
    return number < 32 && ((set >> number) & 1u) != 0;
}

struct StringType {
    // The type name of the dump: the ASN.1 name of the type.
    const char* type_name;
    // The code set (and tag) a new object takes.
    unsigned int initial_codeset;
    unsigned int accepted;
    unsigned int preferred;
    int polymorphic;
};

enum Kind { kIA5, kPrintable, kVisible, kTeletex, kBMP, kUniversal, kUTF8, kDirectory };

constexpr StringType kTypes[] = {
    /* kIA5 */ {"IA5String", KELM_CODESET_IA5, codesets({KELM_CODESET_IA5}),
                codesets({KELM_CODESET_IA5}), 0},
    /* kPrintable */
    {"PrintableString", KELM_CODESET_PRINTABLE, codesets({KELM_CODESET_PRINTABLE}),
     codesets({KELM_CODESET_PRINTABLE}), 1},
    /* kVisible */
    {"VisibleString", KELM_CODESET_VISIBLE, codesets({KELM_CODESET_VISIBLE}),
     codesets({KELM_CODESET_VISIBLE}), 1},
    /* kTeletex */
    {"TeletexString", KELM_CODESET_T61, codesets({KELM_CODESET_T61}), codesets({KELM_CODESET_T61}),
     0},
    /* kBMP */
    {"BMPString", KELM_CODESET_BMP, codesets({KELM_CODESET_BMP}), codesets({KELM_CODESET_BMP}), 0},
    /* kUniversal */
    {"UniversalString", KELM_CODESET_UNIVERSAL, codesets({KELM_CODESET_UNIVERSAL}),
     codesets({KELM_CODESET_UNIVERSAL}), 0},
    /* kUTF8 */
    {"UTF8String", KELM_CODESET_UTF8, codesets({KELM_CODESET_UTF8}), codesets({KELM_CODESET_UTF8}),
     0},
    // A new directory string takes PrintableString, the first code set text is tried in.
    /* kDirectory */
    {"DirectoryString", KELM_CODESET_PRINTABLE,
     codesets({KELM_CODESET_PRINTABLE, KELM_CODESET_VISIBLE, KELM_CODESET_T61,
               KELM_CODESET_UNIVERSAL, KELM_CODESET_BMP, KELM_CODESET_IA5, KELM_CODESET_UTF8}),
     codesets(
         {KELM_CODESET_PRINTABLE, KELM_CODESET_T61, KELM_CODESET_UNIVERSAL, KELM_CODESET_UTF8}),
     1},
};

// The tags a directory string decodes: its alternatives. VisibleString (26) is accepted as a
// code set but not as an incoming tag.
constexpr unsigned int kDirectoryTags =
    codesets({KELM_CODESET_PRINTABLE, KELM_CODESET_T61, KELM_CODESET_BMP, KELM_CODESET_UNIVERSAL,
              KELM_CODESET_UTF8, KELM_CODESET_IA5});

// The order in which normalize offers the value to the preferred code sets: Printable, T.61,
// Visible, IA5, then BMP, UTF-8, Universal.
constexpr unsigned int kNormalizeOrder[] = {
    KELM_CODESET_PRINTABLE, KELM_CODESET_T61,  KELM_CODESET_VISIBLE,  KELM_CODESET_IA5,
    KELM_CODESET_BMP,       KELM_CODESET_UTF8, KELM_CODESET_UNIVERSAL};

// The code sets set_preferred_codeset may choose when the value is not printable.
constexpr unsigned int kChoosablePreferred =
    codesets({KELM_CODESET_UTF8, KELM_CODESET_T61, KELM_CODESET_UNIVERSAL, KELM_CODESET_BMP});

} // namespace

kelm_asn_ia5String::kelm_asn_ia5String(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kIA5].type_name);
    set_codeset(kTypes[kIA5].initial_codeset);
}
kelm_asn_ia5String::~kelm_asn_ia5String() = default;
int kelm_asn_ia5String::is_polymorphic() const {
    return kTypes[kIA5].polymorphic;
}
int kelm_asn_ia5String::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kIA5].accepted, number);
}
int kelm_asn_ia5String::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kIA5].preferred, number);
}

kelm_asn_printableString::kelm_asn_printableString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kPrintable].type_name);
    set_codeset(kTypes[kPrintable].initial_codeset);
}
kelm_asn_printableString::~kelm_asn_printableString() = default;
int kelm_asn_printableString::is_polymorphic() const {
    return kTypes[kPrintable].polymorphic;
}
int kelm_asn_printableString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kPrintable].accepted, number);
}
int kelm_asn_printableString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kPrintable].preferred, number);
}

kelm_asn_visibleString::kelm_asn_visibleString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kVisible].type_name);
    set_codeset(kTypes[kVisible].initial_codeset);
}
kelm_asn_visibleString::~kelm_asn_visibleString() = default;
int kelm_asn_visibleString::is_polymorphic() const {
    return kTypes[kVisible].polymorphic;
}
int kelm_asn_visibleString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kVisible].accepted, number);
}
int kelm_asn_visibleString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kVisible].preferred, number);
}

kelm_asn_teletexString::kelm_asn_teletexString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kTeletex].type_name);
    set_codeset(kTypes[kTeletex].initial_codeset);
}
kelm_asn_teletexString::~kelm_asn_teletexString() = default;
int kelm_asn_teletexString::is_polymorphic() const {
    return kTypes[kTeletex].polymorphic;
}
int kelm_asn_teletexString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kTeletex].accepted, number);
}
int kelm_asn_teletexString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kTeletex].preferred, number);
}

kelm_asn_bmpString::kelm_asn_bmpString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kBMP].type_name);
    set_codeset(kTypes[kBMP].initial_codeset);
}
kelm_asn_bmpString::~kelm_asn_bmpString() = default;
int kelm_asn_bmpString::is_polymorphic() const {
    return kTypes[kBMP].polymorphic;
}
int kelm_asn_bmpString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kBMP].accepted, number);
}
int kelm_asn_bmpString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kBMP].preferred, number);
}

kelm_asn_universalString::kelm_asn_universalString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kUniversal].type_name);
    set_codeset(kTypes[kUniversal].initial_codeset);
}
kelm_asn_universalString::~kelm_asn_universalString() = default;
int kelm_asn_universalString::is_polymorphic() const {
    return kTypes[kUniversal].polymorphic;
}
int kelm_asn_universalString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kUniversal].accepted, number);
}
int kelm_asn_universalString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kUniversal].preferred, number);
}

kelm_asn_UTF8String::kelm_asn_UTF8String(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kUTF8].type_name);
    set_codeset(kTypes[kUTF8].initial_codeset);
}
kelm_asn_UTF8String::~kelm_asn_UTF8String() = default;
int kelm_asn_UTF8String::is_polymorphic() const {
    return kTypes[kUTF8].polymorphic;
}
int kelm_asn_UTF8String::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kUTF8].accepted, number);
}
int kelm_asn_UTF8String::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kUTF8].preferred, number);
}

kelm_asn_directoryString::kelm_asn_directoryString(security_t sec) : kelm_asn_charstring(sec) {
    set_type_name(kTypes[kDirectory].type_name);
    set_codeset(kTypes[kDirectory].initial_codeset);
}
kelm_asn_directoryString::~kelm_asn_directoryString() = default;
int kelm_asn_directoryString::is_polymorphic() const {
    return kTypes[kDirectory].polymorphic;
}
int kelm_asn_directoryString::check_accepted_codeset(unsigned int number) const {
    return holds(kTypes[kDirectory].accepted, number);
}
int kelm_asn_directoryString::check_preferred_codeset(unsigned int number) const {
    return holds(kTypes[kDirectory].preferred, number);
}

int kelm_asn_directoryString::check_type(unsigned int tag_number, int tag_class_number) const {
    return tag_class_number == tag_class && holds(kDirectoryTags, tag_number) ? 1 : 0;
}

int kelm_asn_directoryString::normalize() {
    if (!is_present())
        return is_defaultable() ? 0 : static_cast<int>(KELM_ASN_VALUE_MISSING);
    if (preferred_codeset != KELM_CODESET_NONE) {
        // A value without a form in the preferred code set keeps its own, which still encodes.
        convert_to(preferred_codeset);
        return 0;
    }
    for (unsigned int number : kNormalizeOrder)
        if (check_preferred_codeset(number) && convert_to(number) == KELM_ASN_OK)
            return 0;
    // None of them holds the value (a VisibleString value): it keeps its code set, which the
    // class accepts, and still encodes.
    return 0;
}

unsigned int kelm_asn_directoryString::set_preferred_codeset(unsigned int number) {
    const unsigned int printable = convert2printable();
    if (printable == KELM_ASN_OK)
        return KELM_ASN_OK;
    if (!holds(kChoosablePreferred, number))
        return printable;
    const unsigned int status = convert_to(number);
    if (status == KELM_ASN_OK)
        preferred_codeset = number;
    return status;
}
