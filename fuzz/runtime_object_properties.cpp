#include "runtime_object_properties.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include "asn_charstring.h"
#include "asn_lists.h"
#include "asn_primitives.h"
#include "asn_status.h"

namespace kelmasn_fuzz {

namespace {

using Bytes = std::vector<uint8_t>;

std::string hex_of(unsigned int value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08x", value);
    return text;
}

// The seven in-place conversions, by number.
constexpr int kConversionCount = 7;
unsigned int convert(kelm_asn_charstring& text, int which) {
    switch (which) {
    case 0:
        return text.convert2printable();
    case 1:
        return text.convert2visible();
    case 2:
        return text.convert2T61();
    case 3:
        return text.convert2IA5();
    case 4:
        return text.convert2BMP();
    case 5:
        return text.convert2Univ();
    default:
        return text.convert2UTF8();
    }
}

bool is_text_status(unsigned int status) {
    return status == KELM_ASN_OK || status == KELM_ASN_UNREPRESENTABLE ||
           status == KELM_ASN_CODESET_REJECTED;
}

// What `object` writes, with the status of asnwrite.
unsigned int write_of(const kelm_asn_object& object, Bytes& out) {
    kelm_buffer_t buffer;
    const unsigned int status = object.asnwrite(buffer);
    out.assign(buffer.cursor, buffer.cursor + buffer.used());
    return status;
}

// One read of `data` by a fresh object made by `make`, with the properties of the header.
template <typename Make>
std::string check_read(const char* name, Make make, const uint8_t* data, size_t size,
                       bool is_text) {
    Bytes copy(data, data + size);
    std::unique_ptr<kelm_asn_object> object = make();
    kelm_r_buffer_t input(copy.data(), static_cast<unsigned int>(copy.size()));
    const unsigned int status = object->asnread(input);
    const size_t moved = static_cast<size_t>(input.cursor - copy.data());
    if (moved > copy.size())
        return std::string(name) + ": the cursor went past the input";
    if (moved != copy.size() - input.remaining)
        return std::string(name) + ": the cursor moved by " + std::to_string(moved) +
               " but the remaining count fell by " + std::to_string(copy.size() - input.remaining);
    if (status != KELM_ASN_OK)
        return "";

    Bytes first;
    const unsigned int written = write_of(*object, first);
    if (written == KELM_ASN_VALUE_MISSING && !object->is_present())
        return "";
    if (written != KELM_ASN_OK)
        return std::string(name) + ": a value read writes with status " + hex_of(written);
    std::unique_ptr<kelm_asn_object> again = make();
    kelm_r_buffer_t reread(first.data(), static_cast<unsigned int>(first.size()));
    const unsigned int status2 = again->asnread(reread);
    if (status2 != KELM_ASN_OK)
        return std::string(name) + ": what it wrote reads back with status " + hex_of(status2);
    if (reread.remaining != 0)
        return std::string(name) + ": what it wrote reads back leaving " +
               std::to_string(reread.remaining) + " bytes";
    Bytes second;
    if (write_of(*again, second) != KELM_ASN_OK || second != first)
        return std::string(name) + ": written again, what it wrote is not the same";

    if (!is_text)
        return "";
    auto& text = static_cast<kelm_asn_charstring&>(*object);
    using Getter = unsigned int (kelm_asn_charstring::*)(kelm_buffer_t&) const;
    const Getter getters[] = {
        &kelm_asn_charstring::get_value_IA5,     &kelm_asn_charstring::get_value_printable,
        &kelm_asn_charstring::get_value_visible, &kelm_asn_charstring::get_value_T61,
        &kelm_asn_charstring::get_value_BMP,     &kelm_asn_charstring::get_value_Univ,
        &kelm_asn_charstring::get_value_UTF8};
    for (Getter get : getters) {
        kelm_buffer_t out;
        const unsigned int got = (text.*get)(out);
        if (!is_text_status(got))
            return std::string(name) + ": a getter returned " + hex_of(got);
    }
    kelm_buffer_t local;
    const unsigned int got = text.get_value_C(local, '?');
    if (!is_text_status(got))
        return std::string(name) + ": get_value_C returned " + hex_of(got);
    for (int target = 0; target < kConversionCount; ++target) {
        std::unique_ptr<kelm_asn_object> converted = make();
        kelm_r_buffer_t input2(first.data(), static_cast<unsigned int>(first.size()));
        if (converted->asnread(input2) != KELM_ASN_OK)
            return std::string(name) + ": a second read failed";
        auto& converted_text = static_cast<kelm_asn_charstring&>(*converted);
        const unsigned int status3 = convert(converted_text, target);
        if (!is_text_status(status3))
            return std::string(name) + ": conversion " + std::to_string(target) + " returned " +
                   hex_of(status3);
        Bytes out;
        const unsigned int status4 = write_of(converted_text, out);
        if (status4 != KELM_ASN_OK)
            return std::string(name) + ": after conversion " + std::to_string(target) +
                   " it writes with status " + hex_of(status4);
    }
    return "";
}

template <typename T> std::unique_ptr<kelm_asn_object> make_plain() {
    return std::make_unique<T>(KELM_SECURITY_PLAIN);
}
template <typename T> std::unique_ptr<kelm_asn_object> make_secure() {
    return std::make_unique<T>(KELM_SECURITY_SECURE);
}

struct Candidate {
    const char* name;
    std::unique_ptr<kelm_asn_object> (*make)();
    bool is_text;
};

#define KELM_FUZZ_CANDIDATE(T, text)                                                               \
    Candidate{#T, make_plain<T>, text}, Candidate {                                                \
#T " (secure)", make_secure < T>, text                                                     \
    }

const Candidate kCandidates[] = {
    KELM_FUZZ_CANDIDATE(kelm_asn_integer, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_boolean, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_null, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_bitstring, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_namedbits, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_octetstring, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_ia5String, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_printableString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_visibleString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_teletexString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_bmpString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_universalString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_UTF8String, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_directoryString, true),
    KELM_FUZZ_CANDIDATE(kelm_asn_sequenceof<kelm_asn_integer>, false),
    KELM_FUZZ_CANDIDATE(kelm_asn_sequenceof<kelm_asn_directoryString>, false),
};

} // namespace

std::string check_runtime_objects(const uint8_t* data, size_t size) {
    if (size > 1u << 16)
        return "";
    for (const Candidate& candidate : kCandidates) {
        std::string violation;
        try {
            violation = check_read(candidate.name, candidate.make, data, size, candidate.is_text);
        } catch (const kelm_asn_exception& e) {
            violation = std::string(candidate.name) + ": exception " + e.message;
        }
        if (!violation.empty())
            return violation;
    }
    return "";
}

} // namespace kelmasn_fuzz
