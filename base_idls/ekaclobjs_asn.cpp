// The authorization-database header record, the external-authentication texts, extended
// attributes and credential modifications, declared as field tables.
#include "ekaclobjs_asn.h"

#include <cstddef>

namespace {

using kind = kelm_field_kind;

// The source name that this module's memory exceptions report.
constexpr const char kSource[] = "base_idls/ekaclobjs_asn";

const kelm_record_field ekauthzn_db_fields[] = {
    {kind::unsigned_integer, "number1", offsetof(ekauthzn_db_s_t, number1), 0, 0, nullptr},
    {kind::unsigned_integer, "number2", offsetof(ekauthzn_db_s_t, number2), 0, 0, nullptr},
    {kind::unsigned_integer, "number3", offsetof(ekauthzn_db_s_t, number3), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(ekauthzn_db_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

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

const kelm_record_field ekextern_auth_fields[] = {
    {kind::text, "string1", offsetof(ekextern_auth_s_t, string1), 0, 0, nullptr},
    {kind::text, "string2", offsetof(ekextern_auth_s_t, string2), 0, 0, nullptr},
    {kind::text, "string3", offsetof(ekextern_auth_s_t, string3), 0, 0, nullptr},
    {kind::text, "string4", offsetof(ekextern_auth_s_t, string4), 0, 0, nullptr},
};

const kelm_record_field ekattr_fields[] = {
    {kind::text, "name", offsetof(ekattr_s_t, name), 0, 0, nullptr},
    {kind::text_list, "values", offsetof(ekattr_s_t, values), offsetof(ekattr_s_t, value_count), 0,
     nullptr},
};

const kelm_record_field ekextattr_fields[] = {
    {kind::record_list, "ekattrs", offsetof(ekextattr_s_t, ekattrs),
     offsetof(ekextattr_s_t, ekattr_count), 0, &kelm_ekattr_type},
    {kind::record, "attrs", offsetof(ekextattr_s_t, attrs), 0, 0, &kelm_attrlist_type},
};

// Kept for compatibility with existing records: the four fields are cleared before decoding,
// not the bytes between the count and the array pointer.
void clear_ekextattr(void* record) {
    auto* extattr = static_cast<ekextattr_s_t*>(record);
    extattr->ekattr_count = 0;
    extattr->ekattrs = nullptr;
    extattr->attrs.attr_count = 0;
    extattr->attrs.attrs = nullptr;
}

const kelm_record_field azn_creds_mod_in_fields[] = {
    {kind::text, "string1", offsetof(azn_creds_mod_in_s_t, string1), 0, 0, nullptr},
    {kind::record, "attrs", offsetof(azn_creds_mod_in_s_t, attrs), 0, 0, &kelm_attrlist_type},
    {kind::record, "chain", offsetof(azn_creds_mod_in_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
};

const kelm_record_field azn_creds_mod_out_fields[] = {
    {kind::record, "chain", offsetof(azn_creds_mod_out_s_t, chain), 0, 0,
     &kelm_ekprincipal_chain_type},
    {kind::unsigned_integer, "result", offsetof(azn_creds_mod_out_s_t, result), 0, 0, nullptr},
};

} // namespace

// Every type of this module ignores the statuses of its elements' copies: a text that cannot be
// allocated while decoding is left null and the decode still returns 0.

const kelm_record_type kelm_ekauthzn_db_type = {"asn_ekauthzn_db_t",
                                                "ekauthzn_db_s_t",
                                                sizeof(ekauthzn_db_s_t),
                                                ekauthzn_db_fields,
                                                kelm_field_count(ekauthzn_db_fields),
                                                &kelm_record_ops_for<asn_ekauthzn_db_t>,
                                                kSource,
                                                __LINE__,
                                                KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                                clear_ekauthzn_db};

const kelm_record_type kelm_ekextern_auth_type = {"asn_ekextern_auth_t",
                                                  "ekextern_auth_s_t",
                                                  sizeof(ekextern_auth_s_t),
                                                  ekextern_auth_fields,
                                                  kelm_field_count(ekextern_auth_fields),
                                                  &kelm_record_ops_for<asn_ekextern_auth_t>,
                                                  kSource,
                                                  __LINE__,
                                                  KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                                  nullptr};

// Existing callers match the lines of the list failures: an entry that cannot be added while
// encoding (37), the array that cannot be allocated (56) and a missing child (62) while decoding.
const kelm_record_type kelm_ekattr_type = {"asn_ekattr_t",
                                           "ekattr_s_t",
                                           sizeof(ekattr_s_t),
                                           ekattr_fields,
                                           kelm_field_count(ekattr_fields),
                                           &kelm_record_ops_for<asn_ekattr_t>,
                                           kSource,
                                           __LINE__,
                                           KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                           nullptr,
                                           {37, 56, 62}};

// As for ekattr_t, with the lines 208, 227 and 233.
const kelm_record_type kelm_ekextattr_type = {"asn_ekextattr_t",
                                              "ekextattr_s_t",
                                              sizeof(ekextattr_s_t),
                                              ekextattr_fields,
                                              kelm_field_count(ekextattr_fields),
                                              &kelm_record_ops_for<asn_ekextattr_t>,
                                              kSource,
                                              __LINE__,
                                              KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                              clear_ekextattr,
                                              {208, 227, 233}};

// Stored type names are cut to 16 characters: "azn_creds_mod_in" and "azn_creds_mod_ou".
const kelm_record_type kelm_azn_creds_mod_in_type = {"asn_azn_creds_mod_in_t",
                                                     "azn_creds_mod_in_s_t",
                                                     sizeof(azn_creds_mod_in_s_t),
                                                     azn_creds_mod_in_fields,
                                                     kelm_field_count(azn_creds_mod_in_fields),
                                                     &kelm_record_ops_for<asn_azn_creds_mod_in_t>,
                                                     kSource,
                                                     __LINE__,
                                                     KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                                     nullptr};

const kelm_record_type kelm_azn_creds_mod_out_type = {"asn_azn_creds_mod_out_t",
                                                      "azn_creds_mod_out_s_t",
                                                      sizeof(azn_creds_mod_out_s_t),
                                                      azn_creds_mod_out_fields,
                                                      kelm_field_count(azn_creds_mod_out_fields),
                                                      &kelm_record_ops_for<asn_azn_creds_mod_out_t>,
                                                      kSource,
                                                      __LINE__,
                                                      KELM_RECORD_IGNORES_ELEMENT_STATUS,
                                                      nullptr};
