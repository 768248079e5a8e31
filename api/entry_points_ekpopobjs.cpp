// The typed entry points of protected-object policies, their time ranges and address entries,
// and the mappings between policies and protected objects.
#include "ekpopobjs_asn.h"
#include "entry_points_internal.h"
#include "kelm/ekpopobjs.h"

KELM_DEFINE_ENTRY_POINTS(kelm_ektod_range_type, ektod_range_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekaccess_times_type, ekaccess_times_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekpop_ipauth_type, ekpop_ipauth_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekmap_pop_to_pobj_type, ekmap_pop_to_pobj_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekpop_type, ekpop_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekpop_ipauth2_list_type, ekpop_ipauth2_list_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekpop_ipauth2_type, ekpop_ipauth2_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekmap_pobj_to_pop_type, ekmap_pobj_to_pop_s_t)
