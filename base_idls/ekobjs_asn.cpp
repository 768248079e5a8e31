// The records reached by type code, described field by field. Each SEQUENCE starts with the
// version element INTEGER 1; texts travel in OCTET STRINGs together with their NUL.
#include "ekobjs_asn.h"

// ekobj_update ::= SEQUENCE { INTEGER (1), INTEGER, OCTET STRING, INTEGER }
KELM_DEFINE_RECORD_LAYOUT(kelm_ekobj_update_layout, ekobj_update_s_t, "kelm_asn_ekobj_update_t",
                          "ekobj_update_s_t", kelm_no_quirks.version_element(), KELM_FIELD(number1),
                          KELM_OCTET_TEXT(text), KELM_FIELD(number2));

// cert_request ::= SEQUENCE { INTEGER (1), OCTET STRING, OCTET STRING, OCTET STRING OPTIONAL }
KELM_DEFINE_RECORD_LAYOUT(kelm_cert_request_layout, cert_request_in, "kelm_asn_cert_request_in",
                          "cert_request_in", kelm_no_quirks.version_element(),
                          KELM_OCTET_TEXT(string1), KELM_OCTET_TEXT(string2),
                          KELM_BYTES(body, body_length));

// update_list ::= SEQUENCE { INTEGER (1), SEQUENCE OF ekobj_update }
KELM_DEFINE_RECORD_LAYOUT(kelm_ekobj_update_list_layout, ekobj_update_list_s_t,
                          "kelm_asn_ekobj_update_list_t", "ekobj_update_list_s_t",
                          kelm_no_quirks.version_element(), KELM_LIST(updates, count));

// A bare INTEGER, not wrapped in a SEQUENCE.
KELM_DEFINE_RECORD_LAYOUT(kelm_bare_int_layout, kelm_bare_int, "kelm_asn_integer", "int",
                          kelm_no_quirks.bare_element(), KELM_FIELD(value));
