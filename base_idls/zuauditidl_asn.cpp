// Audit events, their elements and attributes, declared as field tables. An element's table
// names its own type for the nested elements: the list builds those objects only as entries
// arrive, and the runtime's nesting limit bounds how deep a decode goes.
#include "zuauditidl_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/zuauditidl_asn.cpp";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_zuauditattribute_type, asn_zuauditattribute_t, zuauditattribute_s_t,
                        kelm_site(kSource, 47), kelm_no_quirks, KELM_FIELD(name),
                        KELM_BYTES(value, value_length));

KELM_DEFINE_RECORD_TYPE(kelm_zuauditelement_type, asn_zuauditelement_t, zuauditelement_s_t,
                        kelm_site(kSource, 58), kelm_no_quirks, KELM_FIELD(name),
                        KELM_BYTES(value, value_length), KELM_LIST(attrs, attr_count),
                        KELM_LIST(elements, element_count));

KELM_DEFINE_RECORD_TYPE(kelm_zuauditevent_type, asn_zuauditevent_t, zuauditevent_s_t,
                        kelm_site(kSource, 69), kelm_no_quirks, KELM_SIGNED_VIEW(event_number1),
                        KELM_FIELD(event_text), KELM_SIGNED_VIEW(event_number2),
                        KELM_LIST(elements, element_count));
