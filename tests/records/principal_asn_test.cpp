// Security identifiers, privilege-attribute identities, principals, principal chains and the
// database fetch through the typed entry points.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "principal_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::dup_text;
using kelm_test::with_header;
using Bytes = kelm_test::RecordBytes;

namespace {

const char kSource[] = "base_idls/principal_asn";

template <class Record> Bytes encoded(Record& record) {
    unsigned int status = 99;
    Bytes bytes = kelm_test::encode_record(record, status);
    EXPECT_EQ(status, 0u);
    return bytes;
}

uuid_t small_uuid(uint32_t first) {
    return uuid_t{first, 2, 3, 4, 5, {6, 7, 8, 9, 10, 11}};
}

// The uuid {1, 2, 3, 4, 5, 06..0B} as written.
const Bytes kSmallUuid = {0x30, 0x17, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x02,
                          0x01, 0x03, 0x02, 0x01, 0x04, 0x02, 0x01, 0x05, 0x04,
                          0x06, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B};

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

// A principal with an identity of `groups` groups and an attribute list of one attribute, all
// allocated as a decoded record would be.
ekprincipal_s_t* make_principal(uint32_t number, unsigned int groups) {
    auto* principal = static_cast<ekprincipal_s_t*>(std::calloc(1, sizeof(ekprincipal_s_t)));
    principal->first_number = number;
    principal->second_number = ~number;
    principal->pa = static_cast<sec_id_pa_t*>(std::calloc(1, sizeof(sec_id_pa_t)));
    principal->pa->id = sec_id_t{small_uuid(number), dup_text("cn=user" + std::to_string(number))};
    principal->pa->group_count = static_cast<uint16_t>(groups);
    principal->pa->groups =
        groups ? static_cast<sec_id_t*>(std::calloc(groups, sizeof(sec_id_t))) : nullptr;
    for (unsigned int g = 0; g < groups; ++g)
        principal->pa->groups[g] =
            sec_id_t{small_uuid(100 + g), dup_text("group" + std::to_string(g))};
    principal->attrs = static_cast<attrlist_s_t*>(std::calloc(1, sizeof(attrlist_s_t)));
    principal->attrs->attr_count = 1;
    principal->attrs->attrs = static_cast<attr_s_t*>(std::calloc(1, sizeof(attr_s_t)));
    principal->attrs->attrs[0].name = dup_text("origin");
    return principal;
}

ekprincipal_chain_s_t make_chain(unsigned int principals) {
    ekprincipal_chain_s_t chain{};
    chain.chain_name = dup_text("delegation");
    chain.principal_count = principals;
    chain.principals = static_cast<ekprincipal_s_t**>(std::calloc(principals, sizeof(void*)));
    for (unsigned int i = 0; i < principals; ++i)
        chain.principals[i] = make_principal(i + 1, i % 3);
    return chain;
}

} // namespace

// --- sec_id_t and sec_id_pa_t ----------------------------------------------------------------

TEST(SecId, IsTheIdentifierAndTheNameAndDecodesIntoAClearedRecord) {
    sec_id_t id{small_uuid(1), dup_text("al")};
    const Bytes wire = encoded(id);
    EXPECT_EQ(wire, with_header(concat({{0x30, 0x1D}, kSmallUuid, {0x0C, 0x02, 'a', 'l'}})));
    sec_id_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(std::memcmp(&back.uuid, &id.uuid, sizeof id.uuid), 0);
    EXPECT_STREQ(back.name, "al");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(id);
}

TEST(SecId, ANullNameIsAnEmptyTextAndDecodesToAnAllocatedEmptyString) {
    sec_id_t id{small_uuid(1), nullptr};
    const Bytes wire = encoded(id);
    EXPECT_EQ(wire, with_header(concat({{0x30, 0x1B}, kSmallUuid, {0x0C, 0x00}})));
    sec_id_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_NE(back.name, nullptr);
    EXPECT_STREQ(back.name, "");
    kelmAsnFreeObj(back);
}

TEST(SecIdPa, WithoutGroupsCarriesAnEmptyListAndDecodesToANullArray) {
    sec_id_pa_t pa{};
    pa.id = sec_id_t{small_uuid(1), dup_text("al")};
    const Bytes wire = encoded(pa);
    EXPECT_EQ(wire,
              with_header(concat(
                  {{0x30, 0x21, 0x30, 0x1D}, kSmallUuid, {0x0C, 0x02, 'a', 'l', 0x30, 0x00}})));
    sec_id_pa_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.group_count, 0u);
    EXPECT_EQ(back.groups, nullptr);
    EXPECT_STREQ(back.id.name, "al");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(pa);
}

TEST(SecIdPa, GroupsRoundTripInOrder) {
    ekprincipal_s_t* principal = make_principal(5, 3);
    const Bytes wire = encoded(*principal->pa);
    sec_id_pa_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.group_count, 3u);
    for (unsigned int g = 0; g < 3; ++g) {
        SCOPED_TRACE(g);
        EXPECT_EQ(back.groups[g].uuid.time_low, 100 + g);
        EXPECT_STREQ(back.groups[g].name, ("group" + std::to_string(g)).c_str());
    }
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(*principal);
    std::free(principal);
}

TEST(SecIdPa, MoreThan65535GroupsWrapTheCountWhileTheArrayHoldsThemAll) {
    // 65537 groups on the wire, the last one named "last"; every other name empty.
    const unsigned int groups = 65537;
    const Bytes empty_group = concat({{0x30, 0x1B}, kSmallUuid, {0x0C, 0x00}});
    const Bytes last_group = concat({{0x30, 0x1F}, kSmallUuid, {0x0C, 0x04, 'l', 'a', 's', 't'}});
    Bytes list;
    list.reserve(empty_group.size() * groups + 8);
    for (unsigned int g = 0; g + 1 < groups; ++g)
        list.insert(list.end(), empty_group.begin(), empty_group.end());
    list.insert(list.end(), last_group.begin(), last_group.end());
    const Bytes id = concat({{0x30, 0x1D}, kSmallUuid, {0x0C, 0x02, 'a', 'l'}});
    const size_t n = list.size();
    Bytes body = {0x30, 0x84, 0, 0, 0, 0};
    body.insert(body.end(), id.begin(), id.end());
    body.insert(body.end(), {0x30, 0x83, static_cast<unsigned char>(n >> 16),
                             static_cast<unsigned char>(n >> 8), static_cast<unsigned char>(n)});
    body.insert(body.end(), list.begin(), list.end());
    const size_t total = body.size() - 6;
    for (int i = 0; i < 4; ++i)
        body[2 + i] = static_cast<unsigned char>(total >> (8 * (3 - i)));

    sec_id_pa_t back{};
    ASSERT_EQ(kelm_test::decode_record(with_header(body), back), 0u);
    EXPECT_EQ(back.group_count, 1u) << "65537 modulo 65536";
    ASSERT_NE(back.groups, nullptr);
    EXPECT_STREQ(back.groups[0].name, "");
    EXPECT_STREQ(back.groups[groups - 1].name, "last") << "every entry is in the array";
    // The free entry point releases the entries its count covers; the caller owns the others.
    for (unsigned int g = back.group_count; g < groups; ++g)
        std::free(back.groups[g].name);
    kelmAsnFreeObj(back);
}

// --- ekprincipal_s_t -------------------------------------------------------------------------

TEST(Principal, WithBothPointersNullIsTwoIntegersAndDecodesWithBothNull) {
    ekprincipal_s_t principal{7, nullptr, 9, nullptr};
    const Bytes wire = encoded(principal);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x02, 0x01, 0x07, 0x02, 0x01, 0x09}));
    ekprincipal_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.first_number, 7u);
    EXPECT_EQ(back.pa, nullptr);
    EXPECT_EQ(back.second_number, 9u);
    EXPECT_EQ(back.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(Principal, WithOnlyAnEmptyAttributeListDecodesToAFreshlyAllocatedList) {
    attrlist_s_t none{};
    ekprincipal_s_t principal{7, nullptr, 9, &none};
    const Bytes wire = encoded(principal);
    EXPECT_EQ(wire, with_header(
                        {0x30, 0x0A, 0x02, 0x01, 0x07, 0x02, 0x01, 0x09, 0x30, 0x02, 0x30, 0x00}));
    ekprincipal_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.pa, nullptr);
    ASSERT_NE(back.attrs, nullptr);
    EXPECT_NE(back.attrs, &none);
    EXPECT_EQ(back.attrs->attr_count, 0u);
    EXPECT_EQ(back.attrs->attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(Principal, AnAbsentIdentityIsRecognisedByTheIntegerThatFollows) {
    sec_id_pa_t pa{};
    pa.id = sec_id_t{small_uuid(1), dup_text("al")};
    ekprincipal_s_t principal{7, &pa, 9, nullptr};
    const Bytes wire = encoded(principal);
    EXPECT_EQ(wire, with_header(concat({{0x30, 0x29, 0x02, 0x01, 0x07, 0x30, 0x21, 0x30, 0x1D},
                                        kSmallUuid,
                                        {0x0C, 0x02, 'a', 'l', 0x30, 0x00, 0x02, 0x01, 0x09}})));
    ekprincipal_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_NE(back.pa, nullptr);
    EXPECT_STREQ(back.pa->id.name, "al");
    EXPECT_EQ(back.second_number, 9u);
    EXPECT_EQ(back.attrs, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(pa);
}

TEST(Principal, ExtremeNumbersKeepTheirBitPatterns) {
    const uint32_t values[][2] = {{0xFFFFFFFF, 0x80000000}, {0x7FFFFFFF, 0}, {0x80, 0xFF}};
    for (const auto& pair : values) {
        SCOPED_TRACE(::testing::Message() << pair[0] << " " << pair[1]);
        ekprincipal_s_t principal{pair[0], nullptr, pair[1], nullptr};
        const Bytes wire = encoded(principal);
        ekprincipal_s_t back{};
        ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
        EXPECT_EQ(back.first_number, pair[0]);
        EXPECT_EQ(back.second_number, pair[1]);
        kelmAsnFreeObj(back);
    }
    ekprincipal_s_t minus_one{0xFFFFFFFF, nullptr, 0x80000000, nullptr};
    EXPECT_EQ(encoded(minus_one),
              with_header({0x30, 0x09, 0x02, 0x01, 0xFF, 0x02, 0x04, 0x80, 0x00, 0x00, 0x00}));
}

TEST(Principal, AMissingSecondNumberIsRefused) {
    Bytes wire = with_header({0x30, 0x03, 0x02, 0x01, 0x07});
    ekprincipal_s_t back{};
    EXPECT_NE(kelm_test::decode_record(wire, back), 0u);
    kelmAsnFreeObj(back);
}

// --- ekprincipal_chain_s_t -------------------------------------------------------------------

TEST(PrincipalChain, AnEmptyChainIsAnEmptyNameAndAnEmptyList) {
    ekprincipal_chain_s_t chain{};
    const Bytes wire = encoded(chain);
    EXPECT_EQ(wire, with_header({0x30, 0x04, 0x0C, 0x00, 0x30, 0x00}));
    ekprincipal_chain_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.chain_name, "");
    EXPECT_EQ(back.principal_count, 0u);
    EXPECT_EQ(back.principals, nullptr);
    kelmAsnFreeObj(back);
}

TEST(PrincipalChain, EntriesAreSeparateAllocationsThatTheFreeReleases) {
    ekprincipal_chain_s_t chain = make_chain(4);
    const Bytes wire = encoded(chain);
    ekprincipal_chain_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.chain_name, "delegation");
    ASSERT_EQ(back.principal_count, 4u);
    for (unsigned int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const ekprincipal_s_t* p = back.principals[i];
        ASSERT_NE(p, nullptr);
        for (unsigned int j = 0; j < i; ++j)
            EXPECT_NE(p, back.principals[j]);
        EXPECT_EQ(p->first_number, i + 1);
        EXPECT_EQ(p->second_number, ~(i + 1));
        ASSERT_NE(p->pa, nullptr);
        EXPECT_EQ(p->pa->group_count, i % 3);
        EXPECT_STREQ(p->pa->id.name, ("cn=user" + std::to_string(i + 1)).c_str());
        ASSERT_NE(p->attrs, nullptr);
        ASSERT_EQ(p->attrs->attr_count, 1u);
        EXPECT_STREQ(p->attrs->attrs[0].name, "origin");
    }
    // Re-encoding the decoded chain gives the same bytes.
    EXPECT_EQ(encoded(back), wire);
    // The sanitizers' leak check stands behind these two: every principal block, its identity,
    // its attribute list and the pointer array are released.
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(chain);
}

TEST(PrincipalChain, TheStoredTypeNameIsCutToSixteenCharacters) {
    asn_ekprincipal_chain_t chain;
    EXPECT_STREQ(chain.get_type_name(), "ekprincipal_chai");
    asn_dbr_get_db_out_t out;
    EXPECT_STREQ(out.get_type_name(), "dbr_get_db_out_t");
    asn_sec_id_pa_t pa;
    EXPECT_STREQ(pa.get_type_name(), "sec_id_pa_t");
}

// --- database fetch --------------------------------------------------------------------------

TEST(DatabaseFetch, RequestNumberIsWrittenSignedAndReadUnsigned) {
    dbr_get_db_in_s_t in{0xFFFFFFFF};
    const Bytes wire = encoded(in);
    EXPECT_EQ(wire, with_header({0x30, 0x03, 0x02, 0x01, 0xFF}));
    dbr_get_db_in_s_t back{7};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.request_number, 0xFFFFFFFFu);
    kelmAsnFreeObj(back); // owns nothing
    EXPECT_EQ(back.request_number, 0xFFFFFFFFu);
}

TEST(DatabaseFetch, TheReplyCarriesThreeNumbersWithTheirBitPatterns) {
    dbr_get_db_out_s_t out{0x80000000, 0x7FFFFFFF, 0};
    const Bytes wire = encoded(out);
    EXPECT_EQ(wire, with_header({0x30, 0x0F, 0x02, 0x04, 0x80, 0x00, 0x00, 0x00, 0x02, 0x04, 0x7F,
                                 0xFF, 0xFF, 0xFF, 0x02, 0x01, 0x00}));
    dbr_get_db_out_s_t back{1, 2, 3};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.first_number, 0x80000000u);
    EXPECT_EQ(back.second_number, 0x7FFFFFFFu);
    EXPECT_EQ(back.third_number, 0u);
    kelmAsnFreeObj(back);
}

// --- local code set --------------------------------------------------------------------------

TEST(PrincipalLocalCodeSet, Latin1NamesTravelAsUtf8AndComeBack) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    sec_id_t id{small_uuid(1), dup_text("caf\xE9")};
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, id), 0u);
    const Bytes wire(out.data, out.data + out.length);
    EXPECT_EQ(wire, with_header(concat(
                        {{0x30, 0x20}, kSmallUuid, {0x0C, 0x05, 'c', 'a', 'f', 0xC3, 0xA9}})));
    sec_id_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    EXPECT_STREQ(back.name, "caf\xE9");
    kelmAsnFreeObj(back);
    sec_id_t plain{};
    ASSERT_EQ(kelmAsnDecodeObj(out, plain), 0u);
    EXPECT_STREQ(plain.name, "caf\xC3\xA9") << "the plain entry point keeps UTF-8";
    kelmAsnFreeObj(plain);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(id);
}

TEST(PrincipalLocalCodeSet, TextsInsideNestedChainsConvertToo) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    ekprincipal_chain_s_t chain = make_chain(1);
    std::free(chain.principals[0]->pa->id.name);
    chain.principals[0]->pa->id.name = dup_text("J\xFCrgen");
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, chain), 0u);
    const std::string text(reinterpret_cast<const char*>(out.data), out.length);
    EXPECT_NE(text.find("J\xC3\xBCrgen"), std::string::npos);
    ekprincipal_chain_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    ASSERT_EQ(back.principal_count, 1u);
    EXPECT_STREQ(back.principals[0]->pa->id.name, "J\xFCrgen");
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(chain);
}

// --- memory exceptions -----------------------------------------------------------------------

TEST(PrincipalFailure, EveryAllocationOfAChainDecodeFailsWithTheModulesLines) {
    ekprincipal_chain_s_t chain = make_chain(2);
    Bytes wire = encoded(chain);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    ekprincipal_chain_s_t back{};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            back = ekprincipal_chain_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int, bool) { kelmAsnFreeObj(back); });
    // The pointer array or a principal's block of the chain, and an optional identity or list.
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line(
                  "ASN: Memory error", kSource, kelm_ekprincipal_chain_type.source_line)),
              1u);
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Out of memory", kSource,
                                                           kelm_ekprincipal_type.source_line)),
              1u);
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_sec_id_pa_type.source_line)),
              1u)
        << "the groups array";
    kelmAsnFreeObj(chain);
}

TEST(PrincipalFailure, EveryAllocationOfAChainEncodeFailsAndLeavesNoBuffer) {
    ekprincipal_chain_s_t chain = make_chain(2);
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, chain);
        },
        [&](unsigned int status, bool) {
            if (status != 0) {
                EXPECT_EQ(out.data, nullptr);
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line(
                  "ASN: Memory error", kSource, kelm_ekprincipal_chain_type.source_line)),
              1u)
        << "a principal that cannot be added to the chain";
    kelmAsnFreeObj(chain);
}
