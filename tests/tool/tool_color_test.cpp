// --color=auto|always|never: colour on a terminal, plain in a pipe or a file, taken by every
// subcommand; coloured text is the plain text with escape sequences laid over it.
#include <cctype>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_test_support.h"

namespace {

using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

const std::string kEscape = "\x1b[";

// The text without its ANSI SGR sequences (ECMA-48 8.3.117: CSI parameters m).
std::string without_colour(const std::string& text) {
    std::string plain;
    for (size_t i = 0; i < text.size();) {
        if (text.compare(i, kEscape.size(), kEscape) == 0) {
            size_t end = i + kEscape.size();
            while (end < text.size() &&
                   (std::isdigit(static_cast<unsigned char>(text[end])) || text[end] == ';'))
                ++end;
            if (end < text.size() && text[end] == 'm') {
                i = end + 1;
                continue;
            }
        }
        plain += text[i++];
    }
    return plain;
}

std::string example_der(const std::string& name) {
    return std::string(KELMASN_EXAMPLES) + "/der/" + name + ".der";
}

std::string example_json(const std::string& name) {
    return std::string(KELMASN_EXAMPLES) + "/json/" + name + ".json";
}

// A buffer with BER-only forms, so that check has findings, and one that does not decode as
// attrlist_s_t, so that there is an error line.
class ToolColor : public ::testing::Test {
  protected:
    void SetUp() override {
        // attr_t { "a", {} } with an indefinite length
        write_file(ber_, std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x80, 0x0C, 0x01,
                                                    0x61, 0x30, 0x00, 0x00, 0x00});
    }
    void TearDown() override { std::remove(ber_.c_str()); }
    const std::string ber_ = temp_path("color.ber");
};

TEST_F(ToolColor, AlwaysColoursTheTextThatNeverAndAPipeLeavePlain) {
    const std::vector<std::string> commands = {
        "der '" + example_der("attr_s_t") + "'",
        "inspect '" + example_der("attr_s_t") + "' --type attr",
        "check '" + ber_ + "' --type attr",
        "diff '" + example_der("attr_s_t") + "' '" + ber_ + "'",
        "inspect '" + ber_ + "' --type attrlist",
    };
    for (const std::string& command : commands) {
        SCOPED_TRACE(command);
        const ToolRun plain = run_tool(command + " --color=never");
        const ToolRun piped = run_tool(command); // auto, and standard output is a file
        const ToolRun auto_piped = run_tool(command + " --color=auto");
        const ToolRun coloured = run_tool(command + " --color=always");
        EXPECT_EQ(plain.out.find(kEscape), std::string::npos) << plain.out;
        EXPECT_EQ(plain.err.find(kEscape), std::string::npos) << plain.err;
        EXPECT_EQ(piped.out, plain.out);
        EXPECT_EQ(piped.err, plain.err);
        EXPECT_EQ(auto_piped.out, plain.out);
        EXPECT_EQ(auto_piped.err, plain.err);
        EXPECT_NE(coloured.out.find(kEscape), std::string::npos) << coloured.out;
        EXPECT_EQ(without_colour(coloured.out), plain.out);
        EXPECT_EQ(without_colour(coloured.err), plain.err);
        EXPECT_EQ(coloured.exit_code, plain.exit_code);
    }
}

TEST_F(ToolColor, TheFieldPathAndTheValueHaveColoursOfTheirOwn) {
    const ToolRun run =
        run_tool("inspect '" + example_der("attr_s_t") + "' --type attr --color=always");
    // SGR 36 cyan for the field path, 32 green for the value.
    EXPECT_NE(run.out.find("\x1b[36mname\x1b[0m"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\x1b[32m\"groups\"\x1b[0m"), std::string::npos) << run.out;
}

TEST_F(ToolColor, AnErrorLineIsColouredOnlyWhenAsked) {
    const std::string missing = temp_path("missing.der");
    const ToolRun coloured = run_tool("der '" + missing + "' --color=always");
    EXPECT_EQ(coloured.exit_code, 1);
    EXPECT_EQ(coloured.err.rfind("\x1b[", 0), 0u) << coloured.err;
    const ToolRun plain = run_tool("der '" + missing + "'");
    EXPECT_EQ(plain.err.rfind("kelmasn: cannot open", 0), 0u) << plain.err;
    EXPECT_EQ(without_colour(coloured.err), plain.err);
}

TEST_F(ToolColor, AutoColoursOnATerminal) {
    // script(1) gives the tool a pseudo-terminal for its standard output.
    const std::string out = temp_path("typescript");
    const std::string command = "script -qec \"'" + std::string(KELMASN_TOOL) + "' der '" +
                                example_der("attr_s_t") + "'\" /dev/null >'" + out + "' 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    const std::string text = kelm_tool_test::read_file(out);
    EXPECT_NE(text.find(kEscape), std::string::npos) << text;
    const std::string never = temp_path("typescript-never");
    const std::string plain_command = "script -qec \"'" + std::string(KELMASN_TOOL) + "' der '" +
                                      example_der("attr_s_t") + "' --color=never\" /dev/null >'" +
                                      never + "' 2>&1";
    ASSERT_EQ(std::system(plain_command.c_str()), 0);
    EXPECT_EQ(kelm_tool_test::read_file(never).find(kEscape), std::string::npos);
    std::remove(out.c_str());
    std::remove(never.c_str());
}

TEST_F(ToolColor, EverySubcommandTakesTheOptionAndRefusesAnUnknownMode) {
    const std::string out = temp_path("color-out");
    const std::vector<std::string> commands = {
        "der '" + example_der("attr_s_t") + "'",
        "types",
        "decode attr '" + example_der("attr_s_t") + "'",
        "encode attr '" + example_json("attr_s_t") + "' -o '" + out + "'",
        "sample attr",
        "str --from utf8 --to t61 abc",
        "inspect '" + example_der("attr_s_t") + "'",
        "check '" + example_der("attr_s_t") + "'",
        "canon '" + example_der("attr_s_t") + "' -o '" + out + "'",
        "diff '" + example_der("attr_s_t") + "' '" + example_der("attr_s_t") + "'",
        "craft '" + example_json("attr_s_t") + "' --type attr -o '" + out + "'",
    };
    for (const std::string& command : commands) {
        SCOPED_TRACE(command);
        for (const char* mode : {"auto", "always", "never"}) {
            const ToolRun run = run_tool(command + " --color=" + mode);
            EXPECT_EQ(run.exit_code, 0) << mode << ": " << run.err;
        }
        const ToolRun bad = run_tool(command + " --color=sometimes");
        EXPECT_EQ(bad.exit_code, 2);
        EXPECT_EQ(kelm_tool_test::line_count(bad.err), 1u) << bad.err;
        EXPECT_NE(bad.err.find("--color"), std::string::npos) << bad.err;
    }
    std::remove(out.c_str());
}

} // namespace
