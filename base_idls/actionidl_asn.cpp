// Actions, action groups and the set of action groups, declared as field tables. The slot arrays
// write a NULL filler (05 00) for each empty slot before a filled one and nothing after the last
// filled slot; on input only the first 32 entries are read.
#include "actionidl_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/actionidl_asn.cpp";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_ekaction_type, asn_ekaction_t, ekaction_s_t, kelm_site(kSource, 44),
                        kelm_no_quirks, KELM_SIGNED_VIEW(action_number), KELM_FIELD(action_name),
                        KELM_FIELD(action_label), KELM_FIELD(action_text),
                        KELM_SIGNED_VIEW(first_number), KELM_SIGNED_VIEW(second_number),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekaction_group_type, asn_ekaction_group_t, ekaction_group_s_t,
                        kelm_site(kSource, 55), kelm_no_quirks, KELM_FIELD(group_name),
                        KELM_FIELD(actions), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_ekaction_groups_type, asn_ekaction_groups_t, ekaction_groups_s_t,
                        kelm_site(kSource, 66), kelm_no_quirks, KELM_FIELD(groups),
                        KELM_FIELD(attrs));
