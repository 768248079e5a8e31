// Identifiers, typed values, attributes and attribute lists, declared as field tables.
#include "attrlist_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/attrlist_asn.cpp";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_uuid_type, asn_uuid_t, uuid_t, kelm_site(kSource, 47), kelm_no_quirks,
                        KELM_SIGNED_VIEW(time_low), KELM_FIELD(time_mid),
                        KELM_FIELD(time_hi_and_version), KELM_FIELD(clock_seq_hi_and_reserved),
                        KELM_FIELD(clock_seq_low), KELM_FIELD(node));

KELM_DEFINE_RECORD_TYPE(kelm_value_type, asn_value_t, value_s_t, kelm_site(kSource, 58),
                        kelm_no_quirks, KELM_SIGNED_VIEW(value_type), KELM_FIELD(str_value),
                        KELM_BYTES(bin_value, bin_length));

KELM_DEFINE_RECORD_TYPE(kelm_attr_type, asn_attr_t, attr_s_t, kelm_site(kSource, 69),
                        kelm_no_quirks, KELM_FIELD(name), KELM_LIST(values, value_count));

KELM_DEFINE_RECORD_TYPE(kelm_attrlist_type, asn_attrlist_t, attrlist_s_t, kelm_site(kSource, 80),
                        kelm_no_quirks, KELM_LIST(attrs, attr_count));
