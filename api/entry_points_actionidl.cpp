// The typed entry points of actions, action groups and the set of action groups.
#include "actionidl_asn.h"
#include "entry_points_internal.h"

KELM_DEFINE_ENTRY_POINTS(kelm_ekaction_groups_type, ekaction_groups_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekaction_group_type, ekaction_group_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekaction_type, ekaction_s_t)
