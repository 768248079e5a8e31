// Colour in the tool's output (--color=auto|always|never): on a terminal by default, never in a
// pipe or a file. Only text meant for a person is coloured (element trees, findings, differences,
// the "kelmasn:" of an error line); JSON and buffers are written as they are.
#ifndef KELMASN_TOOL_COLOR_H
#define KELMASN_TOOL_COLOR_H

#include <cstdio>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace kelmasn_tool {

// Adds --color to a subcommand; every subcommand takes it.
void add_color_option(CLI::App& subcommand);

// Whether text written to `stream` (stdout or stderr) is coloured: always, never, or (auto) when
// the stream is a terminal.
bool colored(std::FILE* stream);

// The lines of an element tree as der and inspect write them: the offset column dim, the field
// path cyan, the element's name bold, its value green. `text` unchanged when not `colored`.
std::string paint_tree(const std::string& text, std::FILE* stream);

// A finding or a difference, "offset N: path: what" or "path: a -> b": the offset yellow, the
// path cyan.
std::string paint_finding(const std::string& line, std::FILE* stream);

// The "kelmasn:" that starts an error line, bold red.
std::string paint_program_name(std::FILE* stream);

} // namespace kelmasn_tool

#endif
