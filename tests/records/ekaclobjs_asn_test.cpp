// The authorization-database header record, the external-authentication texts, extended
// attributes and credential modifications through the typed entry points.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ekaclobjs_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::dup_text;
using kelm_test::with_header;
using Bytes = kelm_test::RecordBytes;

namespace {

const char kSource[] = "base_idls/ekaclobjs_asn";

template <class Record> Bytes encoded(Record& record) {
    unsigned int status = 99;
    Bytes bytes = kelm_test::encode_record(record, status);
    EXPECT_EQ(status, 0u);
    return bytes;
}

char** texts(std::initializer_list<const char*> values) {
    auto** array = static_cast<char**>(std::calloc(values.size(), sizeof(char*)));
    size_t i = 0;
    for (const char* value : values)
        array[i++] = value != nullptr ? dup_text(value) : nullptr;
    return array;
}

ekattr_s_t make_ekattr(const char* name, std::initializer_list<const char*> values) {
    return ekattr_s_t{dup_text(name), static_cast<uint32_t>(values.size()),
                      values.size() ? texts(values) : nullptr};
}

// Extended attributes of three named attributes and one attribute of the list.
ekextattr_s_t make_extattr() {
    ekextattr_s_t extattr{};
    extattr.ekattr_count = 3;
    extattr.ekattrs = static_cast<ekattr_s_t*>(std::calloc(3, sizeof(ekattr_s_t)));
    extattr.ekattrs[0] = make_ekattr("mail", {"alice@example.com", "a@example.org"});
    extattr.ekattrs[1] = make_ekattr("none", {});
    extattr.ekattrs[2] = make_ekattr("phone", {"+1 555 0100"});
    extattr.attrs.attr_count = 1;
    extattr.attrs.attrs = static_cast<attr_s_t*>(std::calloc(1, sizeof(attr_s_t)));
    extattr.attrs.attrs[0].name = dup_text("source");
    return extattr;
}

// A chain of one principal without identity or attributes.
ekprincipal_chain_s_t small_chain(uint32_t number) {
    ekprincipal_chain_s_t chain{};
    chain.chain_name = dup_text("c");
    chain.principal_count = 1;
    chain.principals = static_cast<ekprincipal_s_t**>(std::calloc(1, sizeof(void*)));
    chain.principals[0] = static_cast<ekprincipal_s_t*>(std::calloc(1, sizeof(ekprincipal_s_t)));
    chain.principals[0]->first_number = number;
    chain.principals[0]->second_number = number + 1;
    return chain;
}

// The chain above as written, for number 1.
const Bytes kSmallChain = {0x30, 0x0D, 0x0C, 0x01, 'c',  0x30, 0x08, 0x30,
                           0x06, 0x02, 0x01, 0x01, 0x02, 0x01, 0x02};

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

} // namespace

// --- ekauthzn_db_s_t -------------------------------------------------------------------------

TEST(AuthznDb, IsThreeNumbersAndTheAttributeList) {
    ekauthzn_db_s_t db{1, 0xFFFFFFFF, 0x80000000, {0, nullptr}};
    const Bytes wire = encoded(db);
    EXPECT_EQ(wire, with_header({0x30, 0x10, 0x02, 0x01, 0x01, 0x02, 0x01, 0xFF, 0x02, 0x04, 0x80,
                                 0x00, 0x00, 0x00, 0x30, 0x02, 0x30, 0x00}));
    ekauthzn_db_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.number1, 1u);
    EXPECT_EQ(back.number2, 0xFFFFFFFFu);
    EXPECT_EQ(back.number3, 0x80000000u);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(AuthznDb, DecodingClearsTheFieldsButNotTheBytesBetweenThem) {
    ekauthzn_db_s_t db{1, 2, 3, {0, nullptr}};
    const Bytes wire = encoded(db);
    ekauthzn_db_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(&back);
    for (size_t i = 12; i < 16; ++i)
        EXPECT_EQ(bytes[i], 0xEE) << "byte " << i << " between the numbers and the list is kept";
    EXPECT_EQ(back.number3, 3u);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    kelmAsnFreeObj(back);
}

TEST(AuthznDb, AHeaderForAnotherVersionLeavesTheRecordUntouched) {
    ekauthzn_db_s_t db{1, 2, 3, {0, nullptr}};
    Bytes wire = encoded(db);
    wire[1] = 3;
    ekauthzn_db_s_t back{9, 9, 9, {0, nullptr}};
    EXPECT_EQ(kelm_test::decode_record(wire, back), 0x10652196u);
    EXPECT_EQ(back.number1, 9u);
    EXPECT_EQ(back.number3, 9u);
}

// --- ekextern_auth_s_t -----------------------------------------------------------------------

TEST(ExternAuth, FourNullTextsAreFourEmptyStringsAndDecodeToAllocatedEmptyStrings) {
    ekextern_auth_s_t auth{};
    const Bytes wire = encoded(auth);
    EXPECT_EQ(wire, with_header({0x30, 0x08, 0x0C, 0x00, 0x0C, 0x00, 0x0C, 0x00, 0x0C, 0x00}));
    ekextern_auth_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    for (char* text : {back.string1, back.string2, back.string3, back.string4}) {
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(text, "");
    }
    EXPECT_NE(back.string1, back.string2);
    kelmAsnFreeObj(back);
}

TEST(ExternAuth, TextsKeepTheirOrder) {
    ekextern_auth_s_t auth{dup_text("a"), dup_text("bb"), nullptr, dup_text("")};
    const Bytes wire = encoded(auth);
    EXPECT_EQ(wire, with_header({0x30, 0x0B, 0x0C, 0x01, 'a', 0x0C, 0x02, 'b', 'b', 0x0C, 0x00,
                                 0x0C, 0x00}));
    ekextern_auth_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.string1, "a");
    EXPECT_STREQ(back.string2, "bb");
    EXPECT_STREQ(back.string3, "");
    EXPECT_STREQ(back.string4, "");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(auth);
}

// --- ekattr_s_t and ekextattr_s_t ------------------------------------------------------------

TEST(ExtAttr, AnAttributeWithoutValuesIsAnEmptyListAndDecodesToANullArray) {
    ekattr_s_t attr = make_ekattr("n", {});
    const Bytes wire = encoded(attr);
    EXPECT_EQ(wire, with_header({0x30, 0x05, 0x0C, 0x01, 'n', 0x30, 0x00}));
    ekattr_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.name, "n");
    EXPECT_EQ(back.value_count, 0u);
    EXPECT_EQ(back.values, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(attr);
}

TEST(ExtAttr, ValuesAreUtf8StringsInOrder) {
    ekattr_s_t attr = make_ekattr("n", {"x", nullptr, "yz"});
    const Bytes wire = encoded(attr);
    EXPECT_EQ(wire, with_header({0x30, 0x0E, 0x0C, 0x01, 'n', 0x30, 0x09, 0x0C, 0x01, 'x', 0x0C,
                                 0x00, 0x0C, 0x02, 'y', 'z'}));
    ekattr_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.value_count, 3u);
    EXPECT_STREQ(back.values[0], "x");
    EXPECT_STREQ(back.values[1], "");
    EXPECT_STREQ(back.values[2], "yz");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(attr);
}

TEST(ExtAttr, ExtendedAttributesRoundTripAndReencodeToTheSameBytes) {
    ekextattr_s_t extattr = make_extattr();
    const Bytes wire = encoded(extattr);
    ekextattr_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    ASSERT_EQ(back.ekattr_count, 3u);
    EXPECT_STREQ(back.ekattrs[0].name, "mail");
    ASSERT_EQ(back.ekattrs[0].value_count, 2u);
    EXPECT_STREQ(back.ekattrs[0].values[1], "a@example.org");
    EXPECT_EQ(back.ekattrs[1].value_count, 0u);
    EXPECT_EQ(back.ekattrs[1].values, nullptr);
    EXPECT_STREQ(back.ekattrs[2].values[0], "+1 555 0100");
    ASSERT_EQ(back.attrs.attr_count, 1u);
    EXPECT_STREQ(back.attrs.attrs[0].name, "source");
    EXPECT_EQ(encoded(back), wire);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(extattr);
}

TEST(ExtAttr, EmptyExtendedAttributesAreTwoEmptyLists) {
    ekextattr_s_t extattr{};
    const Bytes wire = encoded(extattr);
    EXPECT_EQ(wire, with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    ekextattr_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.ekattr_count, 0u);
    EXPECT_EQ(back.ekattrs, nullptr);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(&back);
    for (size_t i = 4; i < 8; ++i)
        EXPECT_EQ(bytes[i], 0xEE) << "only the four fields are cleared; byte " << i << " is kept";
    kelmAsnFreeObj(back);
}

// --- credential modification -----------------------------------------------------------------

TEST(CredsMod, TheRequestIsATextTheAttributeListAndTheChain) {
    azn_creds_mod_in_s_t in{dup_text("t"), {0, nullptr}, small_chain(1)};
    const Bytes wire = encoded(in);
    EXPECT_EQ(wire, with_header(concat(
                        {{0x30, 0x16, 0x0C, 0x01, 't', 0x30, 0x02, 0x30, 0x00}, kSmallChain})));
    azn_creds_mod_in_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_STREQ(back.string1, "t");
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_STREQ(back.chain.chain_name, "c");
    ASSERT_EQ(back.chain.principal_count, 1u);
    EXPECT_EQ(back.chain.principals[0]->first_number, 1u);
    EXPECT_EQ(back.chain.principals[0]->pa, nullptr);
    EXPECT_EQ(back.chain.principals[0]->attrs, nullptr);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(in);
}

TEST(CredsMod, AResultOfAllOnesTravelsAsMinusOneAndComesBack) {
    azn_creds_mod_out_s_t out{small_chain(1), 0xFFFFFFFF};
    const Bytes wire = encoded(out);
    EXPECT_EQ(wire, with_header(concat({{0x30, 0x12}, kSmallChain, {0x02, 0x01, 0xFF}})));
    azn_creds_mod_out_s_t back{};
    ASSERT_EQ(kelm_test::decode_record(wire, back), 0u);
    EXPECT_EQ(back.result, 0xFFFFFFFFu);
    EXPECT_EQ(back.chain.principals[0]->second_number, 2u);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(out);
}

TEST(CredsMod, TheStoredTypeNamesAreCutToSixteenCharacters) {
    asn_azn_creds_mod_in_t in;
    EXPECT_STREQ(in.get_type_name(), "azn_creds_mod_in");
    asn_azn_creds_mod_out_t out;
    EXPECT_STREQ(out.get_type_name(), "azn_creds_mod_ou");
    asn_ekextern_auth_t auth;
    EXPECT_STREQ(auth.get_type_name(), "ekextern_auth_t");
}

// --- local code set --------------------------------------------------------------------------

TEST(EkaclobjsLocalCodeSet, Latin1ValuesTravelAsUtf8AndComeBack) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    ekattr_s_t attr = make_ekattr("n", {"\xE0", "\xFF"});
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, attr), 0u);
    EXPECT_EQ(Bytes(out.data, out.data + out.length),
              with_header({0x30, 0x0D, 0x0C, 0x01, 'n', 0x30, 0x08, 0x0C, 0x02, 0xC3, 0xA0, 0x0C,
                           0x02, 0xC3, 0xBF}));
    ekattr_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    ASSERT_EQ(back.value_count, 2u);
    EXPECT_STREQ(back.values[0], "\xE0");
    EXPECT_STREQ(back.values[1], "\xFF");
    kelmAsnFreeObj(back);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(attr);

    ekextern_auth_s_t auth{dup_text("\xC9t\xE9"), nullptr, nullptr, dup_text("x")};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, auth), 0u);
    ekextern_auth_s_t plain{};
    ASSERT_EQ(kelmAsnDecodeObj(out, plain), 0u);
    EXPECT_STREQ(plain.string1, "\xC3\x89t\xC3\xA9");
    kelmAsnFreeObj(plain);
    kelm_asn_buffer_free(out);
    kelmAsnFreeObj(auth);
}

// --- memory exceptions -----------------------------------------------------------------------

TEST(EkaclobjsFailure, AValueThatCannotBeAddedNamesLine37) {
    ekattr_s_t attr = make_ekattr("n", {"a", "b"});
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, attr);
        },
        [&](unsigned int, bool) { kelm_asn_buffer_free(out); });
    EXPECT_EQ(lines.count("Exception: ASN: Memory error [10652065] in base_idls/ekaclobjs_asn at "
                          "line 37\n"),
              1u);
    kelmAsnFreeObj(attr);
}

TEST(EkaclobjsFailure, AValuesArrayThatCannotBeAllocatedNamesLine56) {
    ekattr_s_t attr = make_ekattr("n", {"a", "b"});
    Bytes wire = encoded(attr);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    ekattr_s_t back{};
    const std::set<std::string> lines = kelm_test::failure_lines(
        [&] {
            back = ekattr_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int, bool) {
            // The count covers the slots filled so far, and the free releases exactly those.
            if (back.value_count != 0) {
                EXPECT_NE(back.values, nullptr);
            }
            kelmAsnFreeObj(back);
        },
        true);
    EXPECT_EQ(lines.count("Exception: ASN: Memory error [10652065] in base_idls/ekaclobjs_asn at "
                          "line 56\n"),
              1u);
    kelmAsnFreeObj(attr);
}

TEST(EkaclobjsFailure, ExtendedAttributesNameLines208And227AndTheirValuesLines37And56) {
    ekextattr_s_t extattr = make_extattr();
    Bytes wire = encoded(extattr);
    kelm_asn_buffer_t out{0, nullptr};
    const std::set<std::string> encode_lines = kelm_test::failure_lines(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, extattr);
        },
        [&](unsigned int, bool) { kelm_asn_buffer_free(out); });
    const std::string prefix = "Exception: ASN: Memory error [10652065] in " + std::string(kSource);
    EXPECT_EQ(encode_lines.count(prefix + " at line 208\n"), 1u);
    EXPECT_EQ(encode_lines.count(prefix + " at line 37\n"), 1u);

    kelm_asn_buffer_t in{wire.size(), wire.data()};
    ekextattr_s_t back{};
    const std::set<std::string> decode_lines = kelm_test::failure_lines(
        [&] {
            back = ekextattr_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, bool failed) {
            if (!failed) {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(back.ekattr_count, 3u);
            }
            kelmAsnFreeObj(back);
        },
        true);
    EXPECT_EQ(decode_lines.count(prefix + " at line 227\n"), 1u);
    EXPECT_EQ(decode_lines.count(prefix + " at line 56\n"), 1u);
    for (const std::string& line : decode_lines)
        EXPECT_EQ(line.find("ekaclobjs_asn at line 233"), std::string::npos)
            << "no child goes missing while the count is read";
    kelmAsnFreeObj(extattr);
}

TEST(EkaclobjsFailure, ATextThatCannotBeAllocatedIsLeftNullAndTheDecodeStillSucceeds) {
    ekextern_auth_s_t auth{dup_text("one"), dup_text("two"), dup_text("three"), dup_text("four")};
    Bytes wire = encoded(auth);
    kelm_asn_buffer_t in{wire.size(), wire.data()};
    ekextern_auth_s_t back{};
    unsigned int silent = 0;
    kelm_test::failure_lines(
        [&] {
            back = ekextern_auth_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, bool failed) {
            char* texts[] = {back.string1, back.string2, back.string3, back.string4};
            const char* expected[] = {"one", "two", "three", "four"};
            int null_texts = 0;
            for (int i = 0; i < 4; ++i) {
                if (texts[i] == nullptr)
                    ++null_texts;
                else
                    EXPECT_STREQ(texts[i], expected[i]) << "the texts after a failed one are read";
            }
            if (failed && status == 0) {
                ++silent;
                EXPECT_EQ(null_texts, 1);
            }
            kelmAsnFreeObj(back);
        },
        true);
    EXPECT_EQ(silent, 4u) << "each of the four texts, failed in turn";
    kelmAsnFreeObj(auth);
}
