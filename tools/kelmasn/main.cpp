// kelmasn: a command-line view of the library's encodings.
//
//   kelmasn der FILE                     the BER/DER element tree of FILE ("-": standard input)
//   kelmasn types                        the record types the library knows
//   kelmasn decode TYPE FILE             a buffer of TYPE as JSON
//   kelmasn encode TYPE FILE.json -o OUT a record of TYPE from JSON into a buffer
//
// TYPE is a record type's name, or for the types reached by type code (certificate requests,
// lists of object updates, a bare int) also the code itself ("0x103", "259").
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "der_dump.h"
#include "json_records.h"
#include "kelm/ekobjs.h"
#include "kelm/kelm_entry.h"
#include "record_registry.h"
#include "type_code_records.h"

namespace {

// Reads a whole file, or standard input for "-". Returns false with a message on failure.
bool read_input(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    if (path == "-") {
        bytes.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
        return true;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad()) {
        error = "cannot read " + path;
        return false;
    }
    return true;
}

int complain(const std::string& message) {
    std::fprintf(stderr, "kelmasn: %s\n", message.c_str());
    return 1;
}

std::string status_line(unsigned int status) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08x", status);
    return std::string("status ") + code + " (" + kelm_asn_status_text(status) + ")";
}

// A record type as the tool reaches it: through the record mechanism, or by its type code.
struct ToolType {
    const kelm_record_type* type;
    unsigned int code; // 0 for a type with typed entry points
};

// The type that TYPE names: a record type's name, or a type code's record name or number. Null
// `type` when nothing has that name; `code` then holds a number given as TYPE (0 for a name).
ToolType resolve_type(const std::string& name) {
    unsigned int count = 0;
    const kelm_type_code_type* by_code = kelm_type_code_types(count);
    unsigned int code = 0;
    const bool numeric = kelmasn_tool::parse_type_code(name, code);
    for (unsigned int i = 0; i < count; ++i)
        if (numeric ? by_code[i].code == code : name == by_code[i].type->record_name)
            return ToolType{by_code[i].type, by_code[i].code};
    if (numeric)
        return ToolType{nullptr, code};
    return ToolType{kelm_record_type_named(name.c_str()), 0};
}

// A zeroed record of the type's size, released as its type releases records.
struct RecordStorage {
    explicit RecordStorage(const ToolType& t)
        : type(t), bytes(std::calloc(1, t.type->record_size)) {}
    ~RecordStorage() {
        if (bytes != nullptr) {
            if (type.code != 0)
                kelmasn_obj_free(0, type.code, bytes);
            else
                kelm_asn_record::free_record(*type.type, bytes);
        }
        std::free(bytes);
    }
    RecordStorage(const RecordStorage&) = delete;
    RecordStorage& operator=(const RecordStorage&) = delete;
    const ToolType& type;
    void* bytes;
};

// The records reached by type code go through kelmasn_encode_obj and kelmasn_decode_obj, always
// in the plain mode; every other type through the record mechanism in the mode asked for.
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

int run_der(const std::string& path) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    std::string out;
    kelmasn_tool::DumpError failure{0, ""};
    const bool ok = kelmasn_tool::dump_der(std::move(bytes), out, failure);
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::fflush(stdout);
    if (!ok)
        return complain(path + ": offset " + std::to_string(failure.offset) + ": " +
                        failure.reason);
    return 0;
}

int run_types() {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        std::printf("%-36s %s\n", types[i]->record_name, types[i]->class_name);
    const kelm_type_code_type* by_code = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        std::printf("%-36s %s, type code 0x%x\n", by_code[i].type->record_name,
                    by_code[i].type->class_name, by_code[i].code);
    return 0;
}

std::string code_text(unsigned int code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", code);
    return text;
}

// A numeric TYPE that no record type has goes to the library all the same, which answers with
// its status for an unknown type code.
int run_unknown_code(unsigned int code, const std::string& path, bool encoding, int version) {
    alignas(8) unsigned char record[64] = {};
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status = encoding ? kelmasn_encode_obj(version, record, code, buffer)
                                         : kelmasn_decode_obj(version, buffer, code, record);
    return complain(path + ": cannot " + (encoding ? "encode" : "decode") + " type code " +
                    code_text(code) + ": " + status_line(status));
}

// The type named `type_name` for `decode` or `encode`; null with the message written when there is
// none, or when --lcs is asked of a type reached by type code.
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

bool write_output(const std::string& output, const kelm_asn_buffer_t& buffer) {
    std::FILE* out = output == "-" ? stdout : std::fopen(output.c_str(), "wb");
    if (out == nullptr)
        return false;
    const bool written = std::fwrite(buffer.data, 1, buffer.length, out) == buffer.length;
    const bool closed = out == stdout ? std::fflush(out) == 0 : std::fclose(out) == 0;
    return written && closed;
}

int run_decode(const std::string& type_name, const std::string& path, bool local, int version) {
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, local, found);
    if (type == nullptr)
        return found.type == nullptr && found.code != 0
                   ? run_unknown_code(found.code, path, false, version)
                   : 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelm_asn_buffer_t buffer{bytes.size(), bytes.data()};
    const unsigned int status = decode_record(*type, record.bytes, buffer, version, local);
    if (status != 0)
        return complain(path + ": cannot decode " + type->type->record_name + ": " +
                        status_line(status));
    std::cout << kelmasn_tool::record_to_json(*type->type, record.bytes)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
}

int run_encode(const std::string& type_name, const std::string& path, const std::string& output,
               bool local, int version) {
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, local, found);
    if (type == nullptr)
        return found.type == nullptr && found.code != 0
                   ? run_unknown_code(found.code, path, true, version)
                   : 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    nlohmann::ordered_json document;
    try {
        document = nlohmann::ordered_json::parse(bytes.begin(), bytes.end());
    } catch (const nlohmann::json::exception& e) {
        return complain(path + ": not JSON: " + e.what());
    }
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    try {
        kelmasn_tool::record_from_json(*type->type, document, record.bytes);
    } catch (const kelmasn_tool::JsonFieldError& e) {
        return complain(path + ": " + e.what());
    }
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status = encode_record(*type, record.bytes, buffer, version, local);
    if (status != 0)
        return complain(path + ": cannot encode " + type->type->record_name + ": " +
                        status_line(status));
    const bool written = write_output(output, buffer);
    kelm_asn_buffer_free(buffer);
    if (!written)
        return complain("cannot write " + output);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"kelmasn: inspect the library's ASN.1 encodings"};
    app.require_subcommand(1);

    std::string der_path;
    CLI::App* der = app.add_subcommand("der", "Print the BER/DER element tree of a file");
    der->add_option("FILE", der_path, "the bytes to walk; - reads standard input")->required();

    CLI::App* types = app.add_subcommand("types", "List the record types");

    std::string type_name, input, output = "-";
    bool local = false;
    int version = 2;
    CLI::App* decode = app.add_subcommand("decode", "Print an encoded record as JSON");
    decode
        ->add_option("TYPE", type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103")
        ->required();
    decode->add_option("FILE", input, "the encoded buffer; - reads standard input")->required();
    decode->add_flag("--lcs", local, "texts to the local code set, as the LCS entry points do");
    decode->add_option("--version", version, "the header's version byte (default 2)");

    CLI::App* encode = app.add_subcommand("encode", "Encode a record given as JSON");
    encode
        ->add_option("TYPE", type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103")
        ->required();
    encode->add_option("FILE", input, "the record as JSON; - reads standard input")->required();
    encode->add_option("-o,--output", output, "where the buffer goes (default standard output)");
    encode->add_flag("--lcs", local, "texts from the local code set, as the LCS entry points do");
    encode->add_option("--version", version, "the header's version byte (default 2)");

    CLI11_PARSE(app, argc, argv);
    if (der->parsed())
        return run_der(der_path);
    if (types->parsed())
        return run_types();
    if (decode->parsed())
        return run_decode(type_name, input, local, version);
    if (encode->parsed())
        return run_encode(type_name, input, output, local, version);
    return 2;
}
