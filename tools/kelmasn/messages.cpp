#include "messages.h"

#include <cstdio>

#include "color.h"

namespace kelmasn_tool {

int complain(const std::string& message) {
    std::fprintf(stderr, "%s %s\n", paint_program_name(stderr).c_str(), message.c_str());
    return 1;
}

int usage_error(const std::string& message) {
    std::fprintf(stderr, "%s %s (kelmasn --help describes the usage)\n",
                 paint_program_name(stderr).c_str(), message.c_str());
    return 2;
}

} // namespace kelmasn_tool
