// The typed entry points of the authorization-database header record, the
// external-authentication texts, extended attributes and credential modifications.
#include "ekaclobjs_asn.h"
#include "entry_points_internal.h"
#include "kelm/ekaclobjs.h"

KELM_DEFINE_ENTRY_POINTS(kelm_ekauthzn_db_type, ekauthzn_db_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekextern_auth_type, ekextern_auth_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekextattr_type, ekextattr_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekattr_type, ekattr_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_azn_creds_mod_in_type, azn_creds_mod_in_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_azn_creds_mod_out_type, azn_creds_mod_out_s_t)
