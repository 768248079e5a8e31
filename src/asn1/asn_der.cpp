// The identifier and length octets of BER/DER, read as X.690 (08/2015) 8.1.2 and 8.1.3 say, with
// the deliberate departures documented in asn_der.h. The object frame reader and the DER
// inspection functions read through the same inline readers (asn_der_internal.h).
#include "asn_der.h"
#include "asn_der_internal.h"

unsigned int kelmAsnGetType(unsigned char** cursor, unsigned int* remaining, unsigned int* tag,
                            unsigned int* constructed, unsigned int* tag_class) {
    return kelm_asn_internal::read_identifier(cursor, remaining, tag, constructed, tag_class);
}

unsigned int kelmAsnGetLength(unsigned char** cursor, unsigned int* remaining,
                              unsigned int* definite, unsigned int* length) {
    return kelm_asn_internal::read_length(cursor, remaining, definite, length);
}
