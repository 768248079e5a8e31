// inspect: a buffer's header and elements, each labelled with the field of the record it carries.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ber_tree.h"
#include "color.h"
#include "input.h"
#include "inspect.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

// inspect: the header checked and shown, then the element tree labelled with field paths when
// the buffer decodes as the type (given, or with auto the first that decodes it). Where it does
// not, the tree is labelled up to the first element that does not fit the type and shown untyped
// from there, and that element and the library's status are named; exit status 1.
int run_inspect(const std::string& path, const std::string& type_name) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    const size_t start = record_offset(bytes);
    if (start != 0)
        std::printf("%s",
                    paint_tree("     0  header: length " + std::to_string(start) + ", version " +
                                   std::to_string(bytes[1]) + ", magic AC DC\n",
                               stdout)
                        .c_str());
    else
        std::printf("%s", paint_tree("     -  no header 04 vv AC DC\n", stdout).c_str());
    BerNode tree;
    if (!parse_ber(bytes, start, KELM_ASN_MAX_NESTING, tree, error)) {
        std::fflush(stdout);
        return complain(path + ": " + error);
    }
    std::string out;
    // The tree unlabelled, for a buffer without a type or one that does not decode as it.
    const auto show_untyped = [&] {
        inspect_untyped(bytes, tree, out);
        std::fputs(paint_tree(out, stdout).c_str(), stdout);
        std::fflush(stdout);
    };
    ToolType found{nullptr, 0};
    const ToolType* type = nullptr;
    if (type_name == "auto") {
        if (!first_decoding_type(bytes, found)) {
            show_untyped();
            return complain(path + ": no record type decodes this buffer" +
                            undecodable_reason(bytes));
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
        // Labelled as far as the elements fit the type's shape, untyped from the first that does
        // not.
        inspect_by_shape(bytes, tree, label_by_shape(tree, *type->type), out);
        std::fputs(paint_tree(out, stdout).c_str(), stdout);
        std::fflush(stdout);
        return complain(path + ": does not decode as " + type->type->record_name + ": " +
                        status_line(status) + mismatch_of(*type, bytes));
    }
    const bool labelled = inspect_record(bytes, tree, *type->type, record.bytes, out, error);
    std::fputs(paint_tree(out, stdout).c_str(), stdout);
    std::fflush(stdout);
    if (!labelled)
        return complain(path + ": " + error);
    if (tree.end < bytes.size())
        return complain(path + ": " + std::to_string(bytes.size() - tree.end) +
                        " bytes after the record, from offset " + std::to_string(tree.end));
    return 0;
}

} // namespace

Subcommand add_inspect(CLI::App& tool) {
    struct Arguments {
        std::string input, type_name;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* inspect = tool.add_subcommand("inspect", "Show a buffer's elements, each labelled "
                                                       "with the field it carries");
    inspect->add_option("FILE", a->input, "the buffer; - reads standard input")->required();
    inspect->add_option("--type", a->type_name, "the record type; auto tries every type");
    add_in_format_option(*inspect);
    return {inspect, [a] { return run_inspect(a->input, a->type_name); }};
}

} // namespace kelmasn_tool
