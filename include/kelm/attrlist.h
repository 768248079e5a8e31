/// \file
/// Identifiers, typed values, attributes and attribute lists: the records nearly every other
/// record nests.
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_ATTRLIST_H
#define KELM_ATTRLIST_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct uuid_t uuid_t;
typedef struct value_s_t value_s_t;
typedef struct attr_s_t attr_s_t;
typedef struct attrlist_s_t attrlist_s_t;
#endif

/// The 16-byte identifier layout.
struct uuid_t {
    /// The identifier's time_low field, octets 0 to 3 (an INTEGER, written from its signed 32-bit
    /// view and read back with the same bits).
    uint32_t time_low;
    /// The identifier's time_mid field, octets 4 and 5 (an INTEGER; a wider value read back keeps
    /// its low 16 bits).
    uint16_t time_mid;
    /// The identifier's time_hi_and_version field, octets 6 and 7 (an INTEGER; a wider value read
    /// back keeps its low 16 bits).
    uint16_t time_hi_and_version;
    /// The identifier's clock_seq_hi_and_reserved field, octet 8 (an INTEGER; a wider value read
    /// back keeps its low 8 bits).
    uint8_t clock_seq_hi_and_reserved;
    /// The identifier's clock_seq_low field, octet 9 (an INTEGER; a wider value read back keeps its
    /// low 8 bits).
    uint8_t clock_seq_low;
    /// The identifier's node field, octets 10 to 15, held inline and written in full as a 6-byte
    /// OCTET STRING; decoded into exactly 6 bytes (longer contents cut, shorter ones filled with
    /// zeros).
    unsigned char node[6];
};

/// A typed value: the type code is carried, not interpreted.
struct value_s_t {
    /// The type code of the value, carried and not interpreted (an INTEGER, written from its signed
    /// 32-bit view and read back with the same bits); all three value fields travel whatever it
    /// says.
    uint32_t value_type;
    /// The value as text (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* str_value;
    /// The number of bytes at `bin_value`.
    uint32_t bin_length;
    /// The value as bytes (an OCTET STRING, always written, empty when `bin_length` is 0); null
    /// when there are none.
    unsigned char* bin_value;
};

/// A named attribute with its values.
struct attr_s_t {
    /// The attribute's name (a UTF8String; the LCS entry points convert it from and to the local
    /// code set). A null name is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of entries of `values`.
    uint32_t value_count;
    /// The attribute's values, an array of `value_count` records (a SEQUENCE OF value SEQUENCEs);
    /// null when there are none.
    value_s_t* values;
};

/// A list of attributes.
struct attrlist_s_t {
    /// The number of entries of `attrs`.
    uint32_t attr_count;
    /// The attributes, an array of `attr_count` records (a SEQUENCE OF attribute SEQUENCEs, itself
    /// inside the list's SEQUENCE: an empty list is 30 02 30 00); null when there are none.
    attr_s_t* attrs;
};

static_assert(sizeof(uuid_t) == 16, "uuid_t is the 16-byte identifier layout");
static_assert(offsetof(uuid_t, node) == 10, "uuid_t layout");
static_assert(sizeof(value_s_t) == 32, "value_s_t layout");
static_assert(offsetof(value_s_t, bin_length) == 16, "value_s_t layout");
static_assert(sizeof(attr_s_t) == 24, "attr_s_t layout");
static_assert(sizeof(attrlist_s_t) == 16, "attrlist_s_t layout");

#ifdef __cplusplus
/// Typed entry points, one set per record type. Encode fills `out` with the four-byte header and
/// the DER encoding (release it with kelm_asn_buffer_free); decode fills the record, whose storage
/// the caller releases with kelmAsnFreeObj. The LCS variants convert texts between the local code
/// set and UTF-8. Each returns 0 or a status code (see kelm_entry.h).
#define KELM_DECLARE_ENTRY_POINTS(Record)                                                          \
    KELM_API unsigned int kelmAsnEncodeObj(kelm_asn_buffer_t& out, Record& record);                \
    KELM_API unsigned int kelmAsnDecodeObj(kelm_asn_buffer_t& in, Record& record);                 \
    KELM_API unsigned int kelmAsnEncodeObjLCS(kelm_asn_buffer_t& out, Record& record);             \
    KELM_API unsigned int kelmAsnDecodeObjLCS(kelm_asn_buffer_t& in, Record& record);              \
    KELM_API void kelmAsnFreeObj(Record& record)

KELM_DECLARE_ENTRY_POINTS(uuid_t);
KELM_DECLARE_ENTRY_POINTS(value_s_t);
KELM_DECLARE_ENTRY_POINTS(attr_s_t);
KELM_DECLARE_ENTRY_POINTS(attrlist_s_t);
#endif

#endif
