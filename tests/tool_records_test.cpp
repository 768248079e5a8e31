// The kelmasn tool's encode and decode on records that nest to any depth.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "asn_status.h"

namespace {

struct ToolRun {
    int exit_code; // -1 when the tool did not exit normally (a crash)
    std::string out;
    std::string err;
};

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string temp_path(const std::string& name) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir ? dir : "/tmp") + "/kelmasn_records_test_" + std::to_string(getpid()) +
           "_" + name;
}

void write_file(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

// Runs the tool with `args` (already quoted for the shell).
ToolRun run_tool(const std::string& args) {
    const std::string out_path = temp_path("stdout");
    const std::string err_path = temp_path("stderr");
    // A sanitizer report must not pass for the tool's own exit status 1.
    const std::string command =
        std::string("ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}exitcode=86 "
                    "UBSAN_OPTIONS=${UBSAN_OPTIONS:+$UBSAN_OPTIONS:}exitcode=86 '") +
        KELMASN_TOOL + "' " + args + " >'" + out_path + "' 2>'" + err_path + "'";
    const int status = std::system(command.c_str());
    ToolRun run{WIFEXITED(status) ? WEXITSTATUS(status) : -1, read_file(out_path),
                read_file(err_path)};
    std::remove(out_path.c_str());
    std::remove(err_path.c_str());
    return run;
}

// An audit element holding a chain of `levels` nested elements, as JSON, built in linear time.
std::string element_chain_json(unsigned int levels) {
    std::string text;
    text.reserve(levels * 40);
    for (unsigned int i = 0; i < levels; ++i)
        text += R"({"name": "x", "elements": [)";
    text += "{}";
    for (unsigned int i = 0; i < levels; ++i)
        text += "]}";
    return text;
}

} // namespace

TEST(ToolNesting, ANestedAuditElementRoundTripsThroughEncodeAndDecode) {
    const std::string json = temp_path("chain.json");
    const std::string der = temp_path("chain.der");
    write_file(json, element_chain_json(5));
    const ToolRun encoded = run_tool("encode zuauditelement_s_t '" + json + "' -o '" + der + "'");
    ASSERT_EQ(encoded.exit_code, 0) << encoded.err;
    const ToolRun decoded = run_tool("decode zuauditelement_s_t '" + der + "'");
    ASSERT_EQ(decoded.exit_code, 0) << decoded.err;
    std::string innermost = "\"elements\": []";
    EXPECT_NE(decoded.out.find(innermost), std::string::npos) << decoded.out;
    size_t names = 0;
    for (size_t at = decoded.out.find("\"name\": \"x\""); at != std::string::npos;
         at = decoded.out.find("\"name\": \"x\"", at + 1))
        ++names;
    EXPECT_EQ(names, 5u);
    std::remove(json.c_str());
    std::remove(der.c_str());
}

TEST(ToolNesting, ADocumentNestedPastTheLimitIsRefusedWithoutExhaustingTheStack) {
    const std::string json = temp_path("deep.json");
    for (unsigned int levels : {KELM_ASN_MAX_NESTING + 0u, 100000u}) {
        SCOPED_TRACE(levels);
        write_file(json, element_chain_json(levels));
        const ToolRun run = run_tool("encode zuauditelement_s_t '" + json + "' -o /dev/null");
        EXPECT_EQ(run.exit_code, 1) << run.err.substr(0, 200);
        EXPECT_NE(run.err.find("records nested deeper than " +
                               std::to_string(KELM_ASN_MAX_NESTING) + " levels"),
                  std::string::npos)
            << run.err.substr(0, 200);
    }
    // One record less is read (and, nested this deep, refused by the decoder later instead).
    write_file(json, element_chain_json(KELM_ASN_MAX_NESTING - 1));
    const ToolRun run = run_tool("encode zuauditelement_s_t '" + json + "' -o /dev/null");
    EXPECT_EQ(run.exit_code, 0) << run.err.substr(0, 200);
    std::remove(json.c_str());
}

TEST(ToolNesting, ABufferNestedPastTheLimitIsRefusedWithItsStatus) {
    // A chain of 41 elements with indefinite lengths: 82 constructed levels. The refusal is the
    // library's (the audit tests probe its limit); the tool must report it as a status line.
    const std::string header = "\x04\x02\xAC\xDC";
    std::string body;
    for (int i = 0; i < 40; ++i)
        body += std::string("\x30\x80\x0C\x00\x04\x00\x30\x00\x30\x80", 10);
    body += std::string("\x30\x08\x0C\x00\x04\x00\x30\x00\x30\x00", 10);
    body += std::string(4 * 40, '\0');
    const std::string path = temp_path("deep.der");
    write_file(path, header + body);
    const ToolRun run = run_tool("decode zuauditelement_s_t '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x1065219b"), std::string::npos) << run.err;
    std::remove(path.c_str());
}
