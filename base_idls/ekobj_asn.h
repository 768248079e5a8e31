// Message classes of network addresses, named objects, object and name lists and the object
// database header.
#ifndef KELM_EKOBJ_ASN_H
#define KELM_EKOBJ_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/ekobj.h"

extern KELM_API const kelm_record_type kelm_ip_addr_type;
extern KELM_API const kelm_record_type kelm_ekobj_type;
extern KELM_API const kelm_record_type kelm_ekobj_list_type;
extern KELM_API const kelm_record_type kelm_ekobj_name_list_type;
extern KELM_API const kelm_record_type kelm_ekobj_db_header_type;

// ip_addr_t ::= SEQUENCE { INTEGER, OCTET STRING (46 bytes), OCTET STRING (16 bytes) }
class KELM_API asn_ip_addr_t : public kelm_asn_message<ip_addr_s_t, kelm_ip_addr_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekobj_t ::= SEQUENCE { UTF8String, INTEGER, INTEGER, OCTET STRING }
class KELM_API asn_ekobj_t : public kelm_asn_message<ekobj_t, kelm_ekobj_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekobj_list_t ::= SEQUENCE { SEQUENCE OF ekobj_t, attrlist_t }
class KELM_API asn_ekobj_list_t : public kelm_asn_message<ekobj_list_s_t, kelm_ekobj_list_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekobj_name_list ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_ekobj_name_list_t
    : public kelm_asn_message<ekobj_name_list_s_t, kelm_ekobj_name_list_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekobj_db_header ::= SEQUENCE { INTEGER, SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_ekobj_db_header_t
    : public kelm_asn_message<ekobj_db_header_s_t, kelm_ekobj_db_header_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
