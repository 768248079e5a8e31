// Protected-object policies, their time ranges and address entries, and the mappings between
// policies and protected objects, declared as field tables.
#include "ekpopobjs_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/ekpopobjs_asn.cpp";

} // namespace

// The qualifier is written from its signed view and read back with its bit pattern unchanged.
KELM_DEFINE_RECORD_TYPE(kelm_ektod_range_type, asn_ektod_range_t, ektod_range_s_t,
                        kelm_site(kSource, 80), kelm_no_quirks, KELM_FIELD(range_start),
                        KELM_FIELD(range_end), KELM_SIGNED_VIEW(range_qualifier));

// Kept for compatibility: the record is not cleared first. The access value is written, then the
// nested range clears and fills itself; together they cover the whole record.
KELM_DEFINE_RECORD_TYPE(kelm_ekaccess_times_type, asn_ekaccess_times_t, ekaccess_times_s_t,
                        kelm_site(kSource, 93), kelm_no_quirks.keeps_record(),
                        KELM_SIGNED_VIEW(access_value), KELM_FIELD(tod));

KELM_DEFINE_RECORD_TYPE(kelm_ekpop_ipauth_type, asn_ekpop_ipauth_t, ekpop_ipauth_s_t,
                        kelm_site(kSource, 104), kelm_no_quirks, KELM_SIGNED_VIEW(first_number),
                        KELM_SIGNED_VIEW(second_number), KELM_SIGNED_VIEW(third_number));

KELM_DEFINE_RECORD_TYPE(kelm_ekpop_ipauth2_type, asn_ekpop_ipauth2_t, ekpop_ipauth2_s_t,
                        kelm_site(kSource, 115), kelm_no_quirks, KELM_SIGNED_VIEW(first_number),
                        KELM_FIELD(first_addr), KELM_FIELD(second_addr));

KELM_DEFINE_RECORD_TYPE(kelm_ekpop_ipauth2_list_type, asn_ekpop_ipauth2_list,
                        ekpop_ipauth2_list_s_t, kelm_site(kSource, 126), kelm_no_quirks,
                        KELM_LIST(ipauths, ipauth_count));

KELM_DEFINE_RECORD_TYPE(kelm_ekpop_type, asn_ekpop_t, ekpop_s_t, kelm_site(kSource, 137),
                        kelm_no_quirks, KELM_FIELD(pop_name), KELM_FIELD(access_times),
                        KELM_SIGNED_VIEW(first_number), KELM_SIGNED_VIEW(second_number),
                        KELM_SIGNED_VIEW(third_number), KELM_LIST(ipauths, ipauth_count),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekmap_pop_to_pobj_type, asn_ekmap_pop_to_pobj_t, ekmap_pop_to_pobj_s_t,
                        kelm_site(kSource, 148), kelm_no_quirks, KELM_LIST(names, name_count),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekmap_pobj_to_pop_type, asn_ekmap_pobj_to_pop_t, ekmap_pobj_to_pop_s_t,
                        kelm_site(kSource, 159), kelm_no_quirks, KELM_LIST(names, name_count),
                        KELM_FIELD(attrs));
