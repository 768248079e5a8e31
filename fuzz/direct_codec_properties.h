// The direct codec of records against the object path on arbitrary bytes, checked by the fuzz
// target fuzz_direct_codec and replayed by the test suite.
#ifndef KELMASN_FUZZ_DIRECT_CODEC_PROPERTIES_H
#define KELMASN_FUZZ_DIRECT_CODEC_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

struct kelm_record_type;

namespace kelmasn_fuzz {

// How two decoded records of `type` differ: their values, pointers followed (texts read no further
// than their blocks), then their bytes with every pointer zeroed (inline nested records
// included), so that padding and untouched fields count too. Empty when they are alike.
std::string decoded_records_differ(const kelm_record_type& type, const unsigned char* reference,
                                   const unsigned char* other);

// The first byte picks the record type as for check_record_decoding (modulo the number of table
// types plus the three types reached by type code; a type-code pick is left to that target), and
// the plain or the local-code-set mode (the quotient's parity); the rest is the buffer, header
// included. The buffer is decoded by the direct codec and by the object path into two records
// that start alike: the statuses, the stderr texts and the records (field by field, and byte by
// byte with pointers aside, or untouched alike) must agree. A record that decodes is then encoded
// both ways, and the bytes, statuses and stderr texts must agree. Returns an empty string when
// every property holds, else what broke.
std::string check_direct_codec(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
