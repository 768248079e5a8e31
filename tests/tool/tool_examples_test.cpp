// examples/der/ holds one buffer per record type: what the tool makes of examples/json/. Each
// committed buffer is exactly the tool's encoding of its JSON, decodes, and its JSON encodes back
// to the same bytes.
#include <dirent.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_test_support.h"

namespace {

using kelm_tool_test::read_file;
using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

std::vector<std::string> files_in(const std::string& dir, const std::string& suffix) {
    std::vector<std::string> names;
    if (DIR* listing = opendir(dir.c_str())) {
        while (const dirent* entry = readdir(listing)) {
            const std::string name = entry->d_name;
            if (name.size() > suffix.size() &&
                name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0)
                names.push_back(name.substr(0, name.size() - suffix.size()));
        }
        closedir(listing);
    }
    std::sort(names.begin(), names.end());
    return names;
}

const std::string kExamples = KELMASN_EXAMPLES;

TEST(ToolExamples, EveryJsonExampleHasItsBufferAndNoBufferIsWithoutOne) {
    const std::vector<std::string> json = files_in(kExamples + "/json", ".json");
    EXPECT_EQ(json.size(), 68u);
    EXPECT_EQ(files_in(kExamples + "/der", ".der"), json);
}

TEST(ToolExamples, EachBufferIsTheToolsEncodingOfItsJsonAndDecodesBackToIt) {
    const std::string out = temp_path("example.der");
    const std::string again = temp_path("again.json");
    for (const std::string& record : files_in(kExamples + "/json", ".json")) {
        SCOPED_TRACE(record);
        const std::string der = kExamples + "/der/" + record + ".der";
        const ToolRun encode = run_tool("encode " + record + " '" + kExamples + "/json/" + record +
                                        ".json' -o '" + out + "'");
        ASSERT_EQ(encode.exit_code, 0) << encode.err;
        EXPECT_EQ(read_file(out), read_file(der)) << "scripts/make-examples.sh renews them";
        const ToolRun decode = run_tool("decode " + record + " '" + der + "'");
        ASSERT_EQ(decode.exit_code, 0) << decode.err;
        write_file(again, decode.out);
        const ToolRun reencode =
            run_tool("encode " + record + " '" + again + "' --strict -o '" + out + "'");
        ASSERT_EQ(reencode.exit_code, 0) << reencode.err;
        EXPECT_EQ(read_file(out), read_file(der));
    }
    std::remove(out.c_str());
    std::remove(again.c_str());
}

} // namespace
