// Value adapters, the message base with its header, and the string helpers.
#include "asnutils.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "asn_copies_internal.h"
#include "asn_source_site.h"

const char* const NULL_STRING = "";

namespace {

constexpr unsigned char kHeaderLength = 4;

// The positions that the memory exceptions of this file report. Existing callers, their logs and
// the tools that read them match these values in the exception line: they must never change,
// whatever becomes of this file's layout.
// A failed allocation of the message base's default value.
constexpr kelm_source_site kAsnbaseDefaultValueSite = {"src/asn1/asnutils.cpp", 44};
// A failed allocation of the copy of an OCTET STRING's octets.
constexpr kelm_source_site kOctetStringCopySite = {"src/asn1/asnutils.cpp", 204};
// A failed allocation of the copy of a text by the string helper.
constexpr kelm_source_site kStringCopySite = {"src/asn1/asnutils.cpp", 36};
// A failed allocation of the empty text that the string helper returns for a missing value.
constexpr kelm_source_site kEmptyStringSite = {"src/asn1/asnutils.cpp", 46};

constexpr unsigned char kMagic1 = 0xAC;
constexpr unsigned char kMagic2 = 0xDC;

// The header checks shared by loadObject and get_encoded_version: a length above 4 (in its low
// 32 bits) and the two magic octets.
bool header_magic_ok(const kelm_asn_buffer_t& buffer) {
    return static_cast<unsigned int>(buffer.length) > 4 && buffer.data != nullptr &&
           buffer.data[2] == kMagic1 && buffer.data[3] == kMagic2;
}

} // namespace

// --- kelm_asnbase ----------------------------------------------------------------------------

kelm_asnbase::kelm_asnbase(security_t sec) : kelm_asn_sequence(sec) {}

kelm_asnbase::~kelm_asnbase() = default;

int kelm_asnbase::set_default_value(kelm_asn_object* value) {
    return kelm_asn_object::set_default_value(value);
}

int kelm_asnbase::set_default_value() {
    kelm_asnbase* fallback = new (std::nothrow) kelm_asnbase(KELM_SECURITY_PLAIN);
    if (fallback == nullptr)
        throw kelm_asn_memexception(kAsnbaseDefaultValueSite.file, kAsnbaseDefaultValueSite.line,
                                    "ASN: Out of memory");
    return kelm_asn_object::set_default_value(fallback);
}

unsigned int kelm_asnbase::saveEncoding(const kelm_asn_object& object, int version,
                                        kelm_asn_buffer_t& buffer) {
    kelm_buffer_t out(KELM_SECURITY_PLAIN);
    const unsigned char header[4] = {kHeaderLength, static_cast<unsigned char>(version), kMagic1,
                                     kMagic2};
    out.append(header, 4);
    const unsigned int status = object.asnwrite(out);
    if (status != KELM_ASN_OK)
        return status;
    unsigned char* data = nullptr;
    unsigned int length = 0;
    out.detach(data, length);
    buffer.data = data;
    buffer.length = length;
    return KELM_ASN_OK;
}

unsigned int kelm_asnbase::loadObject(kelm_asn_object& object, int version,
                                      const kelm_asn_buffer_t& buffer) {
    if (!header_magic_ok(buffer) || buffer.data[1] != static_cast<unsigned char>(version) ||
        buffer.data[0] == 0)
        return KELM_ASN_BAD_VERSION;
    const unsigned int total = static_cast<unsigned int>(buffer.length);
    const unsigned int skip = buffer.data[0];
    // A header longer than the buffer leaves nothing to read (the frame reader then reports
    // the input as too short) rather than a count that wraps.
    kelm_r_buffer_t reader(buffer.data + (skip < total ? skip : total),
                           skip < total ? total - skip : 0);
    return object.asnread(reader);
}

unsigned int kelm_asnbase::get_encoded_version(const kelm_asn_buffer_t& buffer,
                                               unsigned int& flag) {
    if (!header_magic_ok(buffer)) {
        flag = 1;
        return KELM_ASN_BAD_VERSION;
    }
    if (buffer.data[1] == 0) {
        flag = 1;
        return KELM_ASN_BAD_VERSION;
    }
    flag = 0;
    return KELM_ASN_OK;
}

kelm_v37_asnbase::kelm_v37_asnbase(security_t sec)
    : kelm_asnbase(sec), version_element(KELM_SECURITY_PLAIN) {
    register_child(&version_element);
    version_element.set_value(1);
}

kelm_v37_asnbase::~kelm_v37_asnbase() = default;

// --- kelmasn_integer -------------------------------------------------------------------------

kelmasn_integer::kelmasn_integer(security_t sec) : kelm_asn_integer(sec) {}

kelmasn_integer::~kelmasn_integer() = default;

int kelmasn_integer::set_default_value(kelm_asn_object* value) {
    return kelm_asn_integer::set_default_value(value);
}

int kelmasn_integer::set_default_value() {
    return static_cast<int>(kelm_asn_integer::set_default_value(0));
}

unsigned int kelmasn_integer::get_value(unsigned char& target) const {
    target = static_cast<unsigned char>(kelm_intvalue(*this));
    return KELM_ASN_OK;
}

unsigned int kelmasn_integer::get_value(unsigned short& target) const {
    target = static_cast<unsigned short>(kelm_intvalue(*this));
    return KELM_ASN_OK;
}

unsigned int kelmasn_integer::get_value(int& target) const {
    target = kelm_intvalue(*this);
    return KELM_ASN_OK;
}

unsigned int kelmasn_integer::get_value(unsigned int& target) const {
    target = static_cast<unsigned int>(kelm_intvalue(*this));
    return KELM_ASN_OK;
}

int kelm_intvalue(const kelm_asn_integer& value) {
    int result = 0;
    if (value.kelm_asn_integer::get_value(result) != KELM_ASN_OK)
        return 0;
    return result;
}

// --- kelmasn_octetstring ---------------------------------------------------------------------

kelmasn_octetstring::kelmasn_octetstring(security_t sec) : kelm_asn_octetstring(sec) {}

kelmasn_octetstring::~kelmasn_octetstring() = default;

int kelmasn_octetstring::set_default_value(kelm_asn_object* value) {
    return kelm_asn_octetstring::set_default_value(value);
}

int kelmasn_octetstring::set_default_value() {
    const unsigned char empty_string = 0x00;
    return static_cast<int>(kelm_asn_octetstring::set_default_value(&empty_string, 1));
}

unsigned int kelmasn_octetstring::set_value(unsigned char c) {
    const unsigned char text[2] = {c, 0x00};
    return kelm_set_strvalue(*this, text);
}

unsigned int kelmasn_octetstring::set_value(const char* text) {
    return kelm_set_strvalue(*this, text);
}

unsigned int kelmasn_octetstring::set_value(const unsigned char* text) {
    return kelm_set_strvalue(*this, text);
}

unsigned int kelmasn_octetstring::get_value(unsigned char& target) const {
    target = 0;
    unsigned char* stored = nullptr;
    unsigned int count = 0;
    if (kelm_asn_octetstring::get_value(stored, count) != KELM_ASN_OK || count == 0)
        return KELM_ASN_OK;
    target = stored[0];
    return KELM_ASN_OK;
}

unsigned int kelmasn_octetstring::get_value(unsigned int count, unsigned char* target) const {
    unsigned char* stored = nullptr;
    unsigned int stored_count = 0;
    if (kelm_asn_octetstring::get_value(stored, stored_count) != KELM_ASN_OK)
        stored_count = 0;
    const unsigned int copied = stored_count < count ? stored_count : count;
    if (copied != 0)
        std::memcpy(target, stored, copied);
    if (copied < count)
        std::memset(target + copied, 0, count - copied);
    return KELM_ASN_OK;
}

unsigned int kelmasn_octetstring::get_value(unsigned char*& target, unsigned int& count) const {
    unsigned char* stored = nullptr;
    unsigned int stored_count = 0;
    if (kelm_asn_octetstring::get_value(stored, stored_count) != KELM_ASN_OK)
        stored_count = 0;
    count = stored_count;
    target = kelm_copy_stored_octets(stored, stored_count);
    return KELM_ASN_OK;
}

unsigned int kelmasn_octetstring::get_value(char*& target) const {
    return kelm_get_strvalue(*this, target);
}

unsigned int kelmasn_octetstring::get_value(unsigned char*& target) const {
    return kelm_get_strvalue(*this, target);
}

// --- string helpers --------------------------------------------------------------------------

unsigned int kelm_set_strvalue(kelm_asn_octetstring& value, const unsigned char* text) {
    if (text == nullptr)
        return value.kelm_asn_octetstring::set_value(
            reinterpret_cast<const unsigned char*>(NULL_STRING), 1);
    const size_t length = std::strlen(reinterpret_cast<const char*>(text)) + 1;
    return value.kelm_asn_octetstring::set_value(text, static_cast<unsigned int>(length));
}

unsigned int kelm_set_strvalue(kelm_asn_octetstring& value, const char* text) {
    return kelm_set_strvalue(value, reinterpret_cast<const unsigned char*>(text));
}

unsigned int kelm_get_strvalue(const kelm_asn_octetstring& value, unsigned char*& text) {
    text = nullptr;
    unsigned char* stored = nullptr;
    unsigned int count = 0;
    if (value.kelm_asn_octetstring::get_value(stored, count) != KELM_ASN_OK)
        count = 0;
    text = kelm_copy_stored_string(stored, count);
    return KELM_ASN_OK;
}

unsigned int kelm_get_strvalue(const kelm_asn_octetstring& value, char*& text) {
    unsigned char* bytes = nullptr;
    const unsigned int status = kelm_get_strvalue(value, bytes);
    text = reinterpret_cast<char*>(bytes);
    return status;
}

unsigned char* kelm_copy_stored_string(const unsigned char* stored, unsigned int count) {
    if (count < 2) {
        auto* text = static_cast<unsigned char*>(std::malloc(1));
        if (text == nullptr)
            throw kelm_asn_memexception(kEmptyStringSite.file, kEmptyStringSite.line,
                                        "Out of memory get_strvalue()");
        text[0] = 0;
        return text;
    }
    auto* text = static_cast<unsigned char*>(std::malloc(count));
    if (text == nullptr)
        throw kelm_asn_memexception(kStringCopySite.file, kStringCopySite.line,
                                    "Out of memory get_strvalue()");
    std::memcpy(text, stored, count);
    return text;
}

unsigned char* kelm_copy_stored_octets(const unsigned char* stored, unsigned int count) {
    if (count == 0)
        return nullptr;
    auto* target = static_cast<unsigned char*>(std::malloc(count));
    if (target == nullptr)
        throw kelm_asn_memexception(kOctetStringCopySite.file, kOctetStringCopySite.line,
                                    "ASN: Out of memory");
    std::memcpy(target, stored, count);
    return target;
}

void kelm_free_strings(int count, char** array) {
    for (int i = 0; i < count; ++i)
        std::free(array[i]);
    std::free(array);
}
