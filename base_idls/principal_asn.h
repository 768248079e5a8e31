// Message classes of security identifiers, privilege-attribute identities, principals, principal
// chains and the database fetch request and reply.
#ifndef KELM_PRINCIPAL_ASN_H
#define KELM_PRINCIPAL_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/principal.h"

// sec_id_t ::= SEQUENCE { uuid_t, UTF8String }
KELM_MESSAGE_CLASS(asn_sec_id_t, sec_id_t, kelm_sec_id_type);

// sec_id_pa_t ::= SEQUENCE { sec_id_t, SEQUENCE OF sec_id_t }
KELM_MESSAGE_CLASS(asn_sec_id_pa_t, sec_id_pa_t, kelm_sec_id_pa_type);

// ekprincipal_t ::= SEQUENCE { INTEGER, sec_id_pa_t OPTIONAL, INTEGER, attrlist_t OPTIONAL }
KELM_MESSAGE_CLASS(asn_ekprincipal_t, ekprincipal_s_t, kelm_ekprincipal_type);

// ekprincipal_chain ::= SEQUENCE { UTF8String, SEQUENCE OF ekprincipal_t }
KELM_MESSAGE_CLASS(asn_ekprincipal_chain_t, ekprincipal_chain_s_t, kelm_ekprincipal_chain_type);

// dbr_get_db_in_t ::= SEQUENCE { INTEGER }
KELM_MESSAGE_CLASS(asn_dbr_get_db_in_t, dbr_get_db_in_s_t, kelm_dbr_get_db_in_type);

// dbr_get_db_out_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER }
KELM_MESSAGE_CLASS(asn_dbr_get_db_out_t, dbr_get_db_out_s_t, kelm_dbr_get_db_out_type);

#endif
