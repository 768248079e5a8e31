// The library's code-set converters on the command line, for `kelmasn str`.
#ifndef KELMASN_TOOL_CODE_SETS_H
#define KELMASN_TOOL_CODE_SETS_H

#include <string>
#include <vector>

namespace kelmasn_tool {

// The code sets by their names on the command line: ia5, t61, bmp, ucs4, utf8, printable,
// visible.
const std::vector<std::string>& code_set_names();

// Converts `in`, octets of code set `from`, into code set `to` through the library's converters
// (through IA5 or BMP where no converter goes directly). Returns 0 or the converter's status;
// `error` names a code set that does not exist.
unsigned int convert_text(const std::string& from, const std::string& to, const std::string& in,
                          std::string& out, std::string& error);

} // namespace kelmasn_tool

#endif
