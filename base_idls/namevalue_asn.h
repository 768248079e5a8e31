// Message classes of name/value entries and lists, remote log requests and entitlements
// queries.
#ifndef KELM_NAMEVALUE_ASN_H
#define KELM_NAMEVALUE_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/namevalue.h"
#include "principal_asn.h"

extern KELM_API const kelm_record_type kelm_namevalue_type;
extern KELM_API const kelm_record_type kelm_namevalueList_type;
extern KELM_API const kelm_record_type kelm_RemoteLogRequest_type;
extern KELM_API const kelm_record_type kelm_azn_get_entitlements_in_type;
extern KELM_API const kelm_record_type kelm_azn_get_entitlements_out_type;

// namevalue_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String, SEQUENCE OF namevalue_t }
// The library's one recursive type: its depth on input is bounded by KELM_ASN_MAX_NESTING.
class KELM_API asn_namevalue_t : public kelm_asn_message<namevalue_s_t, kelm_namevalue_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// namevalueList_t ::= SEQUENCE { SEQUENCE OF namevalue_t }
class KELM_API asn_namevalueList_t
    : public kelm_asn_message<namevalueList_s_t, kelm_namevalueList_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// RemoteLogRequest ::= SEQUENCE { UTF8String, UTF8String, INTEGER, INTEGER, OCTET STRING }
class KELM_API asn_RemoteLogRequest
    : public kelm_asn_message<remote_log_request, kelm_RemoteLogRequest_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_get_entitlements_in ::= SEQUENCE { UTF8String, attrlist_t, ekprincipal_chain_t }
class KELM_API asn_azn_get_entitlements_in_t
    : public kelm_asn_message<azn_get_entitlements_in_s_t, kelm_azn_get_entitlements_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_get_entitlements_out ::= SEQUENCE { attrlist_t, INTEGER }
class KELM_API asn_azn_get_entitlements_out_t
    : public kelm_asn_message<azn_get_entitlements_out_s_t, kelm_azn_get_entitlements_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
