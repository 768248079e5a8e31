/// \file
/// Security identities and principals: a security identifier, a privilege-attribute identity, a
/// principal, a chain of principals, and the request and reply of a database fetch.
///
/// Ownership: a record filled by a decode entry point owns every string, array and nested record
/// it points at (a chain's principals each in a block of their own); kelmAsnFreeObj releases
/// them (not the record itself).
#ifndef KELM_PRINCIPAL_H
#define KELM_PRINCIPAL_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct sec_id_t sec_id_t;
typedef struct sec_id_pa_t sec_id_pa_t;
typedef struct ekprincipal_s_t ekprincipal_s_t;
typedef struct ekprincipal_chain_s_t ekprincipal_chain_s_t;
typedef struct dbr_get_db_in_s_t dbr_get_db_in_s_t;
typedef struct dbr_get_db_out_s_t dbr_get_db_out_s_t;
#endif

/// A security identifier: an identifier and a name.
struct sec_id_t {
    /// The identifier, a `uuid_t` held inline (its SEQUENCE nested).
    uuid_t uuid;
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
};

/// A privilege-attribute identity: one identifier and its groups. The group count is 16 bits
/// wide: a decoded list of more than 65535 groups keeps every entry while the count wraps.
struct sec_id_pa_t {
    /// The security identifier, a `sec_id_t` held inline (its SEQUENCE nested).
    sec_id_t id;
    /// The number of entries of `groups`, 16 bits wide: past 65535 decoded groups it wraps while
    /// the array keeps them all.
    uint16_t group_count;
    /// The groups, an array of `group_count` security identifiers (a SEQUENCE OF their SEQUENCEs);
    /// null when there are none.
    sec_id_t* groups;
};

/// A principal: two numbers, an optional identity and optional attributes (NULL when absent).
struct ekprincipal_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// Optional: the principal's privilege-attribute identity, in a block of its own; null when
    /// absent (left out of the encoding).
    sec_id_pa_t* pa;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// Optional: the principal's attributes, in a block of their own; null when absent (left out of
    /// the encoding).
    attrlist_s_t* attrs;
};

/// A chain of principals, each reached through its own pointer.
struct ekprincipal_chain_s_t {
    /// The chain's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* chain_name;
    /// The number of entries of `principals`.
    uint32_t principal_count;
    /// The principals, `principal_count` pointers each to a principal in a block of its own (a
    /// SEQUENCE OF principal SEQUENCEs); null when there are none.
    ekprincipal_s_t** principals;
};

/// A database fetch request.
struct dbr_get_db_in_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t request_number;
};

/// The reply to a database fetch.
struct dbr_get_db_out_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t third_number;
};

static_assert(sizeof(sec_id_t) == 24, "sec_id_t layout");
static_assert(offsetof(sec_id_t, name) == 16, "sec_id_t layout");
static_assert(sizeof(sec_id_pa_t) == 40, "sec_id_pa_t is a 40-byte record");
static_assert(offsetof(sec_id_pa_t, group_count) == 24,
              "the 16-bit group count follows the inline identity");
static_assert(offsetof(sec_id_pa_t, groups) == 32,
              "the group array pointer is on the next 8-byte boundary");
static_assert(sizeof(ekprincipal_s_t) == 32, "ekprincipal_s_t layout");
static_assert(offsetof(ekprincipal_s_t, pa) == 8, "ekprincipal_s_t layout");
static_assert(offsetof(ekprincipal_s_t, second_number) == 16, "ekprincipal_s_t layout");
static_assert(offsetof(ekprincipal_s_t, attrs) == 24, "ekprincipal_s_t layout");
static_assert(sizeof(ekprincipal_chain_s_t) == 24, "ekprincipal_chain_s_t layout");
static_assert(offsetof(ekprincipal_chain_s_t, principal_count) == 8,
              "ekprincipal_chain_s_t layout");
static_assert(offsetof(ekprincipal_chain_s_t, principals) == 16, "ekprincipal_chain_s_t layout");
static_assert(sizeof(dbr_get_db_in_s_t) == 4, "dbr_get_db_in_s_t layout");
static_assert(sizeof(dbr_get_db_out_s_t) == 12, "dbr_get_db_out_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(ekprincipal_chain_s_t);
KELM_DECLARE_ENTRY_POINTS(ekprincipal_s_t);
KELM_DECLARE_ENTRY_POINTS(sec_id_pa_t);
KELM_DECLARE_ENTRY_POINTS(sec_id_t);
KELM_DECLARE_ENTRY_POINTS(dbr_get_db_in_s_t);
KELM_DECLARE_ENTRY_POINTS(dbr_get_db_out_s_t);
#endif

#endif
