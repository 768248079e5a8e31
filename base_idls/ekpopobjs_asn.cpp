// Protected-object policies, their time ranges and address entries, and the mappings between
// policies and protected objects, declared as field tables.
#include "ekpopobjs_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// The qualifier is written from its signed view and read back with its bit pattern unchanged.
const kelm_record_field ektod_range_fields[] = {
    {kind::integer, "range_start", offsetof(ektod_range_s_t, range_start), 0, 0, nullptr},
    {kind::integer, "range_end", offsetof(ektod_range_s_t, range_end), 0, 0, nullptr},
    {kind::unsigned_integer, "range_qualifier", offsetof(ektod_range_s_t, range_qualifier), 0, 0,
     nullptr},
};

const kelm_record_field ekaccess_times_fields[] = {
    {kind::unsigned_integer, "access_value", offsetof(ekaccess_times_s_t, access_value), 0, 0,
     nullptr},
    {kind::record, "tod", offsetof(ekaccess_times_s_t, tod), 0, 0, &kelm_ektod_range_type},
};

const kelm_record_field ekpop_ipauth_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(ekpop_ipauth_s_t, first_number), 0, 0,
     nullptr},
    {kind::unsigned_integer, "second_number", offsetof(ekpop_ipauth_s_t, second_number), 0, 0,
     nullptr},
    {kind::unsigned_integer, "third_number", offsetof(ekpop_ipauth_s_t, third_number), 0, 0,
     nullptr},
};

const kelm_record_field ekpop_ipauth2_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(ekpop_ipauth2_s_t, first_number), 0, 0,
     nullptr},
    {kind::record, "first_addr", offsetof(ekpop_ipauth2_s_t, first_addr), 0, 0, &kelm_ip_addr_type},
    {kind::record, "second_addr", offsetof(ekpop_ipauth2_s_t, second_addr), 0, 0,
     &kelm_ip_addr_type},
};

const kelm_record_field ekpop_ipauth2_list_fields[] = {
    {kind::record_list, "ipauths", offsetof(ekpop_ipauth2_list_s_t, ipauths),
     offsetof(ekpop_ipauth2_list_s_t, ipauth_count), 0, &kelm_ekpop_ipauth2_type},
};

const kelm_record_field ekpop_fields[] = {
    {kind::text, "pop_name", offsetof(ekpop_s_t, pop_name), 0, 0, nullptr},
    {kind::record, "access_times", offsetof(ekpop_s_t, access_times), 0, 0,
     &kelm_ekaccess_times_type},
    {kind::unsigned_integer, "first_number", offsetof(ekpop_s_t, first_number), 0, 0, nullptr},
    {kind::unsigned_integer, "second_number", offsetof(ekpop_s_t, second_number), 0, 0, nullptr},
    {kind::unsigned_integer, "third_number", offsetof(ekpop_s_t, third_number), 0, 0, nullptr},
    {kind::record_list, "ipauths", offsetof(ekpop_s_t, ipauths), offsetof(ekpop_s_t, ipauth_count),
     0, &kelm_ekpop_ipauth_type},
    {kind::record, "attrs", offsetof(ekpop_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekmap_pop_to_pobj_fields[] = {
    {kind::text_list, "names", offsetof(ekmap_pop_to_pobj_s_t, names),
     offsetof(ekmap_pop_to_pobj_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(ekmap_pop_to_pobj_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekmap_pobj_to_pop_fields[] = {
    {kind::text_list, "names", offsetof(ekmap_pobj_to_pop_s_t, names),
     offsetof(ekmap_pobj_to_pop_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(ekmap_pobj_to_pop_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

} // namespace

const kelm_record_type kelm_ektod_range_type = {"asn_ektod_range_t",
                                                "ektod_range_s_t",
                                                sizeof(ektod_range_s_t),
                                                ektod_range_fields,
                                                kelm_field_count(ektod_range_fields),
                                                &kelm_record_ops_for<asn_ektod_range_t>,
                                                __FILE__,
                                                __LINE__,
                                                0,
                                                nullptr};

// Kept for compatibility: the record is not cleared first. The access value is written, then the
// nested range clears and fills itself; together they cover the whole record.
const kelm_record_type kelm_ekaccess_times_type = {"asn_ekaccess_times_t",
                                                   "ekaccess_times_s_t",
                                                   sizeof(ekaccess_times_s_t),
                                                   ekaccess_times_fields,
                                                   kelm_field_count(ekaccess_times_fields),
                                                   &kelm_record_ops_for<asn_ekaccess_times_t>,
                                                   __FILE__,
                                                   __LINE__,
                                                   KELM_RECORD_KEEPS_RECORD,
                                                   nullptr};

const kelm_record_type kelm_ekpop_ipauth_type = {"asn_ekpop_ipauth_t",
                                                 "ekpop_ipauth_s_t",
                                                 sizeof(ekpop_ipauth_s_t),
                                                 ekpop_ipauth_fields,
                                                 kelm_field_count(ekpop_ipauth_fields),
                                                 &kelm_record_ops_for<asn_ekpop_ipauth_t>,
                                                 __FILE__,
                                                 __LINE__,
                                                 0,
                                                 nullptr};

const kelm_record_type kelm_ekpop_ipauth2_type = {"asn_ekpop_ipauth2_t",
                                                  "ekpop_ipauth2_s_t",
                                                  sizeof(ekpop_ipauth2_s_t),
                                                  ekpop_ipauth2_fields,
                                                  kelm_field_count(ekpop_ipauth2_fields),
                                                  &kelm_record_ops_for<asn_ekpop_ipauth2_t>,
                                                  __FILE__,
                                                  __LINE__,
                                                  0,
                                                  nullptr};

const kelm_record_type kelm_ekpop_ipauth2_list_type = {"asn_ekpop_ipauth2_list",
                                                       "ekpop_ipauth2_list_s_t",
                                                       sizeof(ekpop_ipauth2_list_s_t),
                                                       ekpop_ipauth2_list_fields,
                                                       kelm_field_count(ekpop_ipauth2_list_fields),
                                                       &kelm_record_ops_for<asn_ekpop_ipauth2_list>,
                                                       __FILE__,
                                                       __LINE__,
                                                       0,
                                                       nullptr};

const kelm_record_type kelm_ekpop_type = {"asn_ekpop_t",
                                          "ekpop_s_t",
                                          sizeof(ekpop_s_t),
                                          ekpop_fields,
                                          kelm_field_count(ekpop_fields),
                                          &kelm_record_ops_for<asn_ekpop_t>,
                                          __FILE__,
                                          __LINE__,
                                          0,
                                          nullptr};

const kelm_record_type kelm_ekmap_pop_to_pobj_type = {"asn_ekmap_pop_to_pobj_t",
                                                      "ekmap_pop_to_pobj_s_t",
                                                      sizeof(ekmap_pop_to_pobj_s_t),
                                                      ekmap_pop_to_pobj_fields,
                                                      kelm_field_count(ekmap_pop_to_pobj_fields),
                                                      &kelm_record_ops_for<asn_ekmap_pop_to_pobj_t>,
                                                      __FILE__,
                                                      __LINE__,
                                                      0,
                                                      nullptr};

const kelm_record_type kelm_ekmap_pobj_to_pop_type = {"asn_ekmap_pobj_to_pop_t",
                                                      "ekmap_pobj_to_pop_s_t",
                                                      sizeof(ekmap_pobj_to_pop_s_t),
                                                      ekmap_pobj_to_pop_fields,
                                                      kelm_field_count(ekmap_pobj_to_pop_fields),
                                                      &kelm_record_ops_for<asn_ekmap_pobj_to_pop_t>,
                                                      __FILE__,
                                                      __LINE__,
                                                      0,
                                                      nullptr};
