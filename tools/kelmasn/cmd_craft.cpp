// craft: a JSON record's encoding rewritten into the BER variants that decoders must accept or
// refuse, for negative tests.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ber_tree.h"
#include "input.h"
#include "json_records.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

// What craft is asked for.
struct CraftOptions {
    BerForm form;
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
    kelm_asn_buffer_t encoded{0, nullptr};
    if (!encode_json_record(*type, path, bytes, {}, 2, false, encoded))
        return 1;
    const std::vector<unsigned char> der(encoded.data, encoded.data + encoded.length);
    kelm_asn_buffer_free(encoded);
    BerNode node;
    if (!parse_ber(der, 4, KELM_ASN_MAX_NESTING, node, error))
        return complain(path + ": " + error);
    std::vector<unsigned char> out = {0x04, static_cast<unsigned char>(craft.header_version), 0xAC,
                                      0xDC};
    write_ber(der, node, craft.form, out);
    if (craft.truncate >= 0 && static_cast<size_t>(craft.truncate) < out.size())
        out.resize(static_cast<size_t>(craft.truncate));
    const kelm_asn_buffer_t buffer{out.size(), out.data()};
    return write_output(output, buffer) ? 0 : complain("cannot write " + output);
}

} // namespace

Subcommand add_craft(CLI::App& tool) {
    struct Arguments {
        std::string input, output, type_name;
        CraftOptions options;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* craft = tool.add_subcommand("craft", "Encode a JSON record into BER variants for "
                                                   "negative tests");
    craft->add_option("FILE", a->input, "the record as JSON")->required();
    craft->add_option("--type", a->type_name, "the record type")->required();
    craft->add_option("-o,--output", a->output, "where the buffer goes; - for standard output")
        ->required();
    craft->add_flag("--indefinite", a->options.form.indefinite,
                    "every constructed element with an indefinite length");
    craft->add_flag("--long-lengths", a->options.form.long_lengths,
                    "every definite length in the four-octet long form");
    craft->add_option("--constructed-strings", a->options.form.constructed_strings,
                      "strings longer than N octets cut into constructed pieces of N");
    craft
        ->add_option("--header-version", a->options.header_version,
                     "the header's version byte, 0 to 255 (default 2)")
        ->check(CLI::Range(0, 255));
    craft->add_option("--truncate", a->options.truncate, "keep only the first N bytes")
        ->check(CLI::NonNegativeNumber);
    return {craft, [a] { return run_craft(a->type_name, a->input, a->output, a->options); }};
}

} // namespace kelmasn_tool
