/// \file
/// The authorization server's messages: the four administration requests and their replies, the
/// server's initialisation record, and the password, credentials and extended decision requests
/// with their replies. Requests start with the caller's principal chain, held inline.
///
/// Ownership: a record filled by a decode entry point owns every string, array and nested record
/// it points at; kelmAsnFreeObj releases them (not the record itself).
#ifndef KELM_AZNSERVER_H
#define KELM_AZNSERVER_H

#include <stddef.h>
#include <stdint.h>

#include "asn_export.h"
#include "attrlist.h"
#include "eksvr_enc.h"
#include "kelm_asn_buffer.h"
#include "principal.h"

#ifndef __cplusplus
#include <assert.h> // static_assert of the layout checks

// C names the records without `struct`, as C++ does.
typedef struct aznadmin_gettasklist_in_s_t aznadmin_gettasklist_in_s_t;
typedef struct aznadmin_performtask_in_s_t aznadmin_performtask_in_s_t;
typedef struct aznadmin_getobjectlist_in_s_t aznadmin_getobjectlist_in_s_t;
typedef struct aznadmin_getobject_in_s_t aznadmin_getobject_in_s_t;
typedef struct aznadmin_gettasklist_out_s_t aznadmin_gettasklist_out_s_t;
typedef struct aznadmin_performtask_out_s_t aznadmin_performtask_out_s_t;
typedef struct aznadmin_getobjectlist_out_s_t aznadmin_getobjectlist_out_s_t;
typedef struct aznadmin_getobject_out_s_t aznadmin_getobject_out_s_t;
typedef struct aznserver_init_s_t aznserver_init_s_t;
typedef struct azn_util_password_in_s_t azn_util_password_in_s_t;
typedef struct azn_util_password_out_s_t azn_util_password_out_s_t;
typedef struct azn_id_get_creds_in_s_t azn_id_get_creds_in_s_t;
typedef struct azn_id_get_creds_out_s_t azn_id_get_creds_out_s_t;
typedef struct azn_decision_ext_in_s_t azn_decision_ext_in_s_t;
typedef struct azn_decision_ext_out_s_t azn_decision_ext_out_s_t;
#endif

/// An administration request for the task list: the caller's principal chain, one text and
/// attributes.
struct aznadmin_gettasklist_in_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string1;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// An administration request to perform a task: the caller's principal chain, two texts and
/// attributes.
struct aznadmin_performtask_in_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string2;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// An administration request for the object list: the caller's principal chain, three texts and
/// attributes.
struct aznadmin_getobjectlist_in_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string2;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string3;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// An administration request for one object: the caller's principal chain, three texts and
/// attributes.
struct aznadmin_getobject_in_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string1;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string2;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* admin_string3;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The four administration replies share one layout: attributes and a reply number.
///
/// This one is the reply to a request for the task list.
struct aznadmin_gettasklist_out_s_t {
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// The reply to a request to perform a task.
struct aznadmin_performtask_out_s_t {
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// The reply to a request for the object list.
struct aznadmin_getobjectlist_out_s_t {
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// The reply to a request for one object.
struct aznadmin_getobject_out_s_t {
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// The authorization server's initialisation record: its name, four numbers, its administration
/// services and attributes.
struct aznserver_init_s_t {
    /// The server's name (a UTF8String; the LCS entry points convert it from and to the local code
    /// set). A null text is written as an empty one and decodes as an allocated empty string.
    char* server_name;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t init_number1;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t init_number2;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t init_number3;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t init_number4;
    /// The number of entries of `svcs`.
    uint32_t svc_count;
    /// An array of `svc_count` `aznadmsvc_s_t` records (a SEQUENCE OF their SEQUENCEs); null when
    /// there are none.
    aznadmsvc_s_t* svcs;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// A password utility request: two texts.
struct azn_util_password_in_s_t {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* first_string;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* second_string;
};

/// The reply to a password utility request: a result text, attributes and a reply number.
struct azn_util_password_out_s_t {
    /// The result (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* result_string;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// A credentials request: two texts and attributes.
struct azn_id_get_creds_in_s_t {
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* first_string;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* second_string;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
};

/// The reply to a credentials request: the principal chain and a reply number.
struct azn_id_get_creds_out_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

/// An extended decision request: the caller's principal chain, two texts and two attribute
/// lists.
struct azn_decision_ext_in_s_t {
    /// The chain of principals, a `ekprincipal_chain_s_t` held inline (its SEQUENCE nested).
    ekprincipal_chain_s_t chain;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* first_string;
    /// A text (a UTF8String; the LCS entry points convert it from and to the local code set). A
    /// null text is written as an empty one and decodes as an allocated empty string.
    char* second_string;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t first_attrs;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t second_attrs;
};

/// The reply to an extended decision request: a number, attributes and a reply number.
struct azn_decision_ext_out_s_t {
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t first_number;
    /// The attributes, an attribute list held inline (its SEQUENCE nested).
    attrlist_s_t attrs;
    /// A number (an INTEGER, written from its signed 32-bit view and read back with the same bits).
    uint32_t reply_number;
};

static_assert(sizeof(aznadmin_gettasklist_out_s_t) == 24, "an administration reply is 24 bytes");
static_assert(sizeof(aznadmin_performtask_out_s_t) == 24, "an administration reply is 24 bytes");
static_assert(sizeof(aznadmin_getobjectlist_out_s_t) == 24, "an administration reply is 24 bytes");
static_assert(sizeof(aznadmin_getobject_out_s_t) == 24, "an administration reply is 24 bytes");
static_assert(offsetof(aznadmin_getobject_out_s_t, reply_number) == 16, "reply layout");
static_assert(offsetof(aznadmin_gettasklist_in_s_t, admin_string1) == 24, "the chain comes first");
static_assert(sizeof(aznadmin_gettasklist_in_s_t) == 48, "request layout");
static_assert(sizeof(aznadmin_performtask_in_s_t) == 56, "request layout");
static_assert(sizeof(aznadmin_getobjectlist_in_s_t) == 64, "request layout");
static_assert(sizeof(aznadmin_getobject_in_s_t) == 64, "request layout");
static_assert(offsetof(aznserver_init_s_t, init_number1) == 8, "init layout");
static_assert(offsetof(aznserver_init_s_t, svc_count) == 24, "five consecutive 32-bit fields");
static_assert(offsetof(aznserver_init_s_t, svcs) == 32, "init layout");
static_assert(sizeof(aznserver_init_s_t) == 56, "init layout");
static_assert(sizeof(azn_util_password_in_s_t) == 16, "password request layout");
static_assert(sizeof(azn_util_password_out_s_t) == 32, "password reply layout");
static_assert(sizeof(azn_id_get_creds_in_s_t) == 32, "credentials request layout");
static_assert(sizeof(azn_id_get_creds_out_s_t) == 32, "credentials reply layout");
static_assert(sizeof(azn_decision_ext_in_s_t) == 72, "decision request layout");
static_assert(offsetof(azn_decision_ext_out_s_t, attrs) == 8, "decision reply layout");
static_assert(sizeof(azn_decision_ext_out_s_t) == 32, "decision reply layout");

#ifdef __cplusplus
KELM_DECLARE_ENTRY_POINTS(aznadmin_gettasklist_in_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_gettasklist_out_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_performtask_in_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_performtask_out_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_getobjectlist_in_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_getobjectlist_out_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_getobject_in_s_t);
KELM_DECLARE_ENTRY_POINTS(aznadmin_getobject_out_s_t);
KELM_DECLARE_ENTRY_POINTS(aznserver_init_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_util_password_in_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_util_password_out_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_id_get_creds_in_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_id_get_creds_out_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_decision_ext_in_s_t);
KELM_DECLARE_ENTRY_POINTS(azn_decision_ext_out_s_t);
#endif

#endif
