// kelmasn schema TYPE prints the record type's definition from the records' ASN.1 module,
// asn1/kelmasn.asn: its "-- record:" line and its type assignment, as the module file has them.
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "record_registry.h"
#include "tool_test_support.h"

namespace {

using kelm_tool_test::run_tool;
using kelm_tool_test::ToolRun;

// The lines of the module file from "-- record: <record>" to the blank line after its type.
std::string definition_in_module_file(const std::string& record) {
    std::ifstream in(KELMASN_ASN1_MODULE);
    std::string line, out;
    bool inside = false;
    while (std::getline(in, line)) {
        inside = inside || line == "-- record: " + record;
        if (inside && line.empty())
            break;
        if (inside)
            out += line + "\n";
    }
    return out;
}

std::vector<std::string> every_record() {
    std::vector<std::string> records;
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        records.emplace_back(types[i]->record_name);
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        records.emplace_back(coded[i].type->record_name);
    return records;
}

} // namespace

TEST(ToolSchema, PrintsEveryRecordTypesDefinitionFromTheModule) {
    for (const std::string& record : every_record()) {
        SCOPED_TRACE(record);
        const std::string expected = definition_in_module_file(record);
        ASSERT_NE(expected.find(" ::= "), std::string::npos) << "the module has no " << record;
        const ToolRun run = run_tool("schema " + record);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        EXPECT_EQ(run.out, expected);
        EXPECT_EQ(run.err, "");
    }
}

TEST(ToolSchema, TakesEveryNameOfTheTypeTheTypeCodeAndTheModulesName) {
    const std::string attrlist = definition_in_module_file("attrlist_s_t");
    for (const char* name :
         {"attrlist_s_t", "asn_attrlist_t", "attrlist_t", "attrlist", "Attrlist"})
        EXPECT_EQ(run_tool(std::string("schema ") + name).out, attrlist) << name;
    const std::string updates = definition_in_module_file("ekobj_update_list_s_t");
    EXPECT_EQ(run_tool("schema 0x104").out, updates);
    EXPECT_EQ(run_tool("schema 260").out, updates);
    EXPECT_EQ(run_tool("schema EkobjUpdateList").out, updates);
    const std::string bare = run_tool("schema 0x106").out;
    EXPECT_EQ(bare, definition_in_module_file("int"));
    EXPECT_EQ(bare.substr(0, bare.find('\n')), "-- record: int");
}

TEST(ToolSchema, UnknownTypeGivesOneLineAndExitOne) {
    const ToolRun run = run_tool("schema no_such_record_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err,
              "kelmasn: unknown record type no_such_record_t (kelmasn types lists them)\n");
    EXPECT_EQ(run_tool("schema").exit_code, 2);
}
