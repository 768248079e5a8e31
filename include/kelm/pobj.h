/// \file
/// Protected objects: object spaces (a list of names with attributes), protected objects (two
/// numbers, a name and attributes) and the authorization service's internal form of a protected
/// object (the object and one further name).
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_POBJ_H
#define KELM_POBJ_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct pobjspace_s_t pobjspace_s_t;
typedef struct pobj_s_t pobj_s_t;
typedef struct azn_internal_pobj_s_t azn_internal_pobj_s_t;
#endif

/// A protected-object space.
struct pobjspace_s_t {
    /// The number of entries of `names`.
    uint32_t name_count;
    /// Texts (a SEQUENCE OF UTF8String), `name_count` of them; null when there are none.
    char** names;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// A protected object.
struct pobj_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The authorization service's internal form of a protected object.
struct azn_internal_pobj_s_t {
    /// The protected object, a `pobj_s_t` held inline (its SEQUENCE nested).
    pobj_s_t pobj;
    /// The internal name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* internal_name;
};

static_assert(offsetof(pobjspace_s_t, names) == 8, "pobjspace_s_t layout");
static_assert(offsetof(pobjspace_s_t, attrs) == 16, "pobjspace_s_t layout");
static_assert(sizeof(pobjspace_s_t) == 32, "pobjspace_s_t layout");
// The two numbers share the first 8 bytes, the name pointer follows, then the inline list.
static_assert(offsetof(pobj_s_t, second_number) == 4, "pobj_s_t layout");
static_assert(offsetof(pobj_s_t, name) == 8, "pobj_s_t layout");
static_assert(offsetof(pobj_s_t, attrs) == 16, "pobj_s_t layout");
static_assert(sizeof(pobj_s_t) == 32, "pobj_s_t layout");
static_assert(offsetof(azn_internal_pobj_s_t, internal_name) == 32, "azn_internal_pobj_s_t layout");
static_assert(sizeof(azn_internal_pobj_s_t) == 40, "azn_internal_pobj_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(pobjspace_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_internal_pobj_s_t);
KELM_DECLARE_ENTRY_POINTS(pobj_s_t);
#endif

#endif
