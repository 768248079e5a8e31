// Authorization-database records and credential changes: the database header record, four
// external-authentication texts, extended attributes, and the request and response of a
// credential modification.
//
// Ownership: a record filled by a decode entry point owns every string and array it points at;
// kelmAsnFreeObj releases them (not the record itself).
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

// The authorization-database header record.
struct ekauthzn_db_s_t {
    uint32_t number1;
    uint32_t number2;
    uint32_t number3;
    attrlist_s_t attrs;
};

// Four external-authentication texts.
struct ekextern_auth_s_t {
    char* string1;
    char* string2;
    char* string3;
    char* string4;
};

// A named attribute with text values.
struct ekattr_s_t {
    char* name;
    uint32_t value_count;
    char** values;
};

// Extended attributes: named text attributes and an attribute list.
struct ekextattr_s_t {
    uint32_t ekattr_count;
    ekattr_s_t* ekattrs;
    attrlist_s_t attrs;
};

// A credential modification request.
struct azn_creds_mod_in_s_t {
    char* string1;
    attrlist_s_t attrs;
    ekprincipal_chain_s_t chain;
};

// A credential modification response.
struct azn_creds_mod_out_s_t {
    ekprincipal_chain_s_t chain;
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
