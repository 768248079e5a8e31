// Functions that walk raw BER/DER bytes: identifiers, lengths and the contents of the simple
// universal types. Identifier and length octets follow X.690 (08/2015) 8.1.2 and 8.1.3, with the
// deliberate departures documented in kelm_der.h.
#include <cstdlib>
#include <cstring>

#include "kelm/kelm_der.h"

namespace {

// Moves a cursor and its remaining count forward together.
inline void consume(unsigned char** cursor, unsigned int* remaining, unsigned int n) {
    *cursor += n;
    *remaining -= n;
}

// Checks shared by the functions whose contents must be 1 to 8 octets long.
inline unsigned int check_small_contents(unsigned int remaining, unsigned int size) {
    if (size > 8)
        return KELM_DER_TOO_LONG;
    if (size == 0)
        return KELM_DER_EMPTY;
    if (remaining < size)
        return KELM_DER_SHORT;
    return KELM_ASN_OK;
}

// Checks shared by the functions whose contents may be of any non-zero length.
inline unsigned int check_contents(unsigned int remaining, unsigned int size) {
    if (size == 0)
        return KELM_DER_EMPTY;
    if (remaining < size)
        return KELM_DER_SHORT;
    return KELM_ASN_OK;
}

// Low-order bits cleared in the last BIT STRING octet, by number of unused bits.
constexpr unsigned char kUnusedBitsMask[8] = {0xFF, 0xFE, 0xFC, 0xF8, 0xF0, 0xE0, 0xC0, 0x80};

} // namespace

unsigned int kelmAsnGetIntegerValue(unsigned char** cursor, unsigned int* remaining,
                                    unsigned int size, int64_t* value) {
    if (size > 8)
        return KELM_DER_TOO_LONG;
    if (*remaining < size)
        return KELM_DER_SHORT;
    // The sign byte is examined even for size 0, as existing callers expect; with nothing left
    // at all there is no byte to examine and the value is taken as non-negative.
    const unsigned char* p = *cursor;
    uint64_t pattern = (*remaining > 0 && (p[0] & 0x80)) ? ~0ULL : 0ULL;
    for (unsigned int i = 0; i < size; ++i)
        pattern = (pattern << 8) | p[i];
    *value = static_cast<int64_t>(pattern);
    consume(cursor, remaining, size);
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetIntegerValue(unsigned char** cursor, unsigned int* remaining,
                                    unsigned int size, unsigned char** bytes, unsigned int* count,
                                    int order) {
    const unsigned int status = check_small_contents(*remaining, size);
    if (status != KELM_ASN_OK)
        return status;
    unsigned char* block = static_cast<unsigned char*>(std::malloc(size));
    if (block == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    const unsigned char* p = *cursor;
    for (unsigned int i = 0; i < size; ++i)
        block[order == 1 ? size - 1 - i : i] = p[i];
    *bytes = block;
    *count = size;
    consume(cursor, remaining, size);
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetLongIntegerValueLittleEndian(unsigned char** cursor, unsigned int* remaining,
                                                    unsigned int size, unsigned char** bytes,
                                                    unsigned int* count) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, bytes, count, 1);
}

unsigned int kelmAsnGetLongIntegerValueBigEndian(unsigned char** cursor, unsigned int* remaining,
                                                 unsigned int size, unsigned char** bytes,
                                                 unsigned int* count) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, bytes, count, 0);
}

unsigned int kelmAsnGetNullValue(unsigned char**, unsigned int*, unsigned int) {
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetBitstringValue(unsigned char** cursor, unsigned int* remaining,
                                      unsigned int size, unsigned char** bytes,
                                      unsigned int* bits) {
    const unsigned int status = check_small_contents(*remaining, size);
    if (status != KELM_ASN_OK)
        return status;
    unsigned char* p = *cursor;
    const unsigned int unused = p[0];
    if (unused > 7 || (size == 1 && unused != 0))
        return KELM_DER_BAD_UNUSED_BITS;
    // malloc(0) may legitimately return null; only a failed request for bytes is an error.
    unsigned char* block = static_cast<unsigned char*>(std::malloc(size - 1));
    if (block == nullptr && size > 1)
        return KELM_ASN_OUT_OF_MEMORY;
    *bits = (size - 1) * 8 - unused;
    if (size > 1)
        std::memcpy(block, p + 1, size - 1);
    *bytes = block;
    if (unused != 0)
        p[size - 1] &= kUnusedBitsMask[unused];
    *cursor += size;
    *remaining -= size - 1;
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetCharstringValue(unsigned char** cursor, unsigned int* remaining,
                                       unsigned int size, char** text) {
    const unsigned int status = check_contents(*remaining, size);
    if (status != KELM_ASN_OK)
        return status;
    char* block = static_cast<char*>(std::malloc(static_cast<size_t>(size) + 1));
    if (block == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    std::strncpy(block, reinterpret_cast<const char*>(*cursor), size);
    block[size] = '\0';
    *text = block;
    consume(cursor, remaining, size);
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetOctetstringValue(unsigned char** cursor, unsigned int* remaining,
                                        unsigned int size, unsigned char** bytes,
                                        unsigned int* count) {
    const unsigned int status = check_contents(*remaining, size);
    if (status != KELM_ASN_OK)
        return status;
    unsigned char* block = static_cast<unsigned char*>(std::malloc(size));
    if (block == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    std::memcpy(block, *cursor, size);
    *bytes = block;
    *count = size;
    consume(cursor, remaining, size);
    return KELM_ASN_OK;
}

unsigned int kelmAsnGetOIDValue(unsigned char** cursor, unsigned int* remaining, unsigned int size,
                                kelm_asn_oid_t* oid) {
    if (oid == nullptr)
        return KELM_DER_NULL_OUTPUT;
    const unsigned int status = check_contents(*remaining, size);
    if (status != KELM_ASN_OK)
        return status;
    oid->bytes = static_cast<unsigned char*>(std::malloc(size));
    if (oid->bytes == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    oid->count = size;
    std::memcpy(oid->bytes, *cursor, size);
    consume(cursor, remaining, size);
    return KELM_ASN_OK;
}
