// libFuzzer target: arbitrary bytes read by every value-object class of the runtime, with the
// properties of runtime_object_properties.h checked on every input. A broken property aborts,
// which libFuzzer reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "runtime_object_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_runtime_objects(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
