// Message classes of permission sets, ACL entries, ACLs and the mappings between
// protected-object names and ACLs.
#ifndef KELM_ACLIDL_ASN_H
#define KELM_ACLIDL_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/aclidl.h"
#include "principal_asn.h"

extern KELM_API const kelm_record_type kelm_acl_permset_type;
extern KELM_API const kelm_record_type kelm_acl_entry_type;
extern KELM_API const kelm_record_type kelm_acl_ext_type;
extern KELM_API const kelm_record_type kelm_map_pobj_to_acl_type;
extern KELM_API const kelm_record_type kelm_map_acl_to_pobj_type;

// acl_permset_t ::= SEQUENCE { SEQUENCE OF INTEGER }
class KELM_API asn_acl_permset_t : public kelm_asn_message<acl_permset_s_t, kelm_acl_permset_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// acl_entry_t ::= SEQUENCE { acl_permset_t, INTEGER, sec_id_t }
class KELM_API asn_acl_entry_t : public kelm_asn_message<acl_entry_s_t, kelm_acl_entry_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// acl_ext_t ::= SEQUENCE { UTF8String, SEQUENCE OF acl_entry_t, attrlist_t }
class KELM_API asn_acl_ext_t : public kelm_asn_message<acl_ext_s_t, kelm_acl_ext_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// map_pobj_to_acl ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_map_pobj_to_acl_t
    : public kelm_asn_message<map_pobj_to_acl_s_t, kelm_map_pobj_to_acl_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// map_acl_to_pobj ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_map_acl_to_pobj_t
    : public kelm_asn_message<map_acl_to_pobj_s_t, kelm_map_acl_to_pobj_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
