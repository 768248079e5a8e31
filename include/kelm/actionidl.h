/// \file
/// Actions, action groups and the set of action groups.
///
/// A group holds up to 32 actions and the set up to 32 groups, each in a fixed array of pointers
/// where a null pointer is an empty slot; on the wire every slot keeps its position.
///
/// Ownership: a record filled by a decode entry point owns its texts, every slot record it points
/// at and their storage; kelmAsnFreeObj releases them (not the record itself) and resets nothing.
#ifndef KELM_ACTIONIDL_H
#define KELM_ACTIONIDL_H

#include <stddef.h>
#include <stdint.h>

#include "attrlist.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct ekaction_s_t ekaction_s_t;
typedef struct ekaction_group_s_t ekaction_group_s_t;
typedef struct ekaction_groups_s_t ekaction_groups_s_t;
#endif

/// The fixed number of slots of an action group and of the set of groups.
#define KELM_ACTION_SLOT_COUNT 32
#ifdef __cplusplus
/// The fixed number of slots of an action group and of the set of groups, for C++.
inline constexpr unsigned int kelm_action_slot_count = KELM_ACTION_SLOT_COUNT;
#endif

/// A numbered action with three texts and two numbers that the product interprets.
struct ekaction_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t action_number;
    /// The action's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* action_name;
    /// The action's label (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* action_label;
    /// The action's text (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* action_text;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t second_number;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// A named group of up to 32 actions; a null pointer is an empty slot.
struct ekaction_group_s_t {
    /// The group's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* group_name;
    /// `kelm_action_slot_count` (32) slots, each a pointer to an action in a block of its own or
    /// null for an empty slot; every slot keeps its position on the wire.
    ekaction_s_t* actions[KELM_ACTION_SLOT_COUNT];
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// Up to 32 action groups; a null pointer is an empty slot.
struct ekaction_groups_s_t {
    /// `kelm_action_slot_count` (32) slots, each a pointer to an action group in a block of its own
    /// or null for an empty slot; every slot keeps its position on the wire.
    ekaction_group_s_t* groups[KELM_ACTION_SLOT_COUNT];
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

static_assert(offsetof(ekaction_s_t, action_name) == 8, "the texts follow the number");
static_assert(offsetof(ekaction_s_t, action_label) == 16, "texts at 8-byte spacing");
static_assert(offsetof(ekaction_s_t, action_text) == 24, "texts at 8-byte spacing");
static_assert(offsetof(ekaction_s_t, first_number) == 32, "the two numbers share one 8-byte slot");
static_assert(offsetof(ekaction_s_t, second_number) == 36, "the two numbers share one 8-byte slot");
static_assert(offsetof(ekaction_s_t, attrs) == 40, "the attribute list follows the numbers");
static_assert(sizeof(ekaction_s_t) == 56, "ekaction_s_t layout");
static_assert(offsetof(ekaction_group_s_t, actions) == 8, "ekaction_group_s_t layout");
static_assert(offsetof(ekaction_group_s_t, attrs) == 264, "ekaction_group_s_t layout");
static_assert(sizeof(ekaction_group_s_t) == 280, "an action group is 280 bytes");
static_assert(offsetof(ekaction_groups_s_t, attrs) == 256, "ekaction_groups_s_t layout");
static_assert(sizeof(ekaction_groups_s_t) == 272, "the set of action groups is 272 bytes");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(ekaction_groups_s_t);
KELM_DECLARE_ENTRY_POINTS(ekaction_group_s_t);
KELM_DECLARE_ENTRY_POINTS(ekaction_s_t);
#endif

#endif
