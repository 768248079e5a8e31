// The typed entry points of network addresses, named objects, object and name lists and the
// object database header.
#include "ekobj_asn.h"
#include "entry_points_internal.h"
#include "kelm/ekobj.h"

KELM_DEFINE_ENTRY_POINTS(kelm_ip_addr_type, ip_addr_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekobj_type, ekobj_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekobj_name_list_type, ekobj_name_list_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekobj_list_type, ekobj_list_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_ekobj_db_header_type, ekobj_db_header_s_t)
