/// \file
/// Authorization-database records and credential changes: the database header record, four
/// external-authentication texts, extended attributes, and the request and response of a
/// credential modification.
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_EKACLOBJS_H
#define KELM_EKACLOBJS_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"
#include "principal.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct ekauthzn_db_s_t ekauthzn_db_s_t;
typedef struct ekextern_auth_s_t ekextern_auth_s_t;
typedef struct ekattr_s_t ekattr_s_t;
typedef struct ekextattr_s_t ekextattr_s_t;
typedef struct azn_creds_mod_in_s_t azn_creds_mod_in_s_t;
typedef struct azn_creds_mod_out_s_t azn_creds_mod_out_s_t;
#endif

/// The authorization-database header record.
struct ekauthzn_db_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t number1;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t number2;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t number3;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// Four external-authentication texts.
struct ekextern_auth_s_t {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* string1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* string2;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* string3;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* string4;
};

/// A named attribute with text values.
struct ekattr_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of entries of `values`.
    uint32_t value_count;
    /// Texts (a SEQUENCE OF UTF8String), `value_count` of them; null when there are none.
    char** values;
};

/// Extended attributes: named text attributes and an attribute list.
struct ekextattr_s_t {
    /// The number of entries of `ekattrs`.
    uint32_t ekattr_count;
    /// An array of `ekattr_count` `ekattr_s_t` records (a SEQUENCE OF their SEQUENCEs); null when
    /// there are none.
    ekattr_s_t* ekattrs;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// A credential modification request.
struct azn_creds_mod_in_s_t {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* string1;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
};

/// A credential modification response.
struct azn_creds_mod_out_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t result;
};

static_assert(sizeof(ekauthzn_db_s_t) == 32, "ekauthzn_db_s_t layout");
static_assert(offsetof(ekauthzn_db_s_t, number3) == 8, "ekauthzn_db_s_t layout");
static_assert(offsetof(ekauthzn_db_s_t, attrs) == 16, "ekauthzn_db_s_t layout");
static_assert(sizeof(ekextern_auth_s_t) == 32, "ekextern_auth_s_t is four pointers");
static_assert(sizeof(ekattr_s_t) == 24, "ekattr_s_t layout");
static_assert(offsetof(ekattr_s_t, value_count) == 8, "ekattr_s_t layout");
static_assert(offsetof(ekattr_s_t, values) == 16, "ekattr_s_t layout");
static_assert(sizeof(ekextattr_s_t) == 32, "ekextattr_s_t layout");
static_assert(offsetof(ekextattr_s_t, ekattrs) == 8, "ekextattr_s_t layout");
static_assert(offsetof(ekextattr_s_t, attrs) == 16, "ekextattr_s_t layout");
static_assert(sizeof(azn_creds_mod_in_s_t) == 48, "azn_creds_mod_in_s_t layout");
static_assert(offsetof(azn_creds_mod_in_s_t, attrs) == 8, "azn_creds_mod_in_s_t layout");
static_assert(offsetof(azn_creds_mod_in_s_t, chain) == 24, "azn_creds_mod_in_s_t layout");
static_assert(sizeof(azn_creds_mod_out_s_t) == 32, "azn_creds_mod_out_s_t layout");
static_assert(offsetof(azn_creds_mod_out_s_t, result) == 24, "the result follows the inline chain");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(ekauthzn_db_s_t);
KELM_DECLARE_ENTRY_POINTS(ekextern_auth_s_t);
KELM_DECLARE_ENTRY_POINTS(ekextattr_s_t);
KELM_DECLARE_ENTRY_POINTS(ekattr_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_creds_mod_in_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_creds_mod_out_s_t);
#endif

#endif
