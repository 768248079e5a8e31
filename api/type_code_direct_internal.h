// The direct codec of the records reached by type code: certificate requests (0x103), lists of
// object updates (0x104) and a bare int (0x106), written and read straight between the record
// and the DER, beside their message classes (asn_ekobjs.h, and the bare kelm_asn_integer), which
// stay the reference. As for the typed records (asn_record_direct.h), the direct codec does what
// it fully understands, leaves the rest to the message classes with the record as it came and
// nothing allocated, and fails on exhausted memory as the message classes fail at the same
// allocation.
#ifndef KELM_TYPE_CODE_DIRECT_INTERNAL_H
#define KELM_TYPE_CODE_DIRECT_INTERNAL_H

#include "kelm_asn_buffer.h"

// One call of main_func for `type` (0x103, 0x104 or 0x106) with `operation` 0 (encode) or any
// other value but 2 (decode). Returns false, having changed nothing, when the message class must
// do the call; else true with its result in `status`. Exceptions of the runtime's family are
// thrown, for the caller to report as it reports the message classes' own.
bool kelm_type_code_direct(int operation, int version, void* record, unsigned int type,
                           kelm_asn_buffer_t& buffer, unsigned int& status);

#endif
