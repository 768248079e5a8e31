// A buffer's element tree with each element labelled by the field of the record it carries.
#ifndef KELMASN_TOOL_INSPECT_H
#define KELMASN_TOOL_INSPECT_H

#include <cstddef>
#include <map>
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

// What the shape of a record type says about an element tree, read as far as it fits: the field
// path of each element it reached and fitted, the optional parts it found absent, and where it
// stopped fitting.
struct ShapeLabels {
    std::map<const BerNode*, std::string> paths; // into the tree given to label_by_shape
    struct Absent {
        const BerNode* parent; // the SEQUENCE that leaves it out
        size_t before;         // the index of the child it would stand before
        std::string path;
    };
    std::vector<Absent> absent;
    std::string mismatch; // as first_mismatch says it; empty when the whole tree fits
};

// The type's fields walked over `tree` in order (its fields' elements, lists, slots and optional
// records), without the library: every element up to the first that does not fit is labelled.
ShapeLabels label_by_shape(const BerNode& tree, const kelm_record_type& type);

// One line per element of `tree` (read from `bytes`), labelled where `labels` has a path for it
// and shown untyped elsewhere, with a line for each absent optional part.
void inspect_by_shape(const std::vector<unsigned char>& bytes, const BerNode& tree,
                      const ShapeLabels& labels, std::string& out);

// "SEQUENCE, length 12", "[CONTEXT 3] constructed, length indefinite" and the like.
std::string describe(const BerNode& node);

// One line per element of `tree`, without labels.
void inspect_untyped(const std::vector<unsigned char>& bytes, const BerNode& tree,
                     std::string& out);

} // namespace kelmasn_tool

#endif
