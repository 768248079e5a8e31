// Message classes of network addresses, named objects, object and name lists and the object
// database header.
#ifndef KELM_EKOBJ_ASN_H
#define KELM_EKOBJ_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/ekobj.h"

// ip_addr_t ::= SEQUENCE { INTEGER, OCTET STRING (46 bytes), OCTET STRING (16 bytes) }
KELM_MESSAGE_CLASS(asn_ip_addr_t, ip_addr_s_t, kelm_ip_addr_type);

// ekobj_t ::= SEQUENCE { UTF8String, INTEGER, INTEGER, OCTET STRING }
KELM_MESSAGE_CLASS(asn_ekobj_t, ekobj_t, kelm_ekobj_type);

// ekobj_list_t ::= SEQUENCE { SEQUENCE OF ekobj_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekobj_list_t, ekobj_list_s_t, kelm_ekobj_list_type);

// ekobj_name_list ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekobj_name_list_t, ekobj_name_list_s_t, kelm_ekobj_name_list_type);

// ekobj_db_header ::= SEQUENCE { INTEGER, SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekobj_db_header_t, ekobj_db_header_s_t, kelm_ekobj_db_header_type);

#endif
