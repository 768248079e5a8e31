// The authorization server's requests and replies, declared as field tables.
#include "aznserver_asn.h"

#include "asn_record_declare.h"
#include "eksvr_enc_asn.h"
#include "principal_asn.h"

// The source that this module's memory exceptions name, as existing callers match it.
constexpr const char kSource[] = "base_idls/aznserver_asn.cpp";

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_gettasklist_in_type, asn_aznadmin_gettasklist_in_t,
                        aznadmin_gettasklist_in_s_t, kelm_site(kSource, 135), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_FIELD(admin_string1), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_gettasklist_out_type, asn_aznadmin_gettasklist_out_t,
                        aznadmin_gettasklist_out_s_t, kelm_site(kSource, 137), kelm_no_quirks,
                        KELM_FIELD(attrs), KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_performtask_in_type, asn_aznadmin_performtask_in_t,
                        aznadmin_performtask_in_s_t, kelm_site(kSource, 139), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_FIELD(admin_string1), KELM_FIELD(admin_string2),
                        KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_performtask_out_type, asn_aznadmin_performtask_out_t,
                        aznadmin_performtask_out_s_t, kelm_site(kSource, 141), kelm_no_quirks,
                        KELM_FIELD(attrs), KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_getobjectlist_in_type, asn_aznadmin_getobjectlist_in_t,
                        aznadmin_getobjectlist_in_s_t, kelm_site(kSource, 143), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_FIELD(admin_string1), KELM_FIELD(admin_string2),
                        KELM_FIELD(admin_string3), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_getobjectlist_out_type, asn_aznadmin_getobjectlist_out_t,
                        aznadmin_getobjectlist_out_s_t, kelm_site(kSource, 145), kelm_no_quirks,
                        KELM_FIELD(attrs), KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_getobject_in_type, asn_aznadmin_getobject_in_t,
                        aznadmin_getobject_in_s_t, kelm_site(kSource, 147), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_FIELD(admin_string1), KELM_FIELD(admin_string2),
                        KELM_FIELD(admin_string3), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_aznadmin_getobject_out_type, asn_aznadmin_getobject_out_t,
                        aznadmin_getobject_out_s_t, kelm_site(kSource, 149), kelm_no_quirks,
                        KELM_FIELD(attrs), KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_aznserver_init_type, asn_aznserver_init_t, aznserver_init_s_t,
                        kelm_site(kSource, 152), kelm_no_quirks, KELM_FIELD(server_name),
                        KELM_SIGNED_VIEW(init_number1), KELM_SIGNED_VIEW(init_number2),
                        KELM_SIGNED_VIEW(init_number3), KELM_SIGNED_VIEW(init_number4),
                        KELM_LIST(svcs, svc_count), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_azn_util_password_in_type, asn_azn_util_password_in_t,
                        azn_util_password_in_s_t, kelm_site(kSource, 154), kelm_no_quirks,
                        KELM_FIELD(first_string), KELM_FIELD(second_string));

KELM_DEFINE_RECORD_TYPE(kelm_azn_util_password_out_type, asn_azn_util_password_out_t,
                        azn_util_password_out_s_t, kelm_site(kSource, 155), kelm_no_quirks,
                        KELM_FIELD(result_string), KELM_FIELD(attrs),
                        KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_azn_id_get_creds_in_type, asn_azn_id_get_creds_in_t,
                        azn_id_get_creds_in_s_t, kelm_site(kSource, 158), kelm_no_quirks,
                        KELM_FIELD(first_string), KELM_FIELD(second_string), KELM_FIELD(attrs));

KELM_DEFINE_RECORD_TYPE(kelm_azn_id_get_creds_out_type, asn_azn_id_get_creds_out_t,
                        azn_id_get_creds_out_s_t, kelm_site(kSource, 160), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_SIGNED_VIEW(reply_number));

KELM_DEFINE_RECORD_TYPE(kelm_azn_decision_ext_in_type, asn_azn_decision_ext_in_t,
                        azn_decision_ext_in_s_t, kelm_site(kSource, 162), kelm_no_quirks,
                        KELM_FIELD(chain), KELM_FIELD(first_string), KELM_FIELD(second_string),
                        KELM_FIELD(first_attrs), KELM_FIELD(second_attrs));

KELM_DEFINE_RECORD_TYPE(kelm_azn_decision_ext_out_type, asn_azn_decision_ext_out_t,
                        azn_decision_ext_out_s_t, kelm_site(kSource, 164), kelm_no_quirks,
                        KELM_SIGNED_VIEW(first_number), KELM_FIELD(attrs),
                        KELM_SIGNED_VIEW(reply_number));
