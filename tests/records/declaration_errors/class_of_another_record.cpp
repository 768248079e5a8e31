// A record type whose message class serves another record does not compile.
#include "attrlist_asn.h"

KELM_DEFINE_RECORD_TYPE(kelm_test_type, asn_attr_t, value_s_t, kelm_site("test", 1),
                        kelm_no_quirks, KELM_FIELD(str_value));
