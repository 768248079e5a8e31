// Permission sets, ACL entries, ACLs and the mappings between protected-object names and ACLs,
// declared as field tables.
#include "aclidl_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// The source name that this module's memory exceptions report.
constexpr const char kSource[] = "base_idls/aclidl_asn";

// Each permission is written as a signed INTEGER and read back with its 32-bit pattern.
const kelm_record_field acl_permset_fields[] = {
    {kind::integer_list, "perms", offsetof(acl_permset_s_t, perms),
     offsetof(acl_permset_s_t, perm_count), 0, nullptr},
};

const kelm_record_field acl_entry_fields[] = {
    {kind::record, "permset", offsetof(acl_entry_s_t, permset), 0, 0, &kelm_acl_permset_type},
    {kind::unsigned_integer, "entry_type", offsetof(acl_entry_s_t, entry_type), 0, 0, nullptr},
    {kind::record, "id", offsetof(acl_entry_s_t, id), 0, 0, &kelm_sec_id_type},
};

const kelm_record_field acl_ext_fields[] = {
    {kind::text, "name", offsetof(acl_ext_s_t, name), 0, 0, nullptr},
    {kind::record_list, "entries", offsetof(acl_ext_s_t, entries),
     offsetof(acl_ext_s_t, entry_count), 0, &kelm_acl_entry_type},
    {kind::record, "attrs", offsetof(acl_ext_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field map_pobj_to_acl_fields[] = {
    {kind::text_list, "names", offsetof(map_pobj_to_acl_s_t, names),
     offsetof(map_pobj_to_acl_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(map_pobj_to_acl_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field map_acl_to_pobj_fields[] = {
    {kind::text_list, "names", offsetof(map_acl_to_pobj_s_t, names),
     offsetof(map_acl_to_pobj_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(map_acl_to_pobj_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

} // namespace

const kelm_record_type kelm_acl_permset_type = {"asn_acl_permset_t",
                                                "acl_permset_s_t",
                                                sizeof(acl_permset_s_t),
                                                acl_permset_fields,
                                                kelm_field_count(acl_permset_fields),
                                                &kelm_record_ops_for<asn_acl_permset_t>,
                                                kSource,
                                                __LINE__,
                                                0,
                                                nullptr};

const kelm_record_type kelm_acl_entry_type = {"asn_acl_entry_t",
                                              "acl_entry_s_t",
                                              sizeof(acl_entry_s_t),
                                              acl_entry_fields,
                                              kelm_field_count(acl_entry_fields),
                                              &kelm_record_ops_for<asn_acl_entry_t>,
                                              kSource,
                                              __LINE__,
                                              0,
                                              nullptr};

const kelm_record_type kelm_acl_ext_type = {"asn_acl_ext_t",
                                            "acl_ext_s_t",
                                            sizeof(acl_ext_s_t),
                                            acl_ext_fields,
                                            kelm_field_count(acl_ext_fields),
                                            &kelm_record_ops_for<asn_acl_ext_t>,
                                            kSource,
                                            __LINE__,
                                            0,
                                            nullptr};

// Stored type names are cut to 16 characters: "map_pobj_to_acl_" and "map_acl_to_pobj_".
const kelm_record_type kelm_map_pobj_to_acl_type = {"asn_map_pobj_to_acl_t",
                                                    "map_pobj_to_acl_s_t",
                                                    sizeof(map_pobj_to_acl_s_t),
                                                    map_pobj_to_acl_fields,
                                                    kelm_field_count(map_pobj_to_acl_fields),
                                                    &kelm_record_ops_for<asn_map_pobj_to_acl_t>,
                                                    kSource,
                                                    __LINE__,
                                                    0,
                                                    nullptr};

const kelm_record_type kelm_map_acl_to_pobj_type = {"asn_map_acl_to_pobj_t",
                                                    "map_acl_to_pobj_s_t",
                                                    sizeof(map_acl_to_pobj_s_t),
                                                    map_acl_to_pobj_fields,
                                                    kelm_field_count(map_acl_to_pobj_fields),
                                                    &kelm_record_ops_for<asn_map_acl_to_pobj_t>,
                                                    kSource,
                                                    __LINE__,
                                                    0,
                                                    nullptr};
