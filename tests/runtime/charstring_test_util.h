// Helpers shared by the character-string tests: the getters and the raw setters as tables, and
// bytes in and out of a character string.
#ifndef KELMASN_TEST_CHARSTRING_TEST_UTIL_H
#define KELMASN_TEST_CHARSTRING_TEST_UTIL_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "asn_test_util.h"
#include "asnbase.h"

namespace charstring_test {

using kelm_test::Bytes;

// The octets a buffer has written.
inline Bytes written(const kelm_buffer_t& buffer) {
    return Bytes(buffer.cursor, buffer.cursor + buffer.used());
}

// The stored octets of a character string (through the OCTET STRING getter).
inline Bytes stored(const kelm_asn_charstring& value) {
    unsigned char* octets = nullptr;
    unsigned int length = 0;
    if (value.kelm_asn_octetstring::get_value(octets, length) != 0)
        return Bytes{0xEE, 0xEE}; // no value: never equal to an expected content
    return Bytes(octets, octets + length);
}

// A read cursor over `bytes`, which must outlive it.
inline kelm_r_buffer_t cursor_over(Bytes& bytes) {
    return kelm_r_buffer_t(bytes.data(), static_cast<unsigned int>(bytes.size()));
}

// A NUL-terminated copy of `text`, for the char* setters.
inline std::vector<char> c_text(const std::string& text) {
    std::vector<char> out(text.begin(), text.end());
    out.push_back('\0');
    return out;
}

// One getter: its name, the code set it reads as, and the call.
struct Getter {
    const char* name;
    unsigned int codeset;
    unsigned int (kelm_asn_charstring::*read)(kelm_buffer_t&) const;
};

// In the order of the read-conversion matrix's columns.
inline const std::vector<Getter>& getters() {
    static const std::vector<Getter> all = {
        {"get_value_IA5", 22, &kelm_asn_charstring::get_value_IA5},
        {"get_value_printable", 19, &kelm_asn_charstring::get_value_printable},
        {"get_value_visible", 26, &kelm_asn_charstring::get_value_visible},
        {"get_value_T61", 20, &kelm_asn_charstring::get_value_T61},
        {"get_value_BMP", 30, &kelm_asn_charstring::get_value_BMP},
        {"get_value_Univ", 28, &kelm_asn_charstring::get_value_Univ},
        {"get_value_UTF8", 12, &kelm_asn_charstring::get_value_UTF8},
    };
    return all;
}

// The setter that stores octets unchanged in `codeset` (set_value_IA5 without conversion for
// 22), given a cursor.
inline unsigned int store_raw(kelm_asn_charstring& value, unsigned int codeset, Bytes octets) {
    kelm_r_buffer_t in = cursor_over(octets);
    switch (codeset) {
    case 12:
        return value.set_value_UTF8(in);
    case 19:
        return value.set_value_printable(in);
    case 20:
        return value.set_value_T61(in);
    case 22:
        return value.set_value_IA5(in, 0);
    case 26:
        return value.set_value_visible(in);
    case 28:
        return value.set_value_Univ(in);
    case 30:
        return value.set_value_BMP(in);
    }
    return 0xDEADu;
}

// One class of the family, made fresh.
struct StringClass {
    const char* name;
    std::function<std::unique_ptr<kelm_asn_charstring>()> make;
};

template <class T> StringClass string_class(const char* name) {
    return {name, [] { return std::unique_ptr<kelm_asn_charstring>(new T(KELM_SECURITY_PLAIN)); }};
}

} // namespace charstring_test

#endif
