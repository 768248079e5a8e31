// Message classes of protected-object policies, their time ranges and address entries, and the
// mappings between policies and protected objects.
#ifndef KELM_EKPOPOBJS_ASN_H
#define KELM_EKPOPOBJS_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "ekobj_asn.h"
#include "kelm/ekpopobjs.h"

// ektod_range_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
KELM_MESSAGE_CLASS(asn_ektod_range_t, ektod_range_s_t, kelm_ektod_range_type);

// ekaccess_times_t ::= SEQUENCE { INTEGER, ektod_range_t }
KELM_MESSAGE_CLASS(asn_ekaccess_times_t, ekaccess_times_s_t, kelm_ekaccess_times_type);

// ekpop_ipauth_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
KELM_MESSAGE_CLASS(asn_ekpop_ipauth_t, ekpop_ipauth_s_t, kelm_ekpop_ipauth_type);

// ekpop_ipauth2_t ::= SEQUENCE { INTEGER, ip_addr_t, ip_addr_t }
KELM_MESSAGE_CLASS(asn_ekpop_ipauth2_t, ekpop_ipauth2_s_t, kelm_ekpop_ipauth2_type);

// ekpop_ipauth2_list ::= SEQUENCE { SEQUENCE OF ekpop_ipauth2_t }
// The class name has no "_t" ending.
KELM_MESSAGE_CLASS(asn_ekpop_ipauth2_list, ekpop_ipauth2_list_s_t, kelm_ekpop_ipauth2_list_type);

// ekpop_t ::= SEQUENCE { UTF8String, ekaccess_times_t, INTEGER, INTEGER, INTEGER,
//                        SEQUENCE OF ekpop_ipauth_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekpop_t, ekpop_s_t, kelm_ekpop_type);

// ekmap_pop_to_pobj ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekmap_pop_to_pobj_t, ekmap_pop_to_pobj_s_t, kelm_ekmap_pop_to_pobj_type);

// ekmap_pobj_to_pop ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekmap_pobj_to_pop_t, ekmap_pobj_to_pop_s_t, kelm_ekmap_pobj_to_pop_type);

#endif
