// A byte array whose length member is not a uint32_t does not compile.
#include <cstdint>

#include "attrlist_asn.h"

struct short_bytes_s_t {
    uint16_t length;
    unsigned char* data;
};

KELM_MESSAGE_CLASS(asn_short_bytes_t, short_bytes_s_t, kelm_short_bytes_type);
KELM_DEFINE_RECORD_TYPE(kelm_short_bytes_type, asn_short_bytes_t, short_bytes_s_t,
                        kelm_site("test", 1), kelm_no_quirks, KELM_BYTES(data, length));
