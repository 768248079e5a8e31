/// \file
/// Name/value lists that nest to any depth, a list of such entries, the request that hands a log
/// record to a remote logging service, and the request and reply of an entitlements query.
///
/// Ownership: a record filled by a decode entry point owns every string, array and entry it
/// points at (each name/value entry in a block of its own); kelmAsnFreeObj releases them (not the
/// record itself).
#ifndef KELM_NAMEVALUE_H
#define KELM_NAMEVALUE_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"
#include "principal.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct namevalue_s_t namevalue_s_t;
typedef struct namevalueList_s_t namevalueList_s_t;
typedef struct remote_log_request remote_log_request;
typedef struct azn_get_entitlements_in_s_t azn_get_entitlements_in_s_t;
typedef struct azn_get_entitlements_out_s_t azn_get_entitlements_out_s_t;
#endif

/// A named list of text values with entries of its own type nested under it, each reached
/// through its own pointer.
struct namevalue_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of entries of `values`.
    uint32_t value_count;
    /// Texts (a SEQUENCE OF UTF8String), `value_count` of them; null when there are none.
    char** values;
    /// The number of entries of `nested`.
    uint32_t nested_count;
    /// Pointers to `namevalue_s_t` records, each in a block of its own (a SEQUENCE OF their
    /// SEQUENCEs), `nested_count` of them; null when there are none.
    namevalue_s_t** nested;
};

/// A list of name/value entries, each reached through its own pointer.
struct namevalueList_s_t {
    /// The number of entries of `entries`.
    uint32_t entry_count;
    /// Pointers to `namevalue_s_t` records, each in a block of its own (a SEQUENCE OF their
    /// SEQUENCEs), `entry_count` of them; null when there are none.
    namevalue_s_t** entries;
};

/// A log record handed to a remote logging service.
struct remote_log_request {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* log_text1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* log_text2;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t log_number1;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t log_number2;
    /// The number of bytes at `data`.
    uint32_t data_length;
    /// Bytes (an OCTET STRING), `data_length` of them; null when there are none.
    unsigned char* data;
};

/// An entitlements query.
struct azn_get_entitlements_in_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
};

/// The reply to an entitlements query.
struct azn_get_entitlements_out_s_t {
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t status;
};

static_assert(sizeof(namevalue_s_t) == 40, "namevalue_s_t layout");
static_assert(offsetof(namevalue_s_t, value_count) == 8, "namevalue_s_t layout");
static_assert(offsetof(namevalue_s_t, values) == 16, "namevalue_s_t layout");
static_assert(offsetof(namevalue_s_t, nested_count) == 24, "namevalue_s_t layout");
static_assert(offsetof(namevalue_s_t, nested) == 32, "namevalue_s_t layout");
static_assert(sizeof(namevalueList_s_t) == 16, "namevalueList_s_t layout");
static_assert(offsetof(namevalueList_s_t, entries) == 8, "namevalueList_s_t layout");
static_assert(sizeof(remote_log_request) == 40, "remote_log_request layout");
static_assert(offsetof(remote_log_request, log_number1) == 16,
              "two numbers and the length are three consecutive 32-bit fields");
static_assert(offsetof(remote_log_request, data_length) == 24, "remote_log_request layout");
static_assert(offsetof(remote_log_request, data) == 32, "remote_log_request layout");
static_assert(sizeof(azn_get_entitlements_in_s_t) == 48, "azn_get_entitlements_in_s_t layout");
static_assert(offsetof(azn_get_entitlements_in_s_t, attrs) == 8,
              "azn_get_entitlements_in_s_t layout");
static_assert(offsetof(azn_get_entitlements_in_s_t, chain) == 24,
              "azn_get_entitlements_in_s_t layout");
static_assert(sizeof(azn_get_entitlements_out_s_t) == 24, "azn_get_entitlements_out_s_t layout");
static_assert(offsetof(azn_get_entitlements_out_s_t, status) == 16,
              "azn_get_entitlements_out_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(namevalueList_s_t);
KELM_DECLARE_ENTRY_POINTS(namevalue_s_t);
KELM_DECLARE_ENTRY_POINTS(remote_log_request);
KELM_DECLARE_ENTRY_POINTS(azn_get_entitlements_in_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_get_entitlements_out_s_t);
#endif

#endif
