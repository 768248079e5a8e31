// The type codes of the records reached by type code, as the tool's TYPE argument gives them.
#ifndef KELMASN_TOOL_TYPE_CODE_RECORDS_H
#define KELMASN_TOOL_TYPE_CODE_RECORDS_H

#include <string>

namespace kelmasn_tool {

// True when `name` is a number (decimal, or hex with 0x); `code` receives it.
bool parse_type_code(const std::string& name, unsigned int& code);

} // namespace kelmasn_tool

#endif
