// Security identifiers, privilege-attribute identities, principals, principal chains and the
// database fetch request and reply, declared as field tables.
#include "principal_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/principal_asn";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_sec_id_type, asn_sec_id_t, sec_id_t, kelm_site(kSource, 67),
                        kelm_no_quirks, KELM_FIELD(uuid), KELM_FIELD(name));

// The only 16-bit count of the library's records: it wraps past 65535 entries while the array
// holds them all.
KELM_DEFINE_RECORD_TYPE(kelm_sec_id_pa_type, asn_sec_id_pa_t, sec_id_pa_t, kelm_site(kSource, 78),
                        kelm_no_quirks, KELM_FIELD(id), KELM_LIST(groups, group_count));

// An absent identity is recognised on input by the INTEGER that follows the first number.
KELM_DEFINE_RECORD_TYPE(kelm_ekprincipal_type, asn_ekprincipal_t, ekprincipal_s_t,
                        kelm_site(kSource, 89), kelm_no_quirks, KELM_SIGNED_VIEW(first_number),
                        KELM_FIELD(pa), KELM_SIGNED_VIEW(second_number), KELM_FIELD(attrs));

// The principals are an array of pointers, each principal in a block of its own.
KELM_DEFINE_RECORD_TYPE(kelm_ekprincipal_chain_type, asn_ekprincipal_chain_t, ekprincipal_chain_s_t,
                        kelm_site(kSource, 100), kelm_no_quirks, KELM_FIELD(chain_name),
                        KELM_LIST(principals, principal_count));

KELM_DEFINE_RECORD_TYPE(kelm_dbr_get_db_in_type, asn_dbr_get_db_in_t, dbr_get_db_in_s_t,
                        kelm_site(kSource, 111), kelm_no_quirks, KELM_SIGNED_VIEW(request_number));

KELM_DEFINE_RECORD_TYPE(kelm_dbr_get_db_out_type, asn_dbr_get_db_out_t, dbr_get_db_out_s_t,
                        kelm_site(kSource, 122), kelm_no_quirks, KELM_SIGNED_VIEW(first_number),
                        KELM_SIGNED_VIEW(second_number), KELM_SIGNED_VIEW(third_number));
