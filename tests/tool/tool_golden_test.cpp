// Every subcommand on the shipped buffers of three record types of different families: a time of
// day range (integers only, one of them an unsigned 32-bit value written as a signed INTEGER), an
// audit attribute (a UTF8String and an OCTET STRING) and a security identifier (a nested uuid
// record and a UTF8String). The expected outputs are written from X.690 (08/2015) and the bytes
// of each buffer, worked out below; they are not taken from the tool.
#include <cstdio>
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

using Bytes = std::vector<unsigned char>;

struct Golden {
    const char* type;
    Bytes der;         // the header 04 02 AC DC and the record's DER
    const char* tree;  // der's lines
    const char* typed; // inspect --type's lines
    const char* json;  // decode's document
    const char* minimal;
    Bytes indefinite;             // craft --indefinite: every constructed element indefinite
    const char* indefinite_check; // check --type on that variant
    size_t changed_offset;        // an octet whose change alters one field
    unsigned char changed_to;
    const char* difference; // diff's line for it
};

const Golden kGoldens[] = {
    // ektod_range_t { range_start 480 (02 02 01 E0), range_end 1080 (02 02 04 38),
    // range_qualifier 0x8000003F: its 32 bits as a signed INTEGER, 02 04 80 00 00 3F, that is
    // -2147483648 + 63 = -2147483585 }: 4 + 4 + 6 = 14 octets of contents.
    {"ektod_range_s_t",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0E, 0x02, 0x02, 0x01, 0xE0,
      0x02, 0x02, 0x04, 0x38, 0x02, 0x04, 0x80, 0x00, 0x00, 0x3F},
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  SEQUENCE [UNIVERSAL 16] constructed, length 14\n"
     "     6    INTEGER [UNIVERSAL 2] primitive, length 2: 480\n"
     "    10    INTEGER [UNIVERSAL 2] primitive, length 2: 1080\n"
     "    14    INTEGER [UNIVERSAL 2] primitive, length 4: -2147483585\n",
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  ektod_range_s_t  SEQUENCE, length 14\n"
     "     6    range_start  INTEGER, length 2: 480\n"
     "    10    range_end  INTEGER, length 2: 1080\n"
     "    14    range_qualifier  INTEGER, length 4: -2147483585\n",
     "{\n  \"range_start\": 480,\n  \"range_end\": 1080,\n  \"range_qualifier\": 2147483711\n}\n",
     "{\n  \"range_start\": 0,\n  \"range_end\": 0,\n  \"range_qualifier\": 0\n}\n",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x80, 0x02, 0x02, 0x01, 0xE0, 0x02,
      0x02, 0x04, 0x38, 0x02, 0x04, 0x80, 0x00, 0x00, 0x3F, 0x00, 0x00},
     "offset 4: ektod_range_s_t: indefinite length\n",
     13,
     0x39, // 04 39: 1081
     "range_end: 1080 -> 1081\n"},
    // zuauditattribute_t { name "user" (0C 04), value 'alice' (04 05) }: 6 + 7 = 13 octets. The
    // OCTET STRING's octets are printable, so der shows them as text.
    {"zuauditattribute_s_t",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0D, 0x0C, 0x04, 0x75, 0x73, 0x65, 0x72, 0x04, 0x05, 0x61,
      0x6C, 0x69, 0x63, 0x65},
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  SEQUENCE [UNIVERSAL 16] constructed, length 13\n"
     "     6    UTF8String [UNIVERSAL 12] primitive, length 4: \"user\"\n"
     "    12    OCTET STRING [UNIVERSAL 4] primitive, length 5: \"alice\"\n",
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  zuauditattribute_s_t  SEQUENCE, length 13\n"
     "     6    name  UTF8String, length 4: \"user\"\n"
     "    12    value  OCTET STRING, length 5: \"alice\"\n",
     "{\n  \"name\": \"user\",\n  \"value\": \"616c696365\"\n}\n",
     "{\n  \"name\": \"\",\n  \"value\": \"\"\n}\n",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x80, 0x0C, 0x04, 0x75, 0x73, 0x65,
      0x72, 0x04, 0x05, 0x61, 0x6C, 0x69, 0x63, 0x65, 0x00, 0x00},
     "offset 4: zuauditattribute_s_t: indefinite length\n",
     11,
     0x78, // "usex"
     "name: \"user\" -> \"usex\"\n"},
    // sec_id_t { uuid { time_low 0xDEADBEEF as a signed INTEGER (02 04 DE AD BE EF:
    // 3735928559 - 2^32 = -559038737), time_mid 48879 (02 03 00 BE EF: a leading 00 keeps it
    // positive, 8.3.3), time_hi_and_version 0x1234 = 4660, clock_seq_hi_and_reserved 128 (02 02
    // 00 80), clock_seq_low 1, node 0A 1B 2C 3D 4E 5F (04 06) }, name "cn=alice,o=example"
    // (0C 12) }: the uuid has 6 + 5 + 4 + 4 + 3 + 8 = 30 octets, the record 32 + 20 = 52.
    {"sec_id_t",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x34, 0x30, 0x1E, 0x02, 0x04, 0xDE, 0xAD, 0xBE, 0xEF, 0x02,
      0x03, 0x00, 0xBE, 0xEF, 0x02, 0x02, 0x12, 0x34, 0x02, 0x02, 0x00, 0x80, 0x02, 0x01, 0x01,
      0x04, 0x06, 0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F, 0x0C, 0x12, 'c',  'n',  '=',  'a',  'l',
      'i',  'c',  'e',  ',',  'o',  '=',  'e',  'x',  'a',  'm',  'p',  'l',  'e'},
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  SEQUENCE [UNIVERSAL 16] constructed, length 52\n"
     "     6    SEQUENCE [UNIVERSAL 16] constructed, length 30\n"
     "     8      INTEGER [UNIVERSAL 2] primitive, length 4: -559038737\n"
     "    14      INTEGER [UNIVERSAL 2] primitive, length 3: 48879\n"
     "    19      INTEGER [UNIVERSAL 2] primitive, length 2: 4660\n"
     "    23      INTEGER [UNIVERSAL 2] primitive, length 2: 128\n"
     "    27      INTEGER [UNIVERSAL 2] primitive, length 1: 1\n"
     "    30      OCTET STRING [UNIVERSAL 4] primitive, length 6: 0A 1B 2C 3D 4E 5F\n"
     "    38    UTF8String [UNIVERSAL 12] primitive, length 18: \"cn=alice,o=example\"\n",
     "     0  header: length 4, version 2, magic AC DC\n"
     "     4  sec_id_t  SEQUENCE, length 52\n"
     "     6    uuid  SEQUENCE, length 30\n"
     "     8      uuid.time_low  INTEGER, length 4: -559038737\n"
     "    14      uuid.time_mid  INTEGER, length 3: 48879\n"
     "    19      uuid.time_hi_and_version  INTEGER, length 2: 4660\n"
     "    23      uuid.clock_seq_hi_and_reserved  INTEGER, length 2: 128\n"
     "    27      uuid.clock_seq_low  INTEGER, length 1: 1\n"
     "    30      uuid.node  OCTET STRING, length 6: 0A 1B 2C 3D 4E 5F\n"
     "    38    name  UTF8String, length 18: \"cn=alice,o=example\"\n",
     "{\n  \"uuid\": {\n    \"time_low\": 3735928559,\n    \"time_mid\": 48879,\n"
     "    \"time_hi_and_version\": 4660,\n    \"clock_seq_hi_and_reserved\": 128,\n"
     "    \"clock_seq_low\": 1,\n    \"node\": \"0a1b2c3d4e5f\"\n  },\n"
     "  \"name\": \"cn=alice,o=example\"\n}\n",
     "{\n  \"uuid\": {\n    \"time_low\": 0,\n    \"time_mid\": 0,\n"
     "    \"time_hi_and_version\": 0,\n    \"clock_seq_hi_and_reserved\": 0,\n"
     "    \"clock_seq_low\": 0,\n    \"node\": \"000000000000\"\n  },\n  \"name\": \"\"\n}\n",
     {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x80, 0x30, 0x80, 0x02, 0x04, 0xDE, 0xAD, 0xBE,
      0xEF, 0x02, 0x03, 0x00, 0xBE, 0xEF, 0x02, 0x02, 0x12, 0x34, 0x02, 0x02, 0x00,
      0x80, 0x02, 0x01, 0x01, 0x04, 0x06, 0x0A, 0x1B, 0x2C, 0x3D, 0x4E, 0x5F, 0x00,
      0x00, 0x0C, 0x12, 'c',  'n',  '=',  'a',  'l',  'i',  'c',  'e',  ',',  'o',
      '=',  'e',  'x',  'a',  'm',  'p',  'l',  'e',  0x00, 0x00},
     "offset 4: sec_id_t: indefinite length\n"
     "offset 6: uuid: indefinite length\n",
     29,
     0x02, // clock_seq_low 2
     "uuid.clock_seq_low: 1 -> 2\n"},
};

std::string example_der(const std::string& type) {
    return std::string(KELMASN_EXAMPLES) + "/der/" + type + ".der";
}

std::string example_json(const std::string& type) {
    return std::string(KELMASN_EXAMPLES) + "/json/" + type + ".json";
}

std::string text_of(const Bytes& bytes) {
    return std::string(bytes.begin(), bytes.end());
}

class ToolGolden : public ::testing::TestWithParam<Golden> {
  protected:
    const Golden& golden() const { return GetParam(); }
    std::string example() const { return example_der(golden().type); }
};

TEST_P(ToolGolden, TheShippedBufferIsTheExpectedDer) {
    EXPECT_EQ(read_file(example()), text_of(golden().der));
}

TEST_P(ToolGolden, DerPrintsTheElementTree) {
    const ToolRun run = run_tool("der '" + example() + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, golden().tree);
    EXPECT_EQ(run.err, "");
}

TEST_P(ToolGolden, InspectLabelsEveryElement) {
    const ToolRun run = run_tool("inspect '" + example() + "' --type " + golden().type);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, golden().typed);
    EXPECT_EQ(run.err, "");
}

TEST_P(ToolGolden, DecodePrintsTheRecord) {
    const ToolRun run = run_tool("decode " + std::string(golden().type) + " '" + example() + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, golden().json);
    EXPECT_EQ(run.err, "");
}

TEST_P(ToolGolden, EncodeWritesTheExpectedDer) {
    const std::string out = temp_path("golden.der");
    const ToolRun run = run_tool("encode " + std::string(golden().type) + " '" +
                                 example_json(golden().type) + "' -o '" + out + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(read_file(out), text_of(golden().der));
    std::remove(out.c_str());
}

TEST_P(ToolGolden, SampleMinimalIsTheZeroRecord) {
    const ToolRun run = run_tool("sample " + std::string(golden().type) + " --minimal");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, golden().minimal);
}

TEST_P(ToolGolden, CheckFindsNothingInTheDerAndEveryIndefiniteLengthInTheBer) {
    const ToolRun clean = run_tool("check '" + example() + "' --type " + golden().type);
    EXPECT_EQ(clean.exit_code, 0) << clean.err;
    EXPECT_EQ(clean.out, "");
    const std::string ber = temp_path("golden.ber");
    write_file(ber, golden().indefinite);
    const ToolRun run = run_tool("check '" + ber + "' --type " + golden().type);
    EXPECT_EQ(run.exit_code, 1) << run.err;
    EXPECT_EQ(run.out, golden().indefinite_check);
    std::remove(ber.c_str());
}

TEST_P(ToolGolden, CraftWritesTheIndefiniteFormAndCanonTakesItBack) {
    const std::string ber = temp_path("golden-crafted.ber");
    const std::string der = temp_path("golden-canon.der");
    ToolRun run = run_tool("craft '" + example_json(golden().type) + "' --type " + golden().type +
                           " --indefinite -o '" + ber + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(read_file(ber), text_of(golden().indefinite));
    run = run_tool("canon '" + ber + "' --type " + golden().type + " -o '" + der + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(read_file(der), text_of(golden().der));
    std::remove(ber.c_str());
    std::remove(der.c_str());
}

TEST_P(ToolGolden, DiffNamesTheChangedField) {
    Bytes changed = golden().der;
    changed[golden().changed_offset] = golden().changed_to;
    const std::string other = temp_path("golden-changed.der");
    write_file(other, changed);
    ToolRun run = run_tool("diff '" + example() + "' '" + other + "' --type " + golden().type);
    EXPECT_EQ(run.exit_code, 1) << run.err;
    EXPECT_EQ(run.out, golden().difference);
    run = run_tool("diff '" + example() + "' '" + example() + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "");
    std::remove(other.c_str());
}

TEST_P(ToolGolden, TypesListsTheTypeWithItsNames) {
    // The class name is the record name with "asn_" in front and "_s_t" or "_t" made "_t".
    std::string base = golden().type;
    base.erase(base.rfind(base.size() > 4 && base.compare(base.size() - 4, 4, "_s_t") == 0 ? "_s_t"
                                                                                           : "_t"));
    std::string line = golden().type;
    line.resize(36, ' ');
    line += " asn_" + base + "_t (also asn_" + base + "_t, " + base + "_t, " + base + ")\n";
    const ToolRun run = run_tool("types");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_NE(run.out.find(line), std::string::npos) << line;
}

// The two shipped buffers that are not records. indefinite-high-tag.ber, without a header:
// 30 80 a SEQUENCE of indefinite length; 9F 81 00 03 "abc" a primitive [CONTEXT 128] (the tag
// number 1 * 128 + 0 in the subsequent octets, 8.1.2.4); A1 80 02 01 05 00 00 a constructed
// [CONTEXT 1] of indefinite length holding INTEGER 5; 24 80 04 02 "hi" 04 01 "!" 00 00 an OCTET
// STRING in constructed form of indefinite length; 00 00 the end of the SEQUENCE.
const std::string kIndefiniteSample = std::string(KELMASN_EXAMPLES) + "/indefinite-high-tag.ber";
// universal-types-with-header.der: 04 02 AC DC, then a SEQUENCE of 38 octets: UTF8String "alice",
// OCTET STRING 01 02 03, INTEGER 256 (01 00), BOOLEAN TRUE (FF), NULL, an OBJECT IDENTIFIER
// (06 03 2A 03 04), a BIT STRING (03 02 03 F8) and a SEQUENCE of INTEGER -1 and IA5String "x",
// all in DER.
const std::string kUniversalSample =
    std::string(KELMASN_EXAMPLES) + "/universal-types-with-header.der";

TEST(ToolShippedSamples, InspectShowsTheUntypedTreeOfEach) {
    ToolRun run = run_tool("inspect '" + kIndefiniteSample + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     -  no header 04 vv AC DC\n"
                       "     0  SEQUENCE, length indefinite\n"
                       "     2    [CONTEXT 128], length 3: \"abc\"\n"
                       "     9    [CONTEXT 1] constructed, length indefinite\n"
                       "    11      INTEGER, length 1: 5\n"
                       "    16    OCTET STRING constructed, length indefinite\n"
                       "    18      OCTET STRING, length 2: \"hi\"\n"
                       "    22      OCTET STRING, length 1: \"!\"\n");
    run = run_tool("inspect '" + kUniversalSample + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "     0  header: length 4, version 2, magic AC DC\n"
                       "     4  SEQUENCE, length 38\n"
                       "     6    UTF8String, length 5: \"alice\"\n"
                       "    13    OCTET STRING, length 3: 01 02 03\n"
                       "    18    INTEGER, length 2: 256\n"
                       "    22    BOOLEAN, length 1: TRUE\n"
                       "    25    NULL, length 0\n"
                       "    27    [UNIVERSAL 6], length 3: 1.2.3.4\n"
                       "    32    [UNIVERSAL 3], length 2: 5 bits: F8\n"
                       "    36    SEQUENCE, length 6\n"
                       "    38      INTEGER, length 1: -1\n"
                       "    41      IA5String, length 1: \"x\"\n");
}

TEST(ToolShippedSamples, CheckListsEveryBerFormOfTheIndefiniteSampleAndNothingInTheDerOne) {
    ToolRun run = run_tool("check '" + kIndefiniteSample + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.out, "offset 0: no header 04 vv AC DC\n"
                       "offset 0: indefinite length\n"
                       "offset 9: indefinite length\n"
                       "offset 16: indefinite length\n"
                       "offset 16: string in constructed form\n");
    run = run_tool("check '" + kUniversalSample + "'");
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.out, "");
}

TEST(ToolShippedSamples, NoRecordTypeDecodesEitherSample) {
    for (const std::string& args :
         {"decode auto '" + kUniversalSample + "'", "canon '" + kUniversalSample + "' -o /dev/null",
          "diff '" + kUniversalSample + "' '" + kUniversalSample + "'"}) {
        SCOPED_TRACE(args);
        const ToolRun run = run_tool(args);
        EXPECT_EQ(run.exit_code, 1);
        EXPECT_EQ(run.err,
                  "kelmasn: " + kUniversalSample + ": no record type decodes this buffer\n");
    }
    const ToolRun run = run_tool("decode auto '" + kIndefiniteSample + "'");
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.err,
              "kelmasn: " + kIndefiniteSample +
                  ": no record type decodes this buffer; offset 0: no header 04 vv AC DC\n");
}

INSTANTIATE_TEST_SUITE_P(ThreeFamilies, ToolGolden, ::testing::ValuesIn(kGoldens),
                         [](const ::testing::TestParamInfo<Golden>& info) {
                             return std::string(info.param.type);
                         });

} // namespace
