// The identifier and length readers of BER/DER as inline functions, so that the object frame
// reader, which runs once per element of every decoded message, reads through the same code as
// the exported DER inspection functions without a call per octet group. Internal to the library.
#ifndef KELM_ASN_DER_INTERNAL_H
#define KELM_ASN_DER_INTERNAL_H

#include "asn_status.h"

namespace kelm_asn_internal {

// Moves a cursor and its remaining count forward together.
inline void consume_octets(unsigned char** cursor, unsigned int* remaining, unsigned int n) {
    *cursor += n;
    *remaining -= n;
}

// The body of kelmAsnGetType (asn_der.h documents its behaviour, high-tag quirks included).
inline unsigned int read_identifier(unsigned char** cursor, unsigned int* remaining,
                                    unsigned int* tag, unsigned int* constructed,
                                    unsigned int* tag_class) {
    const unsigned int initial = *remaining;
    if (initial == 0)
        return KELM_DER_SHORT;
    const unsigned char* p = *cursor;
    const unsigned char b = *p;
    *constructed = (b & 0x20) ? 1 : 0;
    *tag_class = b >> 6;
    if ((b & 0x1F) != 0x1F) {
        *tag = b & 0x1F;
        consume_octets(cursor, remaining, 1);
        return KELM_ASN_OK;
    }
    *tag = 0;
    if (initial == 1)
        return KELM_DER_SHORT;
    // The tag output is updated as the octets are read, so a failure leaves the partial value.
    *tag = b & 0x7F;
    ++p;
    unsigned int iterations = 0;
    if (*p & 0x80) {
        do {
            if (iterations == initial - 2)
                return KELM_DER_SHORT;
            *tag = *tag * 128 + (*p & 0x7F);
            ++p;
            ++iterations;
        } while (*p & 0x80);
    }
    *remaining = initial - 2 - iterations;
    // The new position goes to the pointer slot after the caller's cursor (see kelm_der.h).
    cursor[1] = const_cast<unsigned char*>(p);
    return KELM_ASN_OK;
}

// The body of kelmAsnGetLength (asn_der.h documents its behaviour).
inline unsigned int read_length(unsigned char** cursor, unsigned int* remaining,
                                unsigned int* definite, unsigned int* length) {
    if (*remaining == 0)
        return KELM_DER_SHORT;
    *definite = 1;
    const unsigned char* p = *cursor;
    const unsigned char b = *p;
    if (b == 0x80) {
        *definite = 0;
        *length = 0;
        consume_octets(cursor, remaining, 1);
        return KELM_ASN_OK;
    }
    if (b < 0x80) {
        *length = b;
        consume_octets(cursor, remaining, 1);
        return KELM_ASN_OK;
    }
    const unsigned int n = b & 0x7F;
    *length = 0;
    if (*remaining == 1)
        return KELM_DER_SHORT;
    const unsigned int available = *remaining - 1;
    for (unsigned int i = 0; i < n; ++i) {
        if (i == available)
            return KELM_DER_SHORT;
        *length = *length * 256 + p[1 + i];
    }
    consume_octets(cursor, remaining, 1 + n);
    return KELM_ASN_OK;
}

} // namespace kelm_asn_internal

#endif
