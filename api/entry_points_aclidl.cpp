// The typed entry points of permission sets, ACL entries, ACLs and their mappings.
#include "aclidl_asn.h"
#include "entry_points_internal.h"
#include "kelm/aclidl.h"

KELM_DEFINE_ENTRY_POINTS(kelm_acl_permset_type, acl_permset_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_map_pobj_to_acl_type, map_pobj_to_acl_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_acl_ext_type, acl_ext_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_acl_entry_type, acl_entry_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_map_acl_to_pobj_type, map_acl_to_pobj_s_t)
