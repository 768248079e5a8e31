// Properties of the tool's check and inspect (their findings and labelled trees), checked by the
// fuzz target fuzz_check_inspect and replayed by the test suite.
#ifndef KELMASN_FUZZ_CHECK_INSPECT_PROPERTIES_H
#define KELMASN_FUZZ_CHECK_INSPECT_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// The first byte picks a record type (as check_ber_tree does); the rest is the buffer, header
// included. On any bytes: check's findings come in the order of the buffer, within it, and carry
// a field path only for an element that the type's shape labels; inspect by shape writes one line
// per element and per absent optional part, and labels no element past the first that does not
// fit. When the library decodes the buffer as the picked type: check finds nothing in the
// library's encoding of the record, nor any difference from it; inspect labels that encoding by
// the shape alone exactly as it does through the decoded record; and each BER variant of it
// (every constructed element with an indefinite length, every length in the long form, strings
// cut into pieces of one octet) gives exactly the findings of that variant, each with its field
// path, and decodes back to the same encoding.
// Returns an empty string when every property holds, else what broke.
std::string check_check_and_inspect(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
