// libFuzzer target: arbitrary bytes through the tool's BER tree, its writers, check and inspect,
// with the properties of ber_tree_properties.h checked on every input. A broken property aborts,
// which libFuzzer reports as a crash and saves the input.
#include <cstdio>
#include <cstdlib>

#include "ber_tree_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string violation = kelmasn_fuzz::check_ber_tree(data, size);
    if (!violation.empty()) {
        std::fprintf(stderr, "property broken: %s\n", violation.c_str());
        std::abort();
    }
    return 0;
}
