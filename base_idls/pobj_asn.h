// Message classes of protected-object spaces, protected objects and their internal form.
#ifndef KELM_POBJ_ASN_H
#define KELM_POBJ_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/pobj.h"

// pobjspace_t ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_pobjspace_t, pobjspace_s_t, kelm_pobjspace_type);

// pobj_t ::= SEQUENCE { INTEGER, INTEGER, UTF8String, attrlist_t }
KELM_MESSAGE_CLASS(asn_pobj_t, pobj_s_t, kelm_pobj_type);

// azn_internal_pobj ::= SEQUENCE { pobj_t, UTF8String }
KELM_MESSAGE_CLASS(asn_azn_internal_pobj_t, azn_internal_pobj_s_t, kelm_azn_internal_pobj_type);

#endif
