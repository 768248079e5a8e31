// The version of the library, as the build was configured.
#include "kelm/kelm_entry.h"
#include "kelm/kelmasn_version.h"

const char* kelmasn_library_version() {
    return KELMASN_VERSION_STRING;
}
