// The tool's messages: one line on standard error for a refused input or a usage error.
#ifndef KELMASN_TOOL_MESSAGES_H
#define KELMASN_TOOL_MESSAGES_H

#include <string>

namespace kelmasn_tool {

// "kelmasn: MESSAGE" on standard error; returns exit status 1, the input refused.
int complain(const std::string& message);

// A usage error: one line on stderr, exit status 2.
int usage_error(const std::string& message);

} // namespace kelmasn_tool

#endif
