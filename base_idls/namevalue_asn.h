// Message classes of name/value entries and lists, remote log requests and entitlements
// queries.
#ifndef KELM_NAMEVALUE_ASN_H
#define KELM_NAMEVALUE_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/namevalue.h"
#include "principal_asn.h"

// namevalue_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String, SEQUENCE OF namevalue_t }
// The library's one recursive type: its depth on input is bounded by KELM_ASN_MAX_NESTING.
KELM_MESSAGE_CLASS(asn_namevalue_t, namevalue_s_t, kelm_namevalue_type);

// namevalueList_t ::= SEQUENCE { SEQUENCE OF namevalue_t }
KELM_MESSAGE_CLASS(asn_namevalueList_t, namevalueList_s_t, kelm_namevalueList_type);

// RemoteLogRequest ::= SEQUENCE { UTF8String, UTF8String, INTEGER, INTEGER, OCTET STRING }
KELM_MESSAGE_CLASS(asn_RemoteLogRequest, remote_log_request, kelm_RemoteLogRequest_type);

// azn_get_entitlements_in ::= SEQUENCE { UTF8String, attrlist_t, ekprincipal_chain_t }
KELM_MESSAGE_CLASS(asn_azn_get_entitlements_in_t, azn_get_entitlements_in_s_t,
                   kelm_azn_get_entitlements_in_type);

// azn_get_entitlements_out ::= SEQUENCE { attrlist_t, INTEGER }
KELM_MESSAGE_CLASS(asn_azn_get_entitlements_out_t, azn_get_entitlements_out_s_t,
                   kelm_azn_get_entitlements_out_type);

#endif
