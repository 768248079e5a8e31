// Properties of the tool's BER tree, writers, check and inspect.
#include "ber_tree_properties.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "asn_record.h"
#include "ber_tree.h"
#include "inspect.h"
#include "kelm/kelmasn.h"
#include "record_registry.h"

namespace kelmasn_fuzz {
namespace {

using kelmasn_tool::BerForm;
using kelmasn_tool::BerNode;

std::vector<unsigned char> written(const std::vector<unsigned char>& bytes, const BerNode& node,
                                   const BerForm& form) {
    std::vector<unsigned char> out;
    kelmasn_tool::write_ber(bytes, node, form, out);
    return out;
}

} // namespace

std::string check_ber_tree(const uint8_t* data, size_t size) {
    if (size < 1)
        return "";
    const std::vector<unsigned char> bytes(data + 1, data + size);
    // The header's first octet gives its length, as the library reads it.
    const size_t start = bytes.size() >= 4 && bytes[0] != 0 && bytes[2] == 0xAC && bytes[3] == 0xDC
                             ? std::min<size_t>(bytes[0], bytes.size())
                             : 0;
    BerNode tree;
    std::string error;
    if (!kelmasn_tool::parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error))
        return "";
    const std::vector<unsigned char> der = written(bytes, tree, BerForm());
    BerNode again;
    if (!kelmasn_tool::parse_ber(der, 0, KELM_ASN_MAX_NESTING + 1, again, error))
        return "the DER form does not parse: " + error;
    if (again.end != der.size())
        return "the DER form is not one element";
    std::vector<std::string> findings;
    kelmasn_tool::find_ber_only(again, findings);
    if (!findings.empty())
        return "check finds BER forms in the DER form: " + findings[0];
    if (written(der, again, BerForm()) != der)
        return "writing the DER form again changes it";
    for (const BerForm& form : {BerForm{true, false, 0}, BerForm{false, true, 0},
                                BerForm{false, false, 1}, BerForm{true, true, 2}}) {
        const std::vector<unsigned char> variant = written(der, again, form);
        BerNode read;
        if (!kelmasn_tool::parse_ber(variant, 0, 2 * KELM_ASN_MAX_NESTING + 2, read, error))
            return "a BER variant does not parse: " + error;
        if (written(variant, read, BerForm()) != der)
            return "a BER variant does not write back to the DER form";
    }
    // inspect labels every element of what the library decodes, for the types reached by type
    // code too.
    unsigned int typed = 0, by_code = 0;
    const kelm_record_type* const* types = kelm_record_types(typed);
    const kelm_type_code_type* codes = kelm_type_code_types(by_code);
    const unsigned int pick = data[0] % (typed + by_code);
    const kelm_record_type& type = pick < typed ? *types[pick] : *codes[pick - typed].type;
    const unsigned int code = pick < typed ? 0 : codes[pick - typed].code;
    void* record = std::calloc(1, type.record_size);
    if (record == nullptr)
        return "";
    std::vector<unsigned char> input = bytes;
    kelm_asn_buffer_t in{input.size(), input.data()};
    const int version = bytes.size() > 1 ? bytes[1] : 2;
    const unsigned int status =
        code != 0 ? kelmasn_decode_obj(version, in, code, record)
                  : kelm_asn_record::decode(type, record, in, version, KELM_SECURITY_PLAIN);
    std::string result;
    if (status == 0) {
        std::string out;
        if (!kelmasn_tool::inspect_record(bytes, tree, type, record, out, error))
            result = std::string("inspect cannot label a buffer that decodes as ") +
                     type.record_name + ": " + error;
        const std::string mismatch = kelmasn_tool::first_mismatch(bytes, tree, type);
        if (result.empty() && !mismatch.empty())
            result = std::string("a buffer that decodes as ") + type.record_name +
                     " does not fit its shape: " + mismatch;
    }
    if (code != 0)
        kelmasn_obj_free(version, code, record);
    else
        kelm_asn_record::free_record(type, record);
    std::free(record);
    return result;
}

} // namespace kelmasn_fuzz
