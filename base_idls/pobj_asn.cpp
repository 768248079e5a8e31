// Protected-object spaces, protected objects and their internal form, declared as field tables.
#include "pobj_asn.h"

#include "asn_record_declare.h"

namespace {

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/pobj_asn.cpp";

} // namespace

KELM_DEFINE_RECORD_TYPE(kelm_pobjspace_type, asn_pobjspace_t, pobjspace_s_t, kelm_site(kSource, 38),
                        kelm_no_quirks, KELM_LIST(names, name_count), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_pobj_type, asn_pobj_t, pobj_s_t, kelm_site(kSource, 49),
                        kelm_no_quirks, KELM_SIGNED_VIEW(first_number),
                        KELM_SIGNED_VIEW(second_number), KELM_FIELD(name), KELM_FIELD(attrs));

// The whole protected object is one nested SEQUENCE element.
KELM_DEFINE_RECORD_TYPE(kelm_azn_internal_pobj_type, asn_azn_internal_pobj_t, azn_internal_pobj_s_t,
                        kelm_site(kSource, 60), kelm_no_quirks, KELM_FIELD(pobj),
                        KELM_FIELD(internal_name));
