// Name/value entries and lists, remote log requests and entitlements queries, declared as field
// tables.
#include "namevalue_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/namevalue_asn";

} // namespace

// The nested entries are an array of pointers, each entry in a block of its own; the type
// refers to itself, so a record nests as deep as its input does, within the nesting limit.
KELM_DEFINE_RECORD_TYPE(kelm_namevalue_type, asn_namevalue_t, namevalue_s_t, kelm_site(kSource, 64),
                        kelm_no_quirks, KELM_FIELD(name), KELM_LIST(values, value_count),
                        KELM_LIST(nested, nested_count));

KELM_DEFINE_RECORD_TYPE(kelm_namevalueList_type, asn_namevalueList_t, namevalueList_s_t,
                        kelm_site(kSource, 75), kelm_no_quirks, KELM_LIST(entries, entry_count));

KELM_DEFINE_RECORD_TYPE(kelm_RemoteLogRequest_type, asn_RemoteLogRequest, remote_log_request,
                        kelm_site(kSource, 86), kelm_no_quirks, KELM_FIELD(log_text1),
                        KELM_FIELD(log_text2), KELM_SIGNED_VIEW(log_number1),
                        KELM_SIGNED_VIEW(log_number2), KELM_BYTES(data, data_length));

// Request and reply both store the cut type name "azn_get_entitlem".
KELM_DEFINE_RECORD_TYPE(kelm_azn_get_entitlements_in_type, asn_azn_get_entitlements_in_t,
                        azn_get_entitlements_in_s_t, kelm_site(kSource, 99), kelm_no_quirks,
                        KELM_FIELD(name), KELM_FIELD(attrs), KELM_FIELD(chain));

KELM_DEFINE_RECORD_TYPE(kelm_azn_get_entitlements_out_type, asn_azn_get_entitlements_out_t,
                        azn_get_entitlements_out_s_t, kelm_site(kSource, 111), kelm_no_quirks,
                        KELM_FIELD(attrs), KELM_SIGNED_VIEW(status));
