// The authorization server's requests and replies through the typed entry points.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "aznserver_asn.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::Bytes;
using kelm_test::bytes_of;
using kelm_test::decode_record;
using kelm_test::dup_text;
using kelm_test::encoded;
using kelm_test::with_header;

TEST(AznServer, ARequestWhoseChainHasNoPrincipalsWritesTheNameAndAnEmptyList) {
    aznadmin_gettasklist_in_s_t request{};
    request.chain.chain_name = dup_text("c");
    request.admin_string1 = dup_text("a");
    EXPECT_EQ(encoded(request), with_header({0x30, 0x0E, 0x30, 0x05, 0x0C, 0x01, 'c', 0x30, 0x00,
                                             0x0C, 0x01, 'a', 0x30, 0x02, 0x30, 0x00}));
    kelmAsnFreeObj(request);
}

TEST(AznServer, AnInitialisationRecordWithNoServicesHasAnEmptyList) {
    aznserver_init_s_t init{};
    init.server_name = dup_text("s");
    init.init_number1 = 1;
    init.init_number2 = 2;
    init.init_number3 = 3;
    init.init_number4 = 4;
    Bytes wire = encoded(init);
    EXPECT_EQ(wire,
              with_header({0x30, 0x15, 0x0C, 0x01, 's',  0x02, 0x01, 0x01, 0x02, 0x01, 0x02, 0x02,
                           0x01, 0x03, 0x02, 0x01, 0x04, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    aznserver_init_s_t back{};
    kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
    ASSERT_EQ(kelmAsnDecodeObj(in, back), 0u);
    EXPECT_EQ(back.svc_count, 0u);
    EXPECT_EQ(back.svcs, nullptr);
    EXPECT_EQ(back.init_number4, 4u);
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(init);
}

TEST(AznServer, EachRequestAndItsReplyShareTheirStoredTypeName) {
    struct Row {
        const kelm_record_type& request;
        const kelm_record_type& reply;
        const char* literal;
    } rows[] = {
        {kelm_aznadmin_gettasklist_in_type, kelm_aznadmin_gettasklist_out_type, "aznadmin_gettask"},
        {kelm_aznadmin_performtask_in_type, kelm_aznadmin_performtask_out_type, "aznadmin_perform"},
        {kelm_aznadmin_getobjectlist_in_type, kelm_aznadmin_getobjectlist_out_type,
         "aznadmin_getobje"},
        {kelm_aznadmin_getobject_in_type, kelm_aznadmin_getobject_out_type, "aznadmin_getobje"},
        {kelm_azn_util_password_in_type, kelm_azn_util_password_out_type, "azn_util_passwor"},
        {kelm_azn_id_get_creds_in_type, kelm_azn_id_get_creds_out_type, "azn_id_get_creds"},
        {kelm_azn_decision_ext_in_type, kelm_azn_decision_ext_out_type, "azn_decision_ext"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.literal);
        kelm_asn_record request(row.request, KELM_SECURITY_PLAIN);
        kelm_asn_record reply(row.reply, KELM_SECURITY_PLAIN);
        EXPECT_STREQ(request.get_type_name(), row.literal);
        EXPECT_STREQ(reply.get_type_name(), row.literal);
    }
    kelm_asn_record init(kelm_aznserver_init_type, KELM_SECURITY_PLAIN);
    EXPECT_STREQ(init.get_type_name(), "aznserver_init_t");
}

TEST(AznServer, ReplyNumbersKeepTheirBitsAcrossTheWire) {
    for (uint32_t number : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(::testing::Message() << std::hex << number);
        aznadmin_getobject_out_s_t reply{};
        reply.reply_number = number;
        Bytes wire = encoded(reply);
        aznadmin_getobject_out_s_t back;
        std::memset(&back, 0xEE, sizeof back);
        kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
        ASSERT_EQ(kelmAsnDecodeObj(in, back), 0u);
        EXPECT_EQ(back.reply_number, number);
        EXPECT_EQ(back.attrs.attr_count, 0u);
        kelmAsnFreeObj(back);
    }
    azn_decision_ext_out_s_t decision{};
    decision.first_number = 0x80000000u;
    decision.reply_number = 0xFFFFFFFFu;
    Bytes wire = encoded(decision);
    azn_decision_ext_out_s_t back{};
    kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
    ASSERT_EQ(kelmAsnDecodeObj(in, back), 0u);
    EXPECT_EQ(back.first_number, 0x80000000u);
    EXPECT_EQ(back.reply_number, 0xFFFFFFFFu);
    kelmAsnFreeObj(back);
}

TEST(AznServer, ADecisionRequestCarriesItsChainTextsAndBothAttributeLists) {
    azn_decision_ext_in_s_t request{};
    request.chain.chain_name = dup_text("chain");
    request.chain.principal_count = 1;
    request.chain.principals =
        static_cast<ekprincipal_s_t**>(std::calloc(1, sizeof(ekprincipal_s_t*)));
    request.chain.principals[0] =
        static_cast<ekprincipal_s_t*>(std::calloc(1, sizeof(ekprincipal_s_t)));
    request.chain.principals[0]->first_number = 7;
    request.first_string = dup_text("/object");
    request.second_string = dup_text("rx");
    request.first_attrs = kelm_test::one_attribute("a", "1");
    request.second_attrs = kelm_test::one_attribute("b", "2");
    Bytes wire = encoded(request);
    azn_decision_ext_in_s_t back{};
    kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
    ASSERT_EQ(kelmAsnDecodeObj(in, back), 0u);
    ASSERT_EQ(back.chain.principal_count, 1u);
    EXPECT_EQ(back.chain.principals[0]->first_number, 7u);
    EXPECT_EQ(back.chain.principals[0]->pa, nullptr);
    EXPECT_STREQ(back.first_string, "/object");
    EXPECT_STREQ(back.second_string, "rx");
    EXPECT_STREQ(back.first_attrs.attrs[0].name, "a");
    EXPECT_STREQ(back.second_attrs.attrs[0].values[0].str_value, "2");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(request);
}

TEST(AznServer, Latin1TextsTravelAsUtf8InTheLocalCodeSetVariants) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    azn_util_password_in_s_t request{dup_text("J\xFCrg"), dup_text("p\xE4ss")};
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, request), 0u);
    EXPECT_EQ(bytes_of(out), with_header({0x30, 0x0E, 0x0C, 0x05, 'J', 0xC3, 0xBC, 'r', 'g', 0x0C,
                                          0x05, 'p', 0xC3, 0xA4, 's', 's'}));
    azn_util_password_in_s_t back{};
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back), 0u);
    EXPECT_STREQ(back.first_string, "J\xFCrg");
    EXPECT_STREQ(back.second_string, "p\xE4ss");
    kelmAsnFreeObj(back);
    kelmAsnFreeObj(request);
    kelm_asn_buffer_free(out);
}

TEST(AznServerFailure, AServiceListThatCannotBeAllocatedIsAMemoryErrorOfThisModule) {
    aznserver_init_s_t init{};
    init.server_name = dup_text("authz");
    init.svc_count = 2;
    init.svcs = static_cast<aznadmsvc_s_t*>(std::calloc(2, sizeof(aznadmsvc_s_t)));
    init.svcs[0].svc_name = dup_text("one");
    init.svcs[1].svc_name = dup_text("two");
    Bytes wire = encoded(init);
    aznserver_init_s_t back{};
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&] {
            back = aznserver_init_s_t{};
            kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
            return kelmAsnDecodeObj(in, back);
        },
        [&] { kelmAsnFreeObj(back); });
    EXPECT_EQ(
        lines.count(kelm_test::memory_error_line(kelm_aznserver_init_type, "ASN: Memory error")),
        1u)
        << ::testing::PrintToString(lines);
    kelmAsnFreeObj(init);
}
