// Properties of decoding arbitrary bytes as a record, checked by the fuzz target fuzz_records and
// replayed by the test suite.
#ifndef KELMASN_FUZZ_RECORD_PROPERTIES_H
#define KELMASN_FUZZ_RECORD_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// The first byte picks the record type (modulo the number of table types plus the three types
// reached by type code); the rest is the buffer, header included. Whatever decodes must free
// cleanly and re-encode; the re-encoding must decode again and encode to the same bytes (a fixed
// point). Returns an empty string when every property holds, else what broke.
std::string check_record_decoding(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
