#include "messages.h"

#include <cstdio>

namespace kelmasn_tool {

int complain(const std::string& message) {
    std::fprintf(stderr, "kelmasn: %s\n", message.c_str());
    return 1;
}

int usage_error(const std::string& message) {
    std::fprintf(stderr, "kelmasn: %s (kelmasn --help describes the usage)\n", message.c_str());
    return 2;
}

} // namespace kelmasn_tool
