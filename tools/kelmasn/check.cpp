// check's findings: the DER rules of X.690 (08/2015) clause 10 (10.1 definite lengths in the
// fewest octets, 10.2 primitive strings) and the library's own encoding as the reference.
#include "check.h"

#include <algorithm>
#include <cstdio>

#include "ber_tree.h"
#include "inspect.h"
#include "kelm/kelmasn.h"

namespace kelmasn_tool {
namespace {

// The offset of the record: after the header 04 vv AC DC (its first octet gives its length), or
// 0 when there is none.
size_t record_start(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < 4 || bytes[0] == 0 || bytes[2] != 0xAC || bytes[3] != 0xDC)
        return 0;
    return std::min<size_t>(bytes[0], bytes.size());
}

std::string path_of(const ShapeLabels& labels, const BerNode& node) {
    const auto found = labels.paths.find(&node);
    return found == labels.paths.end() ? "" : found->second;
}

std::string hex_of(const std::vector<unsigned char>& bytes, const BerNode& node) {
    std::string out;
    char two[4];
    for (size_t i = node.contents; i < node.contents + node.contents_length; ++i) {
        std::snprintf(two, sizeof two, i > node.contents ? " %02X" : "%02X", bytes[i]);
        out += two;
    }
    return out.empty() ? "nothing" : out;
}

// Compares `ours` with `theirs`, the element at its place in the library's encoding; the first
// difference goes to `finding`.
bool differs(const std::vector<unsigned char>& bytes, const BerNode& ours,
             const std::vector<unsigned char>& library, const BerNode& theirs,
             const ShapeLabels& labels, CheckFinding& finding) {
    if (ours.identifier != theirs.identifier || ours.constructed != theirs.constructed) {
        finding = {ours.offset, path_of(labels, ours),
                   describe(ours) + " where the library writes " + describe(theirs)};
        return true;
    }
    if (!ours.constructed) {
        if (ours.contents_length == theirs.contents_length &&
            std::equal(bytes.begin() + static_cast<long>(ours.contents),
                       bytes.begin() + static_cast<long>(ours.contents + ours.contents_length),
                       library.begin() + static_cast<long>(theirs.contents)))
            return false;
        finding = {ours.offset, path_of(labels, ours),
                   "contents " + hex_of(bytes, ours) + " where the library writes " +
                       hex_of(library, theirs)};
        return true;
    }
    const size_t common = std::min(ours.children.size(), theirs.children.size());
    for (size_t i = 0; i < common; ++i)
        if (differs(bytes, ours.children[i], library, theirs.children[i], labels, finding))
            return true;
    if (ours.children.size() > common) {
        const BerNode& extra = ours.children[common];
        finding = {extra.offset, path_of(labels, extra),
                   describe(extra) + " that the library leaves out (a value equal to its default)"};
        return true;
    }
    if (theirs.children.size() > common) {
        finding = {ours.contents + ours.contents_length, path_of(labels, ours),
                   "the library writes one more element at the end: " +
                       describe(theirs.children[common])};
        return true;
    }
    return false;
}

} // namespace

std::string CheckFinding::line() const {
    return "offset " + std::to_string(offset) + ": " + (path.empty() ? "" : path + ": ") + what;
}

bool find_ber_forms(const std::vector<unsigned char>& bytes, const kelm_record_type* type,
                    std::vector<CheckFinding>& findings, std::string& error) {
    const size_t start = record_start(bytes);
    if (start == 0)
        findings.push_back({0, "", "no header 04 vv AC DC"});
    else if (start != 4)
        findings.push_back(
            {0, "",
             "a header of " + std::to_string(start) + " octets, where the library writes 4"});
    BerNode tree;
    if (!parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error))
        return false;
    const ShapeLabels labels = type != nullptr ? label_by_shape(tree, *type) : ShapeLabels();
    std::vector<BerOnlyForm> forms;
    find_ber_only(tree, forms);
    for (const BerOnlyForm& form : forms)
        findings.push_back({form.node->offset, path_of(labels, *form.node), form.what});
    if (tree.end < bytes.size())
        findings.push_back(
            {tree.end, "", std::to_string(bytes.size() - tree.end) + " bytes after the record"});
    return true;
}

bool find_library_difference(const std::vector<unsigned char>& bytes,
                             const std::vector<unsigned char>& library,
                             const kelm_record_type& type, std::vector<CheckFinding>& findings,
                             std::string& error) {
    BerNode ours, theirs;
    if (!parse_ber(bytes, record_start(bytes), KELM_ASN_MAX_NESTING, ours, error) ||
        !parse_ber(library, record_start(library), KELM_ASN_MAX_NESTING, theirs, error))
        return false;
    const ShapeLabels labels = label_by_shape(ours, type);
    CheckFinding finding;
    if (differs(bytes, ours, library, theirs, labels, finding))
        findings.push_back(finding);
    else if (bytes != library) // the header, or bytes after the record
        findings.push_back(
            {0, "",
             "differs from the library's encoding of this " + std::string(type.record_name)});
    return true;
}

} // namespace kelmasn_tool
