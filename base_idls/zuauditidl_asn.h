// Message classes of audit events, their elements and attributes.
#ifndef KELM_ZUAUDITIDL_ASN_H
#define KELM_ZUAUDITIDL_ASN_H

#include "asn_record.h"
#include "kelm/zuauditidl.h"

extern KELM_API const kelm_record_type kelm_zuauditattribute_type;
extern KELM_API const kelm_record_type kelm_zuauditelement_type;
extern KELM_API const kelm_record_type kelm_zuauditevent_type;

// zuauditattribute ::= SEQUENCE { UTF8String, OCTET STRING }
// (its stored type name is cut to the 16 characters "zuauditattribute")
class KELM_API asn_zuauditattribute_t
    : public kelm_asn_message<zuauditattribute_s_t, kelm_zuauditattribute_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// zuauditelement_t ::= SEQUENCE { UTF8String, OCTET STRING, SEQUENCE OF zuauditattribute,
//                                 SEQUENCE OF zuauditelement_t }
class KELM_API asn_zuauditelement_t
    : public kelm_asn_message<zuauditelement_s_t, kelm_zuauditelement_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// zuauditevent_t ::= SEQUENCE { INTEGER, UTF8String, INTEGER, SEQUENCE OF zuauditelement_t }
class KELM_API asn_zuauditevent_t
    : public kelm_asn_message<zuauditevent_s_t, kelm_zuauditevent_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
