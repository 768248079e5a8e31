// libFuzzer target: arbitrary bytes decoded, and what decodes encoded, by the direct codec and by
// the object path side by side (the first byte picks the type and the mode); any difference
// aborts, which libFuzzer reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "direct_codec_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_direct_codec(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
