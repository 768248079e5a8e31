// Message classes of permission sets, ACL entries, ACLs and the mappings between
// protected-object names and ACLs.
#ifndef KELM_ACLIDL_ASN_H
#define KELM_ACLIDL_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/aclidl.h"
#include "principal_asn.h"

// acl_permset_t ::= SEQUENCE { SEQUENCE OF INTEGER }
KELM_MESSAGE_CLASS(asn_acl_permset_t, acl_permset_s_t, kelm_acl_permset_type);

// acl_entry_t ::= SEQUENCE { acl_permset_t, INTEGER, sec_id_t }
KELM_MESSAGE_CLASS(asn_acl_entry_t, acl_entry_s_t, kelm_acl_entry_type);

// acl_ext_t ::= SEQUENCE { UTF8String, SEQUENCE OF acl_entry_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_acl_ext_t, acl_ext_s_t, kelm_acl_ext_type);

// map_pobj_to_acl ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_map_pobj_to_acl_t, map_pobj_to_acl_s_t, kelm_map_pobj_to_acl_type);

// map_acl_to_pobj ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_map_acl_to_pobj_t, map_acl_to_pobj_s_t, kelm_map_acl_to_pobj_type);

#endif
