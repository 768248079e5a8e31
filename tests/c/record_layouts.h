// Every record of the public headers and every field of each, for the programs that print their
// layout as C and as C++ (record_layout_c.c, record_layout_cxx.cpp): the two outputs must be
// equal, so that a record has the same size and field offsets for C callers as for the library.
// RECORD(record) names a record, FIELD(record, field) one of its fields, in declaration order.
#ifndef KELMASN_TEST_RECORD_LAYOUTS_H
#define KELMASN_TEST_RECORD_LAYOUTS_H

#define KELM_FOR_EACH_RECORD_LAYOUT(RECORD, FIELD) \
    /* kelm_asn_buffer.h */ \
    RECORD(kelm_asn_buffer_t) \
    FIELD(kelm_asn_buffer_t, length) \
    FIELD(kelm_asn_buffer_t, data) \
    /* attrlist.h */ \
    RECORD(uuid_t) \
    FIELD(uuid_t, time_low) \
    FIELD(uuid_t, time_mid) \
    FIELD(uuid_t, time_hi_and_version) \
    FIELD(uuid_t, clock_seq_hi_and_reserved) \
    FIELD(uuid_t, clock_seq_low) \
    FIELD(uuid_t, node) \
    RECORD(value_s_t) \
    FIELD(value_s_t, value_type) \
    FIELD(value_s_t, str_value) \
    FIELD(value_s_t, bin_length) \
    FIELD(value_s_t, bin_value) \
    RECORD(attr_s_t) \
    FIELD(attr_s_t, name) \
    FIELD(attr_s_t, value_count) \
    FIELD(attr_s_t, values) \
    RECORD(attrlist_s_t) \
    FIELD(attrlist_s_t, attr_count) \
    FIELD(attrlist_s_t, attrs) \
    /* ekobj.h */ \
    RECORD(ip_addr_s_t) \
    FIELD(ip_addr_s_t, addr_type) \
    FIELD(ip_addr_s_t, addr_string) \
    FIELD(ip_addr_s_t, addr_bytes) \
    RECORD(ekobj_t) \
    FIELD(ekobj_t, name) \
    FIELD(ekobj_t, first_number) \
    FIELD(ekobj_t, second_number) \
    FIELD(ekobj_t, data_length) \
    FIELD(ekobj_t, data) \
    RECORD(ekobj_list_s_t) \
    FIELD(ekobj_list_s_t, obj_count) \
    FIELD(ekobj_list_s_t, objs) \
    FIELD(ekobj_list_s_t, attrs) \
    RECORD(ekobj_name_list_s_t) \
    FIELD(ekobj_name_list_s_t, name_count) \
    FIELD(ekobj_name_list_s_t, names) \
    FIELD(ekobj_name_list_s_t, attrs) \
    RECORD(ekobj_db_header_s_t) \
    FIELD(ekobj_db_header_s_t, db_number) \
    FIELD(ekobj_db_header_s_t, name_count) \
    FIELD(ekobj_db_header_s_t, names) \
    FIELD(ekobj_db_header_s_t, attrs) \
    /* eksvr_enc.h */ \
    RECORD(aznadmsvc_s_t) \
    FIELD(aznadmsvc_s_t, svc_name) \
    FIELD(aznadmsvc_s_t, svc_item_count) \
    FIELD(aznadmsvc_s_t, svc_items) \
    RECORD(aznlocal_svr_s_t) \
    FIELD(aznlocal_svr_s_t, svr_text1) \
    FIELD(aznlocal_svr_s_t, svr_text2) \
    FIELD(aznlocal_svr_s_t, svr_text3) \
    FIELD(aznlocal_svr_s_t, svr_text4) \
    FIELD(aznlocal_svr_s_t, svr_number1) \
    FIELD(aznlocal_svr_s_t, svr_number2) \
    FIELD(aznlocal_svr_s_t, svr_number3) \
    FIELD(aznlocal_svr_s_t, svr_number4) \
    FIELD(aznlocal_svr_s_t, svc_count) \
    FIELD(aznlocal_svr_s_t, svcs) \
    FIELD(aznlocal_svr_s_t, attrs) \
    /* pobj.h */ \
    RECORD(pobjspace_s_t) \
    FIELD(pobjspace_s_t, name_count) \
    FIELD(pobjspace_s_t, names) \
    FIELD(pobjspace_s_t, attrs) \
    RECORD(pobj_s_t) \
    FIELD(pobj_s_t, first_number) \
    FIELD(pobj_s_t, second_number) \
    FIELD(pobj_s_t, name) \
    FIELD(pobj_s_t, attrs) \
    RECORD(azn_internal_pobj_s_t) \
    FIELD(azn_internal_pobj_s_t, pobj) \
    FIELD(azn_internal_pobj_s_t, internal_name) \
    /* principal.h */ \
    RECORD(sec_id_t) \
    FIELD(sec_id_t, uuid) \
    FIELD(sec_id_t, name) \
    RECORD(sec_id_pa_t) \
    FIELD(sec_id_pa_t, id) \
    FIELD(sec_id_pa_t, group_count) \
    FIELD(sec_id_pa_t, groups) \
    RECORD(ekprincipal_s_t) \
    FIELD(ekprincipal_s_t, first_number) \
    FIELD(ekprincipal_s_t, pa) \
    FIELD(ekprincipal_s_t, second_number) \
    FIELD(ekprincipal_s_t, attrs) \
    RECORD(ekprincipal_chain_s_t) \
    FIELD(ekprincipal_chain_s_t, chain_name) \
    FIELD(ekprincipal_chain_s_t, principal_count) \
    FIELD(ekprincipal_chain_s_t, principals) \
    RECORD(dbr_get_db_in_s_t) \
    FIELD(dbr_get_db_in_s_t, request_number) \
    RECORD(dbr_get_db_out_s_t) \
    FIELD(dbr_get_db_out_s_t, first_number) \
    FIELD(dbr_get_db_out_s_t, second_number) \
    FIELD(dbr_get_db_out_s_t, third_number) \
    /* aznserver.h */ \
    RECORD(aznadmin_gettasklist_in_s_t) \
    FIELD(aznadmin_gettasklist_in_s_t, chain) \
    FIELD(aznadmin_gettasklist_in_s_t, admin_string1) \
    FIELD(aznadmin_gettasklist_in_s_t, attrs) \
    RECORD(aznadmin_performtask_in_s_t) \
    FIELD(aznadmin_performtask_in_s_t, chain) \
    FIELD(aznadmin_performtask_in_s_t, admin_string1) \
    FIELD(aznadmin_performtask_in_s_t, admin_string2) \
    FIELD(aznadmin_performtask_in_s_t, attrs) \
    RECORD(aznadmin_getobjectlist_in_s_t) \
    FIELD(aznadmin_getobjectlist_in_s_t, chain) \
    FIELD(aznadmin_getobjectlist_in_s_t, admin_string1) \
    FIELD(aznadmin_getobjectlist_in_s_t, admin_string2) \
    FIELD(aznadmin_getobjectlist_in_s_t, admin_string3) \
    FIELD(aznadmin_getobjectlist_in_s_t, attrs) \
    RECORD(aznadmin_getobject_in_s_t) \
    FIELD(aznadmin_getobject_in_s_t, chain) \
    FIELD(aznadmin_getobject_in_s_t, admin_string1) \
    FIELD(aznadmin_getobject_in_s_t, admin_string2) \
    FIELD(aznadmin_getobject_in_s_t, admin_string3) \
    FIELD(aznadmin_getobject_in_s_t, attrs) \
    RECORD(aznadmin_gettasklist_out_s_t) \
    FIELD(aznadmin_gettasklist_out_s_t, attrs) \
    FIELD(aznadmin_gettasklist_out_s_t, reply_number) \
    RECORD(aznadmin_performtask_out_s_t) \
    FIELD(aznadmin_performtask_out_s_t, attrs) \
    FIELD(aznadmin_performtask_out_s_t, reply_number) \
    RECORD(aznadmin_getobjectlist_out_s_t) \
    FIELD(aznadmin_getobjectlist_out_s_t, attrs) \
    FIELD(aznadmin_getobjectlist_out_s_t, reply_number) \
    RECORD(aznadmin_getobject_out_s_t) \
    FIELD(aznadmin_getobject_out_s_t, attrs) \
    FIELD(aznadmin_getobject_out_s_t, reply_number) \
    RECORD(aznserver_init_s_t) \
    FIELD(aznserver_init_s_t, server_name) \
    FIELD(aznserver_init_s_t, init_number1) \
    FIELD(aznserver_init_s_t, init_number2) \
    FIELD(aznserver_init_s_t, init_number3) \
    FIELD(aznserver_init_s_t, init_number4) \
    FIELD(aznserver_init_s_t, svc_count) \
    FIELD(aznserver_init_s_t, svcs) \
    FIELD(aznserver_init_s_t, attrs) \
    RECORD(azn_util_password_in_s_t) \
    FIELD(azn_util_password_in_s_t, first_string) \
    FIELD(azn_util_password_in_s_t, second_string) \
    RECORD(azn_util_password_out_s_t) \
    FIELD(azn_util_password_out_s_t, result_string) \
    FIELD(azn_util_password_out_s_t, attrs) \
    FIELD(azn_util_password_out_s_t, reply_number) \
    RECORD(azn_id_get_creds_in_s_t) \
    FIELD(azn_id_get_creds_in_s_t, first_string) \
    FIELD(azn_id_get_creds_in_s_t, second_string) \
    FIELD(azn_id_get_creds_in_s_t, attrs) \
    RECORD(azn_id_get_creds_out_s_t) \
    FIELD(azn_id_get_creds_out_s_t, chain) \
    FIELD(azn_id_get_creds_out_s_t, reply_number) \
    RECORD(azn_decision_ext_in_s_t) \
    FIELD(azn_decision_ext_in_s_t, chain) \
    FIELD(azn_decision_ext_in_s_t, first_string) \
    FIELD(azn_decision_ext_in_s_t, second_string) \
    FIELD(azn_decision_ext_in_s_t, first_attrs) \
    FIELD(azn_decision_ext_in_s_t, second_attrs) \
    RECORD(azn_decision_ext_out_s_t) \
    FIELD(azn_decision_ext_out_s_t, first_number) \
    FIELD(azn_decision_ext_out_s_t, attrs) \
    FIELD(azn_decision_ext_out_s_t, reply_number) \
    /* aclidl.h */ \
    RECORD(acl_permset_s_t) \
    FIELD(acl_permset_s_t, perm_count) \
    FIELD(acl_permset_s_t, perms) \
    RECORD(acl_entry_s_t) \
    FIELD(acl_entry_s_t, permset) \
    FIELD(acl_entry_s_t, entry_type) \
    FIELD(acl_entry_s_t, id) \
    RECORD(acl_ext_s_t) \
    FIELD(acl_ext_s_t, name) \
    FIELD(acl_ext_s_t, entry_count) \
    FIELD(acl_ext_s_t, entries) \
    FIELD(acl_ext_s_t, attrs) \
    RECORD(map_pobj_to_acl_s_t) \
    FIELD(map_pobj_to_acl_s_t, name_count) \
    FIELD(map_pobj_to_acl_s_t, names) \
    FIELD(map_pobj_to_acl_s_t, attrs) \
    RECORD(map_acl_to_pobj_s_t) \
    FIELD(map_acl_to_pobj_s_t, name_count) \
    FIELD(map_acl_to_pobj_s_t, names) \
    FIELD(map_acl_to_pobj_s_t, attrs) \
    /* actionidl.h */ \
    RECORD(ekaction_s_t) \
    FIELD(ekaction_s_t, action_number) \
    FIELD(ekaction_s_t, action_name) \
    FIELD(ekaction_s_t, action_label) \
    FIELD(ekaction_s_t, action_text) \
    FIELD(ekaction_s_t, first_number) \
    FIELD(ekaction_s_t, second_number) \
    FIELD(ekaction_s_t, attrs) \
    RECORD(ekaction_group_s_t) \
    FIELD(ekaction_group_s_t, group_name) \
    FIELD(ekaction_group_s_t, actions) \
    FIELD(ekaction_group_s_t, attrs) \
    RECORD(ekaction_groups_s_t) \
    FIELD(ekaction_groups_s_t, groups) \
    FIELD(ekaction_groups_s_t, attrs) \
    /* ekpopobjs.h */ \
    RECORD(ektod_range_s_t) \
    FIELD(ektod_range_s_t, range_start) \
    FIELD(ektod_range_s_t, range_end) \
    FIELD(ektod_range_s_t, range_qualifier) \
    RECORD(ekaccess_times_s_t) \
    FIELD(ekaccess_times_s_t, access_value) \
    FIELD(ekaccess_times_s_t, tod) \
    RECORD(ekpop_ipauth_s_t) \
    FIELD(ekpop_ipauth_s_t, first_number) \
    FIELD(ekpop_ipauth_s_t, second_number) \
    FIELD(ekpop_ipauth_s_t, third_number) \
    RECORD(ekpop_ipauth2_s_t) \
    FIELD(ekpop_ipauth2_s_t, first_number) \
    FIELD(ekpop_ipauth2_s_t, first_addr) \
    FIELD(ekpop_ipauth2_s_t, second_addr) \
    RECORD(ekpop_ipauth2_list_s_t) \
    FIELD(ekpop_ipauth2_list_s_t, ipauth_count) \
    FIELD(ekpop_ipauth2_list_s_t, ipauths) \
    RECORD(ekpop_s_t) \
    FIELD(ekpop_s_t, pop_name) \
    FIELD(ekpop_s_t, access_times) \
    FIELD(ekpop_s_t, first_number) \
    FIELD(ekpop_s_t, second_number) \
    FIELD(ekpop_s_t, third_number) \
    FIELD(ekpop_s_t, ipauth_count) \
    FIELD(ekpop_s_t, ipauths) \
    FIELD(ekpop_s_t, attrs) \
    RECORD(ekmap_pop_to_pobj_s_t) \
    FIELD(ekmap_pop_to_pobj_s_t, name_count) \
    FIELD(ekmap_pop_to_pobj_s_t, names) \
    FIELD(ekmap_pop_to_pobj_s_t, attrs) \
    RECORD(ekmap_pobj_to_pop_s_t) \
    FIELD(ekmap_pobj_to_pop_s_t, name_count) \
    FIELD(ekmap_pobj_to_pop_s_t, names) \
    FIELD(ekmap_pobj_to_pop_s_t, attrs) \
    /* ekaclobjs.h */ \
    RECORD(ekauthzn_db_s_t) \
    FIELD(ekauthzn_db_s_t, number1) \
    FIELD(ekauthzn_db_s_t, number2) \
    FIELD(ekauthzn_db_s_t, number3) \
    FIELD(ekauthzn_db_s_t, attrs) \
    RECORD(ekextern_auth_s_t) \
    FIELD(ekextern_auth_s_t, string1) \
    FIELD(ekextern_auth_s_t, string2) \
    FIELD(ekextern_auth_s_t, string3) \
    FIELD(ekextern_auth_s_t, string4) \
    RECORD(ekattr_s_t) \
    FIELD(ekattr_s_t, name) \
    FIELD(ekattr_s_t, value_count) \
    FIELD(ekattr_s_t, values) \
    RECORD(ekextattr_s_t) \
    FIELD(ekextattr_s_t, ekattr_count) \
    FIELD(ekextattr_s_t, ekattrs) \
    FIELD(ekextattr_s_t, attrs) \
    RECORD(azn_creds_mod_in_s_t) \
    FIELD(azn_creds_mod_in_s_t, string1) \
    FIELD(azn_creds_mod_in_s_t, attrs) \
    FIELD(azn_creds_mod_in_s_t, chain) \
    RECORD(azn_creds_mod_out_s_t) \
    FIELD(azn_creds_mod_out_s_t, chain) \
    FIELD(azn_creds_mod_out_s_t, result) \
    /* namevalue.h */ \
    RECORD(namevalue_s_t) \
    FIELD(namevalue_s_t, name) \
    FIELD(namevalue_s_t, value_count) \
    FIELD(namevalue_s_t, values) \
    FIELD(namevalue_s_t, nested_count) \
    FIELD(namevalue_s_t, nested) \
    RECORD(namevalueList_s_t) \
    FIELD(namevalueList_s_t, entry_count) \
    FIELD(namevalueList_s_t, entries) \
    RECORD(remote_log_request) \
    FIELD(remote_log_request, log_text1) \
    FIELD(remote_log_request, log_text2) \
    FIELD(remote_log_request, log_number1) \
    FIELD(remote_log_request, log_number2) \
    FIELD(remote_log_request, data_length) \
    FIELD(remote_log_request, data) \
    RECORD(azn_get_entitlements_in_s_t) \
    FIELD(azn_get_entitlements_in_s_t, name) \
    FIELD(azn_get_entitlements_in_s_t, attrs) \
    FIELD(azn_get_entitlements_in_s_t, chain) \
    RECORD(azn_get_entitlements_out_s_t) \
    FIELD(azn_get_entitlements_out_s_t, attrs) \
    FIELD(azn_get_entitlements_out_s_t, status) \
    /* zuauditidl.h */ \
    RECORD(zuauditattribute_s_t) \
    FIELD(zuauditattribute_s_t, name) \
    FIELD(zuauditattribute_s_t, value_length) \
    FIELD(zuauditattribute_s_t, value) \
    RECORD(zuauditelement_s_t) \
    FIELD(zuauditelement_s_t, name) \
    FIELD(zuauditelement_s_t, value_length) \
    FIELD(zuauditelement_s_t, value) \
    FIELD(zuauditelement_s_t, attr_count) \
    FIELD(zuauditelement_s_t, attrs) \
    FIELD(zuauditelement_s_t, element_count) \
    FIELD(zuauditelement_s_t, elements) \
    RECORD(zuauditevent_s_t) \
    FIELD(zuauditevent_s_t, event_number1) \
    FIELD(zuauditevent_s_t, event_text) \
    FIELD(zuauditevent_s_t, event_number2) \
    FIELD(zuauditevent_s_t, element_count) \
    FIELD(zuauditevent_s_t, elements) \
    /* ekobjs.h */ \
    RECORD(cert_request_in) \
    FIELD(cert_request_in, string1) \
    FIELD(cert_request_in, string2) \
    FIELD(cert_request_in, body_length) \
    FIELD(cert_request_in, body) \
    RECORD(ekobj_update_s_t) \
    FIELD(ekobj_update_s_t, number1) \
    FIELD(ekobj_update_s_t, text) \
    FIELD(ekobj_update_s_t, number2) \
    RECORD(ekobj_update_list_s_t) \
    FIELD(ekobj_update_list_s_t, count) \
    FIELD(ekobj_update_list_s_t, updates)

#endif
