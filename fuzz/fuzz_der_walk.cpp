// libFuzzer target: arbitrary bytes through the kelmasn tool's element walk, with the properties
// of der_walk_properties.h checked on every input. A broken property aborts, which libFuzzer
// reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "der_walk_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_der_walk(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
