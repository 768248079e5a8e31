// Message classes of identifiers, typed values, attributes and attribute lists.
#ifndef KELM_ATTRLIST_ASN_H
#define KELM_ATTRLIST_ASN_H

#include "asn_record.h"
#include "kelm/attrlist.h"

extern KELM_API const kelm_record_type kelm_uuid_type;
extern KELM_API const kelm_record_type kelm_value_type;
extern KELM_API const kelm_record_type kelm_attr_type;
extern KELM_API const kelm_record_type kelm_attrlist_type;

// uuid_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER, INTEGER, INTEGER, OCTET STRING (6 bytes) }
class KELM_API asn_uuid_t : public kelm_asn_message<uuid_t, kelm_uuid_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// value_t ::= SEQUENCE { INTEGER, UTF8String, OCTET STRING }
class KELM_API asn_value_t : public kelm_asn_message<value_s_t, kelm_value_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// attr_t ::= SEQUENCE { UTF8String, SEQUENCE OF value_t }
class KELM_API asn_attr_t : public kelm_asn_message<attr_s_t, kelm_attr_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// attrlist_t ::= SEQUENCE { SEQUENCE OF attr_t }
class KELM_API asn_attrlist_t : public kelm_asn_message<attrlist_s_t, kelm_attrlist_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
