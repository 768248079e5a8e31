// Server registrations: administration service entries and local servers, declared as field
// tables.
#include "eksvr_enc_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

const kelm_record_field aznadmsvc_fields[] = {
    {kind::text, "svc_name", offsetof(aznadmsvc_s_t, svc_name), 0, 0, nullptr},
    {kind::text_list, "svc_items", offsetof(aznadmsvc_s_t, svc_items),
     offsetof(aznadmsvc_s_t, svc_item_count), 0, nullptr},
};

// The numbers are written from their signed view and read back with their bits unchanged.
const kelm_record_field aznlocal_svr_fields[] = {
    {kind::text, "svr_text1", offsetof(aznlocal_svr_s_t, svr_text1), 0, 0, nullptr},
    {kind::text, "svr_text2", offsetof(aznlocal_svr_s_t, svr_text2), 0, 0, nullptr},
    {kind::text, "svr_text3", offsetof(aznlocal_svr_s_t, svr_text3), 0, 0, nullptr},
    {kind::text, "svr_text4", offsetof(aznlocal_svr_s_t, svr_text4), 0, 0, nullptr},
    {kind::unsigned_integer, "svr_number1", offsetof(aznlocal_svr_s_t, svr_number1), 0, 0, nullptr},
    {kind::unsigned_integer, "svr_number2", offsetof(aznlocal_svr_s_t, svr_number2), 0, 0, nullptr},
    {kind::unsigned_integer, "svr_number3", offsetof(aznlocal_svr_s_t, svr_number3), 0, 0, nullptr},
    {kind::unsigned_integer, "svr_number4", offsetof(aznlocal_svr_s_t, svr_number4), 0, 0, nullptr},
    {kind::record_list, "svcs", offsetof(aznlocal_svr_s_t, svcs),
     offsetof(aznlocal_svr_s_t, svc_count), 0, &kelm_aznadmsvc_type},
    {kind::record, "attrs", offsetof(aznlocal_svr_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

} // namespace

const kelm_record_type kelm_aznadmsvc_type = {"asn_aznadmsvc_t",
                                              "aznadmsvc_s_t",
                                              sizeof(aznadmsvc_s_t),
                                              aznadmsvc_fields,
                                              kelm_field_count(aznadmsvc_fields),
                                              &kelm_record_ops_for<asn_aznadmsvc_t>,
                                              __FILE__,
                                              __LINE__,
                                              0,
                                              nullptr};

const kelm_record_type kelm_aznlocal_svr_type = {"asn_aznlocal_svr_t",
                                                 "aznlocal_svr_s_t",
                                                 sizeof(aznlocal_svr_s_t),
                                                 aznlocal_svr_fields,
                                                 kelm_field_count(aznlocal_svr_fields),
                                                 &kelm_record_ops_for<asn_aznlocal_svr_t>,
                                                 __FILE__,
                                                 __LINE__,
                                                 0,
                                                 nullptr};
