// The kelmasn tool as a new user meets it: unreadable input, the header version, surplus bytes,
// unknown words, its own version, the names of the types, binary output to a terminal, texts in
// the local code set, strict JSON and empty or broken JSON. Exit status: 0 success, 1 the input is
// refused, 2 usage.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "test_locale.h"
#include "tool_test_support.h"

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

// The attribute-list example encoded by the tool; empty when that fails.
std::string encoded_attribute_list() {
    const std::string path = temp_path("attrlist.der");
    const ToolRun run =
        run_tool("encode attrlist_s_t '" + example("attrlist_s_t") + "' -o '" + path + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    const std::string bytes = read_file(path);
    std::remove(path.c_str());
    return bytes;
}

TEST(ToolInput, ADirectoryGivesOneLineAndExitOneForEverySubcommand) {
    const std::string dir = temp_path("dir");
    ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
    const std::string out = temp_path("out.der");
    for (const std::string& args : {"der '" + dir + "'", "decode attrlist '" + dir + "'",
                                    "encode attrlist '" + dir + "' -o '" + out + "'"}) {
        SCOPED_TRACE(args);
        const ToolRun run = run_tool(args);
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.err, "kelmasn: cannot read " + dir + ": it is a directory\n");
    }
    const ToolRun piped = run_tool("der -", "", dir);
    EXPECT_EQ(piped.exit_code, 1);
    EXPECT_EQ(piped.err, "kelmasn: cannot read standard input: it is a directory\n");
    rmdir(dir.c_str());
}

TEST(ToolInput, AMissingFileGivesOneLineAndExitOne) {
    const ToolRun run = run_tool("decode attrlist '" + temp_path("missing") + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.err), 1u);
    EXPECT_NE(run.err.find("cannot open"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("No such file or directory"), std::string::npos) << run.err;
}

TEST(ToolVersionOption, AHeaderVersionOutsideOneTo255IsAUsageError) {
    const std::string out = temp_path("version.der");
    for (const char* version : {"0", "256", "300", "-1"}) {
        SCOPED_TRACE(version);
        std::remove(out.c_str());
        const ToolRun run = run_tool("encode attrlist '" + example("attrlist_s_t") +
                                     "' --version " + version + " -o '" + out + "'");
        EXPECT_EQ(run.exit_code, 2);
        EXPECT_EQ(line_count(run.err), 1u) << run.err;
        EXPECT_NE(run.err.find("--version"), std::string::npos) << run.err;
        EXPECT_EQ(read_file(out), "") << "nothing is written";
    }
}

TEST(ToolVersionOption, VersionsOneAnd255AreTheSecondHeaderByte) {
    const std::string out = temp_path("version.der");
    for (const int version : {1, 255}) {
        SCOPED_TRACE(version);
        const ToolRun run =
            run_tool("encode attrlist '" + example("attrlist_s_t") + "' --version " +
                     std::to_string(version) + " -o '" + out + "'");
        ASSERT_EQ(run.exit_code, 0) << run.err;
        const std::string bytes = read_file(out);
        ASSERT_GE(bytes.size(), 4u);
        EXPECT_EQ(static_cast<unsigned char>(bytes[0]), 0x04);
        EXPECT_EQ(static_cast<unsigned char>(bytes[1]), version);
        EXPECT_EQ(static_cast<unsigned char>(bytes[2]), 0xAC);
        EXPECT_EQ(static_cast<unsigned char>(bytes[3]), 0xDC);
    }
    std::remove(out.c_str());
}

TEST(ToolDecode, BytesAfterTheRecordAreRefusedWithTheirOffsetUnlessAllowed) {
    const std::string record = encoded_attribute_list();
    ASSERT_FALSE(record.empty());
    const std::string path = temp_path("trailing.der");
    write_file(path, record + std::string("\x01\x02", 2));
    const ToolRun refused = run_tool("decode attrlist '" + path + "'");
    EXPECT_EQ(refused.exit_code, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_EQ(refused.err, "kelmasn: " + path + ": 2 bytes after the record, from offset " +
                               std::to_string(record.size()) +
                               " (--allow-trailing accepts them)\n");
    const ToolRun allowed = run_tool("decode attrlist '" + path + "' --allow-trailing");
    EXPECT_EQ(allowed.exit_code, 0) << allowed.err;
    write_file(path, record);
    const ToolRun exact = run_tool("decode attrlist '" + path + "'");
    EXPECT_EQ(exact.exit_code, 0) << exact.err;
    EXPECT_EQ(allowed.out, exact.out);
    std::remove(path.c_str());
}

TEST(ToolCommandLine, AnUnknownSubcommandIsNamedWithExitTwo) {
    const ToolRun run = run_tool("bogus");
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find("unknown subcommand 'bogus'"), std::string::npos) << run.err;
}

TEST(ToolCommandLine, AnUnknownOptionIsNamedWithExitTwo) {
    const ToolRun run = run_tool("der --bogus x");
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find("--bogus"), std::string::npos) << run.err;
}

TEST(ToolCommandLine, NoSubcommandIsAUsageError) {
    const ToolRun run = run_tool("");
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
}

TEST(ToolCommandLine, HelpDescribesTheSubcommands) {
    for (const char* args : {"help", "--help"}) {
        SCOPED_TRACE(args);
        const ToolRun run = run_tool(args);
        EXPECT_EQ(run.exit_code, 0);
        for (const char* word : {"der", "types", "decode", "encode", "Exit status"})
            EXPECT_NE(run.out.find(word), std::string::npos) << word;
    }
    const ToolRun decode = run_tool("help decode");
    EXPECT_EQ(decode.exit_code, 0);
    EXPECT_NE(decode.out.find("--allow-trailing"), std::string::npos) << decode.out;
}

TEST(ToolCommandLine, VersionPrintsTheLibrarysVersion) {
    const ToolRun run = run_tool("--version");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.out, std::string("kelmasn ") + KELMASN_CONFIGURED_VERSION + "\n");
}

// Every name that `types` lists for a type is accepted as TYPE and gives the same bytes.
TEST(ToolTypes, EveryNameListedForATypeIsAccepted) {
    const ToolRun types = run_tool("types");
    ASSERT_EQ(types.exit_code, 0);
    const size_t at = types.out.find("\nattr_s_t ");
    ASSERT_NE(at, std::string::npos) << types.out;
    const std::string line = types.out.substr(at + 1, types.out.find('\n', at + 1) - at - 1);
    EXPECT_NE(line.find("asn_attr_t (also asn_attr_t, attr_t, attr)"), std::string::npos) << line;
    const std::string out = temp_path("names.der");
    std::string first;
    for (const char* name : {"attr_s_t", "asn_attr_t", "attr_t", "attr"}) {
        SCOPED_TRACE(name);
        const ToolRun run = run_tool(std::string("encode ") + name + " '" + example("attr_s_t") +
                                     "' -o '" + out + "'");
        ASSERT_EQ(run.exit_code, 0) << run.err;
        const std::string bytes = read_file(out);
        if (first.empty())
            first = bytes;
        EXPECT_EQ(bytes, first);
    }
    std::remove(out.c_str());
}

TEST(ToolEncode, BinaryOutputToATerminalIsRefusedUnlessAskedFor) {
    // script(1) gives the tool a terminal as its standard output.
    const std::string json = example("attrlist_s_t");
    const std::string command = std::string("script -qec \"'") + KELMASN_TOOL +
                                "' encode attrlist '" + json + "'\" /dev/null";
    const std::string log = temp_path("terminal.log");
    const int status = std::system((command + " >'" + log + "' 2>&1").c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 2);
    EXPECT_NE(read_file(log).find("refusing to write a binary buffer to a terminal"),
              std::string::npos)
        << read_file(log);
    const std::string insisted = std::string("script -qec \"'") + KELMASN_TOOL +
                                 "' encode attrlist '" + json + "' -o -\" /dev/null";
    const int forced = std::system((insisted + " >'" + log + "' 2>&1").c_str());
    ASSERT_TRUE(WIFEXITED(forced));
    EXPECT_EQ(WEXITSTATUS(forced), 0) << read_file(log);
    std::remove(log.c_str());
}

TEST(ToolEncode, WithoutAnOutputAndNotOnATerminalTheBufferGoesToStandardOutput) {
    const ToolRun run = run_tool("encode attrlist '" + example("attrlist_s_t") + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, encoded_attribute_list());
}

TEST(ToolEncode, StrictRefusesAMissingFieldAndNamesIt) {
    const std::string path = temp_path("missing.json");
    write_file(path, std::string(R"({"attrs": [{"name": "x"}]})"));
    const ToolRun strict = run_tool("encode attrlist '" + path + "' --strict -o -");
    EXPECT_EQ(strict.exit_code, 1);
    EXPECT_EQ(strict.err, "kelmasn: " + path +
                              ": attrs[0].values: missing (every field is required with "
                              "--strict)\n");
    const ToolRun lenient = run_tool("encode attrlist '" + path + "' -o -");
    EXPECT_EQ(lenient.exit_code, 0) << lenient.err;
    std::remove(path.c_str());
}

TEST(ToolEncode, EmptyOrBrokenJsonGivesOneClearLine) {
    const std::string path = temp_path("empty.json");
    write_file(path, std::string(" \n"));
    const ToolRun empty = run_tool("encode attrlist '" + path + "' -o -");
    EXPECT_EQ(empty.exit_code, 1);
    EXPECT_EQ(empty.err, "kelmasn: " + path + ": empty, expected a JSON object for attrlist_s_t\n");
    write_file(path, std::string("{\"attrs\": ["));
    const ToolRun broken = run_tool("encode attrlist '" + path + "' -o -");
    EXPECT_EQ(broken.exit_code, 1);
    EXPECT_EQ(line_count(broken.err), 1u) << broken.err;
    EXPECT_NE(broken.err.find(": not JSON: parse error at line 1"), std::string::npos)
        << broken.err;
    EXPECT_EQ(broken.err.find("json.exception"), std::string::npos) << broken.err;
    std::remove(path.c_str());
}

// "Genève" in JSON (UTF-8), as a record's text.
const char kGeneva[] = R"({"attrs": [{"name": "Gen\u00e8ve", "values": []}]})";

TEST(ToolLocalCodeSet, EncodeWithLcsFollowsTheEnvironmentsLatin1Locale) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    const std::string path = temp_path("geneva.json");
    write_file(path, std::string(kGeneva));
    const ToolRun run = run_tool("encode attrlist '" + path + "' --lcs -o -",
                                 "LC_ALL=" + kelm_test::latin1_locale_name() + " ");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    // On the wire the text is UTF-8: 47 65 6E C3 A8 76 65, not "Gen??ve".
    EXPECT_NE(run.out.find("Gen\xC3\xA8ve"), std::string::npos);
    EXPECT_EQ(run.out.find("Gen??ve"), std::string::npos);
    EXPECT_EQ(run.out, run_tool("encode attrlist '" + path + "' -o -").out)
        << "the same bytes as the plain mode from the same JSON";
    std::remove(path.c_str());
}

TEST(ToolLocalCodeSet, DecodeWithLcsShowsTheTextInUtf8) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    const std::string json = temp_path("geneva.json");
    const std::string der = temp_path("geneva.der");
    write_file(json, std::string(kGeneva));
    ASSERT_EQ(run_tool("encode attrlist '" + json + "' -o '" + der + "'").exit_code, 0);
    const ToolRun run = run_tool("decode attrlist '" + der + "' --lcs",
                                 "LC_ALL=" + kelm_test::latin1_locale_name() + " ");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    EXPECT_NE(run.out.find("\"Gen\xC3\xA8ve\""), std::string::npos) << run.out;
    std::remove(json.c_str());
    std::remove(der.c_str());
}

TEST(ToolLocalCodeSet, ATextTheLocalCodeSetCannotHoldIsRefusedAndNamed) {
    const std::string path = temp_path("geneva.json");
    write_file(path, std::string(kGeneva));
    const ToolRun run = run_tool("encode attrlist '" + path + "' --lcs -o -", "LC_ALL=C ");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
    EXPECT_NE(run.err.find("attrs[0].name: the local code set"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("cannot hold this text"), std::string::npos) << run.err;
    std::remove(path.c_str());
}

TEST(ToolDer, TextsOfEveryCodeSetAreShownAsText) {
    // UTF8String, BMPString, UniversalString and TeletexString, each "Gè" (T.61: C1 65 is è),
    // then a UTF8String that is not UTF-8.
    const std::vector<unsigned char> bytes = {0x30, 0x1E, 0x0C, 0x03, 0x47, 0xC3, 0xA8, 0x1E,
                                              0x04, 0x00, 0x47, 0x00, 0xE8, 0x1C, 0x08, 0x00,
                                              0x00, 0x00, 0x47, 0x00, 0x00, 0x00, 0xE8, 0x14,
                                              0x03, 0x47, 0xC1, 0x65, 0x0C, 0x02, 0xC3, 0x28};
    const std::string path = temp_path("texts.der");
    write_file(path, bytes);
    const ToolRun run = run_tool("der '" + path + "'");
    ASSERT_EQ(run.exit_code, 0) << run.err;
    for (const char* line : {"UTF8String [UNIVERSAL 12] primitive, length 3: \"G\xC3\xA8\"",
                             "BMPString [UNIVERSAL 30] primitive, length 4: \"G\xC3\xA8\"",
                             "UniversalString [UNIVERSAL 28] primitive, length 8: \"G\xC3\xA8\"",
                             "TeletexString [UNIVERSAL 20] primitive, length 3: \"G\xC3\xA8\"",
                             "UTF8String [UNIVERSAL 12] primitive, length 2: C3 28"})
        EXPECT_NE(run.out.find(line), std::string::npos) << line << "\n" << run.out;
    std::remove(path.c_str());
}

} // namespace

namespace {

// The record names that `types` lists, one per line's first word.
std::vector<std::string> listed_types() {
    const ToolRun run = run_tool("types");
    std::vector<std::string> names;
    size_t at = 0;
    while (at < run.out.size()) {
        const size_t end = run.out.find('\n', at);
        const std::string line = run.out.substr(at, end - at);
        names.push_back(line.substr(0, line.find(' ')));
        at = end == std::string::npos ? run.out.size() : end + 1;
    }
    return names;
}

} // namespace

TEST(ToolSample, EveryTypesSampleGivesEveryFieldAndRoundTrips) {
    const std::vector<std::string> types = listed_types();
    ASSERT_EQ(types.size(), 68u);
    const std::string json = temp_path("sample.json");
    const std::string der = temp_path("sample.der");
    for (const std::string& type : types) {
        SCOPED_TRACE(type);
        for (const char* mode : {"", " --minimal"}) {
            const ToolRun sample = run_tool("sample " + type + mode);
            ASSERT_EQ(sample.exit_code, 0) << sample.err;
            write_file(json, sample.out);
            const ToolRun encode =
                run_tool("encode " + type + " '" + json + "' --strict -o '" + der + "'");
            ASSERT_EQ(encode.exit_code, 0) << encode.err;
            const ToolRun decode = run_tool("decode " + type + " '" + der + "'");
            ASSERT_EQ(decode.exit_code, 0) << decode.err;
            EXPECT_EQ(nlohmann::json::parse(decode.out), nlohmann::json::parse(sample.out));
        }
    }
    std::remove(json.c_str());
    std::remove(der.c_str());
}

TEST(ToolStr, ConvertsBetweenCodeSetsWithTheLibrarysConverters) {
    // T.61 writes é as the non-spacing acute C2 followed by e (65).
    ToolRun run = run_tool("str --from utf8 --to t61 '\xC3\xA9'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "C2 65\n");
    run = run_tool("str --from t61 --to utf8 --hex-in 'C2 65'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "\xC3\xA9\n");
    // UCS-2, big-endian: G is 00 47, è is 00 E8.
    run = run_tool("str --from utf8 --to bmp 'G\xC3\xA8'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "00 47 00 E8\n");
    run = run_tool("str --from bmp --to ucs4 --hex-in '0047'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "00 00 00 47\n");
}

TEST(ToolStr, ACharacterWithoutAFormIsRefusedAndAnUnknownCodeSetIsAUsageError) {
    ToolRun run = run_tool("str --from utf8 --to printable '\xC3\xA9'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("status 0x106521ab"), std::string::npos) << run.err;
    run = run_tool("str --from latin9 --to utf8 x");
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(line_count(run.err), 1u) << run.err;
}

TEST(ToolDecodeAuto, EveryExampleBufferIsFoundAsItsOwnType) {
    const std::string dir = std::string(KELMASN_EXAMPLES) + "/der/";
    for (const std::string& type : listed_types()) {
        SCOPED_TRACE(type);
        const ToolRun run = run_tool("decode auto '" + dir + type + ".der'");
        ASSERT_EQ(run.exit_code, 0) << run.err;
        const std::string candidates = run.err.substr(run.err.find(": decodes as "));
        EXPECT_TRUE(candidates.find(" " + type + " ") != std::string::npos ||
                    candidates.find(" " + type + ",") != std::string::npos ||
                    candidates.find(" " + type + "\n") != std::string::npos)
            << run.err;
    }
}

TEST(ToolDecodeAuto, ABufferThatNoTypeDecodesExitsOne) {
    const std::string path = temp_path("garbage.der");
    write_file(path, std::string("\x04\x02\xAC\xDC\x05\x00", 6));
    const ToolRun run = run_tool("decode auto '" + path + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + path + ": no record type decodes this buffer\n");
    std::remove(path.c_str());
}

TEST(ToolManual, TheManualPageDescribesEverySubcommandAndTheExitStatus) {
    const std::string page = read_file(KELMASN_MAN_PAGE);
    ASSERT_FALSE(page.empty()) << KELMASN_MAN_PAGE;
    EXPECT_NE(page.find(".TH KELMASN"), std::string::npos);
    for (const char* subcommand : {"der", "types", "decode", "encode", "inspect", "check", "canon",
                                   "diff", "craft", "sample", "str"})
        EXPECT_NE(page.find(std::string(".SS ") + subcommand + "\n"), std::string::npos)
            << subcommand;
    EXPECT_NE(page.find("EXIT STATUS"), std::string::npos);
}

// The completions that bash offers for the words typed so far (the last one being completed).
std::string completions(const std::string& words) {
    const std::string tool_dir = std::string(KELMASN_TOOL);
    const std::string script = std::string(KELMASN_TOOL_SOURCE_DIR) + "/kelmasn.bash";
    const std::string out = temp_path("completion");
    const std::string command = "PATH=\"" + tool_dir.substr(0, tool_dir.rfind('/')) +
                                ":$PATH\" bash -c 'source \"" + script + "\"; COMP_WORDS=(" +
                                words + "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); " +
                                "_kelmasn; echo \"${COMPREPLY[*]}\"' >'" + out + "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0);
    const std::string text = read_file(out);
    std::remove(out.c_str());
    return text;
}

TEST(ToolCompletion, BashCompletesSubcommandsOptionsTypesAndCodeSets) {
    EXPECT_EQ(completions("kelmasn ins"), "inspect\n");
    EXPECT_EQ(completions("kelmasn decode --allow"), "--allow-trailing\n");
    EXPECT_NE(completions("kelmasn decode attrl").find("attrlist_s_t"), std::string::npos);
    EXPECT_NE(completions("kelmasn inspect x.der --type ekobj_upd").find("ekobj_update_list_s_t"),
              std::string::npos);
    EXPECT_EQ(completions("kelmasn str --from t"), "t61\n");
    EXPECT_EQ(completions("kelmasn types --col"), "--color\n");
    EXPECT_EQ(completions("kelmasn der x.der --color a"), "auto always\n");
    EXPECT_EQ(completions("kelmasn check x.der --in-format b"), "base64\n");
}

TEST(ToolInputFormat, HexAndBase64GiveTheSameRecordAsRawBytes) {
    const std::string der = std::string(KELMASN_EXAMPLES) + "/der/attr_s_t.der";
    const ToolRun raw = run_tool("decode attr_s_t '" + der + "'");
    ASSERT_EQ(raw.exit_code, 0) << raw.err;
    // The same buffer written out by od and by base64 (GNU coreutils), independently of the tool.
    const std::string hex = temp_path("buffer.hex");
    const std::string b64 = temp_path("buffer.b64");
    ASSERT_EQ(std::system(("od -An -tx1 -v '" + der + "' >'" + hex + "'").c_str()), 0);
    ASSERT_EQ(std::system(("base64 '" + der + "' >'" + b64 + "'").c_str()), 0);
    for (const std::string& args : {"decode attr_s_t '" + hex + "' --in-format hex",
                                    "decode attr_s_t '" + b64 + "' --in-format base64",
                                    std::string("decode attr_s_t - --in-format base64")}) {
        SCOPED_TRACE(args);
        const ToolRun run = run_tool(args, "", b64);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        EXPECT_EQ(run.out, raw.out);
    }
    const ToolRun inspected = run_tool("inspect '" + hex + "' --in-format hex --type attr_s_t");
    EXPECT_EQ(inspected.exit_code, 0) << inspected.err;
    std::remove(hex.c_str());
    std::remove(b64.c_str());
}

TEST(ToolInputFormat, InputThatIsNotOfItsFormatGivesOneLineAndExitOne) {
    const std::string path = temp_path("bad.txt");
    write_file(path, std::string("30 0G"));
    ToolRun run = run_tool("der '" + path + "' --in-format hex");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + path + ": not hex digits (--in-format hex)\n");
    write_file(path, std::string("MAA*"));
    run = run_tool("der '" + path + "' --in-format base64");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + path + ": not base64 (--in-format base64)\n");
    run = run_tool("der '" + path + "' --in-format octal");
    EXPECT_EQ(run.exit_code, 2);
    std::remove(path.c_str());
}
