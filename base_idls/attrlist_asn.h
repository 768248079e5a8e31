// Message classes of identifiers, typed values, attributes and attribute lists.
#ifndef KELM_ATTRLIST_ASN_H
#define KELM_ATTRLIST_ASN_H

#include "asn_record_declare.h"
#include "kelm/attrlist.h"

// uuid_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER, INTEGER, INTEGER, OCTET STRING (6 bytes) }
KELM_MESSAGE_CLASS(asn_uuid_t, uuid_t, kelm_uuid_type);

// value_t ::= SEQUENCE { INTEGER, UTF8String, OCTET STRING }
KELM_MESSAGE_CLASS(asn_value_t, value_s_t, kelm_value_type);

// attr_t ::= SEQUENCE { UTF8String, SEQUENCE OF value_t }
KELM_MESSAGE_CLASS(asn_attr_t, attr_s_t, kelm_attr_type);

// attrlist_t ::= SEQUENCE { SEQUENCE OF attr_t }
KELM_MESSAGE_CLASS(asn_attrlist_t, attrlist_s_t, kelm_attrlist_type);

#endif
