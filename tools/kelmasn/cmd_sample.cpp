// sample: a filled JSON record of a type to start from.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "input.h"
#include "messages.h"
#include "samples.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

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
    fill_sample(*type->type, record.bytes, minimal);
    std::cout << record_to_json(*type->type, record.bytes).dump(2) << "\n";
    return 0;
}

} // namespace

Subcommand add_sample(CLI::App& tool) {
    struct Arguments {
        std::string type_name;
        bool minimal = false, full = false;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* sample = tool.add_subcommand("sample", "Print a filled JSON record of a type to "
                                                     "start from");
    sample->add_option("TYPE", a->type_name, "record type, or type code")->required();
    auto* minimal_flag = sample->add_flag("--minimal", a->minimal,
                                          "the smallest record: zeros, empty texts and lists");
    sample->add_flag("--full", a->full, "every field given (the default)")->excludes(minimal_flag);
    return {sample, [a] { return run_sample(a->type_name, a->minimal); }};
}

} // namespace kelmasn_tool
