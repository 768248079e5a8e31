// Server registrations: administration service entries and local servers, declared as field
// tables.
#include "eksvr_enc_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/eksvr_enc_asn.cpp";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_aznadmsvc_type, asn_aznadmsvc_t, aznadmsvc_s_t, kelm_site(kSource, 41),
                        kelm_no_quirks, KELM_FIELD(svc_name), KELM_LIST(svc_items, svc_item_count));

// The numbers are written from their signed view and read back with their bits unchanged.
KELM_DEFINE_RECORD_TYPE(kelm_aznlocal_svr_type, asn_aznlocal_svr_t, aznlocal_svr_s_t,
                        kelm_site(kSource, 52), kelm_no_quirks, KELM_FIELD(svr_text1),
                        KELM_FIELD(svr_text2), KELM_FIELD(svr_text3), KELM_FIELD(svr_text4),
                        KELM_SIGNED_VIEW(svr_number1), KELM_SIGNED_VIEW(svr_number2),
                        KELM_SIGNED_VIEW(svr_number3), KELM_SIGNED_VIEW(svr_number4),
                        KELM_LIST(svcs, svc_count), KELM_FIELD(attrs));
