// Message classes of the authorization server's requests and replies.
#ifndef KELM_AZNSERVER_ASN_H
#define KELM_AZNSERVER_ASN_H

#include "asn_record_declare.h"
#include "kelm/aznserver.h"

// aznadmin_gettasklist_in ::= SEQUENCE { ekprincipal_chain, UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznadmin_gettasklist_in_t, aznadmin_gettasklist_in_s_t,
                   kelm_aznadmin_gettasklist_in_type);

// aznadmin_..._out ::= SEQUENCE { attrlist_t, INTEGER }
KELM_MESSAGE_CLASS(asn_aznadmin_gettasklist_out_t, aznadmin_gettasklist_out_s_t,
                   kelm_aznadmin_gettasklist_out_type);

// aznadmin_performtask_in ::= SEQUENCE { ekprincipal_chain, UTF8String, UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznadmin_performtask_in_t, aznadmin_performtask_in_s_t,
                   kelm_aznadmin_performtask_in_type);

KELM_MESSAGE_CLASS(asn_aznadmin_performtask_out_t, aznadmin_performtask_out_s_t,
                   kelm_aznadmin_performtask_out_type);

// aznadmin_getobjectlist_in ::= SEQUENCE { ekprincipal_chain, UTF8String x 3, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznadmin_getobjectlist_in_t, aznadmin_getobjectlist_in_s_t,
                   kelm_aznadmin_getobjectlist_in_type);

KELM_MESSAGE_CLASS(asn_aznadmin_getobjectlist_out_t, aznadmin_getobjectlist_out_s_t,
                   kelm_aznadmin_getobjectlist_out_type);

// aznadmin_getobject_in ::= SEQUENCE { ekprincipal_chain, UTF8String x 3, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznadmin_getobject_in_t, aznadmin_getobject_in_s_t,
                   kelm_aznadmin_getobject_in_type);

KELM_MESSAGE_CLASS(asn_aznadmin_getobject_out_t, aznadmin_getobject_out_s_t,
                   kelm_aznadmin_getobject_out_type);

// aznserver_init_t ::= SEQUENCE { UTF8String, INTEGER x 4, SEQUENCE OF aznadmsvc_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznserver_init_t, aznserver_init_s_t, kelm_aznserver_init_type);

// azn_util_password_in ::= SEQUENCE { UTF8String, UTF8String }
KELM_MESSAGE_CLASS(asn_azn_util_password_in_t, azn_util_password_in_s_t,
                   kelm_azn_util_password_in_type);

// azn_util_password_out ::= SEQUENCE { UTF8String, attrlist_t, INTEGER }
KELM_MESSAGE_CLASS(asn_azn_util_password_out_t, azn_util_password_out_s_t,
                   kelm_azn_util_password_out_type);

// azn_id_get_creds_in ::= SEQUENCE { UTF8String, UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_azn_id_get_creds_in_t, azn_id_get_creds_in_s_t,
                   kelm_azn_id_get_creds_in_type);

// azn_id_get_creds_out ::= SEQUENCE { ekprincipal_chain, INTEGER }
KELM_MESSAGE_CLASS(asn_azn_id_get_creds_out_t, azn_id_get_creds_out_s_t,
                   kelm_azn_id_get_creds_out_type);

// azn_decision_ext_in ::= SEQUENCE { ekprincipal_chain, UTF8String, UTF8String, attrlist_t,
//                                     attrlist_t }
KELM_MESSAGE_CLASS(asn_azn_decision_ext_in_t, azn_decision_ext_in_s_t,
                   kelm_azn_decision_ext_in_type);

// azn_decision_ext_out ::= SEQUENCE { INTEGER, attrlist_t, INTEGER }
KELM_MESSAGE_CLASS(asn_azn_decision_ext_out_t, azn_decision_ext_out_s_t,
                   kelm_azn_decision_ext_out_type);

#endif
