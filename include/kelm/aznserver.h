// The authorization server's messages: the four administration requests and their replies, the
// server's initialisation record, and the password, credentials and extended decision requests
// with their replies. Requests start with the caller's principal chain, held inline.
//
// Ownership: a record filled by a decode entry point owns every string, array and nested record
// it points at; kelmAsnFreeObj releases them (not the record itself).
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

struct aznadmin_gettasklist_in_s_t {
    ekprincipal_chain_s_t chain;
    char* admin_string1;
    attrlist_s_t attrs;
};

struct aznadmin_performtask_in_s_t {
    ekprincipal_chain_s_t chain;
    char* admin_string1;
    char* admin_string2;
    attrlist_s_t attrs;
};

struct aznadmin_getobjectlist_in_s_t {
    ekprincipal_chain_s_t chain;
    char* admin_string1;
    char* admin_string2;
    char* admin_string3;
    attrlist_s_t attrs;
};

struct aznadmin_getobject_in_s_t {
    ekprincipal_chain_s_t chain;
    char* admin_string1;
    char* admin_string2;
    char* admin_string3;
    attrlist_s_t attrs;
};

// The four administration replies share one layout: attributes and a reply number.
struct aznadmin_gettasklist_out_s_t {
    attrlist_s_t attrs;
    uint32_t reply_number;
};

struct aznadmin_performtask_out_s_t {
    attrlist_s_t attrs;
    uint32_t reply_number;
};

struct aznadmin_getobjectlist_out_s_t {
    attrlist_s_t attrs;
    uint32_t reply_number;
};

struct aznadmin_getobject_out_s_t {
    attrlist_s_t attrs;
    uint32_t reply_number;
};

struct aznserver_init_s_t {
    char* server_name;
    uint32_t init_number1;
    uint32_t init_number2;
    uint32_t init_number3;
    uint32_t init_number4;
    uint32_t svc_count;
    aznadmsvc_s_t* svcs;
    attrlist_s_t attrs;
};

struct azn_util_password_in_s_t {
    char* first_string;
    char* second_string;
};

struct azn_util_password_out_s_t {
    char* result_string;
    attrlist_s_t attrs;
    uint32_t reply_number;
};

struct azn_id_get_creds_in_s_t {
    char* first_string;
    char* second_string;
    attrlist_s_t attrs;
};

struct azn_id_get_creds_out_s_t {
    ekprincipal_chain_s_t chain;
    uint32_t reply_number;
};

struct azn_decision_ext_in_s_t {
    ekprincipal_chain_s_t chain;
    char* first_string;
    char* second_string;
    attrlist_s_t first_attrs;
    attrlist_s_t second_attrs;
};

struct azn_decision_ext_out_s_t {
    uint32_t first_number;
    attrlist_s_t attrs;
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
