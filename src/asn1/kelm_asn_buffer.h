/// \file
/// The record that carries encoded bytes across the library's boundary.
///
/// Ownership: bytes placed here by an encode entry point are allocated with malloc and belong to
/// the holder of the record, who releases them with kelm_asn_buffer_free.
#ifndef KELM_ASN_BUFFER_RECORD_H
#define KELM_ASN_BUFFER_RECORD_H

#include <stddef.h>

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct kelm_asn_buffer_t kelm_asn_buffer_t;
#endif

/// Encoded bytes as the entry points take and give them: a length and a pointer. An encode entry
/// point fills it with a malloc'ed block that the caller releases with kelm_asn_buffer_free; a
/// decode entry point only reads it.
struct kelm_asn_buffer_t {
    unsigned long length; ///< valid bytes at `data`; only 32-bit lengths are produced and checked
    unsigned char* data;  ///< the bytes; null when there are none
};

static_assert(sizeof(kelm_asn_buffer_t) == 16, "the buffer record is two 8-byte fields");
static_assert(offsetof(kelm_asn_buffer_t, data) == 8, "the buffer record is two 8-byte fields");

#endif
