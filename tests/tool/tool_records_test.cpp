// The kelmasn tool's encode and decode on records that nest to any depth, and on the records
// reached by type code.
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "tool_test_support.h"

#include "asn_status.h"

namespace {

using kelm_tool_test::line_count;
using kelm_tool_test::read_file;
using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

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
        EXPECT_NE(run.err.find("records nest deeper than " + std::to_string(KELM_ASN_MAX_NESTING) +
                               " levels"),
                  std::string::npos)
            << run.err.substr(0, 200);
    }
    // One record less is read, and then refused by the encoder, which counts every list as a
    // constructed level too: a record it could not read back is never written.
    write_file(json, element_chain_json(KELM_ASN_MAX_NESTING - 1));
    const ToolRun run = run_tool("encode zuauditelement_s_t '" + json + "' -o /dev/null");
    EXPECT_EQ(run.exit_code, 1) << run.err.substr(0, 200);
    EXPECT_NE(run.err.find("cannot encode zuauditelement_s_t: status 0x1065219b"),
              std::string::npos)
        << run.err.substr(0, 200);
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

// --- records reached by type code ------------------------------------------------------------

namespace {

std::string example(const std::string& name) {
    return std::string(KELMASN_EXAMPLES) + "/json/" + name + ".json";
}

} // namespace

TEST(ToolTypeCodes, TheTypesReachedByTypeCodeAreListedWithTheirCodes) {
    const ToolRun run = run_tool("types");
    ASSERT_EQ(run.exit_code, 0);
    for (const char* line :
         {"cert_request_in", "kelm_asn_cert_request_in, type code 0x103", "ekobj_update_list_s_t",
          "kelm_asn_ekobj_update_list_t, type code 0x104", "kelm_asn_integer, type code 0x106"})
        EXPECT_NE(run.out.find(line), std::string::npos) << line;
}

TEST(ToolTypeCodes, ATypeIsNamedByItsNameItsHexCodeOrItsDecimalCode) {
    const std::string json = example("ekobj_update_list_s_t");
    std::string first;
    for (const char* type : {"ekobj_update_list_s_t", "0x104", "260"}) {
        SCOPED_TRACE(type);
        const std::string der = temp_path("list.der");
        const ToolRun run =
            run_tool(std::string("encode ") + type + " '" + json + "' -o '" + der + "'");
        ASSERT_EQ(run.exit_code, 0) << run.err;
        const std::string bytes = read_file(der);
        if (first.empty())
            first = bytes;
        EXPECT_EQ(bytes, first);
        const ToolRun back = run_tool(std::string("decode ") + type + " '" + der + "'");
        ASSERT_EQ(back.exit_code, 0) << back.err;
        EXPECT_NE(back.out.find("\"text\": \"Z\u00fcrich\""), std::string::npos) << back.out;
        std::remove(der.c_str());
    }
    // The version element and two updates that each repeat it.
    ASSERT_GE(first.size(), 9u);
    EXPECT_EQ(first.substr(0, 4), std::string("\x04\x02\xAC\xDC", 4));
    EXPECT_EQ(first.substr(6, 3), std::string("\x02\x01\x01", 3));
}

TEST(ToolTypeCodes, TheVersionOptionWritesAndRequiresTheHeadersVersion) {
    const std::string der = temp_path("request.der");
    ToolRun run =
        run_tool("encode 0x103 '" + example("cert_request_in") + "' --version 3 -o '" + der + "'");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    const std::string bytes = read_file(der);
    ASSERT_GE(bytes.size(), 4u);
    EXPECT_EQ(bytes[1], '\x03');
    run = run_tool("decode cert_request_in '" + der + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x10652196"), std::string::npos) << run.err;
    run = run_tool("decode cert_request_in '" + der + "' --version 3");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_NE(run.out.find("\"body\": \"3003020101\""), std::string::npos) << run.out;
    // A typed type refuses the same bytes by their version too.
    run = run_tool("decode attrlist_s_t '" + der + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x10652196"), std::string::npos) << run.err;
    std::remove(der.c_str());
}

TEST(ToolTypeCodes, AnUnknownTypeCodeGetsTheLibrarysAnswer) {
    const std::string path = temp_path("any.der");
    write_file(path, std::string("\x04\x02\xAC\xDC\x02\x01\x01", 7));
    for (const char* command : {"decode", "encode"}) {
        SCOPED_TRACE(command);
        const ToolRun run = run_tool(std::string(command) + " 0x105 '" + path + "'");
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_NE(run.err.find("type code 0x105: status 0xffffffff (unknown type code)"),
                  std::string::npos)
            << run.err;
    }
    std::remove(path.c_str());
}

TEST(ToolTypeCodes, ABareIntegerAndItsFieldErrors) {
    const std::string der = temp_path("int.der");
    ToolRun run = run_tool("encode 0x106 '" + example("int") + "' -o '" + der + "'");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(read_file(der), std::string("\x04\x02\xAC\xDC\x02\x01\xD6", 7));
    std::remove(der.c_str());

    struct Row {
        const char* type;
        const char* json;
        const char* expected;
    } rows[] = {
        {"int", R"({"value": 2147483648})", "value: integer out of range"},
        {"ekobj_update_list_s_t", R"({"updates": [{"text": 5}]})",
         "updates[0].text: expected a string"},
        {"cert_request_in", R"({"body": "0"})", "body: a hex string needs an even number"},
        {"cert_request_in", R"({"string3": ""})", "string3: no such field"},
    };
    const std::string path = temp_path("bad.json");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.json);
        write_file(path, row.json);
        run = run_tool(std::string("encode ") + row.type + " '" + path + "' -o /dev/null");
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_NE(run.err.find(row.expected), std::string::npos) << run.err;
    }
    run = run_tool("encode cert_request_in '" + example("cert_request_in") + "' --lcs");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("reached by type code"), std::string::npos) << run.err;
    std::remove(path.c_str());
}

TEST(ToolNesting, ATextStoredWithoutItsNulIsShownWithoutCrashing) {
    // string1 is "ab" on the wire without the NUL that texts in OCTET STRINGs carry; decoding
    // passes it on unterminated (kept so), and the tool reads it no further than its block.
    const std::string der = temp_path("unterminated.der");
    write_file(der,
               std::string("\x04\x02\xAC\xDC\x30\x0A\x02\x01\x01\x04\x02\x61\x62\x04\x01\x00", 16));
    const ToolRun run = run_tool("decode cert_request_in '" + der + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_NE(run.out.find("\"string1\": \"ab"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"string2\": \"\""), std::string::npos) << run.out;
    std::remove(der.c_str());
}
