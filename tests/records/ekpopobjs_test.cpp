// Protected-object policies, time ranges, access times, address entries and the mappings between
// policies and protected objects through the typed entry points.
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ekpopobjs_asn.h"
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

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

// The encoding of an all-zero ip_addr_t: INTEGER 0 and both arrays in full.
Bytes zero_address() {
    return concat(
        {{0x30, 0x45, 0x02, 0x01, 0x00, 0x04, 0x2E}, Bytes(46, 0), {0x04, 0x10}, Bytes(16, 0)});
}

} // namespace

// --- ektod_range_s_t -------------------------------------------------------------------------

TEST(TodRange, ThreeIntegersInOrder) {
    ektod_range_s_t range{1, 2, 3};
    EXPECT_EQ(encoded(range),
              with_header({0x30, 0x09, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x02, 0x01, 0x03}));
}

TEST(TodRange, AQualifierWithItsTopBitSetTravelsAsANegativeIntegerAndComesBack) {
    ektod_range_s_t range{0, 0, 0x80000001u};
    const Bytes wire = encoded(range);
    EXPECT_EQ(wire, with_header({0x30, 0x0C, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x02, 0x04, 0x80,
                                 0x00, 0x00, 0x01}));
    ektod_range_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.range_qualifier, 0x80000001u);
    EXPECT_EQ(back.range_start, 0);
    EXPECT_EQ(back.range_end, 0);
}

TEST(TodRange, ExtremeSignedBoundsRoundTrip) {
    const int32_t min = std::numeric_limits<int32_t>::min();
    const int32_t max = std::numeric_limits<int32_t>::max();
    struct Row {
        ektod_range_s_t range;
        Bytes body;
    } rows[] = {
        {{min, max, 0xFFFFFFFFu},
         {0x30, 0x0F, 0x02, 0x04, 0x80, 0x00, 0x00, 0x00, 0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF, 0x02,
          0x01, 0xFF}},
        {{-1, -128, 0x7FFFFFFFu},
         {0x30, 0x0C, 0x02, 0x01, 0xFF, 0x02, 0x01, 0x80, 0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF}},
        {{128, -129, 0x80u},
         {0x30, 0x0C, 0x02, 0x02, 0x00, 0x80, 0x02, 0x02, 0xFF, 0x7F, 0x02, 0x02, 0x00, 0x80}},
    };
    for (Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << row.range.range_start << " " << row.range.range_end);
        const Bytes wire = encoded(row.range);
        EXPECT_EQ(wire, with_header(row.body));
        ektod_range_s_t back{};
        ASSERT_EQ(decode_record(wire, back), 0u);
        EXPECT_EQ(back.range_start, row.range.range_start);
        EXPECT_EQ(back.range_end, row.range.range_end);
        EXPECT_EQ(back.range_qualifier, row.range.range_qualifier);
    }
}

// --- ekaccess_times_s_t ----------------------------------------------------------------------

TEST(AccessTimes, TheRangeIsNestedAsOneSequence) {
    ekaccess_times_s_t times{0xFFFFFFFFu, {1, 2, 3}};
    EXPECT_EQ(encoded(times), with_header({0x30, 0x0E, 0x02, 0x01, 0xFF, 0x30, 0x09, 0x02, 0x01,
                                           0x01, 0x02, 0x01, 0x02, 0x02, 0x01, 0x03}));
}

TEST(AccessTimes, DecodingWritesEveryByteOfTheRecordWithoutAClearOfItsOwn) {
    EXPECT_TRUE(kelm_ekaccess_times_type.flags & KELM_RECORD_KEEPS_RECORD);
    ekaccess_times_s_t times{0x80000000u, {-5, 0x7FFFFFFF, 0xFFFFFFFEu}};
    const Bytes wire = encoded(times);
    ekaccess_times_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(std::memcmp(&back, &times, sizeof times), 0)
        << "the first field and the nested range cover the whole record";
}

// --- address entries -------------------------------------------------------------------------

TEST(PopIpauth, ThreeNumbersReadBackUnsigned) {
    ekpop_ipauth_s_t entry{0xFFFFFFFFu, 0x80000000u, 0x7FFFFFFFu};
    const Bytes wire = encoded(entry);
    EXPECT_EQ(wire, with_header({0x30, 0x0F, 0x02, 0x01, 0xFF, 0x02, 0x04, 0x80, 0x00, 0x00, 0x00,
                                 0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF}));
    ekpop_ipauth_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(std::memcmp(&back, &entry, sizeof entry), 0);
}

TEST(PopIpauth2, TwoFullAddressRecordsAreCarriedEvenWhenZero) {
    ekpop_ipauth2_s_t entry{};
    EXPECT_EQ(encoded(entry),
              with_header(
                  concat({{0x30, 0x81, 0x91, 0x02, 0x01, 0x00}, zero_address(), zero_address()})));
}

TEST(PopIpauth2, AddressesRoundTripAndEveryByteIsWritten) {
    ekpop_ipauth2_s_t entry{};
    entry.first_number = 0xFFFFFFFFu;
    entry.first_addr.addr_type = 2;
    std::memcpy(entry.first_addr.addr_string, "10.1.2.3", 8);
    entry.first_addr.addr_bytes[0] = 10;
    entry.first_addr.addr_bytes[3] = 3;
    entry.second_addr.addr_type = 0x80000000u;
    std::memset(entry.second_addr.addr_string, 0xFF, sizeof entry.second_addr.addr_string);
    std::memset(entry.second_addr.addr_bytes, 0xAB, sizeof entry.second_addr.addr_bytes);
    ekpop_ipauth2_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(encoded(entry), back), 0u);
    EXPECT_EQ(std::memcmp(&back, &entry, sizeof entry), 0) << "padding bytes are cleared too";
}

TEST(PopIpauth2List, AnEmptyListIsASequenceHoldingAnEmptySequence) {
    ekpop_ipauth2_list_s_t list{};
    const Bytes wire = encoded(list);
    EXPECT_EQ(wire, with_header({0x30, 0x02, 0x30, 0x00}));
    ekpop_ipauth2_list_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.ipauth_count, 0u);
    EXPECT_EQ(back.ipauths, nullptr);
    kelmAsnFreeObj(back);
}

TEST(PopIpauth2List, EntriesRoundTrip) {
    ekpop_ipauth2_list_s_t list{};
    list.ipauth_count = 2;
    list.ipauths = static_cast<ekpop_ipauth2_s_t*>(std::calloc(2, sizeof(ekpop_ipauth2_s_t)));
    list.ipauths[0].first_number = 7;
    list.ipauths[1].second_addr.addr_bytes[15] = 0x99;
    const Bytes wire = encoded(list);
    ekpop_ipauth2_list_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    ASSERT_EQ(back.ipauth_count, 2u);
    EXPECT_EQ(std::memcmp(back.ipauths, list.ipauths, 2 * sizeof(ekpop_ipauth2_s_t)), 0);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(list);
}

// --- ekpop_s_t -------------------------------------------------------------------------------

TEST(Pop, APolicyWithoutAddressEntriesHasAnEmptyList) {
    ekpop_s_t pop{};
    const Bytes wire = encoded(pop);
    const Bytes name = {0x0C, 0x00};
    const Bytes access_times = {0x30, 0x0E, 0x02, 0x01, 0x00, 0x30, 0x09, 0x02,
                                0x01, 0x00, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00};
    const Bytes numbers = {0x02, 0x01, 0x00, 0x02, 0x01, 0x00, 0x02, 0x01, 0x00};
    const Bytes no_entries = {0x30, 0x00};
    const Bytes no_attributes = {0x30, 0x02, 0x30, 0x00};
    EXPECT_EQ(wire, with_header(concat(
                        {{0x30, 0x21}, name, access_times, numbers, no_entries, no_attributes})));
    ekpop_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.ipauth_count, 0u);
    EXPECT_EQ(back.ipauths, nullptr);
    EXPECT_STREQ(back.pop_name, "");
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(Pop, EveryFieldRoundTrips) {
    ekpop_s_t pop{};
    pop.pop_name = dup_text("night shift");
    pop.access_times = ekaccess_times_s_t{0x80000000u, {-1, 1440, 0xFFFFFFFFu}};
    pop.first_number = 0xFFFFFFFFu;
    pop.second_number = 0x7FFFFFFFu;
    pop.third_number = 0x80u;
    pop.ipauth_count = 2;
    pop.ipauths = static_cast<ekpop_ipauth_s_t*>(std::calloc(2, sizeof(ekpop_ipauth_s_t)));
    pop.ipauths[0] = ekpop_ipauth_s_t{0xC0A80000u, 0xFFFF0000u, 0};
    pop.ipauths[1] = ekpop_ipauth_s_t{0x80000000u, 1, 0xFFFFFFFFu};
    pop.attrs = kelm_test::one_attribute("reason", "audit");
    const Bytes wire = encoded(pop);
    ekpop_s_t back{};
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_STREQ(back.pop_name, "night shift");
    EXPECT_EQ(std::memcmp(&back.access_times, &pop.access_times, sizeof pop.access_times), 0);
    EXPECT_EQ(back.first_number, 0xFFFFFFFFu);
    EXPECT_EQ(back.second_number, 0x7FFFFFFFu);
    EXPECT_EQ(back.third_number, 0x80u);
    ASSERT_EQ(back.ipauth_count, 2u);
    EXPECT_EQ(std::memcmp(back.ipauths, pop.ipauths, 2 * sizeof(ekpop_ipauth_s_t)), 0);
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].values[0].str_value, "audit");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(pop);
}

// --- mappings --------------------------------------------------------------------------------

TEST(PopMaps, BothMappingsAreANameListAndAttributes) {
    ekmap_pop_to_pobj_s_t to_pobj{};
    to_pobj.name_count = 2;
    to_pobj.names = text_array({"/a", "/b"});
    ekmap_pobj_to_pop_s_t to_pop{};
    to_pop.name_count = 2;
    to_pop.names = text_array({"/a", "/b"});
    const Bytes expected = with_header({0x30, 0x0E, 0x30, 0x08, 0x0C, 0x02, '/', 'a', 0x0C, 0x02,
                                        '/', 'b', 0x30, 0x02, 0x30, 0x00});
    EXPECT_EQ(encoded(to_pobj), expected);
    EXPECT_EQ(encoded(to_pop), expected);
    ekmap_pobj_to_pop_s_t back{};
    ASSERT_EQ(decode_record(expected, back), 0u);
    ASSERT_EQ(back.name_count, 2u);
    EXPECT_STREQ(back.names[0], "/a");
    EXPECT_STREQ(back.names[1], "/b");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(to_pobj);
    kelmAsnFreeObj(to_pop);
}

TEST(PopMaps, EmptyMappingsDecodeToNullArrays) {
    Bytes wire = with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00});
    ekmap_pop_to_pobj_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode_record(wire, back), 0u);
    EXPECT_EQ(back.name_count, 0u);
    EXPECT_EQ(back.names, nullptr);
    kelmAsnFreeObj(back);
}

// --- class names -----------------------------------------------------------------------------

TEST(PopClasses, StoredTypeNamesDropThePrefixAndKeepSixteenCharacters) {
    EXPECT_STREQ(asn_ektod_range_t().get_type_name(), "ektod_range_t");
    EXPECT_STREQ(asn_ekaccess_times_t().get_type_name(), "ekaccess_times_t");
    EXPECT_STREQ(asn_ekpop_ipauth_t().get_type_name(), "ekpop_ipauth_t");
    EXPECT_STREQ(asn_ekpop_ipauth2_t().get_type_name(), "ekpop_ipauth2_t");
    EXPECT_STREQ(asn_ekpop_ipauth2_list().get_type_name(), "ekpop_ipauth2_li");
    EXPECT_STREQ(asn_ekpop_t().get_type_name(), "ekpop_t");
    EXPECT_STREQ(asn_ekmap_pop_to_pobj_t().get_type_name(), "ekmap_pop_to_pob");
    EXPECT_STREQ(asn_ekmap_pobj_to_pop_t().get_type_name(), "ekmap_pobj_to_po");
}

// --- local code set --------------------------------------------------------------------------

using PopLatin1 = kelm_test::Latin1Test;

TEST_F(PopLatin1, ThePolicyNameAndMappedNamesConvertBothWays) {
    ekpop_s_t local{};
    local.pop_name = dup_text("Fr\xE4"
                              "ulein");
    ekpop_s_t utf8{};
    utf8.pop_name = dup_text("Fr\xC3\xA4"
                             "ulein");
    kelm_asn_buffer_t lcs{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(lcs, local), 0u);
    EXPECT_EQ(bytes_of(lcs), encoded(utf8)) << "the wire carries UTF-8";
    ekpop_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(lcs, back), 0u);
    EXPECT_STREQ(back.pop_name, "Fr\xE4"
                                "ulein");
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(lcs);

    ekmap_pobj_to_pop_s_t names{};
    names.name_count = 1;
    names.names = text_array({"\xC0 la carte"});
    ASSERT_EQ(kelmAsnEncodeObjLCS(lcs, names), 0u);
    ekmap_pobj_to_pop_s_t raw{};
    ASSERT_EQ(kelmAsnDecodeObj(lcs, raw), 0u);
    EXPECT_STREQ(raw.names[0], "\xC3\x80 la carte");
    ekmap_pobj_to_pop_s_t converted{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(lcs, converted), 0u);
    EXPECT_STREQ(converted.names[0], "\xC0 la carte");
    kelmAsnFreeObj(raw);
    kelmAsnFreeObj(converted);
    kelm_asn_buffer_free(lcs);
    kelmAsnFreeObj(names);
    kelmAsnFreeObj(local);
    kelmAsnFreeObj(utf8);
}

// --- memory exhaustion -----------------------------------------------------------------------

TEST(PopFailure, AnEntryArrayThatCannotBeAllocatedIsAMemoryErrorOfThisModule) {
    ASSERT_STREQ(kelm_ekpop_ipauth2_list_type.source, "base_idls/ekpopobjs_asn.cpp");
    ekpop_ipauth2_list_s_t list{};
    list.ipauth_count = 2;
    list.ipauths = static_cast<ekpop_ipauth2_s_t*>(std::calloc(2, sizeof(ekpop_ipauth2_s_t)));
    Bytes wire = encoded(list);
    const kelm_asn_buffer_t in = buffer_over(wire);
    ekpop_ipauth2_list_s_t back{};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            back = ekpop_ipauth2_list_s_t{};
            kelm_asn_buffer_t input = in;
            return kelmAsnDecodeObj(input, back);
        },
        [&] { kelmAsnFreeObj(back); });
    EXPECT_EQ(lines.count(
                  kelm_test::memory_error_line(kelm_ekpop_ipauth2_list_type, "ASN: Memory error")),
              1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(list);
}

TEST(PopFailure, AnEntryOfAPolicyThatCannotBeCreatedIsAMemoryErrorOfThisModule) {
    ekpop_s_t pop{};
    pop.ipauth_count = 1;
    pop.ipauths = static_cast<ekpop_ipauth_s_t*>(std::calloc(1, sizeof(ekpop_ipauth_s_t)));
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, pop);
        },
        [&] { kelm_asn_buffer_free(out); });
    EXPECT_EQ(lines.count(kelm_test::memory_error_line(kelm_ekpop_type, "ASN: Memory error")), 1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(pop);
}
