// Properties of the runtime's value objects over arbitrary bytes, for callers who build their own
// messages with them and read bytes from a peer. The fuzz target fuzz_runtime_objects checks
// them on every input it generates; the test suite replays the seed corpus and the regression
// inputs through the same checks.
#ifndef KELMASN_FUZZ_RUNTIME_OBJECT_PROPERTIES_H
#define KELMASN_FUZZ_RUNTIME_OBJECT_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// Reads `data` with asnread into a fresh object of every primitive class (INTEGER, BOOLEAN,
// NULL, BIT STRING, named bits, OCTET STRING), of every character-string class, and of lists of
// integers and of directory strings, in plain and in secure mode. For each read:
// - the cursor moves by exactly what the remaining count loses, and never past the input;
// - a read that succeeds gives an object that writes itself (asnwrite) with status 0, or with
//   "value missing" when it was read as absent, and what it writes reads back, into a fresh
//   object of the same class, to the same bytes when written again, consuming all of them;
// - a character string that was read gives its value in every code set and in the local code
//   set with status 0, "character not representable" or "code set not accepted", and converts
//   to every code set with one of those statuses, after which it still writes itself.
// The sanitizers of the build catch every leak and every read outside the input.
//
// Returns a description of the first property that did not hold, or "" when all held.
std::string check_runtime_objects(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
