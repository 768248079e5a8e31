// The authorization server's requests and replies, declared as field tables.
#include "aznserver_asn.h"

#include <cstddef>

#include "eksvr_enc_asn.h"
#include "principal_asn.h"

namespace {

using kind = kelm_field_kind;

const kelm_record_field gettasklist_in_fields[] = {
    {kind::record, "chain", offsetof(aznadmin_gettasklist_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::text, "admin_string1", offsetof(aznadmin_gettasklist_in_s_t, admin_string1), 0, 0,
     nullptr},
    {kind::record, "attrs", offsetof(aznadmin_gettasklist_in_s_t, attrs), 0, 0,
     &kelm_attrlist_type},
};

const kelm_record_field performtask_in_fields[] = {
    {kind::record, "chain", offsetof(aznadmin_performtask_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::text, "admin_string1", offsetof(aznadmin_performtask_in_s_t, admin_string1), 0, 0,
     nullptr},
    {kind::text, "admin_string2", offsetof(aznadmin_performtask_in_s_t, admin_string2), 0, 0,
     nullptr},
    {kind::record, "attrs", offsetof(aznadmin_performtask_in_s_t, attrs), 0, 0,
     &kelm_attrlist_type},
};

// The object-list and object requests share one layout, and so one table.
const kelm_record_field getobject_in_fields[] = {
    {kind::record, "chain", offsetof(aznadmin_getobject_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::text, "admin_string1", offsetof(aznadmin_getobject_in_s_t, admin_string1), 0, 0,
     nullptr},
    {kind::text, "admin_string2", offsetof(aznadmin_getobject_in_s_t, admin_string2), 0, 0,
     nullptr},
    {kind::text, "admin_string3", offsetof(aznadmin_getobject_in_s_t, admin_string3), 0, 0,
     nullptr},
    {kind::record, "attrs", offsetof(aznadmin_getobject_in_s_t, attrs), 0, 0, &kelm_attrlist_type},
};
static_assert(offsetof(aznadmin_getobjectlist_in_s_t, admin_string3) ==
                      offsetof(aznadmin_getobject_in_s_t, admin_string3) &&
                  offsetof(aznadmin_getobjectlist_in_s_t, attrs) ==
                      offsetof(aznadmin_getobject_in_s_t, attrs) &&
                  sizeof(aznadmin_getobjectlist_in_s_t) == sizeof(aznadmin_getobject_in_s_t),
              "both requests share one table");

// The four administration replies share one layout, and so one table. The reply number is
// written from its signed view and read back with its bits unchanged.
const kelm_record_field admin_reply_fields[] = {
    {kind::record, "attrs", offsetof(aznadmin_getobject_out_s_t, attrs), 0, 0, &kelm_attrlist_type},
    {kind::unsigned_integer, "reply_number", offsetof(aznadmin_getobject_out_s_t, reply_number), 0,
     0, nullptr},
};
static_assert(offsetof(aznadmin_gettasklist_out_s_t, reply_number) ==
                      offsetof(aznadmin_getobject_out_s_t, reply_number) &&
                  offsetof(aznadmin_performtask_out_s_t, reply_number) ==
                      offsetof(aznadmin_getobject_out_s_t, reply_number) &&
                  offsetof(aznadmin_getobjectlist_out_s_t, reply_number) ==
                      offsetof(aznadmin_getobject_out_s_t, reply_number),
              "the four replies share one table");

const kelm_record_field init_fields[] = {
    {kind::text, "server_name", offsetof(aznserver_init_s_t, server_name), 0, 0, nullptr},
    {kind::unsigned_integer, "init_number1", offsetof(aznserver_init_s_t, init_number1), 0, 0,
     nullptr},
    {kind::unsigned_integer, "init_number2", offsetof(aznserver_init_s_t, init_number2), 0, 0,
     nullptr},
    {kind::unsigned_integer, "init_number3", offsetof(aznserver_init_s_t, init_number3), 0, 0,
     nullptr},
    {kind::unsigned_integer, "init_number4", offsetof(aznserver_init_s_t, init_number4), 0, 0,
     nullptr},
    {kind::record_list, "svcs", offsetof(aznserver_init_s_t, svcs),
     offsetof(aznserver_init_s_t, svc_count), 0, &kelm_aznadmsvc_type},
    {kind::record, "attrs", offsetof(aznserver_init_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field password_in_fields[] = {
    {kind::text, "first_string", offsetof(azn_util_password_in_s_t, first_string), 0, 0, nullptr},
    {kind::text, "second_string", offsetof(azn_util_password_in_s_t, second_string), 0, 0, nullptr},
};

const kelm_record_field password_out_fields[] = {
    {kind::text, "result_string", offsetof(azn_util_password_out_s_t, result_string), 0, 0,
     nullptr},
    {kind::record, "attrs", offsetof(azn_util_password_out_s_t, attrs), 0, 0, &kelm_attrlist_type},
    {kind::unsigned_integer, "reply_number", offsetof(azn_util_password_out_s_t, reply_number), 0,
     0, nullptr},
};

const kelm_record_field creds_in_fields[] = {
    {kind::text, "first_string", offsetof(azn_id_get_creds_in_s_t, first_string), 0, 0, nullptr},
    {kind::text, "second_string", offsetof(azn_id_get_creds_in_s_t, second_string), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(azn_id_get_creds_in_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field creds_out_fields[] = {
    {kind::record, "chain", offsetof(azn_id_get_creds_out_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::unsigned_integer, "reply_number", offsetof(azn_id_get_creds_out_s_t, reply_number), 0, 0,
     nullptr},
};

const kelm_record_field decision_in_fields[] = {
    {kind::record, "chain", offsetof(azn_decision_ext_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::text, "first_string", offsetof(azn_decision_ext_in_s_t, first_string), 0, 0, nullptr},
    {kind::text, "second_string", offsetof(azn_decision_ext_in_s_t, second_string), 0, 0, nullptr},
    {kind::record, "first_attrs", offsetof(azn_decision_ext_in_s_t, first_attrs), 0, 0,
     &kelm_attrlist_type},
    {kind::record, "second_attrs", offsetof(azn_decision_ext_in_s_t, second_attrs), 0, 0,
     &kelm_attrlist_type},
};

const kelm_record_field decision_out_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(azn_decision_ext_out_s_t, first_number), 0, 0,
     nullptr},
    {kind::record, "attrs", offsetof(azn_decision_ext_out_s_t, attrs), 0, 0, &kelm_attrlist_type},
    {kind::unsigned_integer, "reply_number", offsetof(azn_decision_ext_out_s_t, reply_number), 0, 0,
     nullptr},
};

} // namespace

#define KELM_AZNSERVER_TYPE(Class, Record, Fields)                                                 \
    {                                                                                              \
#Class, #Record, sizeof(Record), Fields, kelm_field_count(Fields),                         \
            &kelm_record_ops_for < Class>, __FILE__, __LINE__, 0, nullptr                          \
    }

const kelm_record_type kelm_aznadmin_gettasklist_in_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_gettasklist_in_t, aznadmin_gettasklist_in_s_t, gettasklist_in_fields);
const kelm_record_type kelm_aznadmin_gettasklist_out_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_gettasklist_out_t, aznadmin_gettasklist_out_s_t, admin_reply_fields);
const kelm_record_type kelm_aznadmin_performtask_in_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_performtask_in_t, aznadmin_performtask_in_s_t, performtask_in_fields);
const kelm_record_type kelm_aznadmin_performtask_out_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_performtask_out_t, aznadmin_performtask_out_s_t, admin_reply_fields);
const kelm_record_type kelm_aznadmin_getobjectlist_in_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_getobjectlist_in_t, aznadmin_getobjectlist_in_s_t, getobject_in_fields);
const kelm_record_type kelm_aznadmin_getobjectlist_out_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_getobjectlist_out_t, aznadmin_getobjectlist_out_s_t, admin_reply_fields);
const kelm_record_type kelm_aznadmin_getobject_in_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_getobject_in_t, aznadmin_getobject_in_s_t, getobject_in_fields);
const kelm_record_type kelm_aznadmin_getobject_out_type = KELM_AZNSERVER_TYPE(
    asn_aznadmin_getobject_out_t, aznadmin_getobject_out_s_t, admin_reply_fields);
const kelm_record_type kelm_aznserver_init_type =
    KELM_AZNSERVER_TYPE(asn_aznserver_init_t, aznserver_init_s_t, init_fields);
const kelm_record_type kelm_azn_util_password_in_type =
    KELM_AZNSERVER_TYPE(asn_azn_util_password_in_t, azn_util_password_in_s_t, password_in_fields);
const kelm_record_type kelm_azn_util_password_out_type = KELM_AZNSERVER_TYPE(
    asn_azn_util_password_out_t, azn_util_password_out_s_t, password_out_fields);
const kelm_record_type kelm_azn_id_get_creds_in_type =
    KELM_AZNSERVER_TYPE(asn_azn_id_get_creds_in_t, azn_id_get_creds_in_s_t, creds_in_fields);
const kelm_record_type kelm_azn_id_get_creds_out_type =
    KELM_AZNSERVER_TYPE(asn_azn_id_get_creds_out_t, azn_id_get_creds_out_s_t, creds_out_fields);
const kelm_record_type kelm_azn_decision_ext_in_type =
    KELM_AZNSERVER_TYPE(asn_azn_decision_ext_in_t, azn_decision_ext_in_s_t, decision_in_fields);
const kelm_record_type kelm_azn_decision_ext_out_type =
    KELM_AZNSERVER_TYPE(asn_azn_decision_ext_out_t, azn_decision_ext_out_s_t, decision_out_fields);
