// Field paths in the tool's findings and errors: check names the field of every BER-only form,
// inspect labels a buffer up to the first element that does not fit its type, and decode and
// encode errors name the element or field they stop at. The buffers are written out by hand from
// X.690 (08/2015) and the records' ASN.1 shapes (attr_t is SEQUENCE { name UTF8String, values
// SEQUENCE OF value_t }, value_t is SEQUENCE { value_type INTEGER, str_value UTF8String,
// bin_value OCTET STRING }).
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_test_support.h"

namespace {

using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

// A buffer written to a file of its own for the length of a test.
class BufferFile {
  public:
    BufferFile(const std::string& name, const std::vector<unsigned char>& bytes)
        : path_(temp_path(name)) {
        write_file(path_, bytes);
    }
    ~BufferFile() { std::remove(path_.c_str()); }
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// attr_t { "a", { value_t { 1, "x", '' } } } in BER: the outer SEQUENCE with an indefinite
// length (8.1.3.6), the name as a constructed UTF8String of one piece (8.23.6), the list's length
// 10 in the long form 81 0A (8.1.3.5) where DER takes the short form (10.1).
const std::vector<unsigned char> kBerAttribute = {0x04, 0x02, 0xAC, 0xDC,       // header
                                                  0x30, 0x80,                   // 4: attr_s_t
                                                  0x2C, 0x03, 0x0C, 0x01, 0x61, // 6: name
                                                  0x30, 0x81, 0x0A,             // 11: values
                                                  0x30, 0x08, 0x02, 0x01, 0x01,
                                                  0x0C, 0x01, 0x78, 0x04, 0x00, // 14: values[0]
                                                  0x00, 0x00};                  // end-of-contents

TEST(ToolCheckPaths, EveryBerOnlyFormIsNamedWithItsOffsetAndFieldPath) {
    const BufferFile file("ber-attr.der", kBerAttribute);
    for (const char* type : {"attr_s_t", "auto"}) {
        SCOPED_TRACE(type);
        const ToolRun run = run_tool("check '" + file.path() + "' --type " + type);
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.out, "offset 4: attr_s_t: indefinite length\n"
                           "offset 6: name: string in constructed form\n"
                           "offset 11: values: length 10 in 2 octets, not in the fewest octets\n");
        EXPECT_EQ(run.err, "");
    }
    const ToolRun untyped = run_tool("check '" + file.path() + "'");
    EXPECT_EQ(untyped.exit_code, 1);
    EXPECT_EQ(untyped.out, "offset 4: indefinite length\n"
                           "offset 6: string in constructed form\n"
                           "offset 11: length 10 in 2 octets, not in the fewest octets\n");
}

TEST(ToolCheckPaths, SurplusOctetsAreNamedAfterTheRecordsFindings) {
    std::vector<unsigned char> bytes = kBerAttribute;
    bytes.push_back(0xFF);
    bytes.push_back(0xFF);
    const BufferFile file("ber-attr-surplus.der", bytes);
    const ToolRun run = run_tool("check '" + file.path() + "' --type attr");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "offset 4: attr_s_t: indefinite length\n"
                       "offset 6: name: string in constructed form\n"
                       "offset 11: values: length 10 in 2 octets, not in the fewest octets\n"
                       "offset 26: 2 bytes after the record\n");
}

TEST(ToolCheckPaths, AValueInAnotherFormThanTheLibrarysIsNamedWithItsField) {
    // value_type 1 as 02 02 00 01: not the fewest contents octets (X.690 8.3.2), which the
    // library reads and writes again as 02 01 01.
    const BufferFile file("long-integer.der",
                          {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x10, 0x0C, 0x01, 0x61, 0x30, 0x0B,
                           0x30, 0x09, 0x02, 0x02, 0x00, 0x01, 0x0C, 0x01, 0x78, 0x04, 0x00});
    const ToolRun run = run_tool("check '" + file.path() + "' --type attr_s_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "offset 13: values[0].value_type: contents 00 01 where the library "
                       "writes 01\n");
}

TEST(ToolCheckPaths, AnElementEqualToItsDefaultIsNamed) {
    // cert_request_in { (version) 1, string1 "a" with its NUL, string2 "" with its NUL, body '' }:
    // the library leaves an empty body out, so the buffer that writes it is not the library's.
    const BufferFile file("empty-body.der", {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0C, 0x02, 0x01, 0x01,
                                             0x04, 0x02, 0x61, 0x00, 0x04, 0x01, 0x00, 0x04, 0x00});
    const ToolRun run = run_tool("check '" + file.path() + "' --type cert_request_in");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "offset 16: body: OCTET STRING, length 0 that the library leaves out (a "
                       "value equal to its default)\n");
}

// attrlist_t { attrs { attr_t { "a", {} }, attr_t { 5 ... } } }: the second attribute starts with
// an INTEGER where its name, a UTF8String, belongs.
const std::vector<unsigned char> kListWithABadEntry = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0E, 0x30,
                                                       0x0C, 0x30, 0x05, 0x0C, 0x01, 0x61, 0x30,
                                                       0x00, 0x30, 0x03, 0x02, 0x01, 0x05};

TEST(ToolInspectPaths, TheTreeIsLabelledUpToTheFirstMismatchAndUntypedFromThere) {
    const BufferFile file("bad-entry.der", kListWithABadEntry);
    const ToolRun run = run_tool("inspect '" + file.path() + "' --type attrlist_s_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  attrlist_s_t  SEQUENCE, length 14\n"
                       "     6    attrs  SEQUENCE, length 12\n"
                       "     8      attrs[0]  SEQUENCE, length 5\n"
                       "    10        attrs[0].name  UTF8String, length 1: \"a\"\n"
                       "    13        attrs[0].values  SEQUENCE, length 0\n"
                       "    15      attrs[1]  SEQUENCE, length 3\n"
                       "    17        INTEGER, length 1: 5\n");
    EXPECT_EQ(run.err, "kelmasn: " + file.path() +
                           ": does not decode as attrlist_s_t: status 0x106521a4 (unexpected "
                           "tag); the first element that does not fit: offset 17: attrs[1].name: "
                           "a text was expected, the buffer has INTEGER, length 1\n");
}

TEST(ToolInspectPaths, AnAbsentOptionalPartBeforeTheMismatchHasItsLine) {
    // ekprincipal_t { 1, (no sec_id_pa_t), 2, (no attrlist_t) } followed by an INTEGER where
    // nothing more belongs.
    const BufferFile file("principal-extra.der", {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x09, 0x02, 0x01,
                                                  0x01, 0x02, 0x01, 0x02, 0x02, 0x01, 0x03});
    const ToolRun run = run_tool("inspect '" + file.path() + "' --type ekprincipal_s_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  ekprincipal_s_t  SEQUENCE, length 9\n"
                       "     6    first_number  INTEGER, length 1: 1\n"
                       "     -    pa: absent (OPTIONAL)\n"
                       "     9    second_number  INTEGER, length 1: 2\n"
                       "     -    attrs: absent (OPTIONAL)\n"
                       "    12    INTEGER, length 1: 3\n");
    EXPECT_EQ(run.err, "kelmasn: " + file.path() +
                           ": does not decode as ekprincipal_s_t: status 0x106521a5 (unconsumed "
                           "contents in a SEQUENCE); the first element that does not fit: offset "
                           "12: the record: an element after the last field\n");
}

TEST(ToolRecordErrors, DecodeNamesTheHeaderOffsetWhenTheHeaderIsMissingOrOfAnotherVersion) {
    const std::vector<unsigned char> attribute = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0F, 0x0C,
                                                  0x01, 0x61, 0x30, 0x0A, 0x30, 0x08, 0x02,
                                                  0x01, 0x01, 0x0C, 0x01, 0x78, 0x04, 0x00};
    const BufferFile with_header("attr.der", attribute);
    ToolRun run = run_tool("decode attr_s_t '" + with_header.path() + "' --version 3");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + with_header.path() +
                           ": cannot decode attr_s_t: status 0x10652196 (no valid header of the "
                           "requested encoding version); offset 1: the header's version is 2, "
                           "not 3\n");
    const BufferFile bare("attr-bare.der",
                          std::vector<unsigned char>(attribute.begin() + 4, attribute.end()));
    run = run_tool("decode attr_s_t '" + bare.path() + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + bare.path() +
                           ": cannot decode attr_s_t: status 0x10652196 (no valid header of the "
                           "requested encoding version); offset 0: no header 04 vv AC DC\n");
}

TEST(ToolRecordErrors, EveryDecodingSubcommandNamesTheFirstElementThatDoesNotFit) {
    const BufferFile file("bad-entry.der", kListWithABadEntry);
    const std::string mismatch = "the first element that does not fit: offset 17: attrs[1].name: "
                                 "a text was expected, the buffer has INTEGER, length 1\n";
    for (const std::string& args :
         {"decode attrlist '" + file.path() + "'", "check '" + file.path() + "' --type attrlist",
          "canon '" + file.path() + "' --type attrlist -o /dev/null",
          "diff '" + file.path() + "' '" + file.path() + "' --type attrlist"}) {
        SCOPED_TRACE(args);
        const ToolRun run = run_tool(args);
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.err, "kelmasn: " + file.path() +
                               ": cannot decode attrlist_s_t: status 0x106521a4 (unexpected "
                               "tag); " +
                               mismatch);
    }
}

TEST(ToolRecordErrors, WithoutATypeTheErrorNamesTheOffsetWhereTheElementsStopParsing) {
    // attr_t's SEQUENCE announces 15 octets of contents (30 0F) and 6 follow.
    const BufferFile cut("cut.der",
                         {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0F, 0x0C, 0x01, 0x61, 0x30, 0x0A, 0x30});
    const BufferFile bare("bare.der", {0x30, 0x00});
    const struct {
        std::string args;
        std::string reason;
    } rows[] = {
        {"decode auto '" + cut.path() + "'",
         cut.path() + ": no record type decodes this buffer; offset 4: length 15 runs past the "
                      "end of the input"},
        {"canon '" + cut.path() + "' -o /dev/null",
         cut.path() + ": no record type decodes this buffer; offset 4: length 15 runs past the "
                      "end of the input"},
        {"diff '" + bare.path() + "' '" + cut.path() + "'",
         bare.path() + ": no record type decodes this buffer; offset 0: no header 04 vv AC DC"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.args);
        const ToolRun run = run_tool(row.args);
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.err, "kelmasn: " + row.reason + "\n");
    }
}

TEST(ToolRecordErrors, EncodeNamesTheFieldWhoseValueTheLibraryRefuses) {
    // 33 levels of nested name/value entries: the library writes 32 (the nesting limit of the
    // record mechanism counts the record and each list of entries below it once); the list that
    // holds the 33rd level is the field it refuses.
    std::string document, path = "nested";
    for (unsigned int i = 1; i < 33; ++i)
        document += "{\"nested\": [";
    document += "{}";
    for (unsigned int i = 1; i < 33; ++i)
        document += "]}";
    for (unsigned int i = 2; i < 33; ++i)
        path = "nested[0]." + path;
    const std::string json = temp_path("deep.json");
    write_file(json, document);
    for (const char* subcommand : {"encode namevalue_s_t", "craft --type namevalue_s_t"}) {
        SCOPED_TRACE(subcommand);
        const ToolRun run = run_tool(std::string(subcommand) + " '" + json + "' -o /dev/null");
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.err, "kelmasn: " + json +
                               ": cannot encode namevalue_s_t: status 0x1065219b (bad encoding); "
                               "the field it refuses: " +
                               path + "\n");
    }
    std::remove(json.c_str());
}

} // namespace
