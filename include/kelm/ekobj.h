/// \file
/// Generic objects: network addresses, named objects with a byte payload, lists of objects or of
/// names, and the header of an object database.
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_EKOBJ_H
#define KELM_EKOBJ_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct ip_addr_s_t ip_addr_s_t;
typedef struct ekobj_t ekobj_t;
typedef struct ekobj_list_s_t ekobj_list_s_t;
typedef struct ekobj_name_list_s_t ekobj_name_list_s_t;
typedef struct ekobj_db_header_s_t ekobj_db_header_s_t;
#endif

/// A network address. Both arrays always travel at their full size, whatever they hold.
struct ip_addr_s_t {
    /// The type of the address (an INTEGER, written from its signed 32-bit view and read back with
    /// the same bits).
    uint32_t addr_type;
    /// The address as 46 bytes held inline, written in full as an OCTET STRING whatever they hold;
    /// decoded into exactly 46 bytes (longer contents cut, shorter ones filled with zeros).
    unsigned char addr_string[46];
    /// The address as 16 bytes held inline, written in full as an OCTET STRING whatever they hold;
    /// decoded into exactly 16 bytes (longer contents cut, shorter ones filled with zeros).
    unsigned char addr_bytes[16];
};

/// A named object with two numbers and a byte payload.
struct ekobj_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// The number of bytes at `data`.
    uint32_t data_length;
    /// Bytes (an OCTET STRING), `data_length` of them; null when there are none.
    unsigned char* data;
};

/// A list of objects with attributes.
struct ekobj_list_s_t {
    /// The number of entries of `objs`.
    uint32_t obj_count;
    /// An array of `obj_count` `ekobj_t` records (a SEQUENCE OF their SEQUENCEs); null when there
    /// are none.
    ekobj_t* objs;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// A list of names with attributes.
struct ekobj_name_list_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The header of an object database.
struct ekobj_db_header_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t db_number;
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

// The arrays follow the integer without gaps.
static_assert(offsetof(ip_addr_s_t, addr_string) == 4, "ip_addr_s_t layout");
static_assert(offsetof(ip_addr_s_t, addr_bytes) == 50, "ip_addr_s_t layout");
static_assert(sizeof(ip_addr_s_t) == 68, "ip_addr_s_t layout");
static_assert(offsetof(ekobj_t, first_number) == 8, "ekobj_t layout");
static_assert(offsetof(ekobj_t, data_length) == 16, "ekobj_t layout");
static_assert(offsetof(ekobj_t, data) == 24, "ekobj_t layout");
static_assert(sizeof(ekobj_t) == 32, "ekobj_t layout");
static_assert(offsetof(ekobj_list_s_t, objs) == 8, "ekobj_list_s_t layout");
static_assert(offsetof(ekobj_list_s_t, attrs) == 16, "ekobj_list_s_t layout");
static_assert(sizeof(ekobj_list_s_t) == 32, "ekobj_list_s_t layout");
static_assert(offsetof(ekobj_name_list_s_t, names) == 8, "ekobj_name_list_s_t layout");
static_assert(offsetof(ekobj_name_list_s_t, attrs) == 16, "ekobj_name_list_s_t layout");
static_assert(sizeof(ekobj_name_list_s_t) == 32, "ekobj_name_list_s_t layout");
// The count sits right after the number, before the pointer.
static_assert(offsetof(ekobj_db_header_s_t, name_count) == 4, "ekobj_db_header_s_t layout");
static_assert(offsetof(ekobj_db_header_s_t, names) == 8, "ekobj_db_header_s_t layout");
static_assert(offsetof(ekobj_db_header_s_t, attrs) == 16, "ekobj_db_header_s_t layout");
static_assert(sizeof(ekobj_db_header_s_t) == 32, "ekobj_db_header_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(ip_addr_s_t);
KELM_DECLARE_ENTRY_POINTS(ekobj_t);
KELM_DECLARE_ENTRY_POINTS(ekobj_name_list_s_t);
KELM_DECLARE_ENTRY_POINTS(ekobj_list_s_t);
KELM_DECLARE_ENTRY_POINTS(ekobj_db_header_s_t);
#endif

#endif
