#include "tool_types.h"

#include <cstdio>
#include <cstdlib>

#include "ber_tree.h"
#include "input.h"
#include "inspect.h"
#include "kelm/kelm_entry.h"
#include "messages.h"
#include "record_registry.h"
#include "type_code_records.h"

namespace kelmasn_tool {

std::string status_line(unsigned int status) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08x", status);
    return std::string("status ") + code + " (" + kelm_asn_status_text(status) + ")";
}

std::string code_text(unsigned int code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", code);
    return text;
}

size_t record_offset(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < 4 || bytes[0] == 0 || bytes[2] != 0xAC || bytes[3] != 0xDC)
        return 0;
    return std::min<size_t>(bytes[0], bytes.size());
}

ToolType resolve_type(const std::string& name) {
    unsigned int count = 0;
    const kelm_type_code_type* by_code = kelm_type_code_types(count);
    unsigned int code = 0;
    const bool numeric = parse_type_code(name, code);
    for (unsigned int i = 0; i < count; ++i)
        if (numeric ? by_code[i].code == code : name == by_code[i].type->record_name)
            return ToolType{by_code[i].type, by_code[i].code};
    if (numeric)
        return ToolType{nullptr, code};
    return ToolType{kelm_record_type_named(name.c_str()), 0};
}

unsigned int encode_record(const ToolType& t, void* record, kelm_asn_buffer_t& out, int version,
                           bool local) {
    if (t.code != 0)
        return kelmasn_encode_obj(version, record, t.code, out);
    return kelm_asn_record::encode(*t.type, record, out, version,
                                   local ? KELM_SECURITY_LOCAL_CODESET : KELM_SECURITY_PLAIN);
}

unsigned int decode_record(const ToolType& t, void* record, kelm_asn_buffer_t& in, int version,
                           bool local) {
    if (t.code != 0)
        return kelmasn_decode_obj(version, in, t.code, record);
    return kelm_asn_record::decode(*t.type, record, in, version,
                                   local ? KELM_SECURITY_LOCAL_CODESET : KELM_SECURITY_PLAIN);
}

const ToolType* find_type(const std::string& type_name, bool local, ToolType& found) {
    found = resolve_type(type_name);
    if (found.type == nullptr) {
        if (found.code == 0)
            complain("unknown record type " + type_name + " (kelmasn types lists them)");
        return nullptr;
    }
    if (local && found.code != 0) {
        complain("--lcs: " + type_name + " is reached by type code, always plain");
        return nullptr;
    }
    return &found;
}

std::vector<ToolType> all_types() {
    std::vector<ToolType> types;
    unsigned int count = 0;
    const kelm_record_type* const* typed = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        types.push_back(ToolType{typed[i], 0});
    const kelm_type_code_type* by_code = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        types.push_back(ToolType{by_code[i].type, by_code[i].code});
    return types;
}

bool first_decoding_type(const std::vector<unsigned char>& bytes, ToolType& found) {
    const int version = bytes.size() > 1 ? bytes[1] : 2;
    for (const ToolType& type : all_types()) {
        RecordStorage record(type);
        std::vector<unsigned char> input = bytes;
        kelm_asn_buffer_t in{input.size(), input.data()};
        if (record.bytes != nullptr && decode_record(type, record.bytes, in, version, false) == 0) {
            found = type;
            return true;
        }
    }
    return false;
}

const ToolType* type_for(const std::string& type_name, const std::vector<unsigned char>& bytes,
                         const std::string& path, ToolType& found) {
    if (!type_name.empty() && type_name != "auto")
        return find_type(type_name, false, found);
    if (first_decoding_type(bytes, found))
        return &found;
    complain(path + ": no record type decodes this buffer" + undecodable_reason(bytes));
    return nullptr;
}

bool write_output(const std::string& output, const kelm_asn_buffer_t& buffer) {
    std::FILE* out = output == "-" ? stdout : std::fopen(output.c_str(), "wb");
    if (out == nullptr)
        return false;
    const bool written = std::fwrite(buffer.data, 1, buffer.length, out) == buffer.length;
    const bool closed = out == stdout ? std::fflush(out) == 0 : std::fclose(out) == 0;
    return written && closed;
}

nlohmann::ordered_json decoded_json(const ToolType& type, const void* record,
                                    const std::vector<unsigned char>& bytes, JsonOptions options) {
    std::vector<size_t> lengths;
    BerNode tree;
    std::string error;
    // Even where the tree and the record part ways, the lengths found before are right, and a
    // text past them is read no further than nothing.
    if (parse_ber(bytes, record_offset(bytes), KELM_ASN_MAX_NESTING, tree, error))
        octet_text_lengths(bytes, tree, *type.type, record, lengths);
    options.octet_text_lengths = &lengths;
    return record_to_json(*type.type, record, options);
}

std::string undecodable_reason(const std::vector<unsigned char>& bytes) {
    const size_t start = record_offset(bytes);
    if (start == 0)
        return "; offset 0: no header 04 vv AC DC";
    BerNode tree;
    std::string error;
    return parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error) ? "" : "; " + error;
}

std::string mismatch_of(const ToolType& type, const std::vector<unsigned char>& bytes,
                        int version) {
    const size_t start = record_offset(bytes);
    if (start == 0)
        return "; offset 0: no header 04 vv AC DC";
    if (version >= 0 && bytes[1] != version)
        return "; offset 1: the header's version is " + std::to_string(bytes[1]) + ", not " +
               std::to_string(version);
    BerNode tree;
    std::string error;
    if (!parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error))
        return "; " + error;
    const std::string mismatch = first_mismatch(bytes, tree, *type.type);
    return mismatch.empty() ? "" : "; the first element that does not fit: " + mismatch;
}

namespace {

// What made a JSON document into an encoding: the library's status, or why no record was made.
struct DocumentEncoding {
    unsigned int status = 0;
    bool no_memory = false; // no record could be allocated
    std::string misfit;     // the document does not read as a record of the type
    bool encoded() const { return !no_memory && misfit.empty() && status == 0; }
};

// `document` read as a record of `type` and encoded into `out`.
DocumentEncoding encode_document(const ToolType& type, const nlohmann::ordered_json& document,
                                 const JsonOptions& options, int version, bool local,
                                 kelm_asn_buffer_t& out) {
    DocumentEncoding result;
    RecordStorage record(type);
    if (record.bytes == nullptr) {
        result.no_memory = true;
        return result;
    }
    try {
        record_from_json(*type.type, document, record.bytes, options);
    } catch (const JsonFieldError& e) {
        result.misfit = e.what();
        return result;
    }
    result.status = encode_record(type, record.bytes, out, version, local);
    return result;
}

// Whether `document` reads as a record of `type` that the library encodes.
bool encodes(const ToolType& type, const nlohmann::ordered_json& document,
             const JsonOptions& options, int version, bool local) {
    kelm_asn_buffer_t out{0, nullptr};
    const bool encoded = encode_document(type, document, options, version, local, out).encoded();
    kelm_asn_buffer_free(out);
    return encoded;
}

// The smallest value of the same JSON type: a list entry or text emptied, a number made 0.
nlohmann::ordered_json emptied(const nlohmann::ordered_json& value) {
    if (value.is_object())
        return nlohmann::ordered_json::object();
    if (value.is_array())
        return nlohmann::ordered_json::array();
    if (value.is_string())
        return "";
    if (value.is_number())
        return 0;
    return value;
}

} // namespace

std::string refused_field(const ToolType& type, const nlohmann::ordered_json& document,
                          JsonOptions options, int version, bool local) {
    options.strict = false; // a field left out is zero while the value is looked for
    nlohmann::ordered_json trial = document;
    nlohmann::ordered_json::json_pointer at;
    std::string path;
    for (;;) {
        const nlohmann::ordered_json& here = trial[at];
        bool descended = false;
        if (here.is_object()) {
            for (auto it = here.begin(); it != here.end() && !descended; ++it) {
                nlohmann::ordered_json without = trial;
                without[at].erase(it.key());
                if (encodes(type, without, options, version, local)) {
                    path += (path.empty() ? "" : ".") + it.key();
                    at /= it.key();
                    descended = true;
                }
            }
        } else if (here.is_array()) {
            for (size_t i = 0; i < here.size() && !descended; ++i) {
                nlohmann::ordered_json without = trial;
                without[at][i] = emptied(here[i]);
                if (encodes(type, without, options, version, local)) {
                    path += "[" + std::to_string(i) + "]";
                    at /= i;
                    descended = true;
                }
            }
        }
        if (!descended)
            return path;
    }
}

bool encode_json_record(const ToolType& type, const std::string& path,
                        const std::vector<unsigned char>& bytes, const JsonOptions& options,
                        int version, bool local, kelm_asn_buffer_t& out) {
    nlohmann::ordered_json document;
    if (!parse_json(path, bytes, type.type->record_name, document))
        return false;
    const DocumentEncoding result = encode_document(type, document, options, version, local, out);
    if (result.encoded())
        return true;
    if (result.no_memory) {
        complain("out of memory");
    } else if (!result.misfit.empty()) {
        complain(path + ": " + result.misfit);
    } else {
        const std::string field = refused_field(type, document, options, version, local);
        complain(path + ": cannot encode " + type.type->record_name + ": " +
                 status_line(result.status) +
                 (field.empty() ? "" : "; the field it refuses: " + field));
    }
    return false;
}

} // namespace kelmasn_tool
