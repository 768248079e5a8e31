/// \file
/// The identifier and length readers of BER/DER, exported as part of the DER inspection functions
/// (kelm_der.h) and used by the object frame reader of the runtime.
#ifndef KELM_ASN_DER_H
#define KELM_ASN_DER_H

#include "asn_export.h"
#include "asn_status.h"

/// Reads the identifier octets: tag number, constructed flag (0 or 1) and class (0 universal,
/// 1 application, 2 context-specific, 3 private).
///
/// Kept for compatibility with existing callers, exactly: in the high-tag form (low five bits
/// 0x1F) the caller's cursor is not moved; the position of the last identifier octet is stored
/// in the pointer slot directly after `*cursor` (so `cursor` must point at the first of two
/// adjacent pointer slots), the remaining count is decreased by all the identifier octets, and
/// the tag starts from the masked first octet (b & 0x7F) and accumulates every later octet but
/// the last.
KELM_API unsigned int kelmAsnGetType(unsigned char** cursor, unsigned int* remaining,
                                     unsigned int* tag, unsigned int* constructed,
                                     unsigned int* tag_class);

/// Reads the length octets. `definite` is 0 for the indefinite form (length 0). Long forms of
/// any number of octets are read; more than four octets overflow the 32-bit length.
KELM_API unsigned int kelmAsnGetLength(unsigned char** cursor, unsigned int* remaining,
                                       unsigned int* definite, unsigned int* length);

#endif
