// kelmasn: a command-line view of the library's encodings.
//
//   kelmasn der FILE                     the BER/DER element tree of FILE ("-": standard input)
//   kelmasn types                        the record types the library knows, with every name
//                                        each is accepted by
//   kelmasn decode TYPE FILE             a buffer of TYPE as JSON
//   kelmasn encode TYPE FILE.json -o OUT a record of TYPE from JSON into a buffer
//
// TYPE is a record type's name, or for the types reached by type code (certificate requests,
// lists of object updates, a bare int) also the code itself ("0x103", "259").
//
// Exit status: 0 success, 1 the input is refused (or cannot be read or written), 2 usage.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
extern "C" { // libb64's C header declares its functions without C linkage
#include <b64/cdecode.h>
}
#include <nlohmann/json.hpp>

#include "ber_tree.h"
#include "code_sets.h"
#include "der_dump.h"
#include "inspect.h"
#include "json_records.h"
#include "kelm/ekobjs.h"
#include "kelm/kelm_entry.h"
#include "local_text.h"
#include "record_registry.h"
#include "samples.h"
#include "schema.h"
#include "type_code_records.h"

namespace {

// Reads a whole file, or standard input for "-". Returns false with a message on failure: a
// missing or unreadable file, a directory, a read error.
bool read_input(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    const bool standard_input = path == "-";
    const std::string name = standard_input ? std::string("standard input") : path;
    struct stat status;
    const int found = standard_input ? fstat(0, &status) : stat(path.c_str(), &status);
    if (found != 0) {
        error = "cannot open " + name + ": " + std::strerror(errno);
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        error = "cannot read " + name + ": it is a directory";
        return false;
    }
    try {
        if (standard_input) {
            bytes.assign(std::istreambuf_iterator<char>(std::cin),
                         std::istreambuf_iterator<char>());
            if (std::cin.bad()) {
                error = "cannot read standard input";
                return false;
            }
            return true;
        }
        std::ifstream in(path, std::ios::binary);
        if (!in) {
            error = "cannot open " + path + ": " + std::strerror(errno);
            return false;
        }
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (in.bad()) {
            error = "cannot read " + path;
            return false;
        }
    } catch (const std::exception& e) {
        error = "cannot read " + name + ": " + e.what();
        return false;
    }
    return true;
}

// The octets of `text` written as hex digits, spaces allowed between them.
bool from_hex(const std::string& text, std::string& bytes) {
    std::string digits;
    for (const char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            digits += c;
    if (digits.size() % 2 != 0)
        return false;
    bytes.clear();
    for (size_t i = 0; i < digits.size(); i += 2) {
        const std::string pair = digits.substr(i, 2);
        if (!std::isxdigit(static_cast<unsigned char>(pair[0])) ||
            !std::isxdigit(static_cast<unsigned char>(pair[1])))
            return false;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
    }
    return true;
}

// How buffers are given: raw bytes, hex digits or base64 (--in-format).
std::string g_in_format = "raw";

// Reads a buffer as read_input does, then decodes it from hex or base64 when --in-format says so.
bool read_buffer(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    if (!read_input(path, bytes, error))
        return false;
    if (g_in_format == "raw")
        return true;
    std::string text(bytes.begin(), bytes.end());
    std::string compact;
    for (const char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            compact += c;
    if (g_in_format == "hex") {
        std::string decoded;
        if (!from_hex(compact, decoded)) {
            error = path + ": not hex digits (--in-format hex)";
            return false;
        }
        bytes.assign(decoded.begin(), decoded.end());
        return true;
    }
    // base64 (RFC 4648, section 4), with libb64.
    const bool alphabet = std::all_of(compact.begin(), compact.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '/' || c == '=';
    });
    if (!alphabet || compact.size() % 4 != 0) {
        error = path + ": not base64 (--in-format base64)";
        return false;
    }
    std::vector<char> plain(compact.size() / 4 * 3 + 3);
    base64_decodestate state;
    base64_init_decodestate(&state);
    const int n =
        base64_decode_block(compact.data(), static_cast<int>(compact.size()), plain.data(), &state);
    bytes.assign(plain.begin(), plain.begin() + n);
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

// The offset of the record in a buffer: after the header (its first octet gives its length, 4
// for the header 04 vv AC DC that the library writes) when the magic octets AC DC are there, else
// 0.
size_t record_offset(const std::vector<unsigned char>& bytes) {
    if (bytes.size() < 4 || bytes[0] == 0 || bytes[2] != 0xAC || bytes[3] != 0xDC)
        return 0;
    return std::min<size_t>(bytes[0], bytes.size());
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
    if (!read_buffer(path, bytes, error))
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

// The class name of a record type, then the other names TYPE accepts for it: the class name, and
// the class name without "asn_" and without a final "_t".
std::string other_names(const kelm_record_type& type) {
    std::string names = std::string(type.class_name) + " (also " + type.class_name;
    std::string brief = type.class_name;
    if (brief.rfind("asn_", 0) == 0) {
        brief.erase(0, 4);
        names += ", " + brief;
        if (brief.size() > 2 && brief.compare(brief.size() - 2, 2, "_t") == 0)
            names += ", " + brief.substr(0, brief.size() - 2);
    }
    return names + ")";
}

int run_types() {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        std::printf("%-36s %s\n", types[i]->record_name, other_names(*types[i]).c_str());
    const kelm_type_code_type* by_code = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        std::printf("%-36s %s, type code 0x%x (also 0x%x, %u)\n", by_code[i].type->record_name,
                    by_code[i].type->class_name, by_code[i].code, by_code[i].code, by_code[i].code);
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

// What decode and encode are asked for besides TYPE and FILE.
struct RecordOptions {
    bool local = false;          // --lcs
    bool strict = false;         // --strict: a JSON record must give every field
    bool allow_trailing = false; // --allow-trailing: bytes after the record are ignored
    int version = 2;             // --version: the header's version byte
};

// The local code set of the environment's locale, for --lcs; null with the message written when
// it has no conversion to and from UTF-8.
std::unique_ptr<kelmasn_tool::LocalText> local_text(const RecordOptions& options) {
    if (!options.local)
        return nullptr;
    std::setlocale(LC_ALL, "");
    auto text = std::make_unique<kelmasn_tool::LocalText>();
    if (!text->ready()) {
        complain("--lcs: no conversion between UTF-8 and the local code set " + text->codeset());
        return nullptr;
    }
    return text;
}

// The bytes after the record that starts after the four-byte header; an error when there are any,
// unless they are allowed.
bool check_trailing(const std::string& path, std::vector<unsigned char> bytes,
                    const RecordOptions& options) {
    if (options.allow_trailing || bytes.size() <= 4)
        return true;
    size_t end = 0;
    kelmasn_tool::DumpError error{0, ""};
    if (!kelmasn_tool::element_end(bytes, record_offset(bytes), end, error) || end >= bytes.size())
        return true;
    complain(path + ": " + std::to_string(bytes.size() - end) +
             " bytes after the record, from offset " + std::to_string(end) +
             " (--allow-trailing accepts them)");
    return false;
}

// A usage error: one line on stderr, exit status 2.
int usage_error(const std::string& message) {
    std::fprintf(stderr, "kelmasn: %s (kelmasn --help describes the usage)\n", message.c_str());
    return 2;
}

// The JSON of a record that the library decoded from `bytes`: the texts it keeps with their NUL
// are read no further than the OCTET STRINGs they came from.
nlohmann::ordered_json decoded_json(const ToolType& type, const void* record,
                                    const std::vector<unsigned char>& bytes,
                                    kelmasn_tool::JsonOptions options = {}) {
    std::vector<size_t> lengths;
    kelmasn_tool::BerNode tree;
    std::string error;
    // Even where the tree and the record part ways, the lengths found before are right, and a
    // text past them is read no further than nothing.
    if (kelmasn_tool::parse_ber(bytes, record_offset(bytes), KELM_ASN_MAX_NESTING, tree, error))
        kelmasn_tool::octet_text_lengths(bytes, tree, *type.type, record, lengths);
    options.octet_text_lengths = &lengths;
    return kelmasn_tool::record_to_json(*type.type, record, options);
}

// Where a buffer that does not decode as `type` stops fitting its shape, for the error line:
// "; the first element that does not fit: offset N: path: ...", or nothing when its elements do
// not even parse or all fit (the library refused something else, such as a value).
std::string mismatch_of(const ToolType& type, const std::vector<unsigned char>& bytes) {
    kelmasn_tool::BerNode tree;
    std::string error;
    if (!kelmasn_tool::parse_ber(bytes, record_offset(bytes), KELM_ASN_MAX_NESTING, tree, error))
        return "; " + error;
    const std::string mismatch = kelmasn_tool::first_mismatch(bytes, tree, *type.type);
    return mismatch.empty() ? "" : "; the first element that does not fit: " + mismatch;
}

// Every record type, the typed ones first.
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

// decode auto: the buffer decoded as every record type. Those that decode and encode back to
// the same bytes come first, then those that only decode; the JSON of the first is printed and
// the candidates are named on stderr. Exit status 1 when no type decodes the buffer.
int run_decode_auto(const std::string& path, const RecordOptions& options) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    std::vector<ToolType> exact, decodes;
    for (const ToolType& type : all_types()) {
        RecordStorage record(type);
        if (record.bytes == nullptr)
            return complain("out of memory");
        std::vector<unsigned char> input = bytes;
        kelm_asn_buffer_t in{input.size(), input.data()};
        // A type's own complaints on stderr are not the user's concern here.
        std::fflush(stderr);
        if (decode_record(type, record.bytes, in, options.version, false) != 0)
            continue;
        kelm_asn_buffer_t out{0, nullptr};
        const bool same = encode_record(type, record.bytes, out, options.version, false) == 0 &&
                          out.length == bytes.size() &&
                          std::equal(bytes.begin(), bytes.end(), out.data);
        kelm_asn_buffer_free(out);
        (same ? exact : decodes).push_back(type);
    }
    exact.insert(exact.end(), decodes.begin(), decodes.end());
    if (exact.empty())
        return complain(path + ": no record type decodes this buffer");
    std::string names;
    for (size_t i = 1; i < exact.size(); ++i)
        names += std::string(i > 1 ? ", " : "") + exact[i].type->record_name;
    std::fprintf(stderr, "kelmasn: %s: decodes as %s%s%s\n", path.c_str(),
                 exact[0].type->record_name,
                 exact.size() - decodes.size() > 0 ? " (and encodes back to the same bytes)" : "",
                 names.empty() ? "" : ("; also as " + names).c_str());
    RecordStorage record(exact[0]);
    kelm_asn_buffer_t in{bytes.size(), bytes.data()};
    decode_record(exact[0], record.bytes, in, options.version, false);
    std::cout << decoded_json(exact[0], record.bytes, bytes)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
}

int run_decode(const std::string& type_name, const std::string& path,
               const RecordOptions& options) {
    if (type_name == "auto")
        return options.local ? usage_error("--lcs needs a record type, not auto")
                             : run_decode_auto(path, options);
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, options.local, found);
    if (type == nullptr)
        return found.type == nullptr && found.code != 0
                   ? run_unknown_code(found.code, path, false, options.version)
                   : 1;
    const auto local = local_text(options);
    if (options.local && local == nullptr)
        return 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelm_asn_buffer_t buffer{bytes.size(), bytes.data()};
    const unsigned int status =
        decode_record(*type, record.bytes, buffer, options.version, options.local);
    if (status != 0)
        return complain(path + ": cannot decode " + type->type->record_name + ": " +
                        status_line(status) + mismatch_of(*type, bytes));
    if (!check_trailing(path, bytes, options))
        return 1;
    kelmasn_tool::JsonOptions json_options;
    json_options.local = local.get();
    std::cout << decoded_json(*type, record.bytes, bytes, json_options)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
}

// Parses a JSON document; false with the message written when it is empty or not JSON.
bool parse_json(const std::string& path, const std::vector<unsigned char>& bytes,
                const char* record_name, nlohmann::ordered_json& document) {
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) { return std::isspace(c); })) {
        complain(path + ": empty, expected a JSON object for " + record_name);
        return false;
    }
    try {
        document = nlohmann::ordered_json::parse(bytes.begin(), bytes.end());
    } catch (const nlohmann::json::exception& e) {
        // The parser's message without its "[json.exception...] " prefix.
        std::string what = e.what();
        const size_t bracket = what.find("] ");
        if (what.rfind("[json.exception", 0) == 0 && bracket != std::string::npos)
            what.erase(0, bracket + 2);
        complain(path + ": not JSON: " + what);
        return false;
    }
    return true;
}

int run_encode(const std::string& type_name, const std::string& path, const std::string& output,
               const RecordOptions& options) {
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, options.local, found);
    if (type == nullptr)
        return found.type == nullptr && found.code != 0
                   ? run_unknown_code(found.code, path, true, options.version)
                   : 1;
    const auto local = local_text(options);
    if (options.local && local == nullptr)
        return 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    nlohmann::ordered_json document;
    if (!parse_json(path, bytes, type->type->record_name, document))
        return 1;
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelmasn_tool::JsonOptions json_options;
    json_options.strict = options.strict;
    json_options.local = local.get();
    try {
        kelmasn_tool::record_from_json(*type->type, document, record.bytes, json_options);
    } catch (const kelmasn_tool::JsonFieldError& e) {
        return complain(path + ": " + e.what());
    }
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status =
        encode_record(*type, record.bytes, buffer, options.version, options.local);
    if (status != 0)
        return complain(path + ": cannot encode " + type->type->record_name + ": " +
                        status_line(status));
    const bool written = write_output(output, buffer);
    kelm_asn_buffer_free(buffer);
    if (!written)
        return complain("cannot write " + output);
    return 0;
}

// sample: a filled record of the type as JSON (every field given), or with --minimal the
// smallest (zeros, empty texts, empty lists, optional records absent).
int run_sample(const std::string& type_name, bool minimal) {
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, false, found);
    if (type == nullptr)
        return found.code != 0
                   ? complain("no record type has the type code " + code_text(found.code))
                   : 1;
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelmasn_tool::fill_sample(*type->type, record.bytes, minimal);
    std::cout << kelmasn_tool::record_to_json(*type->type, record.bytes).dump(2) << "\n";
    return 0;
}

std::string to_hex(const std::string& bytes) {
    std::string out;
    char two[4];
    for (size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(two, sizeof two, i ? " %02X" : "%02X", static_cast<unsigned char>(bytes[i]));
        out += two;
    }
    return out;
}

// str: the library's code-set converters. TEXT (or standard input for - or none) is octets of
// --from, or hex with --hex-in; the result is shown as text when --to is UTF-8 or an IA5 set and
// its octets are printable, else (or with --hex-out) in hex.
int run_str(const std::string& from, const std::string& to, const std::string& text, bool hex_in,
            bool hex_out) {
    std::string in = text;
    if (text == "-") {
        std::vector<unsigned char> bytes;
        std::string error;
        if (!read_input("-", bytes, error))
            return complain(error);
        in.assign(bytes.begin(), bytes.end());
    }
    if (hex_in && !from_hex(std::string(in), in))
        return complain("--hex-in: not hex digits: " + text);
    std::string out, error;
    const unsigned int status = kelmasn_tool::convert_text(from, to, in, out, error);
    if (!error.empty())
        return usage_error(error);
    if (status != 0)
        return complain("cannot convert from " + from + " to " + to + ": " + status_line(status));
    const bool ascii_set = to == "ia5" || to == "printable" || to == "visible";
    const bool printable_text =
        (to == "utf8" || ascii_set) && std::all_of(out.begin(), out.end(), [&](char c) {
            const unsigned char u = static_cast<unsigned char>(c);
            return ascii_set ? u >= 0x20 && u < 0x7F : u >= 0x20 && u != 0x7F;
        });
    std::cout << (hex_out || !printable_text ? to_hex(out) : out) << "\n";
    return 0;
}

// --- check, canon, craft, diff ---------------------------------------------------------------

// The first record type that decodes `bytes` (with the version byte of their header), into
// `found`; false when none does.
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

// The type named for check, canon and diff: the one given, or the first that decodes the buffer.
// Null with the message written when there is none.
const ToolType* type_for(const std::string& type_name, const std::vector<unsigned char>& bytes,
                         const std::string& path, ToolType& found) {
    if (!type_name.empty() && type_name != "auto")
        return find_type(type_name, false, found);
    if (first_decoding_type(bytes, found))
        return &found;
    complain(path + ": no record type decodes this buffer");
    return nullptr;
}

// The library's encoding of the buffer's record decoded as `type`; false with the message
// written when it does not decode.
bool library_encoding(const ToolType& type, const std::vector<unsigned char>& bytes,
                      const std::string& path, std::vector<unsigned char>& out) {
    RecordStorage record(type);
    if (record.bytes == nullptr) {
        complain("out of memory");
        return false;
    }
    std::vector<unsigned char> input = bytes;
    kelm_asn_buffer_t in{input.size(), input.data()};
    const int version = bytes.size() >= 2 ? bytes[1] : 2;
    unsigned int status = decode_record(type, record.bytes, in, version, false);
    if (status != 0) {
        complain(path + ": cannot decode " + type.type->record_name + ": " + status_line(status));
        return false;
    }
    kelm_asn_buffer_t encoded{0, nullptr};
    status = encode_record(type, record.bytes, encoded, version, false);
    if (status != 0) {
        complain(path + ": cannot encode " + type.type->record_name + ": " + status_line(status));
        return false;
    }
    out.assign(encoded.data, encoded.data + encoded.length);
    kelm_asn_buffer_free(encoded);
    return true;
}

// What keeps a buffer from being what the library writes: BER-only forms, bytes after the
// record, and with a type, any other difference from the library's encoding of its record.
bool buffer_findings(const std::vector<unsigned char>& bytes, const std::string& path,
                     const ToolType* type, std::vector<std::string>& findings) {
    const size_t start = record_offset(bytes);
    if (start == 0)
        findings.push_back("offset 0: no header 04 vv AC DC");
    else if (start != 4)
        findings.push_back("offset 0: a header of " + std::to_string(start) +
                           " octets, where the library writes 4");
    kelmasn_tool::BerNode node;
    std::string error;
    if (!kelmasn_tool::parse_ber(bytes, start, KELM_ASN_MAX_NESTING, node, error)) {
        complain(path + ": " + error);
        return false;
    }
    kelmasn_tool::find_ber_only(node, findings);
    if (node.end < bytes.size())
        findings.push_back("offset " + std::to_string(node.end) + ": " +
                           std::to_string(bytes.size() - node.end) + " bytes after the record");
    if (type != nullptr && findings.empty()) {
        std::vector<unsigned char> library;
        if (!library_encoding(*type, bytes, path, library))
            return false;
        if (library != bytes) {
            size_t at = 0;
            while (at < library.size() && at < bytes.size() && library[at] == bytes[at])
                ++at;
            findings.push_back("offset " + std::to_string(at) + ": differs from the library's " +
                               "encoding of this " + type->type->record_name +
                               " (a value equal to its default, or another form)");
        }
    }
    return true;
}

// check: lists what is BER but not DER-shaped; exit 0 when the buffer is what the library
// writes.
int run_check(const std::string& path, const std::string& type_name) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    ToolType found{nullptr, 0};
    const ToolType* type = nullptr;
    if (!type_name.empty() && (type = type_for(type_name, bytes, path, found)) == nullptr)
        return 1;
    std::vector<std::string> findings;
    if (!buffer_findings(bytes, path, type, findings))
        return 1;
    for (const std::string& finding : findings)
        std::cout << finding << "\n";
    return findings.empty() ? 0 : 1;
}

// canon: BER in, the library's DER out (the record decoded as its type and encoded again), with
// what differed listed on stderr.
int run_canon(const std::string& path, const std::string& type_name, const std::string& output) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    ToolType found{nullptr, 0};
    const ToolType* type = type_for(type_name, bytes, path, found);
    if (type == nullptr)
        return 1;
    std::vector<unsigned char> library;
    if (!library_encoding(*type, bytes, path, library))
        return 1;
    std::vector<std::string> findings;
    buffer_findings(bytes, path, nullptr, findings);
    for (const std::string& finding : findings)
        std::fprintf(stderr, "kelmasn: %s: %s\n", path.c_str(), finding.c_str());
    const kelm_asn_buffer_t buffer{library.size(), library.data()};
    return write_output(output, buffer) ? 0 : complain("cannot write " + output);
}

// What craft is asked for.
struct CraftOptions {
    kelmasn_tool::BerForm form;
    int header_version = 2;
    long truncate = -1;
};

// craft: the record's encoding rewritten into BER variants, for negative tests.
int run_craft(const std::string& type_name, const std::string& path, const std::string& output,
              const CraftOptions& craft) {
    ToolType found{nullptr, 0};
    const ToolType* type = find_type(type_name, false, found);
    if (type == nullptr)
        return 1;
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error))
        return complain(error);
    nlohmann::ordered_json document;
    if (!parse_json(path, bytes, type->type->record_name, document))
        return 1;
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    try {
        kelmasn_tool::record_from_json(*type->type, document, record.bytes);
    } catch (const kelmasn_tool::JsonFieldError& e) {
        return complain(path + ": " + e.what());
    }
    kelm_asn_buffer_t encoded{0, nullptr};
    const unsigned int status = encode_record(*type, record.bytes, encoded, 2, false);
    if (status != 0)
        return complain(path + ": cannot encode " + type->type->record_name + ": " +
                        status_line(status));
    const std::vector<unsigned char> der(encoded.data, encoded.data + encoded.length);
    kelm_asn_buffer_free(encoded);
    kelmasn_tool::BerNode node;
    if (!kelmasn_tool::parse_ber(der, 4, KELM_ASN_MAX_NESTING, node, error))
        return complain(path + ": " + error);
    std::vector<unsigned char> out = {0x04, static_cast<unsigned char>(craft.header_version), 0xAC,
                                      0xDC};
    kelmasn_tool::write_ber(der, node, craft.form, out);
    if (craft.truncate >= 0 && static_cast<size_t>(craft.truncate) < out.size())
        out.resize(static_cast<size_t>(craft.truncate));
    const kelm_asn_buffer_t buffer{out.size(), out.data()};
    return write_output(output, buffer) ? 0 : complain("cannot write " + output);
}

// The differences between two JSON values by path: changed values, list entries added and
// removed.
void json_differences(const nlohmann::ordered_json& a, const nlohmann::ordered_json& b,
                      const std::string& path, std::vector<std::string>& out) {
    if (a.is_object() && b.is_object()) {
        for (auto it = a.begin(); it != a.end(); ++it) {
            const std::string at = path.empty() ? it.key() : path + "." + it.key();
            if (b.contains(it.key()))
                json_differences(it.value(), b[it.key()], at, out);
            else
                out.push_back(at + ": removed");
        }
        for (auto it = b.begin(); it != b.end(); ++it)
            if (!a.contains(it.key()))
                out.push_back((path.empty() ? it.key() : path + "." + it.key()) + ": added");
        return;
    }
    if (a.is_array() && b.is_array()) {
        const size_t common = std::min(a.size(), b.size());
        for (size_t i = 0; i < common; ++i)
            json_differences(a[i], b[i], path + "[" + std::to_string(i) + "]", out);
        for (size_t i = common; i < a.size(); ++i)
            out.push_back(path + "[" + std::to_string(i) + "]: removed " + a[i].dump());
        for (size_t i = common; i < b.size(); ++i)
            out.push_back(path + "[" + std::to_string(i) + "]: added " + b[i].dump());
        return;
    }
    if (a != b)
        out.push_back(path + ": " +
                      a.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + " -> " +
                      b.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

// diff: the two buffers' records compared field by field; exit 0 when they are equal.
int run_diff(const std::string& first, const std::string& second, const std::string& type_name) {
    nlohmann::ordered_json records[2];
    const std::string paths[2] = {first, second};
    for (int i = 0; i < 2; ++i) {
        std::vector<unsigned char> bytes;
        std::string error;
        if (!read_buffer(paths[i], bytes, error))
            return complain(error);
        ToolType found{nullptr, 0};
        const ToolType* type = type_for(type_name, bytes, paths[i], found);
        if (type == nullptr)
            return 1;
        RecordStorage record(*type);
        if (record.bytes == nullptr)
            return complain("out of memory");
        kelm_asn_buffer_t in{bytes.size(), bytes.data()};
        const unsigned int status =
            decode_record(*type, record.bytes, in, bytes.size() >= 2 ? bytes[1] : 2, false);
        if (status != 0)
            return complain(paths[i] + ": cannot decode " + type->type->record_name + ": " +
                            status_line(status));
        records[i] = decoded_json(*type, record.bytes, bytes);
    }
    std::vector<std::string> differences;
    json_differences(records[0], records[1], "", differences);
    for (const std::string& difference : differences)
        std::cout << difference << "\n";
    return differences.empty() ? 0 : 1;
}

// inspect: the header checked and shown, then the element tree labelled with field paths when
// the buffer decodes as the type (given, or with auto the first that decodes it). Where it does
// not, the tree is shown untyped and the library's status named; exit status 1.
int run_inspect(const std::string& path, const std::string& type_name) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    const size_t start = record_offset(bytes);
    if (start != 0)
        std::printf("%6u  header: length %zu, version %u, magic AC DC\n", 0u, start, bytes[1]);
    else
        std::printf("     -  no header 04 vv AC DC\n");
    kelmasn_tool::BerNode tree;
    if (!kelmasn_tool::parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error)) {
        std::fflush(stdout);
        return complain(path + ": " + error);
    }
    std::string out;
    // The tree unlabelled, for a buffer without a type or one that does not decode as it.
    const auto show_untyped = [&] {
        kelmasn_tool::inspect_untyped(bytes, tree, out);
        std::fputs(out.c_str(), stdout);
        std::fflush(stdout);
    };
    ToolType found{nullptr, 0};
    const ToolType* type = nullptr;
    if (type_name == "auto") {
        if (!first_decoding_type(bytes, found)) {
            show_untyped();
            return complain(path + ": no record type decodes this buffer");
        }
        type = &found;
    } else if (!type_name.empty() && (type = find_type(type_name, false, found)) == nullptr) {
        return 1;
    }
    if (type == nullptr) {
        show_untyped();
        return 0;
    }
    RecordStorage record(*type);
    if (record.bytes == nullptr)
        return complain("out of memory");
    kelm_asn_buffer_t in{bytes.size(), bytes.data()};
    const unsigned int status =
        decode_record(*type, record.bytes, in, bytes.size() > 1 ? bytes[1] : 2, false);
    if (status != 0) {
        show_untyped();
        return complain(path + ": does not decode as " + type->type->record_name + ": " +
                        status_line(status) + mismatch_of(*type, bytes));
    }
    const bool labelled =
        kelmasn_tool::inspect_record(bytes, tree, *type->type, record.bytes, out, error);
    std::fputs(out.c_str(), stdout);
    std::fflush(stdout);
    if (!labelled)
        return complain(path + ": " + error);
    if (tree.end < bytes.size())
        return complain(path + ": " + std::to_string(bytes.size() - tree.end) +
                        " bytes after the record, from offset " + std::to_string(tree.end));
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"kelmasn: inspect and convert the library's ASN.1 encodings.\n"
                 "Exit status: 0 success, 1 the input is refused, 2 usage."};
    app.set_version_flag("--version", std::string("kelmasn ") + kelmasn_library_version(),
                         "print the library's version and exit");
    app.name("kelmasn");
    app.require_subcommand(1);

    std::string der_path;
    CLI::App* der = app.add_subcommand("der", "Print the BER/DER element tree of a file");
    der->add_option("FILE", der_path, "the bytes to walk; - reads standard input")->required();

    CLI::App* types = app.add_subcommand("types", "List the record types and the names each is "
                                                  "accepted by");

    std::string type_name, input, output;
    RecordOptions options;
    const auto version_range = CLI::Range(1, 255);
    CLI::App* decode = app.add_subcommand("decode", "Print an encoded record as JSON");
    decode
        ->add_option("TYPE", type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103; auto tries "
                     "every type")
        ->required();
    decode->add_option("FILE", input, "the encoded buffer; - reads standard input")->required();
    decode->add_flag("--lcs", options.local,
                     "texts to the local code set of the environment's locale, as the LCS entry "
                     "points do, shown in UTF-8");
    decode
        ->add_option("--version", options.version,
                     "the header's version byte, 1 to 255 "
                     "(default 2)")
        ->check(version_range);
    decode->add_flag("--allow-trailing", options.allow_trailing,
                     "ignore bytes after the record instead of refusing the buffer");

    CLI::App* encode = app.add_subcommand("encode", "Encode a record given as JSON");
    encode
        ->add_option("TYPE", type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103")
        ->required();
    encode->add_option("FILE", input, "the record as JSON; - reads standard input")->required();
    encode->add_option("-o,--output", output,
                       "where the buffer goes; - for standard output (required on a terminal)");
    encode->add_flag("--lcs", options.local,
                     "texts from the JSON's UTF-8 to the local code set of the environment's "
                     "locale, then as the LCS entry points do; a text it cannot hold is refused");
    encode
        ->add_option("--version", options.version,
                     "the header's version byte, 1 to 255 "
                     "(default 2)")
        ->check(version_range);
    encode->add_flag("--strict", options.strict, "refuse a JSON record that leaves a field out");

    std::string sample_type;
    bool minimal = false, full = false;
    CLI::App* sample = app.add_subcommand("sample", "Print a filled JSON record of a type to start "
                                                    "from");
    sample->add_option("TYPE", sample_type, "record type, or type code")->required();
    auto* minimal_flag =
        sample->add_flag("--minimal", minimal, "the smallest record: zeros, empty texts and lists");
    sample->add_flag("--full", full, "every field given (the default)")->excludes(minimal_flag);

    std::string from, to, text = "-";
    bool hex_in = false, hex_out = false;
    CLI::App* str = app.add_subcommand("str", "Convert a text between code sets with the "
                                              "library's converters");
    const auto code_sets = CLI::IsMember(kelmasn_tool::code_set_names());
    str->add_option("--from", from, "the code set of the input")->required()->check(code_sets);
    str->add_option("--to", to, "the code set of the output")->required()->check(code_sets);
    str->add_option("TEXT", text, "the input's octets; - or nothing reads standard input");
    str->add_flag("--hex-in", hex_in, "the input is written in hex");
    str->add_flag("--hex-out", hex_out, "show the output in hex");

    std::string check_type;
    CLI::App* check = app.add_subcommand("check", "List what is BER but not DER-shaped in a "
                                                  "buffer; exit 0 when it is what the library "
                                                  "writes");
    check->add_option("FILE", input, "the buffer; - reads standard input")->required();
    check->add_option("--type", check_type,
                      "also compare with the library's encoding of the "
                      "record as this type (auto: the first that decodes)");

    CLI::App* canon = app.add_subcommand("canon", "Rewrite a BER buffer as the library's DER");
    canon->add_option("FILE", input, "the buffer; - reads standard input")->required();
    canon->add_option("-o,--output", output, "where the DER goes; - for standard output")
        ->required();
    canon->add_option("--type", check_type, "the record type (default: the first that decodes)");

    std::string inspect_type;
    CLI::App* inspect = app.add_subcommand("inspect", "Show a buffer's elements, each labelled "
                                                      "with the field it carries");
    inspect->add_option("FILE", input, "the buffer; - reads standard input")->required();
    inspect->add_option("--type", inspect_type, "the record type; auto tries every type");

    std::string second;
    CLI::App* diff = app.add_subcommand("diff", "Compare the records of two buffers field by "
                                                "field; exit 0 when equal");
    diff->add_option("A", input, "the first buffer")->required();
    diff->add_option("B", second, "the second buffer")->required();
    diff->add_option("--type", check_type, "the record type (default: the first that decodes)");

    CraftOptions craft_options;
    CLI::App* craft = app.add_subcommand("craft", "Encode a JSON record into BER variants for "
                                                  "negative tests");
    craft->add_option("FILE", input, "the record as JSON")->required();
    craft->add_option("--type", type_name, "the record type")->required();
    craft->add_option("-o,--output", output, "where the buffer goes; - for standard output")
        ->required();
    craft->add_flag("--indefinite", craft_options.form.indefinite,
                    "every constructed element with an indefinite length");
    craft->add_flag("--long-lengths", craft_options.form.long_lengths,
                    "every definite length in the four-octet long form");
    craft->add_option("--constructed-strings", craft_options.form.constructed_strings,
                      "strings longer than N octets cut into constructed pieces of N");
    craft
        ->add_option("--header-version", craft_options.header_version,
                     "the header's version byte, 0 to 255 (default 2)")
        ->check(CLI::Range(0, 255));
    craft->add_option("--truncate", craft_options.truncate, "keep only the first N bytes")
        ->check(CLI::NonNegativeNumber);

    std::string schema_type;
    CLI::App* schema = kelmasn_tool::add_schema_subcommand(app, schema_type);

    for (CLI::App* reads_a_buffer : {der, decode, inspect, check, canon, diff})
        reads_a_buffer
            ->add_option("--in-format", g_in_format,
                         "how the buffer is given: raw bytes (default), hex digits or base64")
            ->check(CLI::IsMember({"raw", "hex", "base64"}));

    // "kelmasn help [SUBCOMMAND]" is --help; any other first word must be a subcommand.
    if (argc >= 2 && std::strcmp(argv[1], "help") == 0) {
        CLI::App* about = &app;
        if (argc >= 3) {
            for (CLI::App* sub : app.get_subcommands({}))
                if (sub->get_name() == argv[2])
                    about = sub;
            if (about == &app)
                return usage_error(std::string("no subcommand named '") + argv[2] + "'");
        }
        std::cout << about->help();
        return 0;
    }
    if (argc >= 2 && argv[1][0] != '-') {
        bool known = false;
        for (CLI::App* sub : app.get_subcommands({}))
            known = known || sub->get_name() == argv[1];
        if (!known)
            return usage_error(std::string("unknown subcommand '") + argv[1] +
                               "'; kelmasn help lists the subcommands");
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        return usage_error(e.what());
    }
    if (der->parsed())
        return run_der(der_path);
    if (types->parsed())
        return run_types();
    if (decode->parsed())
        return run_decode(type_name, input, options);
    if (inspect->parsed())
        return run_inspect(input, inspect_type);
    if (check->parsed())
        return run_check(input, check_type);
    if (canon->parsed())
        return run_canon(input, check_type, output);
    if (diff->parsed())
        return run_diff(input, second, check_type);
    if (craft->parsed())
        return run_craft(type_name, input, output, craft_options);
    if (sample->parsed())
        return run_sample(sample_type, minimal);
    if (str->parsed())
        return run_str(from, to, text, hex_in, hex_out);
    if (schema->parsed())
        return kelmasn_tool::run_schema(schema_type);
    if (encode->parsed()) {
        if (output.empty()) {
            if (isatty(1))
                return usage_error("refusing to write a binary buffer to a terminal: give -o FILE, "
                                   "or -o - to write it to standard output all the same");
            output = "-";
        }
        return run_encode(type_name, input, output, options);
    }
    return 2;
}
