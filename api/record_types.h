// The record types with typed entry points, one line each, in the order of their families.
// A line of this list registers its type with the tools and defines its five entry points.
//
// A line's position is also its type's identifier for C callers (KELM_RECORD_<record> of the
// generated kelmasn_record_ids.h, see kelmasn_c.h), part of the library's ABI: a new type goes at
// the end of the list, and no line moves.
#ifndef KELM_RECORD_TYPES_H
#define KELM_RECORD_TYPES_H

#include "aclidl_asn.h"
#include "actionidl_asn.h"
#include "attrlist_asn.h"
#include "aznserver_asn.h"
#include "ekaclobjs_asn.h"
#include "ekobj_asn.h"
#include "ekpopobjs_asn.h"
#include "eksvr_enc_asn.h"
#include "namevalue_asn.h"
#include "pobj_asn.h"
#include "principal_asn.h"
#include "zuauditidl_asn.h"

// X(type, record): `type` is the kelm_record_type that its family declares with
// KELM_DEFINE_RECORD_TYPE, `record` its C record.
#define KELM_FOR_EACH_RECORD_TYPE(X)                                                               \
    /* attributes and values */                                                                    \
    X(kelm_uuid_type, uuid_t)                                                                      \
    X(kelm_attrlist_type, attrlist_s_t)                                                            \
    X(kelm_attr_type, attr_s_t)                                                                    \
    X(kelm_value_type, value_s_t)                                                                  \
    /* objects and the database header */                                                          \
    X(kelm_ip_addr_type, ip_addr_s_t)                                                              \
    X(kelm_ekobj_type, ekobj_t)                                                                    \
    X(kelm_ekobj_name_list_type, ekobj_name_list_s_t)                                              \
    X(kelm_ekobj_list_type, ekobj_list_s_t)                                                        \
    X(kelm_ekobj_db_header_type, ekobj_db_header_s_t)                                              \
    /* server registrations */                                                                     \
    X(kelm_aznadmsvc_type, aznadmsvc_s_t)                                                          \
    X(kelm_aznlocal_svr_type, aznlocal_svr_s_t)                                                    \
    /* protected objects */                                                                        \
    X(kelm_pobjspace_type, pobjspace_s_t)                                                          \
    X(kelm_azn_internal_pobj_type, azn_internal_pobj_s_t)                                          \
    X(kelm_pobj_type, pobj_s_t)                                                                    \
    /* principals and the database fetch */                                                        \
    X(kelm_ekprincipal_chain_type, ekprincipal_chain_s_t)                                          \
    X(kelm_ekprincipal_type, ekprincipal_s_t)                                                      \
    X(kelm_sec_id_pa_type, sec_id_pa_t)                                                            \
    X(kelm_sec_id_type, sec_id_t)                                                                  \
    X(kelm_dbr_get_db_in_type, dbr_get_db_in_s_t)                                                  \
    X(kelm_dbr_get_db_out_type, dbr_get_db_out_s_t)                                                \
    /* authorization server messages */                                                            \
    X(kelm_aznadmin_gettasklist_in_type, aznadmin_gettasklist_in_s_t)                              \
    X(kelm_aznadmin_gettasklist_out_type, aznadmin_gettasklist_out_s_t)                            \
    X(kelm_aznadmin_performtask_in_type, aznadmin_performtask_in_s_t)                              \
    X(kelm_aznadmin_performtask_out_type, aznadmin_performtask_out_s_t)                            \
    X(kelm_aznadmin_getobjectlist_in_type, aznadmin_getobjectlist_in_s_t)                          \
    X(kelm_aznadmin_getobjectlist_out_type, aznadmin_getobjectlist_out_s_t)                        \
    X(kelm_aznadmin_getobject_in_type, aznadmin_getobject_in_s_t)                                  \
    X(kelm_aznadmin_getobject_out_type, aznadmin_getobject_out_s_t)                                \
    X(kelm_aznserver_init_type, aznserver_init_s_t)                                                \
    X(kelm_azn_util_password_in_type, azn_util_password_in_s_t)                                    \
    X(kelm_azn_util_password_out_type, azn_util_password_out_s_t)                                  \
    X(kelm_azn_id_get_creds_in_type, azn_id_get_creds_in_s_t)                                      \
    X(kelm_azn_id_get_creds_out_type, azn_id_get_creds_out_s_t)                                    \
    X(kelm_azn_decision_ext_in_type, azn_decision_ext_in_s_t)                                      \
    X(kelm_azn_decision_ext_out_type, azn_decision_ext_out_s_t)                                    \
    /* ACLs */                                                                                     \
    X(kelm_acl_permset_type, acl_permset_s_t)                                                      \
    X(kelm_map_pobj_to_acl_type, map_pobj_to_acl_s_t)                                              \
    X(kelm_acl_ext_type, acl_ext_s_t)                                                              \
    X(kelm_acl_entry_type, acl_entry_s_t)                                                          \
    X(kelm_map_acl_to_pobj_type, map_acl_to_pobj_s_t)                                              \
    /* actions and action groups */                                                                \
    X(kelm_ekaction_groups_type, ekaction_groups_s_t)                                              \
    X(kelm_ekaction_group_type, ekaction_group_s_t)                                                \
    X(kelm_ekaction_type, ekaction_s_t)                                                            \
    /* protected-object policies */                                                                \
    X(kelm_ektod_range_type, ektod_range_s_t)                                                      \
    X(kelm_ekaccess_times_type, ekaccess_times_s_t)                                                \
    X(kelm_ekpop_ipauth_type, ekpop_ipauth_s_t)                                                    \
    X(kelm_ekmap_pop_to_pobj_type, ekmap_pop_to_pobj_s_t)                                          \
    X(kelm_ekpop_type, ekpop_s_t)                                                                  \
    X(kelm_ekpop_ipauth2_list_type, ekpop_ipauth2_list_s_t)                                        \
    X(kelm_ekpop_ipauth2_type, ekpop_ipauth2_s_t)                                                  \
    X(kelm_ekmap_pobj_to_pop_type, ekmap_pobj_to_pop_s_t)                                          \
    /* authorization database records and credential changes */                                    \
    X(kelm_ekauthzn_db_type, ekauthzn_db_s_t)                                                      \
    X(kelm_ekextern_auth_type, ekextern_auth_s_t)                                                  \
    X(kelm_ekextattr_type, ekextattr_s_t)                                                          \
    X(kelm_ekattr_type, ekattr_s_t)                                                                \
    X(kelm_azn_creds_mod_in_type, azn_creds_mod_in_s_t)                                            \
    X(kelm_azn_creds_mod_out_type, azn_creds_mod_out_s_t)                                          \
    /* name/value lists, remote log and entitlements */                                            \
    X(kelm_namevalueList_type, namevalueList_s_t)                                                  \
    X(kelm_namevalue_type, namevalue_s_t)                                                          \
    X(kelm_RemoteLogRequest_type, remote_log_request)                                              \
    X(kelm_azn_get_entitlements_in_type, azn_get_entitlements_in_s_t)                              \
    X(kelm_azn_get_entitlements_out_type, azn_get_entitlements_out_s_t)                            \
    /* audit events */                                                                             \
    X(kelm_zuauditevent_type, zuauditevent_s_t)                                                    \
    X(kelm_zuauditelement_type, zuauditelement_s_t)                                                \
    X(kelm_zuauditattribute_type, zuauditattribute_s_t)

#endif
