// Properties of the kelmasn tool's element walk over arbitrary bytes. The fuzz target
// fuzz_der_walk checks them on every input it generates; the test suite replays the seed corpus
// and the regression inputs through the same checks.
#ifndef KELMASN_FUZZ_DER_WALK_PROPERTIES_H
#define KELMASN_FUZZ_DER_WALK_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// Walks `data` twice with kelmasn_tool::dump_der. The walk must not crash, and must give the
// same result, text and error both times. Its text is whole lines, each starting with the offset
// of what it shows, offsets inside the input and increasing from line to line; each element line
// shows the class, tag number, form and length that the octets at its offset encode, read here
// independently of the library by X.690. A rejection names an offset inside the input (or just
// past it) and a reason.
//
// Returns a description of the first property that did not hold, or "" when all held.
std::string check_der_walk(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
