// Message classes of audit events, their elements and attributes.
#ifndef KELM_ZUAUDITIDL_ASN_H
#define KELM_ZUAUDITIDL_ASN_H

#include "asn_record_declare.h"
#include "kelm/zuauditidl.h"

// zuauditattribute ::= SEQUENCE { UTF8String, OCTET STRING }
// (its stored type name is cut to the 16 characters "zuauditattribute")
KELM_MESSAGE_CLASS(asn_zuauditattribute_t, zuauditattribute_s_t, kelm_zuauditattribute_type);

// zuauditelement_t ::= SEQUENCE { UTF8String, OCTET STRING, SEQUENCE OF zuauditattribute,
//                                 SEQUENCE OF zuauditelement_t }
KELM_MESSAGE_CLASS(asn_zuauditelement_t, zuauditelement_s_t, kelm_zuauditelement_type);

// zuauditevent_t ::= SEQUENCE { INTEGER, UTF8String, INTEGER, SEQUENCE OF zuauditelement_t }
KELM_MESSAGE_CLASS(asn_zuauditevent_t, zuauditevent_s_t, kelm_zuauditevent_type);

#endif
