// What keeps a buffer from being what the library writes, each finding with its offset and, when
// the record type is known, the field path of the element.
#ifndef KELMASN_TOOL_CHECK_H
#define KELMASN_TOOL_CHECK_H

#include <cstddef>
#include <string>
#include <vector>

#include "asn_record.h"

namespace kelmasn_tool {

struct CheckFinding {
    size_t offset;
    std::string path; // empty where no field is known
    std::string what;

    // "offset 6: attrs[0].name: string in constructed form", or without the path.
    std::string line() const;
};

// The header (missing, or not of four octets), the BER-only forms of the elements (indefinite
// lengths, lengths not in the fewest octets, strings in constructed form) and bytes after the
// record, in the order of the buffer; with `type` (null: none) each element's field path as far as
// the elements fit the type's shape. False with `error` naming the offset when the bytes are not
// an element tree.
bool find_ber_forms(const std::vector<unsigned char>& bytes, const kelm_record_type* type,
                    std::vector<CheckFinding>& findings, std::string& error);

// The first element where `bytes` differs from `library`, the library's encoding of the record
// that `bytes` decodes to as `type`: another element, another value's form, or an element that the
// library leaves out (a value equal to its default) or writes in addition. Nothing when the two
// are the same. False with `error` when either is not an element tree.
bool find_library_difference(const std::vector<unsigned char>& bytes,
                             const std::vector<unsigned char>& library,
                             const kelm_record_type& type, std::vector<CheckFinding>& findings,
                             std::string& error);

} // namespace kelmasn_tool

#endif
