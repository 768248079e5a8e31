// libFuzzer target: arbitrary bytes through every DER inspection function, with the properties
// of der_inspect_properties.h checked on every call. A broken property aborts, which libFuzzer
// reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "der_inspect_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_der_inspection(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
