// str: the library's code-set converters on the command line.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "code_sets.h"
#include "input.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

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
    const unsigned int status = convert_text(from, to, in, out, error);
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

} // namespace

Subcommand add_str(CLI::App& tool) {
    struct Arguments {
        std::string from, to, text = "-";
        bool hex_in = false, hex_out = false;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* str = tool.add_subcommand("str", "Convert a text between code sets with the "
                                               "library's converters");
    const auto code_sets = CLI::IsMember(code_set_names());
    str->add_option("--from", a->from, "the code set of the input")->required()->check(code_sets);
    str->add_option("--to", a->to, "the code set of the output")->required()->check(code_sets);
    str->add_option("TEXT", a->text, "the input's octets; - or nothing reads standard input");
    str->add_flag("--hex-in", a->hex_in, "the input is written in hex");
    str->add_flag("--hex-out", a->hex_out, "show the output in hex");
    return {str, [a] { return run_str(a->from, a->to, a->text, a->hex_in, a->hex_out); }};
}

} // namespace kelmasn_tool
