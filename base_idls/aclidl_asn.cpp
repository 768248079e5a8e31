// Permission sets, ACL entries, ACLs and the mappings between protected-object names and ACLs,
// declared as field tables.
#include "aclidl_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/aclidl_asn";

} // namespace

// Each permission is written as a signed INTEGER and read back with its 32-bit pattern.
KELM_DEFINE_RECORD_TYPE(kelm_acl_permset_type, asn_acl_permset_t, acl_permset_s_t,
                        kelm_site(kSource, 54), kelm_no_quirks, KELM_LIST(perms, perm_count));

KELM_DEFINE_RECORD_TYPE(kelm_acl_entry_type, asn_acl_entry_t, acl_entry_s_t, kelm_site(kSource, 65),
                        kelm_no_quirks, KELM_FIELD(permset), KELM_SIGNED_VIEW(entry_type),
                        KELM_FIELD(id));

KELM_DEFINE_RECORD_TYPE(kelm_acl_ext_type, asn_acl_ext_t, acl_ext_s_t, kelm_site(kSource, 76),
                        kelm_no_quirks, KELM_FIELD(name), KELM_LIST(entries, entry_count),
                        KELM_FIELD(attrs));

// Stored type names are cut to 16 characters: "map_pobj_to_acl_" and "map_acl_to_pobj_".
KELM_DEFINE_RECORD_TYPE(kelm_map_pobj_to_acl_type, asn_map_pobj_to_acl_t, map_pobj_to_acl_s_t,
                        kelm_site(kSource, 88), kelm_no_quirks, KELM_LIST(names, name_count),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_map_acl_to_pobj_type, asn_map_acl_to_pobj_t, map_acl_to_pobj_s_t,
                        kelm_site(kSource, 99), kelm_no_quirks, KELM_LIST(names, name_count),
                        KELM_FIELD(attrs));
