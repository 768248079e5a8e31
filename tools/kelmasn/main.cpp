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

#include "record_registry.h"
#include "der_dump.h"
#include "json_records.h"
#include "kelm/ekobjs.h"
#include "kelm/kelm_entry.h"
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

const kelm_record_type* find_type(const std::string& name) {
    const kelm_record_type* type = kelm_record_type_named(name.c_str());
    if (type == nullptr)
        complain("unknown record type " + name + " (kelmasn types lists them)");
    return type;
}

std::string status_line(unsigned int status) {
    char code[16];
    std::snprintf(code, sizeof code, "0x%08x", status);
    return std::string("status ") + code + " (" + kelm_asn_status_text(status) + ")";
}

// A zeroed record of the type's size, released with the type's free function.
struct RecordStorage {
    explicit RecordStorage(const kelm_record_type& t)
        : type(t), bytes(std::calloc(1, t.record_size)) {}
    ~RecordStorage() {
        if (bytes != nullptr)
            kelm_asn_record::free_record(type, bytes);
        std::free(bytes);
    }
    RecordStorage(const RecordStorage&) = delete;
    RecordStorage& operator=(const RecordStorage&) = delete;
    const kelm_record_type& type;
    void* bytes;
};

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
    const kelmasn_tool::TypeCodeRecord* by_code = kelmasn_tool::type_code_records(count);
    for (unsigned int i = 0; i < count; ++i)
        std::printf("%-36s %s, type code 0x%x\n", by_code[i].name, by_code[i].class_name,
                    by_code[i].code);
    return 0;
}

// --- the types reached by type code ------------------------------------------------------------

// Room for any record reached by type code, zeroed; released with kelmasn_obj_free.
struct TypeCodeStorage {
    explicit TypeCodeStorage(unsigned int code) : type(code) {}
    ~TypeCodeStorage() { kelmasn_obj_free(0, type, bytes); }
    TypeCodeStorage(const TypeCodeStorage&) = delete;
    TypeCodeStorage& operator=(const TypeCodeStorage&) = delete;
    unsigned int type;
    alignas(8) unsigned char bytes[sizeof(cert_request_in)] = {};
};
static_assert(sizeof(cert_request_in) >= sizeof(ekobj_update_list_s_t) &&
                  sizeof(cert_request_in) >= sizeof(int),
              "the storage holds every record reached by type code");

std::string code_text(unsigned int code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", code);
    return text;
}

// A numeric TYPE that no record type has goes to the library all the same, which answers with
// its status for an unknown type code.
int run_unknown_code(unsigned int code, const std::string& path, bool encoding, int version) {
    TypeCodeStorage record(code);
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status = encoding ? kelmasn_encode_obj(version, record.bytes, code, buffer)
                                         : kelmasn_decode_obj(version, buffer, code, record.bytes);
    return complain(path + ": cannot " + (encoding ? "encode" : "decode") + " type code " +
                    code_text(code) + ": " + status_line(status));
}

int run_decode_by_code(const kelmasn_tool::TypeCodeRecord& type, const std::string& path,
                       int version) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    TypeCodeStorage record(type.code);
    kelm_asn_buffer_t buffer{bytes.size(), bytes.data()};
    const unsigned int status = kelmasn_decode_obj(version, buffer, type.code, record.bytes);
    if (status != 0)
        return complain(path + ": cannot decode " + type.name + ": " + status_line(status));
    std::cout << kelmasn_tool::record_to_json(*type.json_fields, record.bytes)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
}

bool write_output(const std::string& output, const kelm_asn_buffer_t& buffer) {
    std::FILE* out = output == "-" ? stdout : std::fopen(output.c_str(), "wb");
    if (out == nullptr)
        return false;
    const bool written = std::fwrite(buffer.data, 1, buffer.length, out) == buffer.length;
    const bool closed = out == stdout ? std::fflush(out) == 0 : std::fclose(out) == 0;
    return written && closed;
}

int run_encode_by_code(const kelmasn_tool::TypeCodeRecord& type, const std::string& path,
                       const std::string& output, int version) {
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
    TypeCodeStorage record(type.code);
    try {
        kelmasn_tool::record_from_json(*type.json_fields, document, record.bytes);
    } catch (const kelmasn_tool::JsonFieldError& e) {
        return complain(path + ": " + e.what());
    }
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status = kelmasn_encode_obj(version, record.bytes, type.code, buffer);
    if (status != 0)
        return complain(path + ": cannot encode " + type.name + ": " + status_line(status));
    const bool written = write_output(output, buffer);
    kelm_asn_buffer_free(buffer);
    if (!written)
        return complain("cannot write " + output);
    return 0;
}

int run_decode(const std::string& type_name, const std::string& path, bool local, int version) {
    if (const kelmasn_tool::TypeCodeRecord* by_code =
            kelmasn_tool::type_code_record_named(type_name))
        return local ? complain("--lcs: " + type_name + " is reached by type code, always plain")
                     : run_decode_by_code(*by_code, path, version);
    unsigned int code = 0;
    if (kelmasn_tool::parse_type_code(type_name, code))
        return run_unknown_code(code, path, false, version);
    const kelm_record_type* type = find_type(type_name);
    if (type == nullptr)
        return 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelm_asn_buffer_t buffer{bytes.size(), bytes.data()};
    const unsigned int status =
        kelm_asn_record::decode(*type, record.bytes, buffer, version,
                                local ? KELM_SECURITY_LOCAL_CODESET : KELM_SECURITY_PLAIN);
    if (status != 0)
        return complain(path + ": cannot decode " + type->record_name + ": " + status_line(status));
    std::cout << kelmasn_tool::record_to_json(*type, record.bytes)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
}

int run_encode(const std::string& type_name, const std::string& path, const std::string& output,
               bool local, int version) {
    if (const kelmasn_tool::TypeCodeRecord* by_code =
            kelmasn_tool::type_code_record_named(type_name))
        return local ? complain("--lcs: " + type_name + " is reached by type code, always plain")
                     : run_encode_by_code(*by_code, path, output, version);
    unsigned int code = 0;
    if (kelmasn_tool::parse_type_code(type_name, code))
        return run_unknown_code(code, path, true, version);
    const kelm_record_type* type = find_type(type_name);
    if (type == nullptr)
        return 1;
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
        kelmasn_tool::record_from_json(*type, document, record.bytes);
    } catch (const kelmasn_tool::JsonFieldError& e) {
        return complain(path + ": " + e.what());
    }
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status =
        kelm_asn_record::encode(*type, record.bytes, buffer, version,
                                local ? KELM_SECURITY_LOCAL_CODESET : KELM_SECURITY_PLAIN);
    if (status != 0)
        return complain(path + ": cannot encode " + type->record_name + ": " + status_line(status));
    const bool written = write_output(output, buffer);
    std::free(buffer.data);
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
