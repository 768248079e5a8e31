// Descriptions of the records reached by type code: certificate requests (0x103), lists of object
// updates (0x104) and a bare int (0x106). Their hand-written classes (asn_ekobjs.h) encode them;
// these descriptions give their fields to the tool and the tests.
#ifndef KELM_EKOBJS_ASN_H
#define KELM_EKOBJS_ASN_H

#include <cstdint>

#include "asn_record_declare.h"
#include "kelm/ekobjs.h"

// The record of type code 0x106: a bare int, which its description calls "value".
struct kelm_bare_int {
    int32_t value;
};
static_assert(sizeof(kelm_bare_int) == sizeof(int), "a bare int is described as one member");

KELM_RECORD_LAYOUT(ekobj_update_s_t, kelm_ekobj_update_layout);
KELM_RECORD_LAYOUT(cert_request_in, kelm_cert_request_layout);
KELM_RECORD_LAYOUT(ekobj_update_list_s_t, kelm_ekobj_update_list_layout);
KELM_RECORD_LAYOUT(kelm_bare_int, kelm_bare_int_layout);

#endif
