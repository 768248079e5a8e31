// Colour with fmt's text styles (ANSI escape sequences), laid over the plain lines so that the
// plain output stays the one reference.
#include "color.h"

#include <unistd.h>

#include <fmt/color.h>
#include <fmt/format.h>

namespace kelmasn_tool {
namespace {

std::string g_color_mode = "auto";

std::string styled(const fmt::text_style& style, const std::string& text) {
    return text.empty() ? text : fmt::format(style, "{}", text);
}

const fmt::text_style kOffset = fmt::fg(fmt::terminal_color::bright_black);
const fmt::text_style kPath = fmt::fg(fmt::terminal_color::cyan);
const fmt::text_style kName = fmt::emphasis::bold;
const fmt::text_style kValue = fmt::fg(fmt::terminal_color::green);
const fmt::text_style kWhere = fmt::fg(fmt::terminal_color::yellow);

// One line of a tree: "OFFSET  INDENT[PATH  ]NAME[: VALUE]".
std::string paint_tree_line(const std::string& line) {
    if (line.size() < 8)
        return line;
    std::string out = styled(kOffset, line.substr(0, 6)) + line.substr(6, 2);
    size_t at = 8;
    const size_t indent_end = line.find_first_not_of(' ', at);
    if (indent_end == std::string::npos)
        return out + line.substr(at);
    out += line.substr(at, indent_end - at);
    at = indent_end;
    const size_t label_end = line.find("  ", at);
    if (label_end != std::string::npos) {
        out += styled(kPath, line.substr(at, label_end - at)) + "  ";
        at = label_end + 2;
    }
    const size_t value_start = line.find(": ", at);
    if (value_start == std::string::npos)
        return out + styled(kName, line.substr(at));
    // an absent optional part: "path: absent (OPTIONAL)"
    if (line.compare(0, 6, "     -") == 0 && label_end == std::string::npos)
        return out + styled(kPath, line.substr(at, value_start - at)) + line.substr(value_start);
    return out + styled(kName, line.substr(at, value_start - at)) + ": " +
           styled(kValue, line.substr(value_start + 2));
}

} // namespace

void add_color_option(CLI::App& subcommand) {
    subcommand
        .add_option("--color", g_color_mode,
                    "colour: auto (on a terminal, the default), always or never")
        ->check(CLI::IsMember({"auto", "always", "never"}));
}

bool colored(std::FILE* stream) {
    if (g_color_mode == "always")
        return true;
    if (g_color_mode == "never")
        return false;
    return isatty(fileno(stream)) == 1;
}

std::string paint_tree(const std::string& text, std::FILE* stream) {
    if (!colored(stream))
        return text;
    std::string out;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        out += paint_tree_line(text.substr(start, end - start));
        if (end < text.size())
            out += '\n';
        start = end + 1;
    }
    return out;
}

std::string paint_finding(const std::string& line, std::FILE* stream) {
    if (!colored(stream))
        return line;
    size_t at = 0;
    std::string out;
    if (line.compare(0, 7, "offset ") == 0) {
        at = line.find(": ");
        if (at == std::string::npos)
            return line;
        out = styled(kWhere, line.substr(0, at)) + ": ";
        at += 2;
    }
    const size_t path_end = line.find(": ", at);
    // A path has no spaces: "attrs[1].name".
    if (path_end == std::string::npos || line.find(' ', at) < path_end)
        return out + line.substr(at);
    return out + styled(kPath, line.substr(at, path_end - at)) + line.substr(path_end);
}

std::string paint_program_name(std::FILE* stream) {
    return colored(stream)
               ? styled(fmt::emphasis::bold | fmt::fg(fmt::terminal_color::red), "kelmasn:")
               : "kelmasn:";
}

} // namespace kelmasn_tool
