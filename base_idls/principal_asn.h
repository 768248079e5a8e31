// Message classes of security identifiers, privilege-attribute identities, principals, principal
// chains and the database fetch request and reply.
#ifndef KELM_PRINCIPAL_ASN_H
#define KELM_PRINCIPAL_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/principal.h"

extern KELM_API const kelm_record_type kelm_sec_id_type;
extern KELM_API const kelm_record_type kelm_sec_id_pa_type;
extern KELM_API const kelm_record_type kelm_ekprincipal_type;
extern KELM_API const kelm_record_type kelm_ekprincipal_chain_type;
extern KELM_API const kelm_record_type kelm_dbr_get_db_in_type;
extern KELM_API const kelm_record_type kelm_dbr_get_db_out_type;

// sec_id_t ::= SEQUENCE { uuid_t, UTF8String }
class KELM_API asn_sec_id_t : public kelm_asn_message<sec_id_t, kelm_sec_id_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// sec_id_pa_t ::= SEQUENCE { sec_id_t, SEQUENCE OF sec_id_t }
class KELM_API asn_sec_id_pa_t : public kelm_asn_message<sec_id_pa_t, kelm_sec_id_pa_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekprincipal_t ::= SEQUENCE { INTEGER, sec_id_pa_t OPTIONAL, INTEGER, attrlist_t OPTIONAL }
class KELM_API asn_ekprincipal_t : public kelm_asn_message<ekprincipal_s_t, kelm_ekprincipal_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekprincipal_chain ::= SEQUENCE { UTF8String, SEQUENCE OF ekprincipal_t }
class KELM_API asn_ekprincipal_chain_t
    : public kelm_asn_message<ekprincipal_chain_s_t, kelm_ekprincipal_chain_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// dbr_get_db_in_t ::= SEQUENCE { INTEGER }
class KELM_API asn_dbr_get_db_in_t
    : public kelm_asn_message<dbr_get_db_in_s_t, kelm_dbr_get_db_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// dbr_get_db_out_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
class KELM_API asn_dbr_get_db_out_t
    : public kelm_asn_message<dbr_get_db_out_s_t, kelm_dbr_get_db_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
