// A list whose count member is neither 32 nor 16 bits wide does not compile.
#include <cstdint>

#include "attrlist_asn.h"

struct narrow_list_s_t {
    uint8_t count;
    value_s_t* values;
};

KELM_MESSAGE_CLASS(asn_narrow_list_t, narrow_list_s_t, kelm_narrow_list_type);
KELM_DEFINE_RECORD_TYPE(kelm_narrow_list_type, asn_narrow_list_t, narrow_list_s_t,
                        kelm_site("test", 1), kelm_no_quirks, KELM_LIST(values, count));
