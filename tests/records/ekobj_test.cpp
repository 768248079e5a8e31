// Network addresses, named objects, object and name lists and the object database header
// through the typed entry points.
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ekobj_asn.h"
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

Bytes zeros(size_t n) {
    return Bytes(n, 0x00);
}

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

// The record's names as strings (null entries as "<null>").
std::vector<std::string> names_of(char** names, uint32_t count) {
    std::vector<std::string> out;
    for (uint32_t i = 0; i < count; ++i)
        out.push_back(names[i] != nullptr ? names[i] : "<null>");
    return out;
}

} // namespace

// --- ip_addr_s_t -----------------------------------------------------------------------------

TEST(IpAddr, BothArraysAreWrittenAtFullSizeEvenWhenZero) {
    ip_addr_s_t addr{};
    EXPECT_EQ(
        encoded(addr),
        with_header(concat(
            {{0x30, 0x45, 0x02, 0x01, 0x00, 0x04, 0x2E}, zeros(46), {0x04, 0x10}, zeros(16)})));
}

TEST(IpAddr, ArraysRoundTripByteForByteAndPaddingIsCleared) {
    ip_addr_s_t addr{};
    addr.addr_type = 0x80000000u;
    for (unsigned int i = 0; i < sizeof addr.addr_string; ++i)
        addr.addr_string[i] = static_cast<unsigned char>(0xA0 + i);
    for (unsigned int i = 0; i < sizeof addr.addr_bytes; ++i)
        addr.addr_bytes[i] = static_cast<unsigned char>(i == 0 ? 0 : 0xFF - i);
    const Bytes wire = encoded(addr);
    ASSERT_EQ(wire.size(), 4u + 2 + 6 + 48 + 18);
    EXPECT_EQ(Bytes(wire.begin() + 6, wire.begin() + 12),
              (Bytes{0x02, 0x04, 0x80, 0x00, 0x00, 0x00}));
    ip_addr_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(std::memcmp(&back, &addr, sizeof addr), 0) << "the two bytes after the arrays too";
}

TEST(IpAddr, LongerContentIsCutToTheArraySize) {
    Bytes string_content(50), bytes_content(20);
    for (unsigned int i = 0; i < 50; ++i)
        string_content[i] = static_cast<unsigned char>(i + 1);
    for (unsigned int i = 0; i < 20; ++i)
        bytes_content[i] = static_cast<unsigned char>(0x80 + i);
    const Bytes body =
        concat({{0x02, 0x01, 0x07, 0x04, 0x32}, string_content, {0x04, 0x14}, bytes_content});
    Bytes sequence = {0x30, static_cast<unsigned char>(body.size())};
    ip_addr_s_t back{};
    ASSERT_EQ(decode_record(with_header(concat({sequence, body})), back), 0u);
    EXPECT_EQ(back.addr_type, 7u);
    EXPECT_EQ(std::memcmp(back.addr_string, string_content.data(), 46), 0);
    EXPECT_EQ(std::memcmp(back.addr_bytes, bytes_content.data(), 16), 0);
}

TEST(IpAddr, ShorterContentIsAcceptedAndTheRestOfTheArrayIsZero) {
    // addr_string of three bytes, addr_bytes empty.
    Bytes input =
        with_header({0x30, 0x0A, 0x02, 0x01, 0x04, 0x04, 0x03, '1', '.', '2', 0x04, 0x00});
    ip_addr_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(input, back), 0u);
    EXPECT_EQ(back.addr_type, 4u);
    EXPECT_EQ(Bytes(back.addr_string, back.addr_string + 46), concat({{'1', '.', '2'}, zeros(43)}));
    EXPECT_EQ(Bytes(back.addr_bytes, back.addr_bytes + 16), zeros(16));
}

TEST(IpAddr, ExtremeAddressTypesKeepTheirBitPatterns) {
    struct Row {
        uint32_t value;
        Bytes integer;
    } rows[] = {
        {0u, {0x02, 0x01, 0x00}},
        {0x7Fu, {0x02, 0x01, 0x7F}},
        {0x80u, {0x02, 0x02, 0x00, 0x80}},
        {0x7FFFFFFFu, {0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF}},
        {0x80000000u, {0x02, 0x04, 0x80, 0x00, 0x00, 0x00}},
        {0xFFFFFFFFu, {0x02, 0x01, 0xFF}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << std::hex << row.value);
        ip_addr_s_t addr{};
        addr.addr_type = row.value;
        const Bytes wire = encoded(addr);
        ASSERT_GT(wire.size(), 6 + row.integer.size());
        EXPECT_EQ(Bytes(wire.begin() + 6, wire.begin() + 6 + row.integer.size()), row.integer);
        ip_addr_s_t back{};
        ASSERT_EQ(decode_record(wire, back), 0u);
        EXPECT_EQ(back.addr_type, row.value);
    }
}

// --- ekobj_t ---------------------------------------------------------------------------------

TEST(Ekobj, ElementsAreTheNameTwoNumbersAndThePayload) {
    unsigned char payload[] = {0xDE, 0xAD};
    ekobj_t obj{dup_text("ab"), 1, 0xFFFFFFFFu, 2, payload};
    EXPECT_EQ(encoded(obj), with_header({0x30, 0x0E, 0x0C, 0x02, 'a', 'b', 0x02, 0x01, 0x01, 0x02,
                                         0x01, 0xFF, 0x04, 0x02, 0xDE, 0xAD}));
    ekobj_t back{};
    ASSERT_EQ(decode_record(encoded(obj), back), 0u);
    EXPECT_STREQ(back.name, "ab");
    EXPECT_EQ(back.first_number, 1u);
    EXPECT_EQ(back.second_number, 0xFFFFFFFFu);
    ASSERT_EQ(back.data_length, 2u);
    EXPECT_NE(back.data, payload);
    EXPECT_EQ(std::memcmp(back.data, payload, 2), 0);
    kelmAsnFreeObj(back);
    std::free(obj.name);
}

TEST(Ekobj, ANullNameAndNoPayloadStillWriteEveryElement) {
    ekobj_t obj{nullptr, 0, 0, 0, nullptr};
    const Bytes wire = encoded(obj);
    EXPECT_EQ(wire, with_header(
                        {0x30, 0x0A, 0x0C, 0x00, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x04, 0x00}));
    ekobj_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    ASSERT_NE(back.name, nullptr);
    EXPECT_STREQ(back.name, "") << "a zero-length name decodes to the empty string";
    EXPECT_EQ(back.data_length, 0u);
    EXPECT_EQ(back.data, nullptr);
    kelmAsnFreeObj(back);
}

TEST(Ekobj, ExtremeNumbersRoundTrip) {
    const uint32_t extremes[] = {0u,      1u,          0x7Fu,       0x80u,
                                 0xFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu};
    for (uint32_t first : extremes) {
        for (uint32_t second : extremes) {
            SCOPED_TRACE(::testing::Message() << std::hex << first << " " << second);
            ekobj_t obj{nullptr, first, second, 0, nullptr};
            ekobj_t back{};
            ASSERT_EQ(decode_record(encoded(obj), back), 0u);
            EXPECT_EQ(back.first_number, first);
            EXPECT_EQ(back.second_number, second);
            kelmAsnFreeObj(back);
        }
    }
}

// --- lists -----------------------------------------------------------------------------------

TEST(EkobjList, EmptyListsEncodeAsEmptySequencesAndDecodeToNull) {
    ekobj_list_s_t list{};
    const Bytes wire = encoded(list);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    ekobj_list_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.obj_count, 0u);
    EXPECT_EQ(back.objs, nullptr);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(EkobjList, ObjectsAndAttributesRoundTrip) {
    ekobj_list_s_t list{};
    list.obj_count = 3;
    list.objs = static_cast<ekobj_t*>(std::calloc(3, sizeof(ekobj_t)));
    for (unsigned int i = 0; i < 3; ++i) {
        list.objs[i].name = dup_text("object " + std::to_string(i));
        list.objs[i].first_number = 0xFFFFFFF0u + i;
        list.objs[i].second_number = i;
        list.objs[i].data_length = i;
        list.objs[i].data = i ? static_cast<unsigned char*>(std::malloc(i)) : nullptr;
        for (unsigned int k = 0; k < i; ++k)
            list.objs[i].data[k] = static_cast<unsigned char>(0xF0 + k);
    }
    list.attrs = kelm_test::one_attribute("owner", "ops");
    const Bytes wire = encoded(list);
    ekobj_list_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    ASSERT_EQ(back.obj_count, 3u);
    for (unsigned int i = 0; i < 3; ++i) {
        SCOPED_TRACE(::testing::Message() << "object " << i);
        EXPECT_STREQ(back.objs[i].name, list.objs[i].name);
        EXPECT_EQ(back.objs[i].first_number, list.objs[i].first_number);
        EXPECT_EQ(back.objs[i].second_number, i);
        EXPECT_TRUE(kelm_test::same_bytes(back.objs[i].data, back.objs[i].data_length,
                                          list.objs[i].data, list.objs[i].data_length));
    }
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].name, "owner");
    ASSERT_EQ(back.attrs.attrs[0].value_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].values[0].str_value, "ops");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(list);
}

TEST(EkobjNameList, AnEmptyListEncodesAsAnEmptySequenceAndDecodesToNull) {
    ekobj_name_list_s_t list{};
    const Bytes wire = encoded(list);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    ekobj_name_list_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.name_count, 0u);
    EXPECT_EQ(back.names, nullptr);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(EkobjNameList, ANullEntryIsWrittenAsAnEmptyTextAndReadBackAsAFreshString) {
    ekobj_name_list_s_t list{};
    list.name_count = 3;
    list.names = text_array({"a", "", ""});
    std::free(list.names[1]);
    list.names[1] = nullptr;
    const Bytes wire = encoded(list);
    EXPECT_EQ(wire, with_header({0x30, 0x0D, 0x30, 0x07, 0x0C, 0x01, 'a', 0x0C, 0x00, 0x0C, 0x00,
                                 0x30, 0x02, 0x30, 0x00}));
    ekobj_name_list_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    ASSERT_EQ(back.name_count, 3u);
    EXPECT_EQ(names_of(back.names, 3), (std::vector<std::string>{"a", "", ""}));
    EXPECT_NE(back.names[1], back.names[2]) << "every entry is its own allocation";
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(list);
}

TEST(EkobjDbHeader, TheNumberPrecedesTheNamesAndTheAttributes) {
    ekobj_db_header_s_t header{};
    header.db_number = 0xFFFFFFFFu;
    header.name_count = 1;
    header.names = text_array({"x"});
    const Bytes wire = encoded(header);
    EXPECT_EQ(wire, with_header({0x30, 0x0C, 0x02, 0x01, 0xFF, 0x30, 0x03, 0x0C, 0x01, 'x', 0x30,
                                 0x02, 0x30, 0x00}));
    ekobj_db_header_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.db_number, 0xFFFFFFFFu);
    ASSERT_EQ(back.name_count, 1u);
    EXPECT_STREQ(back.names[0], "x");
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(header);
}

TEST(EkobjDbHeader, AnEmptyHeaderIsANumberAndTwoEmptyLists) {
    ekobj_db_header_s_t header{};
    EXPECT_EQ(encoded(header),
              with_header({0x30, 0x09, 0x02, 0x01, 0x00, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
}

// --- class names -----------------------------------------------------------------------------

TEST(EkobjClasses, StoredTypeNamesDropThePrefixAndKeepSixteenCharacters) {
    EXPECT_STREQ(asn_ip_addr_t().get_type_name(), "ip_addr_t");
    EXPECT_STREQ(asn_ekobj_t().get_type_name(), "ekobj_t");
    EXPECT_STREQ(asn_ekobj_list_t().get_type_name(), "ekobj_list_t");
    EXPECT_STREQ(asn_ekobj_name_list_t().get_type_name(), "ekobj_name_list_");
    EXPECT_STREQ(asn_ekobj_db_header_t().get_type_name(), "ekobj_db_header_");
}

// --- local code set --------------------------------------------------------------------------

using EkobjLatin1 = kelm_test::Latin1Test;

TEST_F(EkobjLatin1, NamesAndNestedAttributesConvertBothWays) {
    // "Zürich" and "Renée" in ISO-8859-1, and the same record in UTF-8.
    ekobj_db_header_s_t local{};
    local.db_number = 9;
    local.name_count = 2;
    local.names = text_array({"Z\xFCrich", "plain"});
    local.attrs = kelm_test::one_attribute("owner", "Ren\xE9"
                                                    "e");
    ekobj_db_header_s_t utf8{};
    utf8.db_number = 9;
    utf8.name_count = 2;
    utf8.names = text_array({"Z\xC3\xBCrich", "plain"});
    utf8.attrs = kelm_test::one_attribute("owner", "Ren\xC3\xA9"
                                                   "e");

    kelm_asn_buffer_t lcs{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(lcs, local), 0u);
    EXPECT_EQ(bytes_of(lcs), encoded(utf8)) << "the wire carries UTF-8";

    ekobj_db_header_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(lcs, back), 0u);
    ASSERT_EQ(back.name_count, 2u);
    EXPECT_STREQ(back.names[0], "Z\xFCrich");
    EXPECT_STREQ(back.names[1], "plain");
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].values[0].str_value, "Ren\xE9"
                                                          "e");
    kelmAsnFreeObj(back);

    ekobj_db_header_s_t raw{};
    ASSERT_EQ(kelmAsnDecodeObj(lcs, raw), 0u);
    EXPECT_STREQ(raw.names[0], "Z\xC3\xBCrich") << "the plain decode leaves UTF-8 as it is";
    kelmAsnFreeObj(raw);

    kelm_asn_buffer_free(lcs);
    kelmAsnFreeObj(local);
    kelmAsnFreeObj(utf8);
}

// --- memory exhaustion -----------------------------------------------------------------------

TEST(EkobjFailure, AnElementOfANameListThatCannotBeCreatedIsAMemoryErrorOfThisModule) {
    ASSERT_STREQ(kelm_ekobj_name_list_type.source, "base_idls/ekobj_asn.cpp");
    ekobj_name_list_s_t list{};
    list.name_count = 2;
    list.names = text_array({"first", "second"});
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, list);
        },
        [&] { kelm_asn_buffer_free(out); });
    EXPECT_EQ(
        lines.count(kelm_test::memory_error_line(kelm_ekobj_name_list_type, "ASN: Memory error")),
        1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(list);
}

TEST(EkobjFailure, AnObjectArrayThatCannotBeAllocatedIsAMemoryErrorOfThisModule) {
    ekobj_list_s_t list{};
    list.obj_count = 2;
    list.objs = static_cast<ekobj_t*>(std::calloc(2, sizeof(ekobj_t)));
    list.objs[0].name = dup_text("one");
    list.objs[1].name = dup_text("two");
    Bytes wire = encoded(list);
    const kelm_asn_buffer_t in = buffer_over(wire);
    ekobj_list_s_t back{};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            back = ekobj_list_s_t{};
            kelm_asn_buffer_t input = in;
            return kelmAsnDecodeObj(input, back);
        },
        [&] { kelmAsnFreeObj(back); });
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_ekobj_list_type, "ASN: Memory error")),
              1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(list);
}
