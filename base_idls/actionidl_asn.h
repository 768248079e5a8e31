// Message classes of actions, action groups and the set of action groups.
#ifndef KELM_ACTIONIDL_ASN_H
#define KELM_ACTIONIDL_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/actionidl.h"

// ekaction_t ::= SEQUENCE { INTEGER, UTF8String, UTF8String, UTF8String, INTEGER, INTEGER,
//                           attrlist_t }
KELM_MESSAGE_CLASS(asn_ekaction_t, ekaction_s_t, kelm_ekaction_type);

// ekaction_group_t ::= SEQUENCE { UTF8String, SEQUENCE OF CHOICE { NULL, ekaction_t },
//                                 attrlist_t }
KELM_MESSAGE_CLASS(asn_ekaction_group_t, ekaction_group_s_t, kelm_ekaction_group_type);

// ekaction_groups ::= SEQUENCE { SEQUENCE OF CHOICE { NULL, ekaction_group_t }, attrlist_t }
// (its stored type name is cut to the 16 characters "ekaction_groups_")
KELM_MESSAGE_CLASS(asn_ekaction_groups_t, ekaction_groups_s_t, kelm_ekaction_groups_type);

#endif
