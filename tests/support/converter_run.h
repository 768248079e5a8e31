// Running the code-set converters on test octets: hex notation, exact-size source blocks, and the
// list of all sixteen converters.
#ifndef KELM_TEST_CONVERTER_RUN_H
#define KELM_TEST_CONVERTER_RUN_H

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "asnbase.h"

namespace codeset_test {

using Octets = std::vector<unsigned char>;

// Octets written as hexadecimal pairs separated by spaces: "C2 65 A6".
inline Octets hex(const std::string& text) {
    Octets out;
    unsigned int value = 0;
    int consumed = 0;
    const char* p = text.c_str();
    while (std::sscanf(p, "%2x%n", &value, &consumed) == 1) {
        out.push_back(static_cast<unsigned char>(value));
        p += consumed;
    }
    return out;
}

inline std::string to_hex(const Octets& octets) {
    std::string text;
    char pair[4];
    for (unsigned char b : octets) {
        std::snprintf(pair, sizeof pair, text.empty() ? "%02X" : " %02X", b);
        text += pair;
    }
    return text;
}

// Any converter, whether it takes its source by reference or by value.
using Converter = std::function<unsigned int(const kelm_r_buffer_t&, kelm_buffer_t&)>;

// What a conversion returned and what the destination held afterwards.
struct Outcome {
    unsigned int status;
    Octets output;
    bool operator==(const Outcome& other) const {
        return status == other.status && output == other.output;
    }
    bool operator!=(const Outcome& other) const { return !(*this == other); }
};

inline void PrintTo(const Outcome& o, std::ostream* os) {
    *os << "{status 0x" << std::hex << o.status << std::dec << ", output [" << to_hex(o.output)
        << "]}";
}

inline Outcome succeeds_with(const Octets& output) {
    return {KELM_ASN_OK, output};
}

inline Outcome fails_leaving(const Octets& output) {
    return {KELM_ASN_UNREPRESENTABLE, output};
}

inline Octets written(const kelm_buffer_t& b) {
    return Octets(b.cursor, b.cursor + b.used());
}

// Converts `input` held in a heap block of exactly its size, so that AddressSanitizer reports a
// read past it, into a destination that already holds `prior`.
inline Outcome convert(const Converter& f, const Octets& input, const Octets& prior = {}) {
    std::unique_ptr<unsigned char[]> block(input.empty() ? nullptr
                                                         : new unsigned char[input.size()]);
    if (!input.empty())
        std::memcpy(block.get(), input.data(), input.size());
    kelm_r_buffer_t src(block.get(), static_cast<unsigned int>(input.size()));
    kelm_buffer_t dst;
    dst.append(prior.data(), static_cast<unsigned int>(prior.size()));
    const unsigned int status = f(src, dst);
    return {status, written(dst)};
}

// Converts `input` placed directly before `beyond` in one block, with the source covering only
// `input`: a converter that read past its source would see the octets of `beyond`.
inline Outcome convert_before(const Converter& f, const Octets& input, const Octets& beyond) {
    Octets block = input;
    block.insert(block.end(), beyond.begin(), beyond.end());
    kelm_r_buffer_t src(block.data(), static_cast<unsigned int>(input.size()));
    kelm_buffer_t dst;
    const unsigned int status = f(src, dst);
    return {status, written(dst)};
}

struct NamedConverter {
    const char* name;
    Converter convert;
};

inline const std::vector<NamedConverter>& all_converters() {
    static const std::vector<NamedConverter> converters = {
        {"IA52T61", IA52T61},   {"T612BMP", T612BMP},   {"T612IA5", T612IA5},
        {"BMP2IA5", BMP2IA5},   {"IA52U", IA52U},       {"IA52BMP", IA52BMP},
        {"BMP2U", BMP2U},       {"U2IA5", U2IA5},       {"U2BMP", U2BMP},
        {"UTF82IA5", UTF82IA5}, {"UTF82BMP", UTF82BMP}, {"IA52UTF8", IA52UTF8},
        {"BMP2UTF8", BMP2UTF8}, {"U2UTF8", U2UTF8},     {"IA52V", IA52V},
        {"IA52P", IA52P},
    };
    return converters;
}

} // namespace codeset_test

#endif
