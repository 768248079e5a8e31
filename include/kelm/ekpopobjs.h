/// \file
/// Protected-object policies: time-of-day ranges and access times, network-address
/// authentication entries in two generations, the policy itself, and the two mappings between
/// policies and protected-object names.
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_EKPOPOBJS_H
#define KELM_EKPOPOBJS_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "ekobj.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct ektod_range_s_t ektod_range_s_t;
typedef struct ekaccess_times_s_t ekaccess_times_s_t;
typedef struct ekpop_ipauth_s_t ekpop_ipauth_s_t;
typedef struct ekpop_ipauth2_s_t ekpop_ipauth2_s_t;
typedef struct ekpop_ipauth2_list_s_t ekpop_ipauth2_list_s_t;
typedef struct ekpop_s_t ekpop_s_t;
typedef struct ekmap_pop_to_pobj_s_t ekmap_pop_to_pobj_s_t;
typedef struct ekmap_pobj_to_pop_s_t ekmap_pobj_to_pop_s_t;
#endif

/// A time-of-day range. The qualifier travels as a signed INTEGER and comes back with the same
/// bit pattern.
struct ektod_range_s_t {
    /// A signed number (an INTEGER).
    int32_t range_start;
    /// A signed number (an INTEGER).
    int32_t range_end;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t range_qualifier;
};

/// An access value and its time range.
struct ekaccess_times_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t access_value;
    /// The time-of-day range, a `ektod_range_s_t` held inline (its SEQUENCE nested).
    ektod_range_s_t tod;
};

/// A network-address authentication entry of three numbers.
struct ekpop_ipauth_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t third_number;
};

/// A network-address authentication entry of a number and two address records.
struct ekpop_ipauth2_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// An address, a `ip_addr_s_t` held inline (its SEQUENCE nested).
    ip_addr_s_t first_addr;
    /// An address, a `ip_addr_s_t` held inline (its SEQUENCE nested).
    ip_addr_s_t second_addr;
};

/// A list of the second generation of entries.
struct ekpop_ipauth2_list_s_t {
    /// The number of entries of `ipauths`.
    uint32_t ipauth_count;
    /// An array of `ipauth_count` `ekpop_ipauth2_s_t` records (a SEQUENCE OF their SEQUENCEs); null
    /// when there are none.
    ekpop_ipauth2_s_t* ipauths;
};

/// A protected-object policy.
struct ekpop_s_t {
    /// The policy's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* pop_name;
    /// The access times, a `ekaccess_times_s_t` held inline (its SEQUENCE nested).
    ekaccess_times_s_t access_times;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t third_number;
    /// The number of entries of `ipauths`.
    uint32_t ipauth_count;
    /// An array of `ipauth_count` `ekpop_ipauth_s_t` records (a SEQUENCE OF their SEQUENCEs); null
    /// when there are none.
    ekpop_ipauth_s_t* ipauths;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The protected-object names of a policy.
struct ekmap_pop_to_pobj_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The policy names of a protected object.
struct ekmap_pobj_to_pop_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

static_assert(sizeof(ektod_range_s_t) == 12, "ektod_range_s_t layout");
// The range follows the first field directly; together they are the whole record.
static_assert(offsetof(ekaccess_times_s_t, tod) == 4, "ekaccess_times_s_t layout");
static_assert(sizeof(ekaccess_times_s_t) == 16, "ekaccess_times_s_t layout");
static_assert(sizeof(ekpop_ipauth_s_t) == 12, "ekpop_ipauth_s_t layout");
static_assert(offsetof(ekpop_ipauth2_s_t, first_addr) == 4, "ekpop_ipauth2_s_t layout");
static_assert(offsetof(ekpop_ipauth2_s_t, second_addr) == 72, "ekpop_ipauth2_s_t layout");
static_assert(sizeof(ekpop_ipauth2_s_t) == 140, "ekpop_ipauth2_s_t layout");
static_assert(offsetof(ekpop_ipauth2_list_s_t, ipauths) == 8, "ekpop_ipauth2_list_s_t layout");
static_assert(sizeof(ekpop_ipauth2_list_s_t) == 16, "ekpop_ipauth2_list_s_t layout");
// The three numbers and the count are four consecutive fields after the access times.
static_assert(offsetof(ekpop_s_t, access_times) == 8, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, first_number) == 24, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, second_number) == 28, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, third_number) == 32, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, ipauth_count) == 36, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, ipauths) == 40, "ekpop_s_t layout");
static_assert(offsetof(ekpop_s_t, attrs) == 48, "ekpop_s_t layout");
static_assert(sizeof(ekpop_s_t) == 64, "ekpop_s_t layout");
static_assert(offsetof(ekmap_pop_to_pobj_s_t, names) == 8, "ekmap_pop_to_pobj_s_t layout");
static_assert(offsetof(ekmap_pop_to_pobj_s_t, attrs) == 16, "ekmap_pop_to_pobj_s_t layout");
static_assert(sizeof(ekmap_pop_to_pobj_s_t) == 32, "ekmap_pop_to_pobj_s_t layout");
static_assert(offsetof(ekmap_pobj_to_pop_s_t, names) == 8, "ekmap_pobj_to_pop_s_t layout");
static_assert(offsetof(ekmap_pobj_to_pop_s_t, attrs) == 16, "ekmap_pobj_to_pop_s_t layout");
static_assert(sizeof(ekmap_pobj_to_pop_s_t) == 32, "ekmap_pobj_to_pop_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(ektod_range_s_t);
KELM_DECLARE_ENTRY_POINTS(ekaccess_times_s_t);
KELM_DECLARE_ENTRY_POINTS(ekpop_ipauth_s_t);
KELM_DECLARE_ENTRY_POINTS(ekmap_pop_to_pobj_s_t);
KELM_DECLARE_ENTRY_POINTS(ekpop_s_t);
KELM_DECLARE_ENTRY_POINTS(ekpop_ipauth2_list_s_t);
KELM_DECLARE_ENTRY_POINTS(ekpop_ipauth2_s_t);
KELM_DECLARE_ENTRY_POINTS(ekmap_pobj_to_pop_s_t);
#endif

#endif
