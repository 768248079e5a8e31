// The text field adapter.
#include "asn_utf8string.h"

#include <cstdlib>
#include <cstring>

#include "asn_type_name_internal.h"
#include "kelmz_internal.h"

kelmasnUTF8String::kelmasnUTF8String(security_t sec) : kelm_asn_UTF8String(sec) {
    kelm_store_type_name(type_name, "kelmUTF8string");
}

kelmasnUTF8String::~kelmasnUTF8String() = default;

int kelmasnUTF8String::set_default_value(kelm_asn_object* value) {
    return kelm_asn_octetstring::set_default_value(value);
}

int kelmasnUTF8String::set_default_value() {
    return static_cast<int>(kelm_asn_octetstring::set_value(nullptr, 0));
}

unsigned int kelmasnUTF8String::set_value(const char* text) {
    if (text == nullptr || text[0] == '\0')
        return kelm_asn_octetstring::set_value(nullptr, 0);
    if (security != KELM_SECURITY_LOCAL_CODESET) {
        kelm_asn_octetstring::set_value(reinterpret_cast<const unsigned char*>(text),
                                        static_cast<unsigned int>(std::strlen(text)));
        return KELM_ASN_OK;
    }
    const ZLCConstString_7_0_0 local(text);
    const ZUTF8String_7_0_0 utf8(local);
    kelm_asn_octetstring::set_value(reinterpret_cast<const unsigned char*>(utf8.getChars()),
                                    utf8.getLength());
    return KELM_ASN_OK;
}

unsigned int kelmasnUTF8String::set_value(const unsigned char* text) {
    return set_value(reinterpret_cast<const char*>(text));
}

unsigned int kelmasnUTF8String::get_value(char*& text) const {
    text = nullptr;
    unsigned char* stored = nullptr;
    unsigned int count = 0;
    if (kelm_asn_octetstring::get_value(stored, count) != KELM_ASN_OK)
        count = 0;
    const char* source = reinterpret_cast<const char*>(stored);
    try {
        if (count != 0 && security == KELM_SECURITY_LOCAL_CODESET) {
            const ZUTF8ConstString_7_0_0 utf8(source, count);
            const ZLCString_7_0_0 local(utf8);
            text = static_cast<char*>(std::malloc(local.getLength() + 1));
            if (text == nullptr)
                return KELM_ASN_OUT_OF_MEMORY;
            std::memcpy(text, local.getChars(), local.getLength() + 1);
            return KELM_ASN_OK;
        }
    } catch (const kelm_asn_memexception&) {
        return KELM_ASN_OUT_OF_MEMORY;
    }
    text = static_cast<char*>(std::malloc(count + 1));
    if (text == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    if (count != 0)
        std::memcpy(text, source, count);
    text[count] = '\0';
    return KELM_ASN_OK;
}

unsigned int kelmasnUTF8String::get_value(unsigned char*& text) const {
    char* chars = nullptr;
    const unsigned int status = get_value(chars);
    text = reinterpret_cast<unsigned char*>(chars);
    return status;
}
