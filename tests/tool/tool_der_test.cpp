// The kelmasn tool's "der" subcommand on its samples, on truncated input and on garbage.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
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

ToolRun run_on_bytes(const std::vector<unsigned char>& bytes) {
    const std::string path = temp_path("input");
    write_file(path, bytes);
    ToolRun run = run_tool("der '" + path + "'");
    std::remove(path.c_str());
    return run;
}

std::vector<unsigned char> sample(const std::string& name) {
    const std::string text = read_file(std::string(KELMASN_EXAMPLES) + "/" + name);
    return std::vector<unsigned char>(text.begin(), text.end());
}

// A rejected input gives exit status 1 and exactly one line on stderr naming an offset.
void expect_clean_rejection(const ToolRun& run) {
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find("offset "), std::string::npos) << run.err;
}

} // namespace

TEST(ToolDer, PrintsTheTreeOfTheSampleWithAHeader) {
    const ToolRun run =
        run_tool(std::string("der '") + KELMASN_EXAMPLES + "/universal-types-with-header.der'");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out,
              read_file(std::string(KELMASN_TEST_DATA) + "/universal-types-with-header.der.txt"));
}

TEST(ToolDer, PrintsTheTreeOfTheIndefiniteLengthSample) {
    const ToolRun run =
        run_tool(std::string("der '") + KELMASN_EXAMPLES + "/indefinite-high-tag.ber'");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, read_file(std::string(KELMASN_TEST_DATA) + "/indefinite-high-tag.ber.txt"));
}

TEST(ToolDer, ReadsStandardInputForDash) {
    const ToolRun run =
        run_tool(std::string("der - < '") + KELMASN_EXAMPLES + "/indefinite-high-tag.ber'");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.out, read_file(std::string(KELMASN_TEST_DATA) + "/indefinite-high-tag.ber.txt"));
}

TEST(ToolDer, EveryTruncationOfTheSamplesIsRejectedWithOneLine) {
    for (const char* name : {"universal-types-with-header.der", "indefinite-high-tag.ber"}) {
        const std::vector<unsigned char> bytes = sample(name);
        ASSERT_FALSE(bytes.empty()) << name;
        for (size_t n = 0; n < bytes.size(); ++n) {
            SCOPED_TRACE(::testing::Message() << name << " cut to " << n << " bytes");
            expect_clean_rejection(
                run_on_bytes(std::vector<unsigned char>(bytes.begin(), bytes.begin() + n)));
        }
    }
}

TEST(ToolDer, ALengthPastTheEndNamesTheOffsetAndTheReason) {
    const ToolRun run = run_on_bytes({0x30, 0x09, 0x02, 0x01, 0x05});
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("offset 0: length 9 runs past the end of the input (3 bytes left)"),
              std::string::npos)
        << run.err;
    const ToolRun inner = run_on_bytes({0x30, 0x03, 0x04, 0x84, 0xFF, 0xFF, 0xFF, 0xFF});
    expect_clean_rejection(inner);
    EXPECT_NE(inner.err.find("offset 3: length octets run past the end"), std::string::npos)
        << inner.err;
}

TEST(ToolDer, AHugeLengthIsRejected) {
    const ToolRun run = run_on_bytes({0x04, 0x84, 0xFF, 0xFF, 0xFF, 0xFF, 0x00});
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("length 4294967295 runs past the end"), std::string::npos) << run.err;
}

TEST(ToolDer, ALengthOfMoreThanFourOctetsThatOverflowsIsRejected) {
    const ToolRun run = run_on_bytes({0x04, 0x85, 0x01, 0x00, 0x00, 0x00, 0x01, 0x00});
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("does not fit in 32 bits"), std::string::npos) << run.err;
}

TEST(ToolDer, ATagNumberPastThirtyTwoBitsIsRejectedNotWrapped) {
    // Five subsequent identifier octets carry 35 bits; 0x7FFFFFFF8C would print as 4294967180.
    const ToolRun run = run_on_bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x0C, 0x00});
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("offset 0: tag number does not fit in 32 bits"), std::string::npos)
        << run.err;
    EXPECT_EQ(run.out, "");
}

TEST(ToolDer, TheLargestThirtyTwoBitTagNumberIsShown) {
    const ToolRun run = run_on_bytes({0xDF, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x00});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     0  [PRIVATE 4294967295] primitive, length 0\n");
}

TEST(ToolDer, RunawayNestingIsRejectedWithoutExhaustingTheStack) {
    std::vector<unsigned char> deep;
    for (int i = 0; i < 100000; ++i) {
        deep.push_back(0x30);
        deep.push_back(0x80);
    }
    const ToolRun run = run_on_bytes(deep);
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("nesting deeper than"), std::string::npos) << run.err;
}

TEST(ToolDer, IndefiniteLengthOnAPrimitiveIsRejected) {
    expect_clean_rejection(run_on_bytes({0x04, 0x80, 0x00, 0x00}));
}

TEST(ToolDer, MissingEndOfContentsIsRejected) {
    const ToolRun run = run_on_bytes({0x30, 0x80, 0x02, 0x01, 0x05});
    expect_clean_rejection(run);
    EXPECT_NE(run.err.find("end-of-contents missing"), std::string::npos) << run.err;
}

TEST(ToolDer, RandomBytesAreWalkedOrRejectedNeverCrash) {
    std::mt19937 rng(20261122);
    for (int i = 0; i < 150; ++i) {
        std::vector<unsigned char> bytes(1 + rng() % 64);
        for (unsigned char& b : bytes)
            b = static_cast<unsigned char>(rng());
        SCOPED_TRACE(::testing::Message() << "random input " << i);
        const ToolRun run = run_on_bytes(bytes);
        ASSERT_TRUE(run.exit_code == 0 || run.exit_code == 1) << "exit " << run.exit_code;
        if (run.exit_code == 1)
            expect_clean_rejection(run);
        else
            EXPECT_EQ(run.err, "");
    }
}

TEST(ToolDer, AMissingFileIsAnErrorLine) {
    const ToolRun run = run_tool("der /nonexistent/kelmasn-sample");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.err), 1u);
    EXPECT_NE(run.err.find("cannot open"), std::string::npos);
}

TEST(ToolDer, NoSubcommandIsAUsageError) {
    const ToolRun run = run_tool("");
    EXPECT_NE(run.exit_code, 0);
    EXPECT_NE(run.exit_code, -1);
}
