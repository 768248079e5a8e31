// Protected-object spaces, protected objects and their internal form through the typed entry
// points.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "pobj_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::buffer_over;
using kelm_test::Bytes;
using kelm_test::bytes_of;
using kelm_test::decode_record;
using kelm_test::dup_text;
using kelm_test::encoded;
using kelm_test::text_array;
using kelm_test::with_header;

// --- pobj_s_t --------------------------------------------------------------------------------

TEST(Pobj, AnEmptyAttributeListIsWrittenAsASequenceHoldingAnEmptySequence) {
    pobj_s_t pobj{1, 2, dup_text("/a"), attrlist_s_t{}};
    const Bytes wire = encoded(pobj);
    EXPECT_EQ(wire, with_header({0x30, 0x0E, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x0C, 0x02, '/',
                                 'a', 0x30, 0x02, 0x30, 0x00}));
    pobj_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.first_number, 1u);
    EXPECT_EQ(back.second_number, 2u);
    EXPECT_STREQ(back.name, "/a");
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(pobj);
}

TEST(Pobj, ExtremeNumbersAndAttributesRoundTrip) {
    const uint32_t extremes[] = {0u, 0x7Fu, 0x80u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu};
    for (uint32_t first : extremes) {
        SCOPED_TRACE(::testing::Message() << std::hex << first);
        pobj_s_t pobj{first, ~first, dup_text("/x/y"), kelm_test::one_attribute("k", "v")};
        const Bytes wire = encoded(pobj);
        pobj_s_t back{};
        ASSERT_EQ(decode_record(wire, back), 0u);
        EXPECT_EQ(back.first_number, first);
        EXPECT_EQ(back.second_number, ~first);
        EXPECT_STREQ(back.name, "/x/y");
        ASSERT_EQ(back.attrs.attr_count, 1u);
        EXPECT_STREQ(back.attrs.attrs[0].values[0].str_value, "v");
        EXPECT_EQ(encoded(back), wire);
        kelmAsnFreeObj(back);
        kelmAsnFreeObj(pobj);
    }
}

// --- azn_internal_pobj_s_t -------------------------------------------------------------------

TEST(InternalPobj, TheWholeProtectedObjectIsOneNestedSequence) {
    azn_internal_pobj_s_t internal{};
    internal.pobj = pobj_s_t{0xFFFFFFFFu, 0, nullptr, attrlist_s_t{}};
    internal.internal_name = dup_text("in");
    const Bytes wire = encoded(internal);
    EXPECT_EQ(wire, with_header({0x30, 0x12, 0x30, 0x0C, 0x02, 0x01, 0xFF, 0x02, 0x01, 0x00,
                                 0x0C, 0x00, 0x30, 0x02, 0x30, 0x00, 0x0C, 0x02, 'i',  'n'}));
    azn_internal_pobj_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.pobj.first_number, 0xFFFFFFFFu);
    EXPECT_EQ(back.pobj.second_number, 0u);
    EXPECT_STREQ(back.pobj.name, "");
    EXPECT_EQ(back.pobj.attrs.attrs, nullptr);
    EXPECT_STREQ(back.internal_name, "in");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(internal);
}

TEST(InternalPobj, TheNestedObjectsAttributesAndTextsRoundTrip) {
    azn_internal_pobj_s_t internal{};
    internal.pobj = pobj_s_t{0x80000000u, 0x7FFFFFFFu, dup_text(std::string(200, 'p')),
                             kelm_test::one_attribute("owner", "team")};
    internal.internal_name = dup_text("space:0001");
    const Bytes wire = encoded(internal);
    azn_internal_pobj_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.pobj.first_number, 0x80000000u);
    EXPECT_EQ(back.pobj.second_number, 0x7FFFFFFFu);
    EXPECT_EQ(std::string(back.pobj.name), std::string(200, 'p'));
    ASSERT_EQ(back.pobj.attrs.attr_count, 1u);
    EXPECT_STREQ(back.pobj.attrs.attrs[0].name, "owner");
    EXPECT_STREQ(back.internal_name, "space:0001");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(internal);
}

// --- pobjspace_s_t ---------------------------------------------------------------------------

TEST(PobjSpace, AnEmptySpaceIsTwoEmptyLists) {
    pobjspace_s_t space{};
    const Bytes wire = encoded(space);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    pobjspace_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.name_count, 0u);
    EXPECT_EQ(back.names, nullptr);
    kelmAsnFreeObj(back);
}

TEST(PobjSpace, NamesRoundTripEachInItsOwnAllocation) {
    pobjspace_s_t space{};
    space.name_count = 3;
    space.names = text_array({"/one", "", "/three"});
    space.attrs = kelm_test::one_attribute("a", "b");
    const Bytes wire = encoded(space);
    EXPECT_EQ(Bytes(wire.begin() + 4, wire.begin() + 20),
              (Bytes{0x30, 0x27, 0x30, 0x10, 0x0C, 0x04, '/', 'o', 'n', 'e', 0x0C, 0x00, 0x0C, 0x06,
                     '/', 't'}));
    pobjspace_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    ASSERT_EQ(back.name_count, 3u);
    EXPECT_STREQ(back.names[0], "/one");
    EXPECT_STREQ(back.names[1], "");
    EXPECT_STREQ(back.names[2], "/three");
    EXPECT_NE(back.names[1], space.names[1]);
    ASSERT_EQ(back.attrs.attr_count, 1u);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(space);
}

// --- class names -----------------------------------------------------------------------------

TEST(PobjClasses, StoredTypeNamesDropThePrefixAndKeepSixteenCharacters) {
    EXPECT_STREQ(asn_pobjspace_t().get_type_name(), "pobjspace_t");
    EXPECT_STREQ(asn_pobj_t().get_type_name(), "pobj_t");
    EXPECT_STREQ(asn_azn_internal_pobj_t().get_type_name(), "azn_internal_pob");
}

// --- local code set --------------------------------------------------------------------------

using PobjLatin1 = kelm_test::Latin1Test;

TEST_F(PobjLatin1, TheNestedObjectsNameAndTheInternalNameConvertBothWays) {
    azn_internal_pobj_s_t local{};
    local.pobj = pobj_s_t{1, 2, dup_text("/caf\xE9"), kelm_test::one_attribute("\xDF", "\xFF")};
    local.internal_name = dup_text("\xC5"
                                   "ngstr\xF6m");
    azn_internal_pobj_s_t utf8{};
    utf8.pobj =
        pobj_s_t{1, 2, dup_text("/caf\xC3\xA9"), kelm_test::one_attribute("\xC3\x9F", "\xC3\xBF")};
    utf8.internal_name = dup_text("\xC3\x85"
                                  "ngstr\xC3\xB6m");

    kelm_asn_buffer_t lcs{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(lcs, local), 0u);
    EXPECT_EQ(bytes_of(lcs), encoded(utf8)) << "the wire carries UTF-8";
    azn_internal_pobj_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(lcs, back), 0u);
    EXPECT_STREQ(back.pobj.name, "/caf\xE9");
    EXPECT_STREQ(back.pobj.attrs.attrs[0].name, "\xDF");
    EXPECT_STREQ(back.pobj.attrs.attrs[0].values[0].str_value, "\xFF");
    EXPECT_STREQ(back.internal_name, local.internal_name);
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(lcs);
    kelmAsnFreeObj(local);
    kelmAsnFreeObj(utf8);
}

// --- memory exhaustion -----------------------------------------------------------------------

TEST(PobjFailure, ANameOfASpaceThatCannotBeCreatedIsAMemoryErrorOfThisModule) {
    ASSERT_STREQ(kelm_pobjspace_type.source, "base_idls/pobj_asn.cpp");
    pobjspace_s_t space{};
    space.name_count = 2;
    space.names = text_array({"/a", "/b"});
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, space);
        },
        [&] { kelm_asn_buffer_free(out); });
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_pobjspace_type, "ASN: Memory error")),
              1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(space);
}

TEST(PobjFailure, ANameArrayThatCannotBeAllocatedIsAMemoryErrorOfThisModule) {
    pobjspace_s_t space{};
    space.name_count = 2;
    space.names = text_array({"/a", "/b"});
    Bytes wire = encoded(space);
    const kelm_asn_buffer_t in = buffer_over(wire);
    pobjspace_s_t back{};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            back = pobjspace_s_t{};
            kelm_asn_buffer_t input = in;
            return kelmAsnDecodeObj(input, back);
        },
        [&] { kelmAsnFreeObj(back); });
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_pobjspace_type, "ASN: Memory error")),
              1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(space);
}
