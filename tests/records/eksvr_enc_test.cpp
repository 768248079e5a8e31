// Administration service entries and local server records through the typed entry points.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "eksvr_enc_asn.h"
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

namespace {

// A malloc'ed array of service entries, as a caller's record holds it.
aznadmsvc_s_t* services(const std::vector<std::pair<std::string, std::vector<std::string>>>& list) {
    auto* array = static_cast<aznadmsvc_s_t*>(std::calloc(list.size(), sizeof(aznadmsvc_s_t)));
    for (size_t i = 0; i < list.size(); ++i) {
        array[i].svc_name = dup_text(list[i].first);
        array[i].svc_item_count = static_cast<uint32_t>(list[i].second.size());
        array[i].svc_items = text_array(list[i].second);
    }
    return array;
}

void expect_same_service(const aznadmsvc_s_t& a, const aznadmsvc_s_t& b) {
    EXPECT_TRUE(kelm_test::same_text(a.svc_name, b.svc_name));
    ASSERT_EQ(a.svc_item_count, b.svc_item_count);
    for (uint32_t i = 0; i < a.svc_item_count; ++i)
        EXPECT_TRUE(kelm_test::same_text(a.svc_items[i], b.svc_items[i])) << "item " << i;
}

} // namespace

// --- aznadmsvc_s_t ---------------------------------------------------------------------------

TEST(AdminService, TheNameIsFollowedByTheItemList) {
    aznadmsvc_s_t svc{dup_text("s"), 2, text_array({"a", "bc"})};
    const Bytes wire = encoded(svc);
    EXPECT_EQ(wire, with_header({0x30, 0x0C, 0x0C, 0x01, 's', 0x30, 0x07, 0x0C, 0x01, 'a', 0x0C,
                                 0x02, 'b', 'c'}));
    aznadmsvc_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    expect_same_service(back, svc);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(svc);
}

TEST(AdminService, AnEmptyItemListDecodesToACountOfZeroAndNull) {
    aznadmsvc_s_t svc{nullptr, 0, nullptr};
    const Bytes wire = encoded(svc);
    EXPECT_EQ(wire, with_header({0x30, 0x04, 0x0C, 0x00, 0x30, 0x00}));
    aznadmsvc_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_STREQ(back.svc_name, "");
    EXPECT_EQ(back.svc_item_count, 0u);
    EXPECT_EQ(back.svc_items, nullptr);
    kelmAsnFreeObj(back);
}

// --- aznlocal_svr_s_t ------------------------------------------------------------------------

TEST(LocalServer, NoServicesEncodeAnEmptySequenceInTheNinthPlace) {
    aznlocal_svr_s_t svr{};
    const Bytes wire = encoded(svr);
    EXPECT_EQ(wire, with_header({0x30, 0x1A, 0x0C, 0x00, 0x0C, 0x00, 0x0C, 0x00, 0x0C, 0x00,
                                 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x02,
                                 0x01, 0x00, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    aznlocal_svr_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.svc_count, 0u);
    EXPECT_EQ(back.svcs, nullptr);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    for (const char* text : {back.svr_text1, back.svr_text2, back.svr_text3, back.svr_text4})
        EXPECT_STREQ(text, "");
    kelmAsnFreeObj(back);
}

TEST(LocalServer, ANegativeNumberReadsBackAsTheUnsignedValueWithTheSameBits) {
    aznlocal_svr_s_t svr{};
    svr.svr_number1 = static_cast<uint32_t>(-5);
    const Bytes wire = encoded(svr);
    ASSERT_GT(wire.size(), 17u);
    EXPECT_EQ(Bytes(wire.begin() + 14, wire.begin() + 17), (Bytes{0x02, 0x01, 0xFB}));
    aznlocal_svr_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.svr_number1, 0xFFFFFFFBu);
    kelmAsnFreeObj(back);
}

TEST(LocalServer, ExtremeNumbersRoundTripInTheirPlaces) {
    aznlocal_svr_s_t svr{};
    svr.svr_number1 = 0x80000000u;
    svr.svr_number2 = 0x7FFFFFFFu;
    svr.svr_number3 = 0xFFFFFFFFu;
    svr.svr_number4 = 0x80u;
    aznlocal_svr_s_t back{};
    ASSERT_EQ(decode_record(encoded(svr), back), 0u);
    EXPECT_EQ(back.svr_number1, 0x80000000u);
    EXPECT_EQ(back.svr_number2, 0x7FFFFFFFu);
    EXPECT_EQ(back.svr_number3, 0xFFFFFFFFu);
    EXPECT_EQ(back.svr_number4, 0x80u);
    kelmAsnFreeObj(back);
}

TEST(LocalServer, TextsServicesAndAttributesRoundTrip) {
    aznlocal_svr_s_t svr{};
    svr.svr_text1 = dup_text("one");
    svr.svr_text2 = dup_text("");
    svr.svr_text3 = nullptr;
    svr.svr_text4 = dup_text(std::string(300, 'x'));
    svr.svc_count = 3;
    svr.svcs = services({{"first", {"a", "b", "c"}}, {"second", {}}, {"", {""}}});
    svr.attrs = kelm_test::one_attribute("site", "north");
    const Bytes wire = encoded(svr);
    aznlocal_svr_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_STREQ(back.svr_text1, "one");
    EXPECT_STREQ(back.svr_text2, "");
    EXPECT_STREQ(back.svr_text3, "") << "a null text is written empty and read back as \"\"";
    EXPECT_EQ(std::string(back.svr_text4), std::string(300, 'x'));
    ASSERT_EQ(back.svc_count, 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        SCOPED_TRACE(::testing::Message() << "service " << i);
        expect_same_service(back.svcs[i], svr.svcs[i]);
    }
    EXPECT_EQ(back.svcs[1].svc_items, nullptr);
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].name, "site");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(svr);
}

// --- class names -----------------------------------------------------------------------------

TEST(ServerClasses, StoredTypeNamesDropThePrefix) {
    EXPECT_STREQ(asn_aznadmsvc_t().get_type_name(), "aznadmsvc_t");
    EXPECT_STREQ(asn_aznlocal_svr_t().get_type_name(), "aznlocal_svr_t");
}

// --- local code set --------------------------------------------------------------------------

using ServerLatin1 = kelm_test::Latin1Test;

TEST_F(ServerLatin1, TextsOfTheServerAndOfItsServicesConvertBothWays) {
    aznlocal_svr_s_t local{};
    local.svr_text4 = dup_text("Montr\xE9"
                               "al");
    local.svc_count = 1;
    local.svcs = services({{"\xE9t\xE9", {"na\xEFve"}}});
    aznlocal_svr_s_t utf8{};
    utf8.svr_text4 = dup_text("Montr\xC3\xA9"
                              "al");
    utf8.svc_count = 1;
    utf8.svcs = services({{"\xC3\xA9t\xC3\xA9", {"na\xC3\xAFve"}}});

    kelm_asn_buffer_t lcs{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(lcs, local), 0u);
    EXPECT_EQ(bytes_of(lcs), encoded(utf8)) << "the wire carries UTF-8";
    aznlocal_svr_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(lcs, back), 0u);
    EXPECT_STREQ(back.svr_text4, local.svr_text4);
    ASSERT_EQ(back.svc_count, 1u);
    expect_same_service(back.svcs[0], local.svcs[0]);
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(lcs);
    kelmAsnFreeObj(local);
    kelmAsnFreeObj(utf8);
}

// --- memory exhaustion -----------------------------------------------------------------------

TEST(ServerFailure, AServiceThatCannotBeCreatedIsAMemoryErrorOfThisModule) {
    ASSERT_STREQ(kelm_aznlocal_svr_type.source, "base_idls/eksvr_enc_asn.cpp");
    aznlocal_svr_s_t svr{};
    svr.svc_count = 1;
    svr.svcs = services({{"svc", {"item"}}});
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, svr);
        },
        [&] { kelm_asn_buffer_free(out); });
    EXPECT_EQ(
        lines.count(kelm_test::memory_error_line(kelm_aznlocal_svr_type, "ASN: Memory error")), 1u)
        << ::testing::PrintToString(lines);
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_aznadmsvc_type, "ASN: Memory error")),
              1u)
        << "the item of the nested service: " << ::testing::PrintToString(lines);
    kelmAsnFreeObj(svr);
}

TEST(ServerFailure, AnItemArrayThatCannotBeAllocatedIsAMemoryErrorOfThisModule) {
    aznadmsvc_s_t svc{dup_text("svc"), 2, text_array({"x", "y"})};
    Bytes wire = encoded(svc);
    const kelm_asn_buffer_t in = buffer_over(wire);
    aznadmsvc_s_t back{};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            back = aznadmsvc_s_t{};
            kelm_asn_buffer_t input = in;
            return kelmAsnDecodeObj(input, back);
        },
        [&] { kelmAsnFreeObj(back); });
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_aznadmsvc_type, "ASN: Memory error")),
              1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(svc);
}
