// The file and line that each record type's memory exceptions name on stderr. Existing callers
// match these lines, so they are fixed values: this table writes them out, and moving or
// reformatting a declaration must leave every one of them as it is.
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "kelm/kelmasn.h"
#include "record_registry.h"
#include "record_test_support.h"

namespace {

struct ExpectedSite {
    const char* record_name;
    const char* file;
    int line;
    kelm_list_failure_lines list_lines;
};

const ExpectedSite kSites[] = {
    {"uuid_t", "base_idls/attrlist_asn.cpp", 47, {0, 0, 0}},
    {"attrlist_s_t", "base_idls/attrlist_asn.cpp", 80, {0, 0, 0}},
    {"attr_s_t", "base_idls/attrlist_asn.cpp", 69, {0, 0, 0}},
    {"value_s_t", "base_idls/attrlist_asn.cpp", 58, {0, 0, 0}},
    {"ip_addr_s_t", "base_idls/ekobj_asn.cpp", 56, {0, 0, 0}},
    {"ekobj_t", "base_idls/ekobj_asn.cpp", 67, {0, 0, 0}},
    {"ekobj_name_list_s_t", "base_idls/ekobj_asn.cpp", 89, {0, 0, 0}},
    {"ekobj_list_s_t", "base_idls/ekobj_asn.cpp", 78, {0, 0, 0}},
    {"ekobj_db_header_s_t", "base_idls/ekobj_asn.cpp", 100, {0, 0, 0}},
    {"aznadmsvc_s_t", "base_idls/eksvr_enc_asn.cpp", 41, {0, 0, 0}},
    {"aznlocal_svr_s_t", "base_idls/eksvr_enc_asn.cpp", 52, {0, 0, 0}},
    {"pobjspace_s_t", "base_idls/pobj_asn.cpp", 38, {0, 0, 0}},
    {"azn_internal_pobj_s_t", "base_idls/pobj_asn.cpp", 60, {0, 0, 0}},
    {"pobj_s_t", "base_idls/pobj_asn.cpp", 49, {0, 0, 0}},
    {"ekprincipal_chain_s_t", "base_idls/principal_asn", 100, {0, 0, 0}},
    {"ekprincipal_s_t", "base_idls/principal_asn", 89, {0, 0, 0}},
    {"sec_id_pa_t", "base_idls/principal_asn", 78, {0, 0, 0}},
    {"sec_id_t", "base_idls/principal_asn", 67, {0, 0, 0}},
    {"dbr_get_db_in_s_t", "base_idls/principal_asn", 111, {0, 0, 0}},
    {"dbr_get_db_out_s_t", "base_idls/principal_asn", 122, {0, 0, 0}},
    {"aznadmin_gettasklist_in_s_t", "base_idls/aznserver_asn.cpp", 135, {0, 0, 0}},
    {"aznadmin_gettasklist_out_s_t", "base_idls/aznserver_asn.cpp", 137, {0, 0, 0}},
    {"aznadmin_performtask_in_s_t", "base_idls/aznserver_asn.cpp", 139, {0, 0, 0}},
    {"aznadmin_performtask_out_s_t", "base_idls/aznserver_asn.cpp", 141, {0, 0, 0}},
    {"aznadmin_getobjectlist_in_s_t", "base_idls/aznserver_asn.cpp", 143, {0, 0, 0}},
    {"aznadmin_getobjectlist_out_s_t", "base_idls/aznserver_asn.cpp", 145, {0, 0, 0}},
    {"aznadmin_getobject_in_s_t", "base_idls/aznserver_asn.cpp", 147, {0, 0, 0}},
    {"aznadmin_getobject_out_s_t", "base_idls/aznserver_asn.cpp", 149, {0, 0, 0}},
    {"aznserver_init_s_t", "base_idls/aznserver_asn.cpp", 152, {0, 0, 0}},
    {"azn_util_password_in_s_t", "base_idls/aznserver_asn.cpp", 154, {0, 0, 0}},
    {"azn_util_password_out_s_t", "base_idls/aznserver_asn.cpp", 155, {0, 0, 0}},
    {"azn_id_get_creds_in_s_t", "base_idls/aznserver_asn.cpp", 158, {0, 0, 0}},
    {"azn_id_get_creds_out_s_t", "base_idls/aznserver_asn.cpp", 160, {0, 0, 0}},
    {"azn_decision_ext_in_s_t", "base_idls/aznserver_asn.cpp", 162, {0, 0, 0}},
    {"azn_decision_ext_out_s_t", "base_idls/aznserver_asn.cpp", 164, {0, 0, 0}},
    {"acl_permset_s_t", "base_idls/aclidl_asn", 54, {0, 0, 0}},
    {"map_pobj_to_acl_s_t", "base_idls/aclidl_asn", 88, {0, 0, 0}},
    {"acl_ext_s_t", "base_idls/aclidl_asn", 76, {0, 0, 0}},
    {"acl_entry_s_t", "base_idls/aclidl_asn", 65, {0, 0, 0}},
    {"map_acl_to_pobj_s_t", "base_idls/aclidl_asn", 99, {0, 0, 0}},
    {"ekaction_groups_s_t", "base_idls/actionidl_asn.cpp", 66, {0, 0, 0}},
    {"ekaction_group_s_t", "base_idls/actionidl_asn.cpp", 55, {0, 0, 0}},
    {"ekaction_s_t", "base_idls/actionidl_asn.cpp", 44, {0, 0, 0}},
    {"ektod_range_s_t", "base_idls/ekpopobjs_asn.cpp", 80, {0, 0, 0}},
    {"ekaccess_times_s_t", "base_idls/ekpopobjs_asn.cpp", 93, {0, 0, 0}},
    {"ekpop_ipauth_s_t", "base_idls/ekpopobjs_asn.cpp", 104, {0, 0, 0}},
    {"ekmap_pop_to_pobj_s_t", "base_idls/ekpopobjs_asn.cpp", 148, {0, 0, 0}},
    {"ekpop_s_t", "base_idls/ekpopobjs_asn.cpp", 137, {0, 0, 0}},
    {"ekpop_ipauth2_list_s_t", "base_idls/ekpopobjs_asn.cpp", 126, {0, 0, 0}},
    {"ekpop_ipauth2_s_t", "base_idls/ekpopobjs_asn.cpp", 115, {0, 0, 0}},
    {"ekmap_pobj_to_pop_s_t", "base_idls/ekpopobjs_asn.cpp", 159, {0, 0, 0}},
    {"ekauthzn_db_s_t", "base_idls/ekaclobjs_asn", 86, {0, 0, 0}},
    {"ekextern_auth_s_t", "base_idls/ekaclobjs_asn", 97, {0, 0, 0}},
    {"ekextattr_s_t", "base_idls/ekaclobjs_asn", 123, {208, 227, 233}},
    {"ekattr_s_t", "base_idls/ekaclobjs_asn", 110, {37, 56, 62}},
    {"azn_creds_mod_in_s_t", "base_idls/ekaclobjs_asn", 136, {0, 0, 0}},
    {"azn_creds_mod_out_s_t", "base_idls/ekaclobjs_asn", 147, {0, 0, 0}},
    {"namevalueList_s_t", "base_idls/namevalue_asn", 75, {0, 0, 0}},
    {"namevalue_s_t", "base_idls/namevalue_asn", 64, {0, 0, 0}},
    {"remote_log_request", "base_idls/namevalue_asn", 86, {0, 0, 0}},
    {"azn_get_entitlements_in_s_t", "base_idls/namevalue_asn", 99, {0, 0, 0}},
    {"azn_get_entitlements_out_s_t", "base_idls/namevalue_asn", 111, {0, 0, 0}},
    {"zuauditevent_s_t", "base_idls/zuauditidl_asn.cpp", 69, {0, 0, 0}},
    {"zuauditelement_s_t", "base_idls/zuauditidl_asn.cpp", 58, {0, 0, 0}},
    {"zuauditattribute_s_t", "base_idls/zuauditidl_asn.cpp", 47, {0, 0, 0}},
};

TEST(RecordSites, EveryRecordTypeNamesItsFixedFileAndLine) {
    unsigned int count = 0;
    kelm_record_types(count);
    EXPECT_EQ(count, sizeof kSites / sizeof kSites[0]);
    for (const ExpectedSite& expected : kSites) {
        SCOPED_TRACE(expected.record_name);
        const kelm_record_type* type = kelm_record_type_named(expected.record_name);
        ASSERT_NE(type, nullptr);
        EXPECT_STREQ(type->source, expected.file);
        EXPECT_EQ(type->source_line, expected.line);
        EXPECT_EQ(type->list_failure_lines.entry, expected.list_lines.entry);
        EXPECT_EQ(type->list_failure_lines.array, expected.list_lines.array);
        EXPECT_EQ(type->list_failure_lines.child, expected.list_lines.child);
    }
}

// 04 02 AC DC, then attrlist_t { SEQUENCE OF { attr_t { "a", SEQUENCE OF {} } } }.
const kelm_test::Bytes kOneAttribute = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x09, 0x30, 0x07,
                                        0x30, 0x05, 0x0C, 0x01, 0x61, 0x30, 0x00};

TEST(RecordSites, AttributeListMemoryErrorNamesItsSourceLine) {
    kelm_test::Bytes bytes = kOneAttribute;
    const std::set<std::string> lines = kelm_test::lines_of_each_failure(
        [&bytes] {
            attrlist_s_t record{};
            kelm_asn_buffer_t in = kelm_test::buffer_over(bytes);
            const unsigned int status = kelmAsnDecodeObj(in, record);
            kelmAsnFreeObj(record);
            return status;
        },
        [] {});
    EXPECT_EQ(lines.count("Exception: ASN: Memory error [10652065] in "
                          "base_idls/attrlist_asn.cpp at line 80\n"),
              1u);
}

} // namespace
