// Message classes of server registrations: administration service entries and local servers.
#ifndef KELM_EKSVR_ENC_ASN_H
#define KELM_EKSVR_ENC_ASN_H

#include "asn_record_declare.h"
#include "attrlist_asn.h"
#include "kelm/eksvr_enc.h"

// aznadmsvc_t ::= SEQUENCE { UTF8String, SEQUENCE OF UTF8String }
KELM_MESSAGE_CLASS(asn_aznadmsvc_t, aznadmsvc_s_t, kelm_aznadmsvc_type);

// aznlocal_svr_t ::= SEQUENCE { UTF8String, UTF8String, UTF8String, UTF8String, INTEGER, INTEGER,
//                               INTEGER, INTEGER, SEQUENCE OF aznadmsvc_t, attrlist_t }
KELM_MESSAGE_CLASS(asn_aznlocal_svr_t, aznlocal_svr_s_t, kelm_aznlocal_svr_type);

#endif
