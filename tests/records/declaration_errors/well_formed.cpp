// The control case: the same forms, declared correctly, compile.
#include <cstdint>

#include "attrlist_asn.h"

struct well_formed_s_t {
    int32_t number;
    uint32_t flags;
    uint16_t count;
    value_s_t* values;
    uint32_t length;
    unsigned char* data;
    char* text;
};

KELM_MESSAGE_CLASS(asn_well_formed_t, well_formed_s_t, kelm_well_formed_type);
KELM_DEFINE_RECORD_TYPE(kelm_well_formed_type, asn_well_formed_t, well_formed_s_t,
                        kelm_site("test", 1), kelm_no_quirks, KELM_FIELD(number),
                        KELM_SIGNED_VIEW(flags), KELM_LIST(values, count),
                        KELM_BYTES(data, length), KELM_OCTET_TEXT(text));
