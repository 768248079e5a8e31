// The authorization-database header record, the external-authentication texts, extended
// attributes and credential modifications, declared as field tables.
#include "ekaclobjs_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/ekaclobjs_asn";

// Kept for compatibility with existing records: only the three numbers and the attribute list's
// two fields are cleared before decoding, not the four bytes between them.
void clear_ekauthzn_db(void* record) {
    auto* db = static_cast<ekauthzn_db_s_t*>(record);
    db->number1 = 0;
    db->number2 = 0;
    db->number3 = 0;
    db->attrs.attr_count = 0;
    db->attrs.attrs = nullptr;
}

// Kept for compatibility with existing records: the four fields are cleared before decoding,
// not the bytes between the count and the array pointer.
void clear_ekextattr(void* record) {
    auto* extattr = static_cast<ekextattr_s_t*>(record);
    extattr->ekattr_count = 0;
    extattr->ekattrs = nullptr;
    extattr->attrs.attr_count = 0;
    extattr->attrs.attrs = nullptr;
}

} // namespace

// Every type of this module ignores the statuses of its elements' copies: a text that cannot be
// allocated while decoding is left null and the decode still returns 0.
KELM_DEFINE_RECORD_TYPE(kelm_ekauthzn_db_type, asn_ekauthzn_db_t, ekauthzn_db_s_t,
                        kelm_site(kSource, 86),
                        kelm_no_quirks.ignores_element_status().cleared_by(clear_ekauthzn_db),
                        KELM_SIGNED_VIEW(number1), KELM_SIGNED_VIEW(number2),
                        KELM_SIGNED_VIEW(number3), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekextern_auth_type, asn_ekextern_auth_t, ekextern_auth_s_t,
                        kelm_site(kSource, 97), kelm_no_quirks.ignores_element_status(),
                        KELM_FIELD(string1), KELM_FIELD(string2), KELM_FIELD(string3),
                        KELM_FIELD(string4));

// Existing callers match the lines of the list failures: an entry that cannot be added while
// encoding (37), the array that cannot be allocated (56) and a missing child (62) while decoding.
KELM_DEFINE_RECORD_TYPE(kelm_ekattr_type, asn_ekattr_t, ekattr_s_t, kelm_site(kSource, 110),
                        kelm_no_quirks.ignores_element_status().list_failures_at(37, 56, 62),
                        KELM_FIELD(name), KELM_LIST(values, value_count));

// As for ekattr_t, with the lines 208, 227 and 233.
KELM_DEFINE_RECORD_TYPE(kelm_ekextattr_type, asn_ekextattr_t, ekextattr_s_t,
                        kelm_site(kSource, 123),
                        kelm_no_quirks.ignores_element_status()
                            .cleared_by(clear_ekextattr)
                            .list_failures_at(208, 227, 233),
                        KELM_LIST(ekattrs, ekattr_count), KELM_FIELD(attrs));

// Stored type names are cut to 16 characters: "azn_creds_mod_in" and "azn_creds_mod_ou".
KELM_DEFINE_RECORD_TYPE(kelm_azn_creds_mod_in_type, asn_azn_creds_mod_in_t, azn_creds_mod_in_s_t,
                        kelm_site(kSource, 136), kelm_no_quirks.ignores_element_status(),
                        KELM_FIELD(string1), KELM_FIELD(attrs), KELM_FIELD(chain));

KELM_DEFINE_RECORD_TYPE(kelm_azn_creds_mod_out_type, asn_azn_creds_mod_out_t, azn_creds_mod_out_s_t,
                        kelm_site(kSource, 147), kelm_no_quirks.ignores_element_status(),
                        KELM_FIELD(chain), KELM_SIGNED_VIEW(result));
