// libFuzzer target: arbitrary bytes decoded as every record type (the first byte picks it), with
// the properties of record_properties.h checked on every input. A broken property aborts, which
// libFuzzer reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "record_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_record_decoding(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
