// decode: a buffer as JSON (auto: as every type that decodes it); encode: a JSON record into its
// buffer.
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "color.h"
#include "der_dump.h"
#include "input.h"
#include "json_records.h"
#include "kelm/kelm_entry.h"
#include "local_text.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

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

// What decode and encode are asked for besides TYPE and FILE.
struct RecordOptions {
    bool local = false;          // --lcs
    bool strict = false;         // --strict: a JSON record must give every field
    bool allow_trailing = false; // --allow-trailing: bytes after the record are ignored
    int version = 2;             // --version: the header's version byte
};

// The local code set of the environment's locale, for --lcs; null with the message written when
// it has no conversion to and from UTF-8.
std::unique_ptr<LocalText> local_text(const RecordOptions& options) {
    if (!options.local)
        return nullptr;
    std::setlocale(LC_ALL, "");
    auto text = std::make_unique<LocalText>();
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
    DumpError error{0, ""};
    if (!element_end(bytes, record_offset(bytes), end, error) || end >= bytes.size())
        return true;
    complain(path + ": " + std::to_string(bytes.size() - end) +
             " bytes after the record, from offset " + std::to_string(end) +
             " (--allow-trailing accepts them)");
    return false;
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
        return complain(path + ": no record type decodes this buffer" + undecodable_reason(bytes));
    std::string names;
    for (size_t i = 1; i < exact.size(); ++i)
        names += std::string(i > 1 ? ", " : "") + exact[i].type->record_name;
    std::fprintf(stderr, "%s %s: decodes as %s%s%s\n", paint_program_name(stderr).c_str(),
                 path.c_str(), exact[0].type->record_name,
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
                        status_line(status) + mismatch_of(*type, bytes, options.version));
    if (!check_trailing(path, bytes, options))
        return 1;
    JsonOptions json_options;
    json_options.local = local.get();
    std::cout << decoded_json(*type, record.bytes, bytes, json_options)
                     .dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
              << "\n";
    return 0;
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
    JsonOptions json_options;
    json_options.strict = options.strict;
    json_options.local = local.get();
    kelm_asn_buffer_t buffer{0, nullptr};
    if (!encode_json_record(*type, path, bytes, json_options, options.version, options.local,
                            buffer))
        return 1;
    const bool written = write_output(output, buffer);
    kelm_asn_buffer_free(buffer);
    if (!written)
        return complain("cannot write " + output);
    return 0;
}

} // namespace

Subcommand add_decode(CLI::App& tool) {
    struct Arguments {
        std::string type_name, input;
        RecordOptions options;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* decode = tool.add_subcommand("decode", "Print an encoded record as JSON");
    decode
        ->add_option("TYPE", a->type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103; auto tries "
                     "every type")
        ->required();
    decode->add_option("FILE", a->input, "the encoded buffer; - reads standard input")->required();
    decode->add_flag("--lcs", a->options.local,
                     "texts to the local code set of the environment's locale, as the LCS entry "
                     "points do, shown in UTF-8");
    decode
        ->add_option("--version", a->options.version,
                     "the header's version byte, 1 to 255 "
                     "(default 2)")
        ->check(CLI::Range(1, 255));
    decode->add_flag("--allow-trailing", a->options.allow_trailing,
                     "ignore bytes after the record instead of refusing the buffer");
    add_in_format_option(*decode);
    return {decode, [a] { return run_decode(a->type_name, a->input, a->options); }};
}

Subcommand add_encode(CLI::App& tool) {
    struct Arguments {
        std::string type_name, input, output;
        RecordOptions options;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* encode = tool.add_subcommand("encode", "Encode a record given as JSON");
    encode
        ->add_option("TYPE", a->type_name,
                     "record type, e.g. attrlist_s_t, or a type code, e.g. 0x103")
        ->required();
    encode->add_option("FILE", a->input, "the record as JSON; - reads standard input")->required();
    encode->add_option("-o,--output", a->output,
                       "where the buffer goes; - for standard output (required on a terminal)");
    encode->add_flag("--lcs", a->options.local,
                     "texts from the JSON's UTF-8 to the local code set of the environment's "
                     "locale, then as the LCS entry points do; a text it cannot hold is refused");
    encode
        ->add_option("--version", a->options.version,
                     "the header's version byte, 1 to 255 "
                     "(default 2)")
        ->check(CLI::Range(1, 255));
    encode->add_flag("--strict", a->options.strict, "refuse a JSON record that leaves a field out");
    return {encode, [a] {
                if (a->output.empty()) {
                    if (isatty(1))
                        return usage_error(
                            "refusing to write a binary buffer to a terminal: give -o FILE, "
                            "or -o - to write it to standard output all the same");
                    a->output = "-";
                }
                return run_encode(a->type_name, a->input, a->output, a->options);
            }};
}

} // namespace kelmasn_tool
