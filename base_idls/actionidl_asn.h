// Message classes of actions, action groups and the set of action groups.
#ifndef KELM_ACTIONIDL_ASN_H
#define KELM_ACTIONIDL_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/actionidl.h"

extern KELM_API const kelm_record_type kelm_ekaction_type;
extern KELM_API const kelm_record_type kelm_ekaction_group_type;
extern KELM_API const kelm_record_type kelm_ekaction_groups_type;

// ekaction_t ::= SEQUENCE { INTEGER, UTF8String, UTF8String, UTF8String, INTEGER, INTEGER,
//                           attrlist_t }
class KELM_API asn_ekaction_t : public kelm_asn_message<ekaction_s_t, kelm_ekaction_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekaction_group_t ::= SEQUENCE { UTF8String, SEQUENCE OF CHOICE { NULL, ekaction_t },
//                                 attrlist_t }
class KELM_API asn_ekaction_group_t
    : public kelm_asn_message<ekaction_group_s_t, kelm_ekaction_group_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekaction_groups ::= SEQUENCE { SEQUENCE OF CHOICE { NULL, ekaction_group_t }, attrlist_t }
// (its stored type name is cut to the 16 characters "ekaction_groups_")
class KELM_API asn_ekaction_groups_t
    : public kelm_asn_message<ekaction_groups_s_t, kelm_ekaction_groups_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
