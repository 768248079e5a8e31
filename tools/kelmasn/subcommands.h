// The tool's subcommands. Each one adds itself to the command line, binding its arguments to
// state of its own, and returns how it runs. A new subcommand is one add_ function in a source of
// its own, listed in main.cpp's table and in CMakeLists.txt.
#ifndef KELMASN_TOOL_SUBCOMMANDS_H
#define KELMASN_TOOL_SUBCOMMANDS_H

#include <functional>

#include <CLI/CLI.hpp>

namespace kelmasn_tool {

struct Subcommand {
    CLI::App* app;            // owned by the tool's CLI::App
    std::function<int()> run; // run once the command line is parsed; returns the exit status
};

Subcommand add_der(CLI::App& tool);
Subcommand add_types(CLI::App& tool);
Subcommand add_decode(CLI::App& tool);
Subcommand add_encode(CLI::App& tool);
Subcommand add_sample(CLI::App& tool);
Subcommand add_str(CLI::App& tool);
Subcommand add_check(CLI::App& tool);
Subcommand add_canon(CLI::App& tool);
Subcommand add_inspect(CLI::App& tool);
Subcommand add_diff(CLI::App& tool);
Subcommand add_craft(CLI::App& tool);
Subcommand add_schema(CLI::App& tool);

} // namespace kelmasn_tool

#endif
