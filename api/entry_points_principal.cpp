// The typed entry points of identities, principals, principal chains and the database fetch.
#include "entry_points_internal.h"
#include "kelm/principal.h"
#include "principal_asn.h"

KELM_DEFINE_ENTRY_POINTS(kelm_ekprincipal_chain_type, ekprincipal_chain_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekprincipal_type, ekprincipal_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_sec_id_pa_type, sec_id_pa_t)
KELM_DEFINE_ENTRY_POINTS(kelm_sec_id_type, sec_id_t)
KELM_DEFINE_ENTRY_POINTS(kelm_dbr_get_db_in_type, dbr_get_db_in_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_dbr_get_db_out_type, dbr_get_db_out_s_t)
