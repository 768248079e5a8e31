/// \file
/// kelmasn for C callers: the entry points of every record type selected by a record type
/// identifier, the type-code entry points, the header query, the buffer utilities, the DER
/// inspection functions and the list of record types, with C linkage. The header compiles as C11
/// and as C++; it includes every record header, whose records are plain C structs.
///
/// Each function forwards to the C++ entry point named in its comment (kelmasn.h) and does exactly
/// what it does: the same bytes, statuses, allocations and stderr lines. Where the C++ entry point
/// takes a reference, the function takes a pointer, which must not be null.
///
/// Ownership: bytes placed in a kelm_asn_buffer_t by an encode are allocated with malloc and
/// belong to the caller, who releases them with kelmasn_c_buffer_free; a record filled by a decode
/// owns every string, array and nested record it points at until the matching free function
/// releases them (not the record itself). Start a decode with a zeroed record, so that the free
/// function is safe after every outcome:
///
///     attrlist_s_t list = {0};
///     if (kelmasn_c_decode(KELM_RECORD_attrlist_s_t, &buffer, &list) == 0)
///         use(list.attrs, list.attr_count);
///     kelmasn_c_free(KELM_RECORD_attrlist_s_t, &list);
///
/// Statuses: 0 success; KELMASN_C_OUT_OF_MEMORY (0x10652065); KELMASN_C_BAD_HEADER (0x10652196),
/// a buffer without a valid header of the requested version; KELMASN_C_UNKNOWN_TYPE (0xFFFFFFFF),
/// a record type identifier or type code that the library does not know, with nothing touched;
/// any other code of the 0x1065xxxx family as the runtime reports it (kelmasn_c_status_text
/// describes each).
#ifndef KELM_KELMASN_C_H
#define KELM_KELMASN_C_H

#include <stdint.h>

#include "aclidl.h"
#include "actionidl.h"
#include "asn_export.h"
#include "attrlist.h"
#include "aznserver.h"
#include "ekaclobjs.h"
#include "ekobj.h"
#include "ekobjs.h"
#include "ekpopobjs.h"
#include "eksvr_enc.h"
#include "kelm_asn_buffer.h"
#include "kelmasn_record_ids.h"
#include "kelmasn_version.h"
#include "namevalue.h"
#include "pobj.h"
#include "principal.h"
#include "zuauditidl.h"

// The statuses that the C entry points themselves return; the same numbers as the C++ API's.
/// Exhausted memory.
#define KELMASN_C_OUT_OF_MEMORY 0x10652065u
/// The buffer does not start with a valid header of the requested version.
#define KELMASN_C_BAD_HEADER 0x10652196u
/// A record type identifier or type code that the library does not know; nothing was touched.
#define KELMASN_C_UNKNOWN_TYPE 0xFFFFFFFFu

#ifdef __cplusplus
extern "C" {
#endif

// --- Record entry points, by record type identifier ------------------------------------------
///
/// `record` points at the C record of `type` (an attrlist_s_t for KELM_RECORD_attrlist_s_t). An
/// identifier that is not below kelmasn_c_record_type_count() returns KELMASN_C_UNKNOWN_TYPE and
/// touches nothing.

/// kelmAsnEncodeObj: writes the header 04 02 AC DC and the DER encoding of the record into
/// `out`, whose bytes the caller releases with kelmasn_c_buffer_free.
KELM_API unsigned int kelmasn_c_encode(kelm_record_type_id type, kelm_asn_buffer_t* out,
                                       void* record);

/// kelmAsnDecodeObj: checks the header (version 2) and fills the record; release what it
/// allocated with kelmasn_c_free, also after a failure part way.
KELM_API unsigned int kelmasn_c_decode(kelm_record_type_id type, kelm_asn_buffer_t* in,
                                       void* record);

/// kelmAsnEncodeObjLCS: as kelmasn_c_encode, the record's texts taken in the calling thread's
/// local code set and written as UTF-8.
KELM_API unsigned int kelmasn_c_encode_lcs(kelm_record_type_id type, kelm_asn_buffer_t* out,
                                           void* record);

/// kelmAsnDecodeObjLCS: as kelmasn_c_decode, the texts converted from UTF-8 to the calling
/// thread's local code set.
KELM_API unsigned int kelmasn_c_decode_lcs(kelm_record_type_id type, kelm_asn_buffer_t* in,
                                           void* record);

/// kelmAsnFreeObj: releases everything a decode allocated inside the record, not the record
/// itself, and resets nothing. Returns 0, or KELMASN_C_UNKNOWN_TYPE.
KELM_API unsigned int kelmasn_c_free(kelm_record_type_id type, void* record);

// --- The record types -------------------------------------------------------------------------

/// The number of record types of the loaded library; their identifiers are 0 to the count - 1.
KELM_API unsigned int kelmasn_c_record_type_count(void);

/// The C record name of `type` ("attrlist_s_t"), a static text; null for an unknown identifier.
KELM_API const char* kelmasn_c_record_type_name(kelm_record_type_id type);

/// Stores in `type` the identifier of the record type whose record name ("attr_s_t"), class name
/// ("asn_attr_t") or short name ("attr_t", "attr") is `name`, the names the kelmasn tool takes.
/// Returns 0, or KELMASN_C_UNKNOWN_TYPE (`type` untouched) when no record type has that name.
KELM_API unsigned int kelmasn_c_record_type_named(const char* name, kelm_record_type_id* type);

// --- Type-code entry points (ekobjs.h): type codes KELMASN_TYPE_CERT_REQUEST,
/// KELMASN_TYPE_EKOBJ_UPDATE_LIST and KELMASN_TYPE_INTEGER ---------------------------------------

/// kelmasn_encode_obj: the header with the low byte of `version`, then the encoding, into `out`.
KELM_API unsigned int kelmasn_c_encode_obj(int version, void* record, unsigned int type,
                                           kelm_asn_buffer_t* out);

/// kelmasn_decode_obj: decodes `in`, whose header must carry the low byte of `version`; release
/// what it allocated with kelmasn_c_obj_free.
KELM_API unsigned int kelmasn_c_decode_obj(int version, kelm_asn_buffer_t* in, unsigned int type,
                                           void* record);

/// kelmasn_obj_free: releases what kelmasn_c_decode_obj allocated in the record.
KELM_API unsigned int kelmasn_c_obj_free(int version, unsigned int type, void* record);

// --- The header query and the buffer utilities (kelm_entry.h) -----------------------------------

/// kelmasn_version, kept for compatibility with existing callers: reports whether `buffer`
/// carries a usable header, not its version. Returns 0 and sets `flag` to 0 when the length is
/// above 4, bytes 2 and 3 are AC DC and the version byte is not 0; otherwise sets `flag` to 1 and
/// returns KELMASN_C_BAD_HEADER.
KELM_API unsigned int kelmasn_c_version(const kelm_asn_buffer_t* buffer, unsigned int* flag);

/// kelm_asn_buffer_copy: a malloc'ed copy of `source` into `destination` (release it with
/// kelmasn_c_buffer_free). When the allocation fails `status` is KELMASN_C_OUT_OF_MEMORY, and
/// the destination's length keeps the source's while its data stays null.
KELM_API void kelmasn_c_buffer_copy(const kelm_asn_buffer_t* source, kelm_asn_buffer_t* destination,
                                    unsigned int* status);

/// kelm_asn_buffer_free: releases the bytes of `buffer` when not null; neither field is reset.
KELM_API void kelmasn_c_buffer_free(kelm_asn_buffer_t* buffer);

/// kelm_asn_status_text: a static text describing `status`.
KELM_API const char* kelmasn_c_status_text(unsigned int status);

/// kelmasn_library_version: the version of the loaded library, "MAJOR.MINOR.PATCH", static.
KELM_API const char* kelmasn_c_library_version(void);

// --- DER inspection (kelm_der.h, asn_der.h) ---------------------------------------------------
///
/// Each walks raw bytes through a caller-owned cursor and remaining count, exactly as the C++
/// function named beside it, quirks kept for existing callers included (documented there). What
/// a function allocates is malloc'ed and released by the caller with free.

/// kelmAsnGetType. In the high-tag form `cursor` must point at the first of two adjacent pointer
/// slots: the position of the last identifier octet is stored in the second.
KELM_API unsigned int kelmasn_c_get_type(unsigned char** cursor, unsigned int* remaining,
                                         unsigned int* tag, unsigned int* constructed,
                                         unsigned int* tag_class);

/// kelmAsnGetLength.
KELM_API unsigned int kelmasn_c_get_length(unsigned char** cursor, unsigned int* remaining,
                                           unsigned int* definite, unsigned int* length);

/// kelmAsnGetIntegerValue, the value form.
KELM_API unsigned int kelmasn_c_get_integer_value(unsigned char** cursor, unsigned int* remaining,
                                                  unsigned int size, int64_t* value);

/// kelmAsnGetIntegerValue, the byte form: order 0 keeps the wire order, 1 reverses it.
KELM_API unsigned int kelmasn_c_get_integer_bytes(unsigned char** cursor, unsigned int* remaining,
                                                  unsigned int size, unsigned char** bytes,
                                                  unsigned int* count, int order);

/// kelmAsnGetLongIntegerValueLittleEndian.
KELM_API unsigned int kelmasn_c_get_long_integer_value_little_endian(unsigned char** cursor,
                                                                     unsigned int* remaining,
                                                                     unsigned int size,
                                                                     unsigned char** bytes,
                                                                     unsigned int* count);

/// kelmAsnGetLongIntegerValueBigEndian.
KELM_API unsigned int kelmasn_c_get_long_integer_value_big_endian(unsigned char** cursor,
                                                                  unsigned int* remaining,
                                                                  unsigned int size,
                                                                  unsigned char** bytes,
                                                                  unsigned int* count);

/// kelmAsnGetNullValue.
KELM_API unsigned int kelmasn_c_get_null_value(unsigned char** cursor, unsigned int* remaining,
                                               unsigned int size);

/// kelmAsnGetBitstringValue.
KELM_API unsigned int kelmasn_c_get_bitstring_value(unsigned char** cursor, unsigned int* remaining,
                                                    unsigned int size, unsigned char** bytes,
                                                    unsigned int* bits);

/// kelmAsnGetCharstringValue.
KELM_API unsigned int kelmasn_c_get_charstring_value(unsigned char** cursor,
                                                     unsigned int* remaining, unsigned int size,
                                                     char** text);

/// kelmAsnGetOctetstringValue.
KELM_API unsigned int kelmasn_c_get_octetstring_value(unsigned char** cursor,
                                                      unsigned int* remaining, unsigned int size,
                                                      unsigned char** bytes, unsigned int* count);

/// kelmAsnGetOIDValue, its output record kelm_asn_oid_t given as its two fields: `count` and
/// `bytes` are written as the record's would be; a null one stands for a null record.
KELM_API unsigned int kelmasn_c_get_oid_value(unsigned char** cursor, unsigned int* remaining,
                                              unsigned int size, unsigned int* count,
                                              unsigned char** bytes);

#ifdef __cplusplus
}
#endif

#endif
