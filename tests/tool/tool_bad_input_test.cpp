// Every subcommand that reads a file, given garbage, an empty file, a truncated buffer or document
// and a missing file: one line on standard error starting "kelmasn: ", exit status 1 (the input is
// refused), never a crash.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_test_support.h"

namespace {

using kelm_tool_test::line_count;
using kelm_tool_test::read_file;
using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

const std::string kExampleDer = std::string(KELMASN_EXAMPLES) + "/der/attr_s_t.der";
const std::string kExampleJson = std::string(KELMASN_EXAMPLES) + "/json/attr_s_t.json";

// The four inputs, for buffers and for JSON documents.
class ToolBadInput : public ::testing::Test {
  protected:
    void SetUp() override {
        // 30 82 FF FF: a SEQUENCE of 65535 octets, of which 7 follow; not JSON either.
        write_file(garbage_, std::string("\x30\x82\xFF\xFFgarbage", 11));
        write_file(empty_, std::string());
        const std::string der = read_file(kExampleDer);
        ASSERT_GT(der.size(), 20u);
        write_file(truncated_der_, der.substr(0, der.size() / 2));
        const std::string json = read_file(kExampleJson);
        ASSERT_GT(json.size(), 20u);
        write_file(truncated_json_, json.substr(0, json.size() / 2));
    }
    void TearDown() override {
        for (const std::string& path : {garbage_, empty_, truncated_der_, truncated_json_, out_})
            std::remove(path.c_str());
    }

    // Runs `args` with FILE replaced by each bad input in turn.
    void expect_one_line_and_exit_one(const std::string& args, bool json) {
        const std::vector<std::string> inputs = {garbage_, empty_,
                                                 json ? truncated_json_ : truncated_der_, missing_};
        for (const std::string& input : inputs) {
            std::string command = args;
            command.replace(command.find("FILE"), 4, "'" + input + "'");
            SCOPED_TRACE(command);
            const ToolRun run = run_tool(command);
            EXPECT_EQ(run.exit_code, 1) << run.err;
            EXPECT_EQ(line_count(run.err), 1u) << run.err;
            EXPECT_EQ(run.err.rfind("kelmasn: ", 0), 0u) << run.err;
            for (const char c : run.err)
                EXPECT_TRUE(c == '\n' || (static_cast<unsigned char>(c) >= 0x20 &&
                                           static_cast<unsigned char>(c) < 0x7F))
                    << "not one line of text: " << run.err;
        }
    }

    const std::string garbage_ = temp_path("garbage");
    const std::string empty_ = temp_path("empty");
    const std::string truncated_der_ = temp_path("truncated.der");
    const std::string truncated_json_ = temp_path("truncated.json");
    const std::string missing_ = temp_path("missing");
    const std::string out_ = temp_path("bad-input-out");
};

TEST_F(ToolBadInput, EverySubcommandReadingABufferGivesOneLineAndExitOne) {
    for (const std::string& args : {
             std::string("der FILE"),
             std::string("decode attr_s_t FILE"),
             std::string("decode auto FILE"),
             std::string("inspect FILE"),
             std::string("inspect FILE --type attr_s_t"),
             std::string("inspect FILE --type auto"),
             std::string("check FILE"),
             std::string("check FILE --type attr_s_t"),
             "canon FILE -o '" + out_ + "'",
             "canon FILE --type attr_s_t -o '" + out_ + "'",
             "diff FILE '" + kExampleDer + "'",
             "diff '" + kExampleDer + "' FILE --type attr_s_t",
         })
        expect_one_line_and_exit_one(args, false);
}

TEST_F(ToolBadInput, EverySubcommandReadingJsonGivesOneLineAndExitOne) {
    for (const std::string& args :
         {"encode attr_s_t FILE -o '" + out_ + "'", "craft FILE --type attr_s_t -o '" + out_ + "'",
          "craft FILE --type attr_s_t --indefinite -o '" + out_ + "'"})
        expect_one_line_and_exit_one(args, true);
}

TEST_F(ToolBadInput, StrGivenOctetsThatAreNotItsCodeSetGivesOneLineAndEmptyInputIsEmptyText) {
    // 82 and FF start no UTF-8 sequence (RFC 3629, section 3).
    ToolRun run = run_tool("str --from utf8 --to t61 -", "", garbage_);
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
    EXPECT_EQ(run.err.rfind("kelmasn: cannot convert from utf8 to t61: status ", 0), 0u) << run.err;
    run = run_tool("str --from utf8 --to t61 -", "", empty_);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "\n");
    EXPECT_EQ(run.err, "");
    run = run_tool("str --from t61 --to utf8 --hex-in 'C2 6'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
}

TEST_F(ToolBadInput, SampleAndTypesRefuseWhatTheyCannotUseWithOneLine) {
    ToolRun run = run_tool("sample no_such_type");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: unknown record type no_such_type (kelmasn types lists them)\n");
    run = run_tool("types extra");
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
}

} // namespace
