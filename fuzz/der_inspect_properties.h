// Properties of the DER inspection functions over arbitrary bytes. The fuzz target
// fuzz_der_inspect checks them on every input it generates; the test suite replays the seed
// corpus and the regression inputs through the same checks.
#ifndef KELMASN_FUZZ_DER_INSPECT_PROPERTIES_H
#define KELMASN_FUZZ_DER_INSPECT_PROPERTIES_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace kelmasn_fuzz {

// Walks a private copy of `data` element by element with kelmAsnGetType and kelmAsnGetLength,
// stepping into constructed elements and trying every contents function on the contents of each
// primitive one (BIT STRING last, as it changes its input), with check_EOC at every position.
// Every call is compared with an independent model of its documented result, and must keep
// these properties: the cursor never passes the end of the input; the remaining count never
// grows; a failing call leaves the cursor, the count and every allocated output as they were;
// only kelmAsnGetBitstringValue writes to the input. Every output is freed.
//
// Returns a description of the first property that did not hold, or "" when all held.
std::string check_der_inspection(const uint8_t* data, size_t size);

} // namespace kelmasn_fuzz

#endif
