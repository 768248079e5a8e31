// The typed entry points of protected-object spaces, protected objects and their internal form.
#include "entry_points_internal.h"
#include "kelm/pobj.h"
#include "pobj_asn.h"

KELM_DEFINE_ENTRY_POINTS(kelm_pobjspace_type, pobjspace_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_azn_internal_pobj_type, azn_internal_pobj_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_pobj_type, pobj_s_t)
