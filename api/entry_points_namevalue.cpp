// The typed entry points of name/value entries and lists, remote log requests and entitlements
// queries.
#include "entry_points_internal.h"
#include "kelm/namevalue.h"
#include "namevalue_asn.h"

KELM_DEFINE_ENTRY_POINTS(kelm_namevalueList_type, namevalueList_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_namevalue_type, namevalue_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_RemoteLogRequest_type, remote_log_request)
KELM_DEFINE_ENTRY_POINTS(kelm_azn_get_entitlements_in_type, azn_get_entitlements_in_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_azn_get_entitlements_out_type, azn_get_entitlements_out_s_t)
