// der: the element tree of a buffer; types: the record types and their names.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "color.h"
#include "der_dump.h"
#include "input.h"
#include "messages.h"
#include "record_registry.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

int run_der(const std::string& path) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_buffer(path, bytes, error))
        return complain(error);
    std::string out;
    DumpError failure{0, ""};
    const bool ok = dump_der(std::move(bytes), out, failure);
    out = paint_tree(out, stdout);
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

} // namespace

Subcommand add_der(CLI::App& tool) {
    auto path = std::make_shared<std::string>();
    CLI::App* der = tool.add_subcommand("der", "Print the BER/DER element tree of a file");
    der->add_option("FILE", *path, "the bytes to walk; - reads standard input")->required();
    add_in_format_option(*der);
    return {der, [path] { return run_der(*path); }};
}

Subcommand add_types(CLI::App& tool) {
    CLI::App* types = tool.add_subcommand("types", "List the record types and the names each is "
                                                   "accepted by");
    return {types, [] { return run_types(); }};
}

} // namespace kelmasn_tool
