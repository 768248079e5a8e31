// An unsigned 32-bit member declared without saying how it travels does not compile.
#include "attrlist_asn.h"

KELM_DEFINE_RECORD_TYPE(kelm_test_type, asn_value_t, value_s_t, kelm_site("test", 1),
                        kelm_no_quirks, KELM_FIELD(value_type));
