// A member of a type that has no wire form does not compile.
#include "attrlist_asn.h"

struct measured_s_t {
    double weight;
};

KELM_MESSAGE_CLASS(asn_measured_t, measured_s_t, kelm_measured_type);
KELM_DEFINE_RECORD_TYPE(kelm_measured_type, asn_measured_t, measured_s_t, kelm_site("test", 1),
                        kelm_no_quirks, KELM_FIELD(weight));
