// `kelmasn schema TYPE`: a record type's definition in the records' ASN.1 module.
#include "schema.h"

#include <memory>

#include "subcommands.h"

#include <cstdio>
#include <iostream>
#include <sstream>

#include "record_registry.h"
#include "type_code_records.h"

namespace kelmasn_tool {
namespace {

const char kRecordLine[] = "-- record: ";

// The C record that TYPE names: a record type's record, class or short name, a type code or the
// record name of a type reached by one, or the module's own name of the type. Empty when none.
std::string record_named(const std::string& name) {
    if (const kelm_record_type* type = kelm_record_type_named(name.c_str()))
        return type->record_name;
    unsigned int count = 0;
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    unsigned int code = 0;
    const bool numeric = parse_type_code(name, code);
    for (unsigned int i = 0; i < count; ++i)
        if (numeric ? coded[i].code == code : name == coded[i].type->record_name)
            return coded[i].type->record_name;
    // The module's name of the type: the first word of the line after a record line.
    std::istringstream lines(records_module_text());
    std::string line, record;
    while (std::getline(lines, line)) {
        if (!record.empty() && line.compare(0, name.size() + 1, name + " ") == 0)
            return record;
        record = line.compare(0, sizeof kRecordLine - 1, kRecordLine) == 0
                     ? line.substr(sizeof kRecordLine - 1)
                     : "";
    }
    return "";
}

} // namespace

std::string record_definition(const std::string& module, const std::string& record) {
    std::istringstream lines(module);
    std::string line, out;
    bool inside = false;
    while (std::getline(lines, line)) {
        if (!inside && line == kRecordLine + record)
            inside = true;
        if (!inside)
            continue;
        if (line.empty())
            break;
        out += line + "\n";
    }
    return out;
}

CLI::App* add_schema_subcommand(CLI::App& app, std::string& type_name) {
    CLI::App* schema = app.add_subcommand(
        "schema", "Print a record type's definition in the records' ASN.1 module (installed as "
                  "share/kelmasn/kelmasn.asn), with its C record");
    schema->add_option("TYPE", type_name, "record type, type code, or the module's name of it")
        ->required();
    return schema;
}

int run_schema(const std::string& type_name) {
    const std::string record = record_named(type_name);
    const std::string definition =
        record.empty() ? "" : record_definition(records_module_text(), record);
    if (definition.empty()) {
        std::fprintf(stderr, "kelmasn: unknown record type %s (kelmasn types lists them)\n",
                     type_name.c_str());
        return 1;
    }
    std::cout << definition;
    return 0;
}

Subcommand add_schema(CLI::App& tool) {
    auto type_name = std::make_shared<std::string>();
    CLI::App* app = add_schema_subcommand(tool, *type_name);
    return {app, [type_name] { return run_schema(*type_name); }};
}

} // namespace kelmasn_tool
