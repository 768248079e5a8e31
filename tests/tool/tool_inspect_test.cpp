// kelmasn inspect: the header, then each element labelled with the field of the record it carries,
// absent optional records named; an untyped tree and the library's status where the buffer does
// not decode as the type.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool_test_support.h"

namespace {

using kelm_tool_test::line_count;
using kelm_tool_test::run_tool;
using kelm_tool_test::temp_path;
using kelm_tool_test::ToolRun;
using kelm_tool_test::write_file;

// 04 02 AC DC, then attr_t { "a", SEQUENCE OF { value_t { 1, "x", '' } } }.
const std::vector<unsigned char> kAttribute = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0F, 0x0C,
                                               0x01, 0x61, 0x30, 0x0A, 0x30, 0x08, 0x02,
                                               0x01, 0x01, 0x0C, 0x01, 0x78, 0x04, 0x00};

const char kAttributeLines[] =
    "     0  header: length 4, version 2, magic AC DC\n"
    "     4  attr_s_t  SEQUENCE, length 15\n"
    "     6    name  UTF8String, length 1: \"a\"\n"
    "     9    values  SEQUENCE, length 10\n"
    "    11      values[0]  SEQUENCE, length 8\n"
    "    13        values[0].value_type  INTEGER, length 1: 1\n"
    "    16        values[0].str_value  UTF8String, length 1: \"x\"\n"
    "    19        values[0].bin_value  OCTET STRING, length 0: (empty)\n";

class ToolInspect : public ::testing::Test {
  protected:
    void SetUp() override { write_file(path_, kAttribute); }
    void TearDown() override { std::remove(path_.c_str()); }
    const std::string path_ = temp_path("inspect.der");
};

TEST_F(ToolInspect, LabelsEveryElementWithItsFieldPath) {
    for (const char* type : {"attr_s_t", "auto"}) {
        SCOPED_TRACE(type);
        const ToolRun run = run_tool("inspect '" + path_ + "' --type " + type);
        EXPECT_EQ(run.exit_code, 0) << run.err;
        EXPECT_EQ(run.out, kAttributeLines);
    }
}

TEST_F(ToolInspect, WithoutATypeShowsTheTreeUnlabelled) {
    const ToolRun run = run_tool("inspect '" + path_ + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  SEQUENCE, length 15\n"
                       "     6    UTF8String, length 1: \"a\"\n"
                       "     9    SEQUENCE, length 10\n"
                       "    11      SEQUENCE, length 8\n"
                       "    13        INTEGER, length 1: 1\n"
                       "    16        UTF8String, length 1: \"x\"\n"
                       "    19        OCTET STRING, length 0: (empty)\n");
}

TEST_F(ToolInspect, ABufferOfAnotherTypeShowsTheTreeAndTheLibrarysStatus) {
    const ToolRun run = run_tool("inspect '" + path_ + "' --type value_s_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(line_count(run.out), 8u) << run.out;
    EXPECT_EQ(run.err, "kelmasn: " + path_ + ": does not decode as value_s_t: status " +
                           "0x106521a4 (unexpected tag); the first element that does not fit: " +
                           "offset 6: value_type: an INTEGER was expected, the buffer has " +
                           "UTF8String, length 1\n");
}

// An element is shown as itself even when its first octets read like a buffer's header: an
// OCTET STRING (04) whose contents start with AC DC.
TEST(ToolInspectValues, AnOctetStringWhoseContentsStartWithTheMagicShowsItsOwnBytes) {
    const std::string path = temp_path("magic-contents.der");
    write_file(path, std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x05, 0x04, 0x03,
                                                0xAC, 0xDC, 0x05});
    const ToolRun run = run_tool("inspect '" + path + "'");
    std::remove(path.c_str());
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  SEQUENCE, length 5\n"
                       "     6    OCTET STRING, length 3: AC DC 05\n");
}

TEST(ToolInspectOptional, AnAbsentOptionalRecordHasALineOfItsOwn) {
    // ekprincipal_t { 1, (no sec_id_pa_t), 2, (no attrlist_t) }
    const std::string path = temp_path("principal.der");
    write_file(path, std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x06, 0x02, 0x01,
                                                0x01, 0x02, 0x01, 0x02});
    const ToolRun run = run_tool("inspect '" + path + "' --type ekprincipal_s_t");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  ekprincipal_s_t  SEQUENCE, length 6\n"
                       "     6    first_number  INTEGER, length 1: 1\n"
                       "     -    pa: absent (OPTIONAL)\n"
                       "     9    second_number  INTEGER, length 1: 2\n"
                       "     -    attrs: absent (OPTIONAL)\n");
    std::remove(path.c_str());
}

TEST(ToolInspectInput, GarbageEmptyTruncatedAndMissingInputGiveOneLineAndExitOne) {
    const std::string path = temp_path("bad.der");
    for (const std::vector<unsigned char>& bytes :
         {std::vector<unsigned char>{}, std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30},
          std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x05, 0x02, 0x01}}) {
        write_file(path, bytes);
        const ToolRun run = run_tool("inspect '" + path + "' --type attr_s_t");
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(line_count(run.err), 1u) << run.err;
    }
    std::remove(path.c_str());
    const ToolRun missing = run_tool("inspect '" + path + "'");
    EXPECT_EQ(missing.exit_code, 1);
    EXPECT_EQ(line_count(missing.err), 1u) << missing.err;
}

} // namespace

namespace {

TEST(ToolDecodeErrors, AnErrorNamesTheFirstElementThatDoesNotFitWithItsOffsetAndField) {
    const std::string attr = std::string(KELMASN_EXAMPLES) + "/der/attr_s_t.der";
    ToolRun run = run_tool("decode value_s_t '" + attr + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err, "kelmasn: " + attr +
                           ": cannot decode value_s_t: status 0x106521a4 (unexpected tag); the "
                           "first element that does not fit: offset 6: value_type: an INTEGER "
                           "was expected, the buffer has UTF8String, length 6\n");
    // value_t { 1 } and nothing more: the text is missing where the SEQUENCE ends.
    const std::string cut = temp_path("cut.der");
    write_file(cut,
               std::vector<unsigned char>{0x04, 0x02, 0xAC, 0xDC, 0x30, 0x03, 0x02, 0x01, 0x01});
    run = run_tool("decode value_s_t '" + cut + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("offset 9: str_value: a text was expected, the element ends"),
              std::string::npos)
        << run.err;
    run = run_tool("inspect '" + cut + "' --type value_s_t");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_NE(run.err.find("offset 9: str_value: a text was expected"), std::string::npos)
        << run.err;
    std::remove(cut.c_str());
}

} // namespace
