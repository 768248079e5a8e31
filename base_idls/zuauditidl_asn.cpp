// Audit events, their elements and attributes, declared as field tables. An element's table
// names its own type for the nested elements: the list builds those objects only as entries
// arrive, and the runtime's nesting limit bounds how deep a decode goes.
#include "zuauditidl_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

const kelm_record_field zuauditattribute_fields[] = {
    {kind::text, "name", offsetof(zuauditattribute_s_t, name), 0, 0, nullptr},
    {kind::bytes, "value", offsetof(zuauditattribute_s_t, value),
     offsetof(zuauditattribute_s_t, value_length), 0, nullptr},
};

const kelm_record_field zuauditelement_fields[] = {
    {kind::text, "name", offsetof(zuauditelement_s_t, name), 0, 0, nullptr},
    {kind::bytes, "value", offsetof(zuauditelement_s_t, value),
     offsetof(zuauditelement_s_t, value_length), 0, nullptr},
    {kind::record_list, "attrs", offsetof(zuauditelement_s_t, attrs),
     offsetof(zuauditelement_s_t, attr_count), 0, &kelm_zuauditattribute_type},
    {kind::record_list, "elements", offsetof(zuauditelement_s_t, elements),
     offsetof(zuauditelement_s_t, element_count), 0, &kelm_zuauditelement_type},
};

const kelm_record_field zuauditevent_fields[] = {
    {kind::unsigned_integer, "event_number1", offsetof(zuauditevent_s_t, event_number1), 0, 0,
     nullptr},
    {kind::text, "event_text", offsetof(zuauditevent_s_t, event_text), 0, 0, nullptr},
    {kind::unsigned_integer, "event_number2", offsetof(zuauditevent_s_t, event_number2), 0, 0,
     nullptr},
    {kind::record_list, "elements", offsetof(zuauditevent_s_t, elements),
     offsetof(zuauditevent_s_t, element_count), 0, &kelm_zuauditelement_type},
};

} // namespace

const kelm_record_type kelm_zuauditattribute_type = {"asn_zuauditattribute_t",
                                                     "zuauditattribute_s_t",
                                                     sizeof(zuauditattribute_s_t),
                                                     zuauditattribute_fields,
                                                     kelm_field_count(zuauditattribute_fields),
                                                     &kelm_record_ops_for<asn_zuauditattribute_t>,
                                                     __FILE__,
                                                     __LINE__,
                                                     0,
                                                     nullptr};

const kelm_record_type kelm_zuauditelement_type = {"asn_zuauditelement_t",
                                                   "zuauditelement_s_t",
                                                   sizeof(zuauditelement_s_t),
                                                   zuauditelement_fields,
                                                   kelm_field_count(zuauditelement_fields),
                                                   &kelm_record_ops_for<asn_zuauditelement_t>,
                                                   __FILE__,
                                                   __LINE__,
                                                   0,
                                                   nullptr};

const kelm_record_type kelm_zuauditevent_type = {"asn_zuauditevent_t",
                                                 "zuauditevent_s_t",
                                                 sizeof(zuauditevent_s_t),
                                                 zuauditevent_fields,
                                                 kelm_field_count(zuauditevent_fields),
                                                 &kelm_record_ops_for<asn_zuauditevent_t>,
                                                 __FILE__,
                                                 __LINE__,
                                                 0,
                                                 nullptr};
