// A buffer's element tree with each element labelled by the field of the record it carries.
#ifndef KELMASN_TOOL_INSPECT_H
#define KELMASN_TOOL_INSPECT_H

#include <string>
#include <vector>

#include "asn_record.h"
#include "ber_tree.h"

namespace kelmasn_tool {

// Appends one line per element of `tree` (the record's element, read from `bytes`) to `out`,
// labelled with the field path of the record `record` of `type` that the library decoded from
// it: "attrs[2].values[0].str_value". Absent optional records get a line of their own. Returns
// false when the tree and the record do not match (then the lines stop there and `error` says
// where).
bool inspect_record(const std::vector<unsigned char>& bytes, const BerNode& tree,
                    const kelm_record_type& type, const void* record, std::string& out,
                    std::string& error);

// The contents lengths of the OCTET STRINGs that the record's texts kept with their NUL came from,
// in the order of the record's fields (see inspect_record for the arguments). False when the
// tree and the record do not match.
bool octet_text_lengths(const std::vector<unsigned char>& bytes, const BerNode& tree,
                        const kelm_record_type& type, const void* record,
                        std::vector<size_t>& lengths);

// Where `tree` stops fitting the shape of record type `type` (its fields' elements in order, lists,
// slots and optional records): "offset N: path: what was expected, what the buffer has". Empty
// when the whole tree fits.
std::string first_mismatch(const std::vector<unsigned char>& bytes, const BerNode& tree,
                           const kelm_record_type& type);

// One line per element of `tree`, without labels.
void inspect_untyped(const std::vector<unsigned char>& bytes, const BerNode& tree,
                     std::string& out);

} // namespace kelmasn_tool

#endif
