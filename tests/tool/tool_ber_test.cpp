// check, canon, craft and diff: every example buffer is what the library writes; its record
// crafted into each BER variant (indefinite lengths, long length forms, strings cut into
// constructed pieces) is found BER-only by check, decodes to the same record, and canon gives the
// example buffer back byte for byte; diff names the field that differs.
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

const std::string kExamples = KELMASN_EXAMPLES;

std::vector<std::string> example_types() {
    std::vector<std::string> names;
    if (DIR* listing = opendir((kExamples + "/json").c_str())) {
        while (const dirent* entry = readdir(listing)) {
            const std::string name = entry->d_name;
            if (name.size() > 5 && name.compare(name.size() - 5, 5, ".json") == 0)
                names.push_back(name.substr(0, name.size() - 5));
        }
        closedir(listing);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string der_of(const std::string& type) {
    return kExamples + "/der/" + type + ".der";
}

std::string json_of(const std::string& type) {
    return kExamples + "/json/" + type + ".json";
}

TEST(ToolCheck, EveryExampleBufferIsWhatTheLibraryWrites) {
    for (const std::string& type : example_types()) {
        SCOPED_TRACE(type);
        for (const std::string& args :
             {"check '" + der_of(type) + "'", "check '" + der_of(type) + "' --type " + type}) {
            const ToolRun run = run_tool(args);
            EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
            EXPECT_EQ(run.out, "");
        }
    }
}

TEST(ToolCheck, NamesEveryBerOnlyFormWithItsOffset) {
    // 04 02 AC DC, then SEQUENCE (indefinite) { OCTET STRING constructed { 04 01 41 } ,
    // INTEGER with its length in two octets }, then one byte too many.
    const std::string path = temp_path("ber.der");
    write_file(path,
               std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x80, 0x24, 0x03, 0x04,
                                          0x01, 0x41, 0x02, 0x81, 0x01, 0x05, 0x00, 0x00, 0xFF});
    const ToolRun run = run_tool("check '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "offset 4: indefinite length\n"
                       "offset 6: string in constructed form\n"
                       "offset 11: length 1 in 2 octets, not in the fewest octets\n"
                       "offset 17: 1 bytes after the record\n");
    std::remove(path.c_str());
}

TEST(ToolCraft, EveryVariantOfEveryRecordCanonsBackToTheLibrarysEncoding) {
    const std::string ber = temp_path("variant.ber");
    const std::string der = temp_path("canon.der");
    for (const std::string& type : example_types()) {
        const std::string expected = read_file(der_of(type));
        for (const char* variant : {"--indefinite", "--long-lengths", "--constructed-strings 2",
                                    "--indefinite --long-lengths --constructed-strings 1"}) {
            SCOPED_TRACE(type + " " + variant);
            const ToolRun craft = run_tool("craft '" + json_of(type) + "' --type " + type + " " +
                                           variant + " -o '" + ber + "'");
            ASSERT_EQ(craft.exit_code, 0) << craft.err;
            const std::string crafted = read_file(ber);
            const ToolRun check = run_tool("check '" + ber + "'");
            EXPECT_EQ(check.exit_code, crafted == expected ? 0 : 1) << check.out;
            const ToolRun decoded = run_tool("decode " + type + " '" + ber + "'");
            ASSERT_EQ(decoded.exit_code, 0) << decoded.err;
            EXPECT_EQ(decoded.out, run_tool("decode " + type + " '" + der_of(type) + "'").out);
            const ToolRun canon =
                run_tool("canon '" + ber + "' --type " + type + " -o '" + der + "'");
            ASSERT_EQ(canon.exit_code, 0) << canon.err;
            EXPECT_EQ(read_file(der), expected);
        }
    }
    std::remove(ber.c_str());
    std::remove(der.c_str());
}

TEST(ToolCraft, HeaderVersionAndTruncation) {
    const std::string out = temp_path("crafted.der");
    ToolRun run = run_tool("craft '" + json_of("attrlist_s_t") +
                           "' --type attrlist --header-version 3 -o '" + out + "'");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    const std::string expected = read_file(der_of("attrlist_s_t"));
    std::string crafted = read_file(out);
    ASSERT_EQ(crafted.size(), expected.size());
    EXPECT_EQ(crafted[1], '\x03');
    EXPECT_EQ(crafted.substr(2), expected.substr(2));
    run = run_tool("craft '" + json_of("attrlist_s_t") + "' --type attrlist --truncate 10 -o '" +
                   out + "'");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(read_file(out), expected.substr(0, 10));
    std::remove(out.c_str());
}

TEST(ToolDiff, NamesTheFieldThatDiffersAndExitsZeroWhenEqual) {
    const ToolRun same =
        run_tool("diff '" + der_of("attrlist_s_t") + "' '" + der_of("attrlist_s_t") + "'");
    EXPECT_EQ(same.exit_code, 0) << same.err;
    EXPECT_EQ(same.out, "");
    const std::string json = temp_path("changed.json");
    const std::string der = temp_path("changed.der");
    write_file(json, std::string(R"({"attrs": [{"name": "location", "values": []},
                                               {"name": "room", "values": []}]})"));
    ASSERT_EQ(run_tool("encode attrlist '" + json + "' -o '" + der + "'").exit_code, 0);
    const ToolRun differ =
        run_tool("diff '" + der_of("attrlist_s_t") + "' '" + der + "' --type attrlist");
    EXPECT_EQ(differ.exit_code, 1);
    EXPECT_NE(differ.out.find("attrs[0].values[0]: removed"), std::string::npos) << differ.out;
    EXPECT_NE(differ.out.find("attrs[1].name: \"clearance\" -> \"room\""), std::string::npos)
        << differ.out;
    EXPECT_NE(differ.out.find("attrs[2]: removed"), std::string::npos) << differ.out;
    std::remove(json.c_str());
    std::remove(der.c_str());
}

} // namespace
