// Properties of the tool's BER tree, its DER and BER writers, check and inspect, checked by the
// fuzz target fuzz_ber_tree and replayed by the test suite.
#ifndef KELMASN_FUZZ_BER_TREE_PROPERTIES_H
#define KELMASN_FUZZ_BER_TREE_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// The first byte picks a record type (as check_record_decoding does); the rest is the buffer,
// header included. Whatever parses as an element tree: its DER form parses again, has nothing
// that check reports, and is a fixed point of writing; each BER variant of it (indefinite
// lengths, long lengths, strings cut into pieces) parses and writes back to the same DER. When
// the library decodes the buffer as the picked type, inspect labels every element of the tree and
// the tree fits the type's shape.
// Returns an empty string when every property holds, else what broke.
std::string check_ber_tree(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
