// Permission sets, ACL entries, ACLs and the mappings between protected-object names and ACLs
// through the typed entry points.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "aclidl_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::dup_text;
using kelm_test::with_header;
using Bytes = kelm_test::RecordBytes;

namespace {

const char kSource[] = "base_idls/aclidl_asn";

template <class Record> Bytes encoded(Record& record) {
    unsigned int status = 99;
    Bytes bytes = kelm_test::encode_record(record, status);
    EXPECT_EQ(status, 0u);
    return bytes;
}

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

uint32_t* numbers(std::initializer_list<uint32_t> values) {
    auto* array = static_cast<uint32_t*>(std::calloc(values.size(), sizeof(uint32_t)));
    std::copy(values.begin(), values.end(), array);
    return array;
}

char** texts(std::initializer_list<const char*> values) {
    auto** array = static_cast<char**>(std::calloc(values.size(), sizeof(char*)));
    size_t i = 0;
    for (const char* value : values)
        array[i++] = value != nullptr ? dup_text(value) : nullptr;
    return array;
}

// The sec_id_t {1, 2, 3, 4, 5, 06..0B} named "al", as written.
const Bytes kSmallId = {0x30, 0x1D, 0x30, 0x17, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x02,
                        0x01, 0x03, 0x02, 0x01, 0x04, 0x02, 0x01, 0x05, 0x04, 0x06, 0x06,
                        0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x02, 'a',  'l'};

sec_id_t small_id() {
    return sec_id_t{uuid_t{1, 2, 3, 4, 5, {6, 7, 8, 9, 10, 11}}, dup_text("al")};
}

// An ACL of `entries` entries, each with `i` permissions, and one attribute.
acl_ext_s_t make_acl(unsigned int entries) {
    acl_ext_s_t acl{};
    acl.name = dup_text("default-root");
    acl.entry_count = entries;
    acl.entries = static_cast<acl_entry_s_t*>(std::calloc(entries, sizeof(acl_entry_s_t)));
    for (unsigned int i = 0; i < entries; ++i) {
        acl_entry_s_t& entry = acl.entries[i];
        entry.permset.perm_count = i;
        entry.permset.perms =
            i ? static_cast<uint32_t*>(std::calloc(i, sizeof(uint32_t))) : nullptr;
        for (unsigned int p = 0; p < i; ++p)
            entry.permset.perms[p] = 0x80000000u >> p;
        entry.entry_type = 0xFFFFFFF0u + i;
        entry.id = small_id();
    }
    acl.attrs.attr_count = 1;
    acl.attrs.attrs = static_cast<attr_s_t*>(std::calloc(1, sizeof(attr_s_t)));
    acl.attrs.attrs[0].name = dup_text("description");
    return acl;
}

} // namespace

// --- acl_permset_s_t -------------------------------------------------------------------------

TEST(AclPermset, AnEmptySetIsANestedEmptySequenceAndDecodesToANullArray) {
    acl_permset_s_t set{};
    const Bytes wire = encoded(set);
    EXPECT_EQ(wire, with_header({0x30, 0x02, 0x30, 0x00}));
    acl_permset_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.perm_count, 0u);
    EXPECT_EQ(back.perms, nullptr);
    kelmAsnFreeObj(back);
}

TEST(AclPermset, PermissionsAreWrittenSignedAndReadBackWithTheirBitPatterns) {
    acl_permset_s_t set{4, numbers({0xFFFFFFFF, 0x80000000, 0x7FFFFFFF, 0})};
    const Bytes wire = encoded(set);
    EXPECT_EQ(wire,
              with_header({0x30, 0x14, 0x30, 0x12, 0x02, 0x01, 0xFF, 0x02, 0x04, 0x80, 0x00,
                           0x00, 0x00, 0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF, 0x02, 0x01, 0x00}));
    acl_permset_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.perm_count, 4u);
    EXPECT_EQ(back.perms[0], 0xFFFFFFFFu);
    EXPECT_EQ(back.perms[1], 0x80000000u);
    EXPECT_EQ(back.perms[2], 0x7FFFFFFFu);
    EXPECT_EQ(back.perms[3], 0u);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(set);
}

TEST(AclPermset, ALongSetRoundTrips) {
    const uint32_t n = 70000;
    acl_permset_s_t set{n, static_cast<uint32_t*>(std::calloc(n, sizeof(uint32_t)))};
    for (uint32_t i = 0; i < n; ++i)
        set.perms[i] = i * 2654435761u;
    const Bytes wire = encoded(set);
    acl_permset_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.perm_count, n);
    EXPECT_EQ(std::memcmp(back.perms, set.perms, n * sizeof(uint32_t)), 0);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(set);
}

TEST(AclPermset, APermissionThatIsNotAnIntegerIsRefused) {
    acl_permset_s_t back{};
    EXPECT_NE(
        kelm_test::decode_record(with_header({0x30, 0x05, 0x30, 0x03, 0x04, 0x01, 0x05}), back),
        0u);
    kelmAsnFreeObj(back);
    EXPECT_NE(kelm_test::decode_record(
                  with_header({0x30, 0x06, 0x30, 0x04, 0x22, 0x02, 0x01, 0x05}), back),
              0u)
        << "an INTEGER is primitive only";
    kelmAsnFreeObj(back);
}

// --- acl_entry_s_t ---------------------------------------------------------------------------

TEST(AclEntry, IsThePermissionsTheTypeAndTheIdentity) {
    acl_entry_s_t entry{{1, numbers({5})}, 2, small_id()};
    const Bytes wire = encoded(entry);
    EXPECT_EQ(wire, with_header(concat(
                        {{0x30, 0x29, 0x30, 0x05, 0x30, 0x03, 0x02, 0x01, 0x05, 0x02, 0x01, 0x02},
                         kSmallId})));
    acl_entry_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.permset.perm_count, 1u);
    EXPECT_EQ(back.permset.perms[0], 5u);
    EXPECT_EQ(back.entry_type, 2u);
    EXPECT_EQ(back.id.uuid.time_low, 1u);
    EXPECT_STREQ(back.id.name, "al");
    uint32_t gap;
    std::memcpy(&gap, reinterpret_cast<unsigned char*>(&back) + 20, sizeof gap);
    EXPECT_EQ(gap, 0u) << "the record is cleared before it is filled";
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(entry);
}

// --- acl_ext_s_t -----------------------------------------------------------------------------

TEST(AclExt, AnAclWithoutEntriesCarriesAnEmptyListAndTheAttributeList) {
    acl_ext_s_t acl{dup_text("r"), 0, nullptr, {0, nullptr}};
    const Bytes wire = encoded(acl);
    EXPECT_EQ(wire, with_header({0x30, 0x09, 0x0C, 0x01, 'r', 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    acl_ext_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.name, "r");
    EXPECT_EQ(back.entry_count, 0u);
    EXPECT_EQ(back.entries, nullptr);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(acl);
}

TEST(AclExt, EntriesAndAttributesRoundTripAndReencodeToTheSameBytes) {
    acl_ext_s_t acl = make_acl(5);
    const Bytes wire = encoded(acl);
    acl_ext_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.name, "default-root");
    ASSERT_EQ(back.entry_count, 5u);
    for (unsigned int i = 0; i < 5; ++i) {
        SCOPED_TRACE(i);
        const acl_entry_s_t& entry = back.entries[i];
        ASSERT_EQ(entry.permset.perm_count, i);
        for (unsigned int p = 0; p < i; ++p)
            EXPECT_EQ(entry.permset.perms[p], 0x80000000u >> p);
        EXPECT_EQ(entry.entry_type, 0xFFFFFFF0u + i);
        EXPECT_STREQ(entry.id.name, "al");
    }
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].name, "description");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(acl);
}

// --- the two mappings ------------------------------------------------------------------------

TEST(AclMappings, NamesAreUtf8StringsAndANullNameIsAnEmptyOne) {
    map_pobj_to_acl_s_t to_acl{2, texts({"a", nullptr}), {0, nullptr}};
    const Bytes expected =
        with_header({0x30, 0x0B, 0x30, 0x05, 0x0C, 0x01, 'a', 0x0C, 0x00, 0x30, 0x02, 0x30, 0x00});
    EXPECT_EQ(encoded(to_acl), expected);
    map_acl_to_pobj_s_t to_pobj{2, texts({"a", ""}), {0, nullptr}};
    EXPECT_EQ(encoded(to_pobj), expected) << "both mappings have the same elements";

    map_pobj_to_acl_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(expected, back), 0u);
    ASSERT_EQ(back.name_count, 2u);
    EXPECT_STREQ(back.names[0], "a");
    ASSERT_NE(back.names[1], nullptr);
    EXPECT_STREQ(back.names[1], "");
    EXPECT_EQ(back.attrs.attr_count, 0u);
    kelmAsnFreeObj(back);
    map_acl_to_pobj_s_t other{};
    ASSERT_EQ(kelm_test::decode_record(expected, other), 0u);
    ASSERT_EQ(other.name_count, 2u);
    EXPECT_STREQ(other.names[0], "a");
    kelmAsnFreeObj(other);
    kelmAsnFreeObj(to_acl);
    kelmAsnFreeObj(to_pobj);
}

TEST(AclMappings, NoNamesIsAnEmptyListAndDecodesToANullArray) {
    map_acl_to_pobj_s_t map{};
    const Bytes wire = encoded(map);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    map_acl_to_pobj_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.name_count, 0u);
    EXPECT_EQ(back.names, nullptr);
    kelmAsnFreeObj(back);
}

TEST(AclMappings, TheStoredTypeNamesAreCutToSixteenCharacters) {
    asn_map_pobj_to_acl_t to_acl;
    EXPECT_STREQ(to_acl.get_type_name(), "map_pobj_to_acl_");
    asn_map_acl_to_pobj_t to_pobj;
    EXPECT_STREQ(to_pobj.get_type_name(), "map_acl_to_pobj_");
    asn_acl_permset_t permset;
    EXPECT_STREQ(permset.get_type_name(), "acl_permset_t");
}

// --- local code set --------------------------------------------------------------------------

TEST(AclLocalCodeSet, Latin1NamesOfAnAclAndOfAMappingTravelAsUtf8) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    map_pobj_to_acl_s_t map{1, texts({"/r\xE9sum\xE9"}), {0, nullptr}};
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, map), 0u);
    EXPECT_EQ(Bytes(out.data, out.data + out.length),
              with_header({0x30, 0x11, 0x30, 0x0B, 0x0C, 0x09, '/', 'r', 0xC3, 0xA9, 's', 'u', 'm',
                           0xC3, 0xA9, 0x30, 0x02, 0x30, 0x00}));
    map_pobj_to_acl_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    ASSERT_EQ(back.name_count, 1u);
    EXPECT_STREQ(back.names[0], "/r\xE9sum\xE9");
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(map);

    acl_ext_s_t acl = make_acl(1);
    std::free(acl.entries[0].id.name);
    acl.entries[0].id.name = dup_text("Ren\xE9");
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, acl), 0u);
    acl_ext_s_t acl_back{};
    ASSERT_EQ(kelmAsnDecodeObj(out, acl_back), 0u);
    EXPECT_STREQ(acl_back.entries[0].id.name, "Ren\xC3\xA9");
    kelmAsnFreeObj(acl_back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(acl);
}

// --- memory exceptions -----------------------------------------------------------------------

TEST(AclFailure, EveryAllocationOfAnAclDecodeFailsWithTheModulesLines) {
    acl_ext_s_t acl = make_acl(3);
    Bytes wire = encoded(acl);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    acl_ext_s_t back{};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            back = acl_ext_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int, bool) { kelmAsnFreeObj(back); });
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_acl_ext_type.source_line)),
              1u)
        << "the entries array";
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_acl_permset_type.source_line)),
              1u)
        << "a permissions array";
    kelmAsnFreeObj(acl);
}

TEST(AclFailure, APermissionThatCannotBeAddedIsAMemoryError) {
    acl_permset_s_t set{3, numbers({1, 2, 3})};
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, set);
        },
        [&](unsigned int status, bool) {
            if (status != 0) {
                EXPECT_EQ(out.data, nullptr);
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_acl_permset_type.source_line)),
              1u);
    kelmAsnFreeObj(set);
}

TEST(AclFailure, ANamesArrayThatCannotBeAllocatedIsAMemoryError) {
    map_acl_to_pobj_s_t map{2, texts({"a", "b"}), {0, nullptr}};
    Bytes wire = encoded(map);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    map_acl_to_pobj_s_t back{};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            back = map_acl_to_pobj_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, bool failed) {
            if (!failed) {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(back.name_count, 2u);
            }
            kelmAsnFreeObj(back);
        });
    EXPECT_EQ(lines.count(kelm_test::memory_exception_line("ASN: Memory error", kSource,
                                                           kelm_map_acl_to_pobj_type.source_line)),
              1u);
    kelmAsnFreeObj(map);
}
