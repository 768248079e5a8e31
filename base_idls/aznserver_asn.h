// Message classes of the authorization server's requests and replies.
#ifndef KELM_AZNSERVER_ASN_H
#define KELM_AZNSERVER_ASN_H

#include "asn_record.h"
#include "kelm/aznserver.h"

extern KELM_API const kelm_record_type kelm_aznadmin_gettasklist_in_type;
extern KELM_API const kelm_record_type kelm_aznadmin_gettasklist_out_type;
extern KELM_API const kelm_record_type kelm_aznadmin_performtask_in_type;
extern KELM_API const kelm_record_type kelm_aznadmin_performtask_out_type;
extern KELM_API const kelm_record_type kelm_aznadmin_getobjectlist_in_type;
extern KELM_API const kelm_record_type kelm_aznadmin_getobjectlist_out_type;
extern KELM_API const kelm_record_type kelm_aznadmin_getobject_in_type;
extern KELM_API const kelm_record_type kelm_aznadmin_getobject_out_type;
extern KELM_API const kelm_record_type kelm_aznserver_init_type;
extern KELM_API const kelm_record_type kelm_azn_util_password_in_type;
extern KELM_API const kelm_record_type kelm_azn_util_password_out_type;
extern KELM_API const kelm_record_type kelm_azn_id_get_creds_in_type;
extern KELM_API const kelm_record_type kelm_azn_id_get_creds_out_type;
extern KELM_API const kelm_record_type kelm_azn_decision_ext_in_type;
extern KELM_API const kelm_record_type kelm_azn_decision_ext_out_type;

// aznadmin_gettasklist_in ::= SEQUENCE { ekprincipal_chain, UTF8String, attrlist_t }
class KELM_API asn_aznadmin_gettasklist_in_t
    : public kelm_asn_message<aznadmin_gettasklist_in_s_t, kelm_aznadmin_gettasklist_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznadmin_..._out ::= SEQUENCE { attrlist_t, INTEGER }
class KELM_API asn_aznadmin_gettasklist_out_t
    : public kelm_asn_message<aznadmin_gettasklist_out_s_t, kelm_aznadmin_gettasklist_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznadmin_performtask_in ::= SEQUENCE { ekprincipal_chain, UTF8String, UTF8String, attrlist_t }
class KELM_API asn_aznadmin_performtask_in_t
    : public kelm_asn_message<aznadmin_performtask_in_s_t, kelm_aznadmin_performtask_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

class KELM_API asn_aznadmin_performtask_out_t
    : public kelm_asn_message<aznadmin_performtask_out_s_t, kelm_aznadmin_performtask_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznadmin_getobjectlist_in ::= SEQUENCE { ekprincipal_chain, UTF8String x 3, attrlist_t }
class KELM_API asn_aznadmin_getobjectlist_in_t
    : public kelm_asn_message<aznadmin_getobjectlist_in_s_t, kelm_aznadmin_getobjectlist_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

class KELM_API asn_aznadmin_getobjectlist_out_t
    : public kelm_asn_message<aznadmin_getobjectlist_out_s_t,
                              kelm_aznadmin_getobjectlist_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznadmin_getobject_in ::= SEQUENCE { ekprincipal_chain, UTF8String x 3, attrlist_t }
class KELM_API asn_aznadmin_getobject_in_t
    : public kelm_asn_message<aznadmin_getobject_in_s_t, kelm_aznadmin_getobject_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

class KELM_API asn_aznadmin_getobject_out_t
    : public kelm_asn_message<aznadmin_getobject_out_s_t, kelm_aznadmin_getobject_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznserver_init_t ::= SEQUENCE { UTF8String, INTEGER x 4, SEQUENCE OF aznadmsvc_t, attrlist_t }
class KELM_API asn_aznserver_init_t
    : public kelm_asn_message<aznserver_init_s_t, kelm_aznserver_init_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_util_password_in ::= SEQUENCE { UTF8String, UTF8String }
class KELM_API asn_azn_util_password_in_t
    : public kelm_asn_message<azn_util_password_in_s_t, kelm_azn_util_password_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_util_password_out ::= SEQUENCE { UTF8String, attrlist_t, INTEGER }
class KELM_API asn_azn_util_password_out_t
    : public kelm_asn_message<azn_util_password_out_s_t, kelm_azn_util_password_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_id_get_creds_in ::= SEQUENCE { UTF8String, UTF8String, attrlist_t }
class KELM_API asn_azn_id_get_creds_in_t
    : public kelm_asn_message<azn_id_get_creds_in_s_t, kelm_azn_id_get_creds_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_id_get_creds_out ::= SEQUENCE { ekprincipal_chain, INTEGER }
class KELM_API asn_azn_id_get_creds_out_t
    : public kelm_asn_message<azn_id_get_creds_out_s_t, kelm_azn_id_get_creds_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_decision_ext_in ::= SEQUENCE { ekprincipal_chain, UTF8String, UTF8String, attrlist_t,
//                                     attrlist_t }
class KELM_API asn_azn_decision_ext_in_t
    : public kelm_asn_message<azn_decision_ext_in_s_t, kelm_azn_decision_ext_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_decision_ext_out ::= SEQUENCE { INTEGER, attrlist_t, INTEGER }
class KELM_API asn_azn_decision_ext_out_t
    : public kelm_asn_message<azn_decision_ext_out_s_t, kelm_azn_decision_ext_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
