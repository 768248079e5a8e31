// Message classes of the authorization-database header record, the external-authentication
// texts, extended attributes and credential modifications.
#ifndef KELM_EKACLOBJS_ASN_H
#define KELM_EKACLOBJS_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/ekaclobjs.h"
#include "principal_asn.h"

extern KELM_API const kelm_record_type kelm_ekauthzn_db_type;
extern KELM_API const kelm_record_type kelm_ekextern_auth_type;
extern KELM_API const kelm_record_type kelm_ekattr_type;
extern KELM_API const kelm_record_type kelm_ekextattr_type;
extern KELM_API const kelm_record_type kelm_azn_creds_mod_in_type;
extern KELM_API const kelm_record_type kelm_azn_creds_mod_out_type;

// ekauthzn_db_t ::= SEQUENCE { INTEGER, INTEGER, INTEGER, attrlist_t }
class KELM_API asn_ekauthzn_db_t : public kelm_asn_message<ekauthzn_db_s_t, kelm_ekauthzn_db_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekextern_auth_t ::= SEQUENCE { UTF8String, UTF8String, UTF8String, UTF8String }
class KELM_API asn_ekextern_auth_t
    : public kelm_asn_message<ekextern_auth_s_t, kelm_ekextern_auth_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekattr_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String }
class KELM_API asn_ekattr_t : public kelm_asn_message<ekattr_s_t, kelm_ekattr_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// ekextattr_t ::= SEQUENCE { SEQUENCE OF ekattr_t, attrlist_t }
class KELM_API asn_ekextattr_t : public kelm_asn_message<ekextattr_s_t, kelm_ekextattr_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_creds_mod_in ::= SEQUENCE { UTF8String, attrlist_t, ekprincipal_chain_t }
class KELM_API asn_azn_creds_mod_in_t
    : public kelm_asn_message<azn_creds_mod_in_s_t, kelm_azn_creds_mod_in_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// azn_creds_mod_out ::= SEQUENCE { ekprincipal_chain_t, INTEGER }
class KELM_API asn_azn_creds_mod_out_t
    : public kelm_asn_message<azn_creds_mod_out_s_t, kelm_azn_creds_mod_out_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
