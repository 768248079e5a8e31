// The typed entry points of audit events, their elements and attributes.
#include "entry_points_internal.h"
#include "zuauditidl_asn.h"

KELM_DEFINE_ENTRY_POINTS(kelm_zuauditevent_type, zuauditevent_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_zuauditelement_type, zuauditelement_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_zuauditattribute_type, zuauditattribute_s_t)
