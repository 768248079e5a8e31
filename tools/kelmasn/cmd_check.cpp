// check: what is BER but not DER-shaped in a buffer; canon: the library's DER of a BER buffer.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ber_tree.h"
#include "check.h"
#include "color.h"
#include "input.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

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
        complain(path + ": cannot decode " + type.type->record_name + ": " + status_line(status) +
                 mismatch_of(type, bytes));
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
// record, and with a type, the first difference from the library's encoding of its record. Each
// finding names its offset, and with a type the field path.
bool buffer_findings(const std::vector<unsigned char>& bytes, const std::string& path,
                     const ToolType* type, std::vector<std::string>& findings) {
    std::vector<CheckFinding> found;
    std::string error;
    if (!find_ber_forms(bytes, type != nullptr ? type->type : nullptr, found, error)) {
        complain(path + ": " + error);
        return false;
    }
    if (type != nullptr && found.empty()) {
        std::vector<unsigned char> library;
        if (!library_encoding(*type, bytes, path, library))
            return false;
        if (!find_library_difference(bytes, library, *type->type, found, error)) {
            complain(path + ": " + error);
            return false;
        }
    }
    for (const CheckFinding& finding : found)
        findings.push_back(finding.line());
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
        std::cout << paint_finding(finding, stdout) << "\n";
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
        std::fprintf(stderr, "%s %s: %s\n", paint_program_name(stderr).c_str(), path.c_str(),
                     paint_finding(finding, stderr).c_str());
    const kelm_asn_buffer_t buffer{library.size(), library.data()};
    return write_output(output, buffer) ? 0 : complain("cannot write " + output);
}

} // namespace

Subcommand add_check(CLI::App& tool) {
    struct Arguments {
        std::string input, type_name;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* check = tool.add_subcommand("check", "List what is BER but not DER-shaped in a "
                                                   "buffer; exit 0 when it is what the library "
                                                   "writes");
    check->add_option("FILE", a->input, "the buffer; - reads standard input")->required();
    check->add_option("--type", a->type_name,
                      "also compare with the library's encoding of the "
                      "record as this type (auto: the first that decodes)");
    add_in_format_option(*check);
    return {check, [a] { return run_check(a->input, a->type_name); }};
}

Subcommand add_canon(CLI::App& tool) {
    struct Arguments {
        std::string input, output, type_name;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* canon = tool.add_subcommand("canon", "Rewrite a BER buffer as the library's DER");
    canon->add_option("FILE", a->input, "the buffer; - reads standard input")->required();
    canon->add_option("-o,--output", a->output, "where the DER goes; - for standard output")
        ->required();
    canon->add_option("--type", a->type_name, "the record type (default: the first that decodes)");
    add_in_format_option(*canon);
    return {canon, [a] { return run_canon(a->input, a->type_name, a->output); }};
}

} // namespace kelmasn_tool
