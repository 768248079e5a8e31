// Message classes of protected-object policies, their time ranges and address entries, and the
// mappings between policies and protected objects.
#ifndef KELM_EKPOPOBJS_ASN_H
#define KELM_EKPOPOBJS_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "ekobj_asn.h"
#include "kelm/ekpopobjs.h"

extern KELM_API const kelm_record_type kelm_ektod_range_type;
extern KELM_API const kelm_record_type kelm_ekaccess_times_type;
extern KELM_API const kelm_record_type kelm_ekpop_ipauth_type;
extern KELM_API const kelm_record_type kelm_ekpop_ipauth2_type;
extern KELM_API const kelm_record_type kelm_ekpop_ipauth2_list_type;
extern KELM_API const kelm_record_type kelm_ekpop_type;
extern KELM_API const kelm_record_type kelm_ekmap_pop_to_pobj_type;
extern KELM_API const kelm_record_type kelm_ekmap_pobj_to_pop_type;

// ektod_range_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
class KELM_API asn_ektod_range_t : public kelm_asn_message<ektod_range_s_t, kelm_ektod_range_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekaccess_times_t ::= SEQUENCE { INTEGER, ektod_range_t }
class KELM_API asn_ekaccess_times_t
    : public kelm_asn_message<ekaccess_times_s_t, kelm_ekaccess_times_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekpop_ipauth_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
class KELM_API asn_ekpop_ipauth_t
    : public kelm_asn_message<ekpop_ipauth_s_t, kelm_ekpop_ipauth_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekpop_ipauth2_t ::= SEQUENCE { INTEGER, ip_addr_t, ip_addr_t }
class KELM_API asn_ekpop_ipauth2_t
    : public kelm_asn_message<ekpop_ipauth2_s_t, kelm_ekpop_ipauth2_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekpop_ipauth2_list ::= SEQUENCE { SEQUENCE OF ekpop_ipauth2_t }
// The class name has no "_t" ending.
class KELM_API asn_ekpop_ipauth2_list
    : public kelm_asn_message<ekpop_ipauth2_list_s_t, kelm_ekpop_ipauth2_list_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekpop_t ::= SEQUENCE { UTF8String, ekaccess_times_t, INTEGER, INTEGER, INTEGER,
//                        SEQUENCE OF ekpop_ipauth_t, attrlist_t }
class KELM_API asn_ekpop_t : public kelm_asn_message<ekpop_s_t, kelm_ekpop_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekmap_pop_to_pobj ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_ekmap_pop_to_pobj_t
    : public kelm_asn_message<ekmap_pop_to_pobj_s_t, kelm_ekmap_pop_to_pobj_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekmap_pobj_to_pop ::= SEQUENCE { SEQUENCE OF UTF8String, attrlist_t }
class KELM_API asn_ekmap_pobj_to_pop_t
    : public kelm_asn_message<ekmap_pobj_to_pop_s_t, kelm_ekmap_pobj_to_pop_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
