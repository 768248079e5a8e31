/// \file
/// Audit events: an event carries two numbers, a text and a list of elements; an element carries
/// a name, a byte value, a list of attributes and a list of further elements, so that elements
/// nest to any depth; an attribute is a name with a byte value. Every list is a count and a
/// contiguous array of records.
///
/// Decoding refuses an input nested deeper than KELM_ASN_MAX_NESTING constructed levels (the event
/// and each element take one level, and each list one more), with a status and without touching
/// the record.
///
/// Ownership: a record filled by a decode entry point owns its texts, byte values and arrays at
/// every level; kelmAsnFreeObj releases them (not the record itself) and resets nothing.
#ifndef KELM_ZUAUDITIDL_H
#define KELM_ZUAUDITIDL_H

#include <stddef.h>
#include <stdint.h>

#include "attrlist.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct zuauditattribute_s_t zuauditattribute_s_t;
typedef struct zuauditelement_s_t zuauditelement_s_t;
typedef struct zuauditevent_s_t zuauditevent_s_t;
#endif

/// A named byte value.
struct zuauditattribute_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of bytes at `value`.
    uint32_t value_length;
    /// Bytes (an OCTET STRING), `value_length` of them; null when there are none.
    unsigned char* value;
};

/// A named byte value with its attributes and nested elements.
struct zuauditelement_s_t {
    /// The name (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* name;
    /// The number of bytes at `value`.
    uint32_t value_length;
    /// Bytes (an OCTET STRING), `value_length` of them; null when there are none.
    unsigned char* value;
    /// The number of entries of `attrs`.
    uint32_t attr_count;
    /// An array of `attr_count` `zuauditattribute_s_t` records (a SEQUENCE OF their SEQUENCEs);
    /// null when there are none.
    zuauditattribute_s_t* attrs;
    /// The number of entries of `elements`.
    uint32_t element_count;
    /// An array of `element_count` `zuauditelement_s_t` records (a SEQUENCE OF their SEQUENCEs);
    /// null when there are none.
    zuauditelement_s_t* elements;
};

/// An audit event. The two numbers are written as signed INTEGERs and read back with their bit
/// patterns unchanged.
struct zuauditevent_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t event_number1;
    /// The event's text (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* event_text;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t event_number2;
    /// The number of entries of `elements`.
    uint32_t element_count;
    /// An array of `element_count` `zuauditelement_s_t` records (a SEQUENCE OF their SEQUENCEs);
    /// null when there are none.
    zuauditelement_s_t* elements;
};

static_assert(offsetof(zuauditattribute_s_t, value_length) == 8, "zuauditattribute_s_t layout");
static_assert(offsetof(zuauditattribute_s_t, value) == 16, "zuauditattribute_s_t layout");
static_assert(sizeof(zuauditattribute_s_t) == 24, "zuauditattribute_s_t layout");
static_assert(offsetof(zuauditelement_s_t, attr_count) == 24, "zuauditelement_s_t layout");
static_assert(offsetof(zuauditelement_s_t, attrs) == 32, "zuauditelement_s_t layout");
static_assert(offsetof(zuauditelement_s_t, element_count) == 40, "zuauditelement_s_t layout");
static_assert(offsetof(zuauditelement_s_t, elements) == 48, "zuauditelement_s_t layout");
static_assert(sizeof(zuauditelement_s_t) == 56, "zuauditelement_s_t layout");
static_assert(offsetof(zuauditevent_s_t, event_text) == 8, "zuauditevent_s_t layout");
static_assert(offsetof(zuauditevent_s_t, event_number2) == 16,
              "the second number and the count are two consecutive 32-bit fields");
static_assert(offsetof(zuauditevent_s_t, element_count) == 20,
              "the second number and the count are two consecutive 32-bit fields");
static_assert(offsetof(zuauditevent_s_t, elements) == 24, "zuauditevent_s_t layout");
static_assert(sizeof(zuauditevent_s_t) == 32, "zuauditevent_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(zuauditevent_s_t);
KELM_DECLARE_ENTRY_POINTS(zuauditelement_s_t);
KELM_DECLARE_ENTRY_POINTS(zuauditattribute_s_t);
#endif

#endif
