// How the type-code entry points turn every exception into a status.
#ifndef KELM_TYPE_CODE_GUARD_INTERNAL_H
#define KELM_TYPE_CODE_GUARD_INTERNAL_H

#include "asn_status.h"

// Runs `call` and returns its status. An exception of the runtime's family is reported on stderr
// in the one-line format and its status returned; any other exception returns 0x10652065 without
// a line, so that nothing thrown crosses the boundary of a type-code entry point.
template <class Call> unsigned int kelm_type_code_guarded(Call call) noexcept {
    try {
        return call();
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    } catch (...) {
        return KELM_ASN_OUT_OF_MEMORY;
    }
}

#endif
