// Message classes of protected-object spaces, protected objects and their internal form.
#ifndef KELM_POBJ_ASN_H
#define KELM_POBJ_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/pobj.h"

extern KELM_API const kelm_record_type kelm_pobjspace_type;
extern KELM_API const kelm_record_type kelm_pobj_type;
extern KELM_API const kelm_record_type kelm_azn_internal_pobj_type;

// pobjspace_t ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_pobjspace_t : public kelm_asn_message<pobjspace_s_t, kelm_pobjspace_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// pobj_t ::= SEQUENCE { INTEGER, INTEGER, UTF8String, attrlist_t }
class KELM_API asn_pobj_t : public kelm_asn_message<pobj_s_t, kelm_pobj_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_internal_pobj ::= SEQUENCE { pobj_t, UTF8String }
class KELM_API asn_azn_internal_pobj_t
    : public kelm_asn_message<azn_internal_pobj_s_t, kelm_azn_internal_pobj_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
