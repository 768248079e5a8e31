// Identifiers, typed values, attributes and attribute lists, declared as field tables.
#include "attrlist_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

const kelm_record_field uuid_fields[] = {
    {kind::unsigned_integer, "time_low", offsetof(uuid_t, time_low), 0, 0, nullptr},
    {kind::unsigned16, "time_mid", offsetof(uuid_t, time_mid), 0, 0, nullptr},
    {kind::unsigned16, "time_hi_and_version", offsetof(uuid_t, time_hi_and_version), 0, 0, nullptr},
    {kind::unsigned8, "clock_seq_hi_and_reserved", offsetof(uuid_t, clock_seq_hi_and_reserved), 0,
     0, nullptr},
    {kind::unsigned8, "clock_seq_low", offsetof(uuid_t, clock_seq_low), 0, 0, nullptr},
    {kind::fixed_bytes, "node", offsetof(uuid_t, node), 0, 6, nullptr},
};

const kelm_record_field value_fields[] = {
    {kind::unsigned_integer, "value_type", offsetof(value_s_t, value_type), 0, 0, nullptr},
    {kind::text, "str_value", offsetof(value_s_t, str_value), 0, 0, nullptr},
    {kind::bytes, "bin_value", offsetof(value_s_t, bin_value), offsetof(value_s_t, bin_length), 0,
     nullptr},
};

const kelm_record_field attr_fields[] = {
    {kind::text, "name", offsetof(attr_s_t, name), 0, 0, nullptr},
    {kind::record_list, "values", offsetof(attr_s_t, values), offsetof(attr_s_t, value_count), 0,
     &kelm_value_type},
};

const kelm_record_field attrlist_fields[] = {
    {kind::record_list, "attrs", offsetof(attrlist_s_t, attrs), offsetof(attrlist_s_t, attr_count),
     0, &kelm_attr_type},
};

} // namespace

const kelm_record_type kelm_uuid_type = {"asn_uuid_t",
                                         "uuid_t",
                                         sizeof(uuid_t),
                                         uuid_fields,
                                         kelm_field_count(uuid_fields),
                                         &kelm_record_ops_for<asn_uuid_t>,
                                         __FILE__,
                                         __LINE__,
                                         0,
                                         nullptr};

const kelm_record_type kelm_value_type = {"asn_value_t",
                                          "value_s_t",
                                          sizeof(value_s_t),
                                          value_fields,
                                          kelm_field_count(value_fields),
                                          &kelm_record_ops_for<asn_value_t>,
                                          __FILE__,
                                          __LINE__,
                                          0,
                                          nullptr};

const kelm_record_type kelm_attr_type = {"asn_attr_t",
                                         "attr_s_t",
                                         sizeof(attr_s_t),
                                         attr_fields,
                                         kelm_field_count(attr_fields),
                                         &kelm_record_ops_for<asn_attr_t>,
                                         __FILE__,
                                         __LINE__,
                                         0,
                                         nullptr};

const kelm_record_type kelm_attrlist_type = {"asn_attrlist_t",
                                             "attrlist_s_t",
                                             sizeof(attrlist_s_t),
                                             attrlist_fields,
                                             kelm_field_count(attrlist_fields),
                                             &kelm_record_ops_for<asn_attrlist_t>,
                                             __FILE__,
                                             __LINE__,
                                             0,
                                             nullptr};
