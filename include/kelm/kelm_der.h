/// \file
/// Functions that walk raw BER/DER bytes without any object model.
///
/// Cursor convention: the caller owns a byte pointer (the cursor) and a count of bytes left from
/// it (the remaining count) and passes both by address. On success a call advances the cursor
/// past what it consumed and decreases the count, except where a function says otherwise. A
/// failing call never moves the cursor or changes the count, but outputs written before the
/// failing test stay written. Every function returns 0 or a status code of asn_status.h.
///
/// Ownership: every output that a function allocates (bytes, text, the OID copy) is allocated
/// with malloc and belongs to the caller, who releases it with free.
#ifndef KELM_DER_H
#define KELM_DER_H

#include <cstdint>

#include "asn_der.h"
#include "asnbase.h"

/// Output record of kelmAsnGetOIDValue: the contents octets as they stand (arcs not decoded).
struct kelm_asn_oid_t {
    unsigned int count;   ///< number of bytes at `bytes`
    unsigned char* bytes; ///< malloc'ed copy of the contents octets
};

// kelmAsnGetType and kelmAsnGetLength, the identifier and length readers that every other
// function here builds on, are declared in asn_der.h.

/// Reads `size` (at most 8) contents octets as a two's-complement value. The sign comes from the
/// byte at the cursor, which is examined even when size is 0.
KELM_API unsigned int kelmAsnGetIntegerValue(unsigned char** cursor, unsigned int* remaining,
                                             unsigned int size, int64_t* value);

/// Copies `size` (1 to 8) contents octets into a malloc'ed block: order 0 keeps the wire order
/// (big-endian), order 1 reverses it (little-endian). No sign handling.
KELM_API unsigned int kelmAsnGetIntegerValue(unsigned char** cursor, unsigned int* remaining,
                                             unsigned int size, unsigned char** bytes,
                                             unsigned int* count, int order);

/// The byte form of kelmAsnGetIntegerValue with order 1.
KELM_API unsigned int kelmAsnGetLongIntegerValueLittleEndian(unsigned char** cursor,
                                                             unsigned int* remaining,
                                                             unsigned int size,
                                                             unsigned char** bytes,
                                                             unsigned int* count);

/// The byte form of kelmAsnGetIntegerValue with order 0.
KELM_API unsigned int kelmAsnGetLongIntegerValueBigEndian(unsigned char** cursor,
                                                          unsigned int* remaining,
                                                          unsigned int size, unsigned char** bytes,
                                                          unsigned int* count);

/// A NULL has no contents: always 0, touches nothing.
KELM_API unsigned int kelmAsnGetNullValue(unsigned char** cursor, unsigned int* remaining,
                                          unsigned int size);

/// Reads BIT STRING contents of `size` (1 to 8) octets: the bytes after the unused-bits octet are
/// copied to a malloc'ed block and `bits` is the number of significant bits.
///
/// Kept for compatibility with existing callers, exactly: the unused low-order bits of the last
/// contents octet are cleared in the caller's input (the copy keeps them), and the remaining
/// count decreases by size - 1 while the cursor moves by size.
KELM_API unsigned int kelmAsnGetBitstringValue(unsigned char** cursor, unsigned int* remaining,
                                               unsigned int size, unsigned char** bytes,
                                               unsigned int* bits);

/// Copies `size` octets as a NUL-terminated text (malloc'ed, size + 1 bytes). The copy stops at an
/// embedded NUL, the rest being filled with NULs; all `size` octets are consumed.
KELM_API unsigned int kelmAsnGetCharstringValue(unsigned char** cursor, unsigned int* remaining,
                                                unsigned int size, char** text);

/// Copies `size` contents octets into a malloc'ed block.
KELM_API unsigned int kelmAsnGetOctetstringValue(unsigned char** cursor, unsigned int* remaining,
                                                 unsigned int size, unsigned char** bytes,
                                                 unsigned int* count);

/// Copies `size` OBJECT IDENTIFIER contents octets into `oid`.
KELM_API unsigned int kelmAsnGetOIDValue(unsigned char** cursor, unsigned int* remaining,
                                         unsigned int size, kelm_asn_oid_t* oid);

// check_EOC, the end-of-contents test on a read cursor, is declared beside kelm_r_buffer_t in
// asn_buffer.h.

#endif
