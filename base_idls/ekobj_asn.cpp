// Network addresses, named objects, object and name lists and the object database header,
// declared as field tables.
#include "ekobj_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// Both arrays are written at their full size whatever they hold, and read back as exactly that
// many bytes.
const kelm_record_field ip_addr_fields[] = {
    {kind::unsigned_integer, "addr_type", offsetof(ip_addr_s_t, addr_type), 0, 0, nullptr},
    {kind::fixed_bytes, "addr_string", offsetof(ip_addr_s_t, addr_string), 0,
     sizeof(ip_addr_s_t::addr_string), nullptr},
    {kind::fixed_bytes, "addr_bytes", offsetof(ip_addr_s_t, addr_bytes), 0,
     sizeof(ip_addr_s_t::addr_bytes), nullptr},
};

const kelm_record_field ekobj_fields[] = {
    {kind::text, "name", offsetof(ekobj_t, name), 0, 0, nullptr},
    {kind::unsigned_integer, "first_number", offsetof(ekobj_t, first_number), 0, 0, nullptr},
    {kind::unsigned_integer, "second_number", offsetof(ekobj_t, second_number), 0, 0, nullptr},
    {kind::bytes, "data", offsetof(ekobj_t, data), offsetof(ekobj_t, data_length), 0, nullptr},
};

const kelm_record_field ekobj_list_fields[] = {
    {kind::record_list, "objs", offsetof(ekobj_list_s_t, objs), offsetof(ekobj_list_s_t, obj_count),
     0, &kelm_ekobj_type},
    {kind::record, "attrs", offsetof(ekobj_list_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekobj_name_list_fields[] = {
    {kind::text_list, "names", offsetof(ekobj_name_list_s_t, names),
     offsetof(ekobj_name_list_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(ekobj_name_list_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

const kelm_record_field ekobj_db_header_fields[] = {
    {kind::unsigned_integer, "db_number", offsetof(ekobj_db_header_s_t, db_number), 0, 0, nullptr},
    {kind::text_list, "names", offsetof(ekobj_db_header_s_t, names),
     offsetof(ekobj_db_header_s_t, name_count), 0, nullptr},
    {kind::record, "attrs", offsetof(ekobj_db_header_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

} // namespace

const kelm_record_type kelm_ip_addr_type = {"asn_ip_addr_t",
                                            "ip_addr_s_t",
                                            sizeof(ip_addr_s_t),
                                            ip_addr_fields,
                                            kelm_field_count(ip_addr_fields),
                                            &kelm_record_ops_for<asn_ip_addr_t>,
                                            __FILE__,
                                            __LINE__,
                                            0,
                                            nullptr};

const kelm_record_type kelm_ekobj_type = {"asn_ekobj_t",
                                          "ekobj_t",
                                          sizeof(ekobj_t),
                                          ekobj_fields,
                                          kelm_field_count(ekobj_fields),
                                          &kelm_record_ops_for<asn_ekobj_t>,
                                          __FILE__,
                                          __LINE__,
                                          0,
                                          nullptr};

const kelm_record_type kelm_ekobj_list_type = {"asn_ekobj_list_t",
                                               "ekobj_list_s_t",
                                               sizeof(ekobj_list_s_t),
                                               ekobj_list_fields,
                                               kelm_field_count(ekobj_list_fields),
                                               &kelm_record_ops_for<asn_ekobj_list_t>,
                                               __FILE__,
                                               __LINE__,
                                               0,
                                               nullptr};

const kelm_record_type kelm_ekobj_name_list_type = {"asn_ekobj_name_list_t",
                                                    "ekobj_name_list_s_t",
                                                    sizeof(ekobj_name_list_s_t),
                                                    ekobj_name_list_fields,
                                                    kelm_field_count(ekobj_name_list_fields),
                                                    &kelm_record_ops_for<asn_ekobj_name_list_t>,
                                                    __FILE__,
                                                    __LINE__,
                                                    0,
                                                    nullptr};

const kelm_record_type kelm_ekobj_db_header_type = {"asn_ekobj_db_header_t",
                                                    "ekobj_db_header_s_t",
                                                    sizeof(ekobj_db_header_s_t),
                                                    ekobj_db_header_fields,
                                                    kelm_field_count(ekobj_db_header_fields),
                                                    &kelm_record_ops_for<asn_ekobj_db_header_t>,
                                                    __FILE__,
                                                    __LINE__,
                                                    0,
                                                    nullptr};
