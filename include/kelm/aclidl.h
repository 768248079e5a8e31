/// \file
/// Access control lists: a permission set, an ACL entry, a whole ACL, and the two mappings
/// between protected-object names and ACLs.
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_ACLIDL_H
#define KELM_ACLIDL_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"
#include "principal.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct acl_permset_s_t acl_permset_s_t;
typedef struct acl_entry_s_t acl_entry_s_t;
typedef struct acl_ext_s_t acl_ext_s_t;
typedef struct map_pobj_to_acl_s_t map_pobj_to_acl_s_t;
typedef struct map_acl_to_pobj_s_t map_acl_to_pobj_s_t;
#endif

/// A permission set: a list of numbers, each carried with its 32-bit pattern.
struct acl_permset_s_t {
    /// The number of entries of `perms`.
    uint32_t perm_count;
    /// Numbers (a SEQUENCE OF INTEGER, each written from its signed view and read back with the
    /// same bits), `perm_count` of them; null when there are none.
    uint32_t* perms;
};

/// An ACL entry: its permissions, its type and the identity it applies to.
struct acl_entry_s_t {
    /// The permissions, a `acl_permset_s_t` held inline (its SEQUENCE nested).
    acl_permset_s_t permset;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t entry_type;
    /// The security identifier, a `sec_id_t` held inline (its SEQUENCE nested).
    sec_id_t id;
};

/// A whole ACL: its name, its entries and its attributes.
struct acl_ext_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of entries of `entries`.
    uint32_t entry_count;
    /// An array of `entry_count` `acl_entry_s_t` records (a SEQUENCE OF their SEQUENCEs); null when
    /// there are none.
    acl_entry_s_t* entries;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// Protected-object names mapped to an ACL.
struct map_pobj_to_acl_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// ACL names mapped to protected objects.
struct map_acl_to_pobj_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

static_assert(sizeof(acl_permset_s_t) == 16, "acl_permset_s_t layout");
static_assert(offsetof(acl_permset_s_t, perms) == 8, "acl_permset_s_t layout");
static_assert(sizeof(acl_entry_s_t) == 48, "acl_entry_s_t layout");
static_assert(offsetof(acl_entry_s_t, entry_type) == 16, "acl_entry_s_t layout");
static_assert(offsetof(acl_entry_s_t, id) == 24, "acl_entry_s_t layout");
static_assert(sizeof(acl_ext_s_t) == 40, "acl_ext_s_t layout");
static_assert(offsetof(acl_ext_s_t, entry_count) == 8, "acl_ext_s_t layout");
static_assert(offsetof(acl_ext_s_t, entries) == 16, "acl_ext_s_t layout");
static_assert(offsetof(acl_ext_s_t, attrs) == 24, "acl_ext_s_t layout");
static_assert(sizeof(map_pobj_to_acl_s_t) == 32, "map_pobj_to_acl_s_t layout");
static_assert(offsetof(map_pobj_to_acl_s_t, names) == 8, "map_pobj_to_acl_s_t layout");
static_assert(offsetof(map_pobj_to_acl_s_t, attrs) == 16, "map_pobj_to_acl_s_t layout");
static_assert(sizeof(map_acl_to_pobj_s_t) == 32, "map_acl_to_pobj_s_t layout");
static_assert(offsetof(map_acl_to_pobj_s_t, names) == 8, "map_acl_to_pobj_s_t layout");
static_assert(offsetof(map_acl_to_pobj_s_t, attrs) == 16, "map_acl_to_pobj_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(acl_permset_s_t);
KELM_DECLARE_ENTRY_POINTS(map_pobj_to_acl_s_t);
KELM_DECLARE_ENTRY_POINTS(acl_ext_s_t);
KELM_DECLARE_ENTRY_POINTS(acl_entry_s_t);
KELM_DECLARE_ENTRY_POINTS(map_acl_to_pobj_s_t);
#endif

#endif
