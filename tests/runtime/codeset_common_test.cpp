// Rules every code-set converter follows: what the source is, and what an empty source does.
#include <string>

#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

bool replaces_destination(const NamedConverter& c) {
    return std::string(c.name) == "IA52P" || std::string(c.name) == "IA52V";
}

TEST(EveryConverter, AnEmptySourceReturnsZeroAndAppendsNothing) {
    unsigned char octets[4] = {0x41, 0x42, 0x43, 0x44};
    for (const NamedConverter& c : all_converters()) {
        SCOPED_TRACE(c.name);
        kelm_r_buffer_t null_source;
        kelm_buffer_t fresh;
        EXPECT_EQ(c.convert(null_source, fresh), KELM_ASN_OK);
        EXPECT_EQ(fresh.used(), 0u);
        EXPECT_EQ(fresh.storage, nullptr) << "an empty source made the destination allocate";

        kelm_r_buffer_t at_end(octets, 4);
        at_end.cursor += 4;
        at_end.remaining = 0;
        kelm_buffer_t dst;
        dst.append(reinterpret_cast<const unsigned char*>("PRE"), 3);
        EXPECT_EQ(c.convert(at_end, dst), KELM_ASN_OK);
        // IA52P and IA52V replace the destination's content with the (empty) source.
        EXPECT_EQ(written(dst), replaces_destination(c) ? Octets{} : hex("50 52 45"));
    }
}

// A valid source for each converter, whose last character is cut short where the code set has
// characters of more than one octet.
struct SourceRow {
    const char* name;
    const char* payload;
};

const SourceRow kPayloads[] = {
    {"IA52T61", "41 E9 42"},  {"T612BMP", "C2 65 41"},      {"T612IA5", "C2 65 41"},
    {"BMP2IA5", "00 41 00"},  {"IA52U", "41 E9 42"},        {"IA52BMP", "41 E9 42"},
    {"BMP2U", "00 41 00"},    {"U2IA5", "00 00 00 41 00"},  {"U2BMP", "00 00 00 41 00"},
    {"UTF82IA5", "41 C3"},    {"UTF82BMP", "41 E2 82"},     {"IA52UTF8", "41 E9 42"},
    {"BMP2UTF8", "00 41 01"}, {"U2UTF8", "00 00 00 41 01"}, {"IA52V", "41 62 31"},
    {"IA52P", "41 62 31"},
};

TEST(EveryConverter, TheSourceIsTheRemainingOctetsFromTheCursor) {
    const Octets before = hex("FF FE FD FC"), after = hex("A9 BF 80 7F 3D 01");
    ASSERT_EQ(sizeof kPayloads / sizeof kPayloads[0], all_converters().size());
    for (size_t i = 0; i < all_converters().size(); ++i) {
        const NamedConverter& c = all_converters()[i];
        ASSERT_STREQ(c.name, kPayloads[i].name);
        SCOPED_TRACE(c.name);
        const Octets payload = hex(kPayloads[i].payload);
        const Outcome alone = convert(c.convert, payload);
        EXPECT_EQ(alone.status, KELM_ASN_OK);

        Octets block = before;
        block.insert(block.end(), payload.begin(), payload.end());
        block.insert(block.end(), after.begin(), after.end());
        EXPECT_NE(convert(c.convert, block), alone)
            << "the surrounding octets cannot be told apart";

        kelm_r_buffer_t moved(block.data(), static_cast<unsigned int>(block.size()));
        moved.cursor += before.size();
        moved.remaining = static_cast<unsigned int>(payload.size());
        kelm_buffer_t dst;
        const unsigned int status = c.convert(moved, dst);
        EXPECT_EQ((Outcome{status, written(dst)}), alone) << "a cursor moved past its start";

        // A buffer presents what was written to it, not its whole capacity.
        kelm_buffer_t source;
        source.append(payload.data(), static_cast<unsigned int>(payload.size()));
        source.append(after.data(), static_cast<unsigned int>(after.size()));
        source.truncate(static_cast<unsigned int>(payload.size()));
        kelm_buffer_t dst2;
        const unsigned int status2 = c.convert(source, dst2);
        EXPECT_EQ((Outcome{status2, written(dst2)}), alone) << "a kelm_buffer_t as the source";
    }
}

} // namespace
