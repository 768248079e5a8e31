// Helpers for the record types' tests: random records, deep comparison, buffers as bytes.
#ifndef KELMASN_TEST_RECORD_TEST_UTIL_H
#define KELMASN_TEST_RECORD_TEST_UTIL_H

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "kelm/kelmasn.h"

namespace kelm_test {

inline std::vector<unsigned char> bytes_of(const kelm_asn_buffer_t& buffer) {
    return std::vector<unsigned char>(buffer.data, buffer.data + buffer.length);
}

// A malloc'ed copy of `text`, as a caller's record holds it.
inline char* dup_text(const std::string& text) {
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

inline std::string random_text(std::mt19937& rng, size_t max_length) {
    static const char letters[] =
        "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=@.";
    std::string text(rng() % (max_length + 1), ' ');
    for (char& c : text)
        c = letters[rng() % (sizeof letters - 1)];
    return text;
}

// Deep equality of texts: null and "" are different.
inline bool same_text(const char* a, const char* b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    return std::strcmp(a, b) == 0;
}

inline bool same_bytes(const unsigned char* a, unsigned int na, const unsigned char* b,
                       unsigned int nb) {
    return na == nb && (na == 0 || std::memcmp(a, b, na) == 0);
}

} // namespace kelm_test

#endif
