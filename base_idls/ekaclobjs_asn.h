// Message classes of the authorization-database header record, the external-authentication
// texts, extended attributes and credential modifications.
#ifndef KELM_EKACLOBJS_ASN_H
#define KELM_EKACLOBJS_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/ekaclobjs.h"
#include "principal_asn.h"

// ekauthzn_db_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekauthzn_db_t, ekauthzn_db_s_t, kelm_ekauthzn_db_type);

// ekextern_auth_t ::= SEQUENCE { UTF8String, UTF8String, UTF8String, UTF8String }
KELM_MESSAGE_CLASS(asn_ekextern_auth_t, ekextern_auth_s_t, kelm_ekextern_auth_type);

// ekattr_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String }
KELM_MESSAGE_CLASS(asn_ekattr_t, ekattr_s_t, kelm_ekattr_type);

// ekextattr_t ::= SEQUENCE { SEQUENCE OF ekattr_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_ekextattr_t, ekextattr_s_t, kelm_ekextattr_type);

// azn_creds_mod_in ::= SEQUENCE { UTF8String, attrlist_t, ekprincipal_chain_t }
KELM_MESSAGE_CLASS(asn_azn_creds_mod_in_t, azn_creds_mod_in_s_t, kelm_azn_creds_mod_in_type);

// azn_creds_mod_out ::= SEQUENCE { ekprincipal_chain_t, INTEGER }
KELM_MESSAGE_CLASS(asn_azn_creds_mod_out_t, azn_creds_mod_out_s_t, kelm_azn_creds_mod_out_type);

#endif
