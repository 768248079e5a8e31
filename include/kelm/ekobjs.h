/// \file
/// Certificate requests and lists of object updates, reached only by type code, and the three
/// entry points that select a record type by that code.
///
/// Their encodings carry a version element, INTEGER 1, as the first element of every SEQUENCE
/// (also of each update in a list); it is written always and never read back, so an input with
/// another version there is accepted. Texts travel in OCTET STRINGs together with their
/// terminating NUL.
///
/// Ownership: a record filled by kelmasn_decode_obj owns its texts, body and arrays, allocated
/// with malloc; kelmasn_obj_free releases them (not the record itself) and resets nothing.
#ifndef KELM_EKOBJS_H
#define KELM_EKOBJS_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct cert_request_in cert_request_in;
typedef struct ekobj_update_s_t ekobj_update_s_t;
typedef struct ekobj_update_list_s_t ekobj_update_list_s_t;
#endif

/// A certificate request: two texts and an optional body of arbitrary bytes.
struct cert_request_in {
    /// A text (an OCTET STRING holding the text and its NUL); never null after a decode, at least
    /// an empty string. A null text is written as the single byte 00.
    char* string1;
    /// A text (an OCTET STRING holding the text and its NUL); never null after a decode, at least
    /// an empty string. A null text is written as the single byte 00.
    char* string2;
    uint32_t body_length; ///< 0: no body
    /// The body, `body_length` bytes (an optional OCTET STRING, left out when `body_length` is 0 or
    /// `body` is null); null and a length of 0 after a decode without body.
    unsigned char* body;
};

/// One object update.
struct ekobj_update_s_t {
    /// A number (an INTEGER; 0 after a decode of a value that does not fit 32 bits).
    int32_t number1;
    /// A text (an OCTET STRING holding the text and its NUL); never null after a decode, at least
    /// an empty string.
    char* text;
    /// A number (an INTEGER; 0 after a decode of a value that does not fit 32 bits).
    int32_t number2;
};

/// A list of object updates.
struct ekobj_update_list_s_t {
    /// The number of entries of `updates`.
    uint32_t count;
    /// The updates, an array of `count` records (a SEQUENCE OF update SEQUENCEs); null when there
    /// are none.
    ekobj_update_s_t* updates;
};

static_assert(offsetof(cert_request_in, body_length) == 16, "cert_request_in layout");
static_assert(offsetof(cert_request_in, body) == 24, "cert_request_in layout");
static_assert(sizeof(cert_request_in) == 32, "cert_request_in layout");
static_assert(offsetof(ekobj_update_s_t, text) == 8, "ekobj_update_s_t layout");
static_assert(offsetof(ekobj_update_s_t, number2) == 16, "ekobj_update_s_t layout");
static_assert(sizeof(ekobj_update_s_t) == 24, "ekobj_update_s_t layout");
static_assert(offsetof(ekobj_update_list_s_t, updates) == 8, "ekobj_update_list_s_t layout");
static_assert(sizeof(ekobj_update_list_s_t) == 16, "ekobj_update_list_s_t layout");

/// The type codes of the type-code entry points; every other code is unknown.
#ifdef __cplusplus
enum : unsigned int {
#else
enum {
#endif
    KELMASN_TYPE_CERT_REQUEST = 0x103,      ///< the record is a cert_request_in
    KELMASN_TYPE_EKOBJ_UPDATE_LIST = 0x104, ///< the record is an ekobj_update_list_s_t
    KELMASN_TYPE_INTEGER = 0x106,           ///< the record is an int, written as a bare INTEGER
};

#ifdef __cplusplus
/// Encodes the record of type code `type` into `out`: the four-byte header with the low byte of
/// `version`, then the encoding. Release the bytes with kelm_asn_buffer_free. Kept for
/// compatibility with existing callers: a record that cannot be copied completely (a list whose
/// entries run out of memory) is encoded as far as it was copied, with status 0.
/// Returns 0, 0xFFFFFFFF for an unknown type code (nothing touched), or a status code; any
/// exception, of the runtime's family or not, becomes a status (0x10652065 for one that is not).
KELM_API unsigned int kelmasn_encode_obj(int version, void* record, unsigned int type,
                                         kelm_asn_buffer_t& out);

/// Decodes `in`, whose header must carry the low byte of `version`, into the record of type code
/// `type`; release what it allocated with kelmasn_obj_free, also after a failure part way.
/// Returns 0, 0xFFFFFFFF for an unknown type code (nothing touched), 0x10652196 for a header that
/// does not fit (the record untouched), or a status code, as kelmasn_encode_obj does.
KELM_API unsigned int kelmasn_decode_obj(int version, kelm_asn_buffer_t& in, unsigned int type,
                                         void* record);

/// Releases what kelmasn_decode_obj allocated in the record of type code `type` (nothing for an
/// int). Returns 0, or 0xFFFFFFFF for an unknown type code. `version` is not used.
KELM_API unsigned int kelmasn_obj_free(int version, unsigned int type, void* record);

/// The dispatcher behind the three entry points above: `operation` 2 frees, 0 encodes into
/// `buffer`, any other value decodes `buffer`.
KELM_API unsigned int main_func(int operation, int version, void* record, unsigned int type,
                                kelm_asn_buffer_t& buffer);
#endif

#endif
