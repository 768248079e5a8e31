/// \file
/// Entry points that do not depend on a record type: the header query and the buffer utilities.
///
/// Status codes: 0 success; 0x10652065 out of memory; 0x10652196 no valid header of the requested
/// version; any other code of the 0x1065xxxx family as the runtime reports it.
#ifndef KELM_ENTRY_H
#define KELM_ENTRY_H

#include "asn_export.h"
#include "kelm_asn_buffer.h"

/// Kept for compatibility with existing callers: reports whether `buffer` carries a usable header,
/// not its version. Returns 0 and sets `flag` to 0 when bytes 2 and 3 are AC DC, the length is
/// above 4 and the version byte is non-zero; otherwise sets `flag` to 1 and returns 0x10652196.
KELM_API unsigned int kelmasn_version(const kelm_asn_buffer_t& buffer, unsigned int& flag);

/// Deep copy of `source` into `destination` (bytes malloc'ed; release with kelm_asn_buffer_free).
/// An empty or null source gives an empty copy. Kept for compatibility: when the allocation fails
/// `status` is 0x10652065 and `destination.length` keeps the source's length while its data stays
/// null, so callers test the status or the data, not the length.
KELM_API void kelm_asn_buffer_copy(const kelm_asn_buffer_t& source, kelm_asn_buffer_t& destination,
                                   unsigned int& status);

/// Releases the bytes of `buffer` (when not null). Neither field is reset.
KELM_API void kelm_asn_buffer_free(kelm_asn_buffer_t& buffer);

/// The version of the loaded library, "MAJOR.MINOR.PATCH": KELMASN_VERSION_STRING of the
/// kelmasn_version.h it was built with. A program compares it with the KELMASN_VERSION_* macros
/// of the headers it was compiled against. The text is static; the caller does not release it.
KELM_API const char* kelmasn_library_version();

#endif
