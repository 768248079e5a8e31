// Small helpers shared by the runtime's tests: bytes in and out of value objects.
#ifndef KELMASN_TEST_ASN_TEST_UTIL_H
#define KELMASN_TEST_ASN_TEST_UTIL_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "asnbase.h"

namespace kelm_test {

using Bytes = std::vector<unsigned char>;

// The element as asnwrite writes it; the status goes to `status` when given.
inline Bytes encode(const kelm_asn_object& object, unsigned int* status = nullptr) {
    kelm_buffer_t out(KELM_SECURITY_PLAIN);
    const unsigned int s = object.asnwrite(out);
    if (status != nullptr)
        *status = s;
    return Bytes(out.cursor, out.cursor + out.used());
}

// Decodes `bytes` into `object`; `consumed` receives how far the cursor moved.
// The input is copied into a block of exactly its size, so that the sanitizers catch any read
// past its end.
inline unsigned int decode(kelm_asn_object& object, const Bytes& bytes,
                           size_t* consumed = nullptr) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_r_buffer_t in(exact.get(), static_cast<unsigned int>(bytes.size()));
    const unsigned int status = object.asnread(in);
    if (consumed != nullptr)
        *consumed = static_cast<size_t>(in.cursor - exact.get());
    return status;
}

// The contents octets the object would write.
inline Bytes contents(const kelm_asn_object& object) {
    kelm_buffer_t out(KELM_SECURITY_PLAIN);
    object.get_encoding(out);
    return Bytes(out.cursor, out.cursor + out.used());
}

inline std::string text(const kelm_buffer_t& buffer) {
    return std::string(reinterpret_cast<const char*>(buffer.cursor), buffer.used());
}

// Identifier and definite length in front of `body`.
inline Bytes tlv(unsigned char identifier, const Bytes& body) {
    Bytes out{identifier};
    const size_t n = body.size();
    if (n < 128) {
        out.push_back(static_cast<unsigned char>(n));
    } else {
        int octets = n <= 0xFF ? 1 : n <= 0xFFFF ? 2 : n <= 0xFFFFFF ? 3 : 4;
        out.push_back(static_cast<unsigned char>(0x80 | octets));
        for (int i = octets - 1; i >= 0; --i)
            out.push_back(static_cast<unsigned char>(n >> (8 * i)));
    }
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// `levels` constructed elements with identifier `identifier`, each holding the next, around
// `innermost`. Built from the inside out in one pass, so that deep inputs cost linear time.
inline Bytes nested(unsigned int levels, unsigned char identifier, const Bytes& innermost,
                    bool indefinite) {
    if (indefinite) {
        Bytes out;
        out.reserve(levels * 4 + innermost.size());
        for (unsigned int i = 0; i < levels; ++i) {
            out.push_back(identifier);
            out.push_back(0x80);
        }
        out.insert(out.end(), innermost.begin(), innermost.end());
        out.insert(out.end(), 2 * static_cast<size_t>(levels), 0x00);
        return out;
    }
    Bytes reversed(innermost.rbegin(), innermost.rend());
    for (unsigned int i = 0; i < levels; ++i) {
        const size_t n = reversed.size();
        if (n < 128) {
            reversed.push_back(static_cast<unsigned char>(n));
        } else {
            int octets = n <= 0xFF ? 1 : n <= 0xFFFF ? 2 : n <= 0xFFFFFF ? 3 : 4;
            for (int k = 0; k < octets; ++k)
                reversed.push_back(static_cast<unsigned char>(n >> (8 * k)));
            reversed.push_back(static_cast<unsigned char>(0x80 | octets));
        }
        reversed.push_back(identifier);
    }
    return Bytes(reversed.rbegin(), reversed.rend());
}

// The vtable slot of a virtual member function. Itanium C++ ABI 2.3 (the ABI of g++ on x86-64):
// a pointer to a virtual member function holds 1 plus the byte offset of its vtable entry.
template <class F> std::uintptr_t slot_of(F member) {
    static_assert(sizeof(F) == 2 * sizeof(std::uintptr_t), "a pointer and an adjustment");
    std::uintptr_t words[2];
    std::memcpy(words, &member, sizeof words);
    return (words[0] - 1) / sizeof(void*);
}

} // namespace kelm_test

#endif
