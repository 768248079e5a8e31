// The kelmasn tool's types, encode and decode subcommands.
#include <dirent.h>
#include <sys/wait.h>

#include <algorithm>
#include <vector>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "tool_test_support.h"
#include <nlohmann/json.hpp>

namespace {

using kelm_tool_test::line_count;
using kelm_tool_test::read_file;
using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

std::string example(const std::string& name) {
    return std::string(KELMASN_EXAMPLES) + "/json/" + name + ".json";
}

} // namespace

TEST(ToolTypes, ListsEveryRecordType) {
    const ToolRun run = run_tool("types");
    EXPECT_EQ(run.exit_code, 0);
    for (const char* name : {"uuid_t", "value_s_t", "attr_s_t", "attrlist_s_t"})
        EXPECT_NE(run.out.find(name), std::string::npos) << name;
}

// The record types that have an example in examples/json/ (named after the record type).
std::vector<std::string> example_types() {
    std::vector<std::string> types;
    const std::string dir = std::string(KELMASN_EXAMPLES) + "/json";
    if (DIR* listing = opendir(dir.c_str())) {
        while (const dirent* entry = readdir(listing)) {
            const std::string name = entry->d_name;
            if (name.size() > 5 && name.compare(name.size() - 5, 5, ".json") == 0)
                types.push_back(name.substr(0, name.size() - 5));
        }
        closedir(listing);
    }
    std::sort(types.begin(), types.end());
    return types;
}

TEST(ToolJson, EveryRecordTypeHasAJsonExample) {
    const std::vector<std::string> examples = example_types();
    const ToolRun run = run_tool("types");
    ASSERT_EQ(run.exit_code, 0);
    size_t listed = 0;
    for (size_t at = 0; at < run.out.size();) {
        const size_t end = run.out.find('\n', at);
        const std::string line = run.out.substr(at, end - at);
        const std::string record = line.substr(0, line.find(' '));
        if (!record.empty()) {
            ++listed;
            EXPECT_TRUE(std::find(examples.begin(), examples.end(), record) != examples.end())
                << "no examples/json/" << record << ".json";
        }
        at = end == std::string::npos ? run.out.size() : end + 1;
    }
    EXPECT_GE(listed, 4u);
}

TEST(ToolJson, EveryExampleRoundTripsThroughEncodeAndDecode) {
    const std::vector<std::string> types = example_types();
    ASSERT_GE(types.size(), 4u);
    for (const std::string& type_name : types) {
        const char* type = type_name.c_str();
        SCOPED_TRACE(type);
        const std::string buffer = temp_path(std::string(type) + ".der");
        const ToolRun encoded = run_tool(std::string("encode ") + type + " '" + example(type) +
                                         "' -o '" + buffer + "'");
        ASSERT_EQ(encoded.exit_code, 0) << encoded.err;
        const ToolRun decoded = run_tool(std::string("decode ") + type + " '" + buffer + "'");
        ASSERT_EQ(decoded.exit_code, 0) << decoded.err;
        const nlohmann::json original = nlohmann::json::parse(read_file(example(type)));
        const nlohmann::json back = nlohmann::json::parse(decoded.out);
        EXPECT_EQ(back, original) << decoded.out;
        const ToolRun der = run_tool("der '" + buffer + "'");
        EXPECT_EQ(der.exit_code, 0) << der.err;
        EXPECT_NE(der.out.find("header: length 4, version 2"), std::string::npos);
        std::remove(buffer.c_str());
    }
}

TEST(ToolJson, AFieldThatDoesNotFitIsNamed) {
    struct Row {
        const char* type;
        const char* json;
        const char* expected;
    } rows[] = {
        {"attrlist_s_t", R"({"attrs": [{"name": 5}]})", "attrs[0].name: expected a string"},
        {"attrlist_s_t", R"({"atrs": []})", "atrs: no such field"},
        {"uuid_t", R"({"node": "0102"})", "node: expected exactly 6 bytes"},
        {"uuid_t", R"({"time_mid": 70000})", "time_mid: integer out of range"},
        {"value_s_t", R"({"bin_value": "zz"})", "bin_value: not a hex digit"},
        {"attr_s_t", R"({"values": {}})", "values: expected an array"},
        {"attr_s_t", R"([1, 2])", "expected an object"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.json);
        const std::string path = temp_path("bad.json");
        write_file(path, row.json);
        const ToolRun run =
            run_tool(std::string("encode ") + row.type + " '" + path + "' -o /dev/null");
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_NE(run.err.find(row.expected), std::string::npos) << run.err;
        std::remove(path.c_str());
    }
}

TEST(ToolJson, MalformedJsonAndUnknownTypesAreRejected) {
    const std::string path = temp_path("broken.json");
    write_file(path, "{\"attrs\": [");
    ToolRun run = run_tool("encode attrlist_s_t '" + path + "' -o /dev/null");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("not JSON"), std::string::npos) << run.err;
    run = run_tool("encode no_such_type '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("unknown record type no_such_type"), std::string::npos) << run.err;
    std::remove(path.c_str());
}

TEST(ToolJson, ABufferThatDoesNotDecodeGivesTheStatusAndItsMeaning) {
    const std::string path = temp_path("garbage.der");
    write_file(path, std::string("\x04\x02\xAC\xDC\x30\x05\x30\x00", 8));
    ToolRun run = run_tool("decode attrlist_s_t '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x10652198 (input ends too early)"), std::string::npos)
        << run.err;
    write_file(path, "not a buffer");
    run = run_tool("decode attrlist_s_t '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x10652196"), std::string::npos) << run.err;
    std::remove(path.c_str());
}

TEST(ToolJson, NestingIsBoundedBeforeAndWhileEncoding) {
    // `levels` name/value entries, each the only nested entry of the one before.
    auto nested_document = [](unsigned int levels) {
        std::string text;
        for (unsigned int i = 1; i < levels; ++i)
            text += "{\"nested\": [";
        text += "{}";
        for (unsigned int i = 1; i < levels; ++i)
            text += "]}";
        return text;
    };
    const std::string path = temp_path("deep.json");
    struct Row {
        unsigned int levels;
        int exit_code;
        const char* expected;
    } rows[] = {
        {32, 0, ""},
        {33, 1, "cannot encode namevalue_s_t: status 0x1065219b (bad encoding)"},
        {100000, 1, "records nest deeper than 64 levels"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.levels);
        write_file(path, nested_document(row.levels));
        const ToolRun run = run_tool("encode namevalue_s_t '" + path + "' -o /dev/null");
        EXPECT_EQ(run.exit_code, row.exit_code) << run.err;
        EXPECT_NE(run.err.find(row.expected), std::string::npos) << run.err;
    }
    std::remove(path.c_str());
}
