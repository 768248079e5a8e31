// Security identifiers, privilege-attribute identities, principals, principal chains and the
// database fetch request and reply, declared as field tables.
#include "principal_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// The source name that this module's memory exceptions report.
constexpr const char kSource[] = "base_idls/principal_asn";

const kelm_record_field sec_id_fields[] = {
    {kind::record, "uuid", offsetof(sec_id_t, uuid), 0, 0, &kelm_uuid_type},
    {kind::text, "name", offsetof(sec_id_t, name), 0, 0, nullptr},
};

// The only 16-bit count of the library's records: it wraps past 65535 entries while the array
// holds them all.
const kelm_record_field sec_id_pa_fields[] = {
    {kind::record, "id", offsetof(sec_id_pa_t, id), 0, 0, &kelm_sec_id_type},
    {kind::record_list16, "groups", offsetof(sec_id_pa_t, groups),
     offsetof(sec_id_pa_t, group_count), 0, &kelm_sec_id_type},
};

// An absent identity is recognised on input by the INTEGER that follows the first number.
const kelm_record_field ekprincipal_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(ekprincipal_s_t, first_number), 0, 0,
     nullptr},
    {kind::optional_record, "pa", offsetof(ekprincipal_s_t, pa), 0, 0, &kelm_sec_id_pa_type},
    {kind::unsigned_integer, "second_number", offsetof(ekprincipal_s_t, second_number), 0, 0,
     nullptr},
    {kind::optional_record, "attrs", offsetof(ekprincipal_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

// The principals are an array of pointers, each principal in a block of its own.
const kelm_record_field ekprincipal_chain_fields[] = {
    {kind::text, "chain_name", offsetof(ekprincipal_chain_s_t, chain_name), 0, 0, nullptr},
    {kind::record_pointer_list, "principals", offsetof(ekprincipal_chain_s_t, principals),
     offsetof(ekprincipal_chain_s_t, principal_count), 0, &kelm_ekprincipal_type},
};

const kelm_record_field dbr_get_db_in_fields[] = {
    {kind::unsigned_integer, "request_number", offsetof(dbr_get_db_in_s_t, request_number), 0, 0,
     nullptr},
};

const kelm_record_field dbr_get_db_out_fields[] = {
    {kind::unsigned_integer, "first_number", offsetof(dbr_get_db_out_s_t, first_number), 0, 0,
     nullptr},
    {kind::unsigned_integer, "second_number", offsetof(dbr_get_db_out_s_t, second_number), 0, 0,
     nullptr},
    {kind::unsigned_integer, "third_number", offsetof(dbr_get_db_out_s_t, third_number), 0, 0,
     nullptr},
};

} // namespace

const kelm_record_type kelm_sec_id_type = {"asn_sec_id_t",
                                           "sec_id_t",
                                           sizeof(sec_id_t),
                                           sec_id_fields,
                                           kelm_field_count(sec_id_fields),
                                           &kelm_record_ops_for<asn_sec_id_t>,
                                           kSource,
                                           __LINE__,
                                           0,
                                           nullptr};

const kelm_record_type kelm_sec_id_pa_type = {"asn_sec_id_pa_t",
                                              "sec_id_pa_t",
                                              sizeof(sec_id_pa_t),
                                              sec_id_pa_fields,
                                              kelm_field_count(sec_id_pa_fields),
                                              &kelm_record_ops_for<asn_sec_id_pa_t>,
                                              kSource,
                                              __LINE__,
                                              0,
                                              nullptr};

const kelm_record_type kelm_ekprincipal_type = {"asn_ekprincipal_t",
                                                "ekprincipal_s_t",
                                                sizeof(ekprincipal_s_t),
                                                ekprincipal_fields,
                                                kelm_field_count(ekprincipal_fields),
                                                &kelm_record_ops_for<asn_ekprincipal_t>,
                                                kSource,
                                                __LINE__,
                                                0,
                                                nullptr};

const kelm_record_type kelm_ekprincipal_chain_type = {"asn_ekprincipal_chain_t",
                                                      "ekprincipal_chain_s_t",
                                                      sizeof(ekprincipal_chain_s_t),
                                                      ekprincipal_chain_fields,
                                                      kelm_field_count(ekprincipal_chain_fields),
                                                      &kelm_record_ops_for<asn_ekprincipal_chain_t>,
                                                      kSource,
                                                      __LINE__,
                                                      0,
                                                      nullptr};

const kelm_record_type kelm_dbr_get_db_in_type = {"asn_dbr_get_db_in_t",
                                                  "dbr_get_db_in_s_t",
                                                  sizeof(dbr_get_db_in_s_t),
                                                  dbr_get_db_in_fields,
                                                  kelm_field_count(dbr_get_db_in_fields),
                                                  &kelm_record_ops_for<asn_dbr_get_db_in_t>,
                                                  kSource,
                                                  __LINE__,
                                                  0,
                                                  nullptr};

const kelm_record_type kelm_dbr_get_db_out_type = {"asn_dbr_get_db_out_t",
                                                   "dbr_get_db_out_s_t",
                                                   sizeof(dbr_get_db_out_s_t),
                                                   dbr_get_db_out_fields,
                                                   kelm_field_count(dbr_get_db_out_fields),
                                                   &kelm_record_ops_for<asn_dbr_get_db_out_t>,
                                                   kSource,
                                                   __LINE__,
                                                   0,
                                                   nullptr};
