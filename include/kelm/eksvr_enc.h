/// \file
/// Server registrations: an administration service entry (a name and a list of strings) and a
/// local server record (four strings, four numbers, a list of service entries and attributes).
///
/// Ownership: a record filled by a decode entry point owns every string and array it points at;
/// kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_EKSVR_ENC_H
#define KELM_EKSVR_ENC_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "kelm_asn_buffer.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct aznadmsvc_s_t aznadmsvc_s_t;
typedef struct aznlocal_svr_s_t aznlocal_svr_s_t;
#endif

/// An administration service entry.
struct aznadmsvc_s_t {
    /// The service's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* svc_name;
    /// The number of entries of `svc_items`.
    uint32_t svc_item_count;
    /// Texts (a SEQUENCE OF UTF8String), `svc_item_count` of them; null when there are none.
    char** svc_items;
};

/// A local server. The numbers travel as signed INTEGERs and come back with the same bits.
struct aznlocal_svr_s_t {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* svr_text1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* svr_text2;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* svr_text3;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* svr_text4;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t svr_number1;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t svr_number2;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t svr_number3;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t svr_number4;
    /// The number of entries of `svcs`.
    uint32_t svc_count;
    /// An array of `svc_count` `aznadmsvc_s_t` records (a SEQUENCE OF their SEQUENCEs); null when
    /// there are none.
    aznadmsvc_s_t* svcs;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

static_assert(offsetof(aznadmsvc_s_t, svc_item_count) == 8, "aznadmsvc_s_t layout");
static_assert(offsetof(aznadmsvc_s_t, svc_items) == 16, "aznadmsvc_s_t layout");
static_assert(sizeof(aznadmsvc_s_t) == 24, "aznadmsvc_s_t layout");
// Four string pointers, then the four numbers and the count as five consecutive 32-bit fields,
// then the array pointer and the inline attribute list.
static_assert(offsetof(aznlocal_svr_s_t, svr_text4) == 24, "aznlocal_svr_s_t layout");
static_assert(offsetof(aznlocal_svr_s_t, svr_number1) == 32, "aznlocal_svr_s_t layout");
static_assert(offsetof(aznlocal_svr_s_t, svr_number4) == 44, "aznlocal_svr_s_t layout");
static_assert(offsetof(aznlocal_svr_s_t, svc_count) == 48, "aznlocal_svr_s_t layout");
static_assert(offsetof(aznlocal_svr_s_t, svcs) == 56, "aznlocal_svr_s_t layout");
static_assert(offsetof(aznlocal_svr_s_t, attrs) == 64, "aznlocal_svr_s_t layout");
static_assert(sizeof(aznlocal_svr_s_t) == 80, "aznlocal_svr_s_t layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(aznadmsvc_s_t);
KELM_DECLARE_ENTRY_POINTS(aznlocal_svr_s_t);
#endif

#endif
