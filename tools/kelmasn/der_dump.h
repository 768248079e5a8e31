// Walks BER/DER bytes with the library's inspection functions and prints one line per element.
#ifndef KELMASN_TOOL_DER_DUMP_H
#define KELMASN_TOOL_DER_DUMP_H

#include <cstddef>
#include <string>
#include <vector>

namespace kelmasn_tool {

// Where and why a walk stopped.
struct DumpError {
    size_t offset;
    std::string reason;
};

// Appends the element tree of `bytes` to `out`, one line per element indented by depth. A
// buffer that starts with the four-byte header (04, version, AC, DC) gets a line of its own.
// Returns false, with `error` filled, on bytes that are not a well-formed element sequence; what
// was printed up to that point stays in `out`.
bool dump_der(std::vector<unsigned char> bytes, std::string& out, DumpError& error);

// As dump_der, for bytes that hold elements only: no header is looked for, so an OCTET STRING
// whose contents start with AC DC (04 nn AC DC ...) is the element it is.
bool dump_elements(std::vector<unsigned char> bytes, std::string& out, DumpError& error);

// Sets `end` to the offset just past the element that starts at `offset` of `bytes`, its
// children (definite or indefinite length) walked. Returns false, with `error` filled, when the
// bytes there are not one well-formed element.
bool element_end(std::vector<unsigned char> bytes, size_t offset, size_t& end, DumpError& error);

} // namespace kelmasn_tool

#endif
