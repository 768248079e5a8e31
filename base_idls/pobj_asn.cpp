// Protected-object spaces, protected objects and their internal form, declared as field tables.
#include "pobj_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

const kelm_record_field pobjspace_fields[] = {
    {kind::text_list, "names", offsetof(pobjspace_s_t, names), offsetof(pobjspace_s_t, name_count),
     0, nullptr},
    {kind::record, "attrs", offsetof(pobjspace_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field pobj_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(pobj_s_t, first_number), 0, 0, nullptr},
    {kind::unsigned_integer, "second_number", offsetof(pobj_s_t, second_number), 0, 0, nullptr},
    {kind::text, "name", offsetof(pobj_s_t, name), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(pobj_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

// The whole protected object is one nested SEQUENCE element.
const kelm_record_field azn_internal_pobj_fields[] = {
    {kind::record, "pobj", offsetof(azn_internal_pobj_s_t, pobj), 0, 0, &kelm_pobj_type},
    {kind::text, "internal_name", offsetof(azn_internal_pobj_s_t, internal_name), 0, 0, nullptr},
};

} // namespace

const kelm_record_type kelm_pobjspace_type = {"asn_pobjspace_t",
                                              "pobjspace_s_t",
                                              sizeof(pobjspace_s_t),
                                              pobjspace_fields,
                                              kelm_field_count(pobjspace_fields),
                                              &kelm_record_ops_for<asn_pobjspace_t>,
                                              __FILE__,
                                              __LINE__,
                                              0,
                                              nullptr};

const kelm_record_type kelm_pobj_type = {"asn_pobj_t",
                                         "pobj_s_t",
                                         sizeof(pobj_s_t),
                                         pobj_fields,
                                         kelm_field_count(pobj_fields),
                                         &kelm_record_ops_for<asn_pobj_t>,
                                         __FILE__,
                                         __LINE__,
                                         0,
                                         nullptr};

const kelm_record_type kelm_azn_internal_pobj_type = {"asn_azn_internal_pobj_t",
                                                      "azn_internal_pobj_s_t",
                                                      sizeof(azn_internal_pobj_s_t),
                                                      azn_internal_pobj_fields,
                                                      kelm_field_count(azn_internal_pobj_fields),
                                                      &kelm_record_ops_for<asn_azn_internal_pobj_t>,
                                                      __FILE__,
                                                      __LINE__,
                                                      0,
                                                      nullptr};
