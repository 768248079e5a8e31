// Actions, action groups and the set of action groups, declared as field tables. The slot arrays
// write a NULL filler (05 00) for each empty slot before a filled one and nothing after the last
// filled slot; on input only the first 32 entries are read.
#include "actionidl_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

const kelm_record_field ekaction_fields[] = {
    {kind::unsigned_integer, "action_number", offsetof(ekaction_s_t, action_number), 0, 0, nullptr},
    {kind::text, "action_name", offsetof(ekaction_s_t, action_name), 0, 0, nullptr},
    {kind::text, "action_label", offsetof(ekaction_s_t, action_label), 0, 0, nullptr},
    {kind::text, "action_text", offsetof(ekaction_s_t, action_text), 0, 0, nullptr},
    {kind::unsigned_integer, "first_number", offsetof(ekaction_s_t, first_number), 0, 0, nullptr},
    {kind::unsigned_integer, "second_number", offsetof(ekaction_s_t, second_number), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(ekaction_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekaction_group_fields[] = {
    {kind::text, "group_name", offsetof(ekaction_group_s_t, group_name), 0, 0, nullptr},
    {kind::slots, "actions", offsetof(ekaction_group_s_t, actions), 0, kelm_action_slot_count,
     &kelm_ekaction_type},
    {kind::record, "attrs", offsetof(ekaction_group_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekaction_groups_fields[] = {
    {kind::slots, "groups", offsetof(ekaction_groups_s_t, groups), 0, kelm_action_slot_count,
     &kelm_ekaction_group_type},
    {kind::record, "attrs", offsetof(ekaction_groups_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

} // namespace

const kelm_record_type kelm_ekaction_type = {"asn_ekaction_t",
                                             "ekaction_s_t",
                                             sizeof(ekaction_s_t),
                                             ekaction_fields,
                                             kelm_field_count(ekaction_fields),
                                             &kelm_record_ops_for<asn_ekaction_t>,
                                             __FILE__,
                                             __LINE__,
                                             0,
                                             nullptr};

const kelm_record_type kelm_ekaction_group_type = {"asn_ekaction_group_t",
                                                   "ekaction_group_s_t",
                                                   sizeof(ekaction_group_s_t),
                                                   ekaction_group_fields,
                                                   kelm_field_count(ekaction_group_fields),
                                                   &kelm_record_ops_for<asn_ekaction_group_t>,
                                                   __FILE__,
                                                   __LINE__,
                                                   0,
                                                   nullptr};

const kelm_record_type kelm_ekaction_groups_type = {"asn_ekaction_groups_t",
                                                    "ekaction_groups_s_t",
                                                    sizeof(ekaction_groups_s_t),
                                                    ekaction_groups_fields,
                                                    kelm_field_count(ekaction_groups_fields),
                                                    &kelm_record_ops_for<asn_ekaction_groups_t>,
                                                    __FILE__,
                                                    __LINE__,
                                                    0,
                                                    nullptr};
