// The identifier and length octets of BER/DER, read as X.690 (08/2015) 8.1.2 and 8.1.3 say, with
// the deliberate departures documented in asn_der.h. The object frame reader and the DER
// inspection functions read through these two.
#include "asn_der.h"

namespace {

// Moves a cursor and its remaining count forward together.
inline void consume(unsigned char** cursor, unsigned int* remaining, unsigned int n) {
    *cursor += n;
    *remaining -= n;
}

} // namespace

unsigned int kelmAsnGetType(unsigned char** cursor, unsigned int* remaining, unsigned int* tag,
                            unsigned int* constructed, unsigned int* tag_class) {
    const unsigned int initial = *remaining;
    if (initial == 0)
        return KELM_DER_SHORT;
    const unsigned char* p = *cursor;
    const unsigned char b = *p;
    *constructed = (b & 0x20) ? 1 : 0;
    *tag_class = b >> 6;
    if ((b & 0x1F) != 0x1F) {
        *tag = b & 0x1F;
        consume(cursor, remaining, 1);
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

unsigned int kelmAsnGetLength(unsigned char** cursor, unsigned int* remaining,
                              unsigned int* definite, unsigned int* length) {
    if (*remaining == 0)
        return KELM_DER_SHORT;
    *definite = 1;
    const unsigned char* p = *cursor;
    const unsigned char b = *p;
    if (b == 0x80) {
        *definite = 0;
        *length = 0;
        consume(cursor, remaining, 1);
        return KELM_ASN_OK;
    }
    if (b < 0x80) {
        *length = b;
        consume(cursor, remaining, 1);
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
    consume(cursor, remaining, 1 + n);
    return KELM_ASN_OK;
}
