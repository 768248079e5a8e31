// BER elements as a tree, and their encodings written back in chosen forms: the DER form (definite
// lengths in the fewest octets, strings primitive) or the BER variants that decoders must accept
// or refuse (indefinite lengths, long length forms, strings cut into constructed pieces).
#ifndef KELMASN_TOOL_BER_TREE_H
#define KELMASN_TOOL_BER_TREE_H

#include <cstddef>
#include <string>
#include <vector>

namespace kelmasn_tool {

struct BerNode {
    size_t offset = 0;                     // of the identifier octets
    std::vector<unsigned char> identifier; // as encoded
    unsigned int tag_class = 0;            // 0 universal, 1 application, 2 context, 3 private
    unsigned long tag = 0;
    bool constructed = false;
    bool indefinite = false;
    size_t length_octets = 0;      // as encoded, the first included
    bool minimal_length = true;    // a definite length in the fewest octets
    size_t contents = 0;           // offset of the contents octets
    size_t contents_length = 0;    // without the end-of-contents of an indefinite length
    size_t end = 0;                // offset just past the element
    std::vector<BerNode> children; // of a constructed element
};

// Reads the element at `offset` of `bytes` (nesting at most `max_depth` levels). Returns false
// with `error` naming the offset and the reason on bytes that are not one whole element.
bool parse_ber(const std::vector<unsigned char>& bytes, size_t offset, unsigned int max_depth,
               BerNode& node, std::string& error);

// How write_ber writes an element.
struct BerForm {
    bool indefinite = false;        // every constructed element with an indefinite length
    bool long_lengths = false;      // every definite length in the four-octet long form
    size_t constructed_strings = 0; // universal strings longer than this many octets cut into
                                    // constructed pieces of this size (0: primitive)
};

// Appends the element, its strings' constructed pieces joined into primitive strings first, in
// `form`: the DER form for a default BerForm.
void write_ber(const std::vector<unsigned char>& bytes, const BerNode& node, const BerForm& form,
               std::vector<unsigned char>& out);

// A form of an element that is BER but not DER.
struct BerOnlyForm {
    const BerNode* node; // the element, in the tree given to find_ber_only
    std::string what;    // "indefinite length", "string in constructed form", ...
};

// What makes an element tree BER but not DER: indefinite lengths, lengths not in the fewest
// octets, strings in constructed form (their pieces are part of that finding), in the order of
// the elements.
void find_ber_only(const BerNode& node, std::vector<BerOnlyForm>& findings);

// The same, one line per finding: "offset N: ...".
void find_ber_only(const BerNode& node, std::vector<std::string>& findings);

} // namespace kelmasn_tool

#endif
