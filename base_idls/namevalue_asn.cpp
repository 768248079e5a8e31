// Name/value entries and lists, remote log requests and entitlements queries, declared as field
// tables.
#include "namevalue_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// The source name that this module's memory exceptions report.
constexpr const char kSource[] = "base_idls/namevalue_asn";

// The nested entries are an array of pointers, each entry in a block of its own; the type
// refers to itself, so a record nests as deep as its input does, within the nesting limit.
const kelm_record_field namevalue_fields[] = {
    {kind::text, "name", offsetof(namevalue_s_t, name), 0, 0, nullptr},
    {kind::text_list, "values", offsetof(namevalue_s_t, values),
     offsetof(namevalue_s_t, value_count), 0, nullptr},
    {kind::record_pointer_list, "nested", offsetof(namevalue_s_t, nested),
     offsetof(namevalue_s_t, nested_count), 0, &kelm_namevalue_type},
};

const kelm_record_field namevalueList_fields[] = {
    {kind::record_pointer_list, "entries", offsetof(namevalueList_s_t, entries),
     offsetof(namevalueList_s_t, entry_count), 0, &kelm_namevalue_type},
};

const kelm_record_field RemoteLogRequest_fields[] = {
    {kind::text, "log_text1", offsetof(remote_log_request, log_text1), 0, 0, nullptr},
    {kind::text, "log_text2", offsetof(remote_log_request, log_text2), 0, 0, nullptr},
    {kind::unsigned_integer, "log_number1", offsetof(remote_log_request, log_number1), 0, 0,
     nullptr},
    {kind::unsigned_integer, "log_number2", offsetof(remote_log_request, log_number2), 0, 0,
     nullptr},
    {kind::bytes, "data", offsetof(remote_log_request, data),
     offsetof(remote_log_request, data_length), 0, nullptr},
};

const kelm_record_field azn_get_entitlements_in_fields[] = {
    {kind::text, "name", offsetof(azn_get_entitlements_in_s_t, name), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(azn_get_entitlements_in_s_t, attrs), 0, 0,
     &kelm_attrlist_type},
    {kind::record, "chain", offsetof(azn_get_entitlements_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
};

const kelm_record_field azn_get_entitlements_out_fields[] = {
    {kind::record, "attrs", offsetof(azn_get_entitlements_out_s_t, attrs), 0, 0,
     &kelm_attrlist_type},
    {kind::unsigned_integer, "status", offsetof(azn_get_entitlements_out_s_t, status), 0, 0,
     nullptr},
};

} // namespace

const kelm_record_type kelm_namevalue_type = {"asn_namevalue_t",
                                              "namevalue_s_t",
                                              sizeof(namevalue_s_t),
                                              namevalue_fields,
                                              kelm_field_count(namevalue_fields),
                                              &kelm_record_ops_for<asn_namevalue_t>,
                                              kSource,
                                              __LINE__,
                                              0,
                                              nullptr};

const kelm_record_type kelm_namevalueList_type = {"asn_namevalueList_t",
                                                  "namevalueList_s_t",
                                                  sizeof(namevalueList_s_t),
                                                  namevalueList_fields,
                                                  kelm_field_count(namevalueList_fields),
                                                  &kelm_record_ops_for<asn_namevalueList_t>,
                                                  kSource,
                                                  __LINE__,
                                                  0,
                                                  nullptr};

const kelm_record_type kelm_RemoteLogRequest_type = {"asn_RemoteLogRequest",
                                                     "remote_log_request",
                                                     sizeof(remote_log_request),
                                                     RemoteLogRequest_fields,
                                                     kelm_field_count(RemoteLogRequest_fields),
                                                     &kelm_record_ops_for<asn_RemoteLogRequest>,
                                                     kSource,
                                                     __LINE__,
                                                     0,
                                                     nullptr};

// Request and reply both store the cut type name "azn_get_entitlem".
const kelm_record_type kelm_azn_get_entitlements_in_type = {
    "asn_azn_get_entitlements_in_t",
    "azn_get_entitlements_in_s_t",
    sizeof(azn_get_entitlements_in_s_t),
    azn_get_entitlements_in_fields,
    kelm_field_count(azn_get_entitlements_in_fields),
    &kelm_record_ops_for<asn_azn_get_entitlements_in_t>,
    kSource,
    __LINE__,
    0,
    nullptr};

const kelm_record_type kelm_azn_get_entitlements_out_type = {
    "asn_azn_get_entitlements_out_t",
    "azn_get_entitlements_out_s_t",
    sizeof(azn_get_entitlements_out_s_t),
    azn_get_entitlements_out_fields,
    kelm_field_count(azn_get_entitlements_out_fields),
    &kelm_record_ops_for<asn_azn_get_entitlements_out_t>,
    kSource,
    __LINE__,
    0,
    nullptr};
