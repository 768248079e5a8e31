// libFuzzer target: arbitrary bytes through the tool's check and inspect,
// with the properties of check_inspect_properties.h checked on every input. A broken property
// aborts, which libFuzzer reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "check_inspect_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_check_and_inspect(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
