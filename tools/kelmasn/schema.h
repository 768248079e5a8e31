// `kelmasn schema TYPE`: a record type's definition in the records' ASN.1 module.
#ifndef KELMASN_TOOL_SCHEMA_H
#define KELMASN_TOOL_SCHEMA_H

#include <string>

#include <CLI/CLI.hpp>

namespace kelmasn_tool {

// The records' ASN.1 module (asn1/kelmasn.asn), as the tool was built with it.
const std::string& records_module_text();

// The definition of the C record `record` in `module`: its line "-- record: <record>" and the
// lines after it up to the blank line that ends the type's assignment. Empty when the module
// has no such line.
std::string record_definition(const std::string& module, const std::string& record);

// Registers the subcommand; TYPE goes into `type_name`. Run run_schema when it was parsed.
CLI::App* add_schema_subcommand(CLI::App& app, std::string& type_name);

// Prints the definition of the record type that TYPE names (a name that `kelmasn types` lists, a
// type code, or the module's name of the type) and returns 0; for a name of no record type, one
// line on standard error and 1.
int run_schema(const std::string& type_name);

} // namespace kelmasn_tool

#endif
