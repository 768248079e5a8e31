// A text kept in an OCTET STRING must be a char* member.
#include "attrlist_asn.h"

KELM_DEFINE_RECORD_TYPE(kelm_test_type, asn_value_t, value_s_t, kelm_site("test", 1),
                        kelm_no_quirks, KELM_OCTET_TEXT(bin_value));
