// Message classes of server registrations: administration service entries and local servers.
#ifndef KELM_EKSVR_ENC_ASN_H
#define KELM_EKSVR_ENC_ASN_H

#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/eksvr_enc.h"

extern KELM_API const kelm_record_type kelm_aznadmsvc_type;
extern KELM_API const kelm_record_type kelm_aznlocal_svr_type;

// aznadmsvc_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String }
class KELM_API asn_aznadmsvc_t : public kelm_asn_message<aznadmsvc_s_t, kelm_aznadmsvc_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

// aznlocal_svr_t ::= SEQUENCE { UTF8String, UTF8String, UTF8String, UTF8String, INTEGER, INTEGER,
//                               INTEGER, INTEGER, SEQUENCE OF aznadmsvc_t, attrlist_t }
class KELM_API asn_aznlocal_svr_t
    : public kelm_asn_message<aznlocal_svr_s_t, kelm_aznlocal_svr_type> {
  public:
    using kelm_asn_message::kelm_asn_message;
};

#endif
