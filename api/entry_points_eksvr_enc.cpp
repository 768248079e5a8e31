// The typed entry points of server registrations.
#include "eksvr_enc_asn.h"
#include "entry_points_internal.h"
#include "kelm/eksvr_enc.h"

KELM_DEFINE_ENTRY_POINTS(kelm_aznadmsvc_type, aznadmsvc_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_aznlocal_svr_type, aznlocal_svr_s_t)
