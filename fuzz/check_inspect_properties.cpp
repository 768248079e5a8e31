// Properties of the tool's check and inspect.
#include "check_inspect_properties.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "asn_record.h"
#include "ber_tree.h"
#include "check.h"
#include "inspect.h"
#include "kelm/kelmasn.h"
#include "record_registry.h"

namespace kelmasn_fuzz {
namespace {

using kelmasn_tool::BerForm;
using kelmasn_tool::BerNode;
using kelmasn_tool::CheckFinding;
using kelmasn_tool::ShapeLabels;
using Bytes = std::vector<unsigned char>;

size_t header_length(const Bytes& bytes) {
    return bytes.size() >= 4 && bytes[0] != 0 && bytes[2] == 0xAC && bytes[3] == 0xDC
               ? std::min<size_t>(bytes[0], bytes.size())
               : 0;
}

// A record type picked by a byte, reached through the record mechanism or by its type code.
struct PickedType {
    const kelm_record_type* type;
    unsigned int code;
};

PickedType pick_type(uint8_t byte) {
    unsigned int typed = 0, by_code = 0;
    const kelm_record_type* const* types = kelm_record_types(typed);
    const kelm_type_code_type* codes = kelm_type_code_types(by_code);
    const unsigned int pick = byte % (typed + by_code);
    return pick < typed ? PickedType{types[pick], 0}
                        : PickedType{codes[pick - typed].type, codes[pick - typed].code};
}

// The library's encoding of the record that `bytes` decodes to; false when it does not decode or
// encode.
bool library_encoding(const PickedType& picked, const Bytes& bytes, Bytes& out) {
    void* record = std::calloc(1, picked.type->record_size);
    if (record == nullptr)
        return false;
    Bytes input = bytes;
    kelm_asn_buffer_t in{input.size(), input.data()};
    const int version = bytes.size() > 1 ? bytes[1] : 2;
    unsigned int status = picked.code != 0 ? kelmasn_decode_obj(version, in, picked.code, record)
                                           : kelm_asn_record::decode(*picked.type, record, in,
                                                                     version, KELM_SECURITY_PLAIN);
    if (status == 0) {
        kelm_asn_buffer_t encoded{0, nullptr};
        status = picked.code != 0 ? kelmasn_encode_obj(version, record, picked.code, encoded)
                                  : kelm_asn_record::encode(*picked.type, record, encoded, version,
                                                            KELM_SECURITY_PLAIN);
        if (status == 0)
            out.assign(encoded.data, encoded.data + encoded.length);
        kelm_asn_buffer_free(encoded);
    }
    if (picked.code != 0)
        kelmasn_obj_free(version, picked.code, record);
    else
        kelm_asn_record::free_record(*picked.type, record);
    std::free(record);
    return status == 0;
}

size_t count_elements(const BerNode& node) {
    size_t n = 1;
    for (const BerNode& child : node.children)
        n += count_elements(child);
    return n;
}

bool is_string(const BerNode& node) {
    static const unsigned long kStrings[] = {4, 12, 18, 19, 20, 21, 22, 25, 26, 27, 28, 30};
    return node.tag_class == 0 &&
           std::find(std::begin(kStrings), std::end(kStrings), node.tag) != std::end(kStrings);
}

// What find_ber_forms must report on a BER variant of a DER tree, element by element: the
// offsets and the wording of each finding, in order.
// (The pieces of a constructed string are part of the string's finding.)
void expected_forms(const BerNode& node, const BerForm& form,
                    std::vector<std::pair<size_t, std::string>>& out) {
    if (form.indefinite && node.constructed)
        out.push_back({node.offset, "indefinite length"});
    else if (form.long_lengths)
        out.push_back({node.offset, "length " + std::to_string(node.contents_length) +
                                        " in 5 octets, not in the fewest octets"});
    if (node.constructed && is_string(node)) {
        out.push_back({node.offset, "string in constructed form"});
        return;
    }
    for (const BerNode& child : node.children)
        expected_forms(child, form, out);
}

std::string check_arbitrary(const Bytes& bytes, const kelm_record_type& type) {
    std::vector<CheckFinding> findings;
    std::string error;
    BerNode tree;
    const bool parses =
        kelmasn_tool::parse_ber(bytes, header_length(bytes), KELM_ASN_MAX_NESTING, tree, error);
    if (kelmasn_tool::find_ber_forms(bytes, &type, findings, error) != parses)
        return "check and the BER tree disagree on whether the bytes are an element tree";
    if (!parses)
        return "";
    const ShapeLabels labels = kelmasn_tool::label_by_shape(tree, type);
    std::vector<size_t> labelled_offsets;
    for (const auto& entry : labels.paths)
        labelled_offsets.push_back(entry.first->offset);
    for (size_t i = 0; i < findings.size(); ++i) {
        if (i > 0 && findings[i].offset < findings[i - 1].offset)
            return "check's findings are not in the order of the buffer: " + findings[i].line();
        if (findings[i].offset > bytes.size())
            return "a finding lies past the buffer: " + findings[i].line();
        if (!findings[i].path.empty() && std::find(labelled_offsets.begin(), labelled_offsets.end(),
                                                   findings[i].offset) == labelled_offsets.end())
            return "a finding names a field for an element the shape does not label: " +
                   findings[i].line();
    }
    std::string out;
    kelmasn_tool::inspect_by_shape(bytes, tree, labels, out);
    size_t lines = 0;
    for (const char c : out)
        lines += c == '\n';
    if (lines != count_elements(tree) + labels.absent.size())
        return "inspect by shape does not write one line per element and absent part";
    if (!labels.mismatch.empty()) {
        const size_t stop = std::strtoul(labels.mismatch.c_str() + 7, nullptr, 10);
        for (const size_t offset : labelled_offsets)
            if (offset > stop)
                return "inspect labels an element past the first that does not fit: " +
                       labels.mismatch;
    }
    return "";
}

std::string check_library_encoding(const PickedType& picked, const Bytes& library) {
    const kelm_record_type& type = *picked.type;
    std::vector<CheckFinding> findings;
    std::string error;
    if (!kelmasn_tool::find_ber_forms(library, &type, findings, error) || !findings.empty())
        return "check finds something in the library's encoding: " +
               (findings.empty() ? error : findings[0].line());
    if (!kelmasn_tool::find_library_difference(library, library, type, findings, error) ||
        !findings.empty())
        return "check finds the library's encoding different from itself";
    BerNode tree;
    if (!kelmasn_tool::parse_ber(library, header_length(library), KELM_ASN_MAX_NESTING, tree,
                                 error))
        return "the library's encoding is not an element tree: " + error;
    const ShapeLabels labels = kelmasn_tool::label_by_shape(tree, type);
    if (!labels.mismatch.empty())
        return "the library's encoding does not fit its type's shape: " + labels.mismatch;
    // Two ways to label one tree: by the shape alone and through the decoded record.
    void* record = std::calloc(1, type.record_size);
    if (record == nullptr)
        return "";
    Bytes input = library;
    kelm_asn_buffer_t in{input.size(), input.data()};
    const int version = library[1];
    const unsigned int status =
        picked.code != 0 ? kelmasn_decode_obj(version, in, picked.code, record)
                         : kelm_asn_record::decode(type, record, in, version, KELM_SECURITY_PLAIN);
    std::string result;
    if (status == 0 && !(type.flags & KELM_RECORD_BARE_ELEMENT)) {
        std::string by_record, by_shape;
        kelmasn_tool::inspect_record(library, tree, type, record, by_record, error);
        kelmasn_tool::inspect_by_shape(library, tree, labels, by_shape);
        if (by_record != by_shape)
            result = "inspect labels the library's encoding of a " + std::string(type.record_name) +
                     " otherwise by its shape than through its record:\n" + by_record + "--\n" +
                     by_shape;
    }
    if (picked.code != 0)
        kelmasn_obj_free(version, picked.code, record);
    else
        kelm_asn_record::free_record(type, record);
    std::free(record);
    if (!result.empty())
        return result;
    // Every BER variant: its findings are exactly its forms, each with the field path of its
    // element, and it decodes back to the library's encoding.
    for (const BerForm& form :
         {BerForm{true, false, 0}, BerForm{false, true, 0}, BerForm{false, false, 1}}) {
        Bytes variant(library.begin(), library.begin() + static_cast<long>(header_length(library)));
        kelmasn_tool::write_ber(library, tree, form, variant);
        BerNode read;
        if (!kelmasn_tool::parse_ber(variant, header_length(variant), 2 * KELM_ASN_MAX_NESTING + 2,
                                     read, error))
            return "a BER variant does not parse: " + error;
        std::vector<std::pair<size_t, std::string>> expected;
        expected_forms(read, form, expected);
        std::vector<CheckFinding> found;
        if (!kelmasn_tool::find_ber_forms(variant, &type, found, error))
            return "check cannot read a BER variant: " + error;
        if (found.size() != expected.size())
            return "check finds " + std::to_string(found.size()) + " BER forms in a variant of " +
                   std::to_string(expected.size());
        const ShapeLabels variant_labels = kelmasn_tool::label_by_shape(read, type);
        for (size_t i = 0; i < found.size(); ++i) {
            if (found[i].offset != expected[i].first || found[i].what != expected[i].second)
                return "check reports " + found[i].line() + " where the variant has offset " +
                       std::to_string(expected[i].first) + ": " + expected[i].second;
            const bool labelled = std::any_of(
                variant_labels.paths.begin(), variant_labels.paths.end(),
                [&](const auto& entry) { return entry.first->offset == found[i].offset; });
            if (labelled && found[i].path.empty())
                return "check names no field for a labelled element: " + found[i].line();
        }
        Bytes again;
        if (!library_encoding(picked, variant, again) || again != library)
            return "a BER variant of the library's encoding does not decode back to it";
    }
    return "";
}

} // namespace

std::string check_check_and_inspect(const uint8_t* data, size_t size) {
    if (size < 1)
        return "";
    const PickedType picked = pick_type(data[0]);
    const Bytes bytes(data + 1, data + size);
    const std::string arbitrary = check_arbitrary(bytes, *picked.type);
    if (!arbitrary.empty())
        return arbitrary;
    Bytes library;
    if (!library_encoding(picked, bytes, library))
        return "";
    return check_library_encoding(picked, library);
}

} // namespace kelmasn_fuzz
