// The table of record types, in the order of their families.
#include "asn_record_registry.h"

#include <cstring>
#include <string>

#include "aclidl_asn.h"
#include "actionidl_asn.h"
#include "attrlist_asn.h"
#include "aznserver_asn.h"
#include "ekaclobjs_asn.h"
#include "ekobj_asn.h"
#include "ekpopobjs_asn.h"
#include "eksvr_enc_asn.h"
#include "namevalue_asn.h"
#include "pobj_asn.h"
#include "principal_asn.h"
#include "zuauditidl_asn.h"

namespace {

// In the order of the families, and within a family in the order of its entry points.
const kelm_record_type* const kTypes[] = {
    // attributes and values
    &kelm_uuid_type,
    &kelm_attrlist_type,
    &kelm_attr_type,
    &kelm_value_type,
    // objects and the database header
    &kelm_ip_addr_type,
    &kelm_ekobj_type,
    &kelm_ekobj_name_list_type,
    &kelm_ekobj_list_type,
    &kelm_ekobj_db_header_type,
    // server registrations
    &kelm_aznadmsvc_type,
    &kelm_aznlocal_svr_type,
    // protected objects
    &kelm_pobjspace_type,
    &kelm_azn_internal_pobj_type,
    &kelm_pobj_type,
    // principals and the database fetch
    &kelm_ekprincipal_chain_type,
    &kelm_ekprincipal_type,
    &kelm_sec_id_pa_type,
    &kelm_sec_id_type,
    &kelm_dbr_get_db_in_type,
    &kelm_dbr_get_db_out_type,
    // authorization server messages
    &kelm_aznadmin_gettasklist_in_type,
    &kelm_aznadmin_gettasklist_out_type,
    &kelm_aznadmin_performtask_in_type,
    &kelm_aznadmin_performtask_out_type,
    &kelm_aznadmin_getobjectlist_in_type,
    &kelm_aznadmin_getobjectlist_out_type,
    &kelm_aznadmin_getobject_in_type,
    &kelm_aznadmin_getobject_out_type,
    &kelm_aznserver_init_type,
    &kelm_azn_util_password_in_type,
    &kelm_azn_util_password_out_type,
    &kelm_azn_id_get_creds_in_type,
    &kelm_azn_id_get_creds_out_type,
    &kelm_azn_decision_ext_in_type,
    &kelm_azn_decision_ext_out_type,
    // ACLs
    &kelm_acl_permset_type,
    &kelm_map_pobj_to_acl_type,
    &kelm_acl_ext_type,
    &kelm_acl_entry_type,
    &kelm_map_acl_to_pobj_type,
    // actions and action groups
    &kelm_ekaction_groups_type,
    &kelm_ekaction_group_type,
    &kelm_ekaction_type,
    // protected-object policies
    &kelm_ektod_range_type,
    &kelm_ekaccess_times_type,
    &kelm_ekpop_ipauth_type,
    &kelm_ekmap_pop_to_pobj_type,
    &kelm_ekpop_type,
    &kelm_ekpop_ipauth2_list_type,
    &kelm_ekpop_ipauth2_type,
    &kelm_ekmap_pobj_to_pop_type,
    // authorization database records and credential changes
    &kelm_ekauthzn_db_type,
    &kelm_ekextern_auth_type,
    &kelm_ekextattr_type,
    &kelm_ekattr_type,
    &kelm_azn_creds_mod_in_type,
    &kelm_azn_creds_mod_out_type,
    // name/value lists, remote log and entitlements
    &kelm_namevalueList_type,
    &kelm_namevalue_type,
    &kelm_RemoteLogRequest_type,
    &kelm_azn_get_entitlements_in_type,
    &kelm_azn_get_entitlements_out_type,
    // audit events
    &kelm_zuauditevent_type,
    &kelm_zuauditelement_type,
    &kelm_zuauditattribute_type,
};

// The short name: the class name without "asn_" and, when present, without a final "_t".
std::string short_name(const char* class_name) {
    std::string name(class_name);
    if (name.rfind("asn_", 0) == 0)
        name.erase(0, 4);
    return name;
}

} // namespace

const kelm_record_type* const* kelm_record_types(unsigned int& count) {
    count = sizeof kTypes / sizeof kTypes[0];
    return kTypes;
}

const kelm_record_type* kelm_record_type_named(const char* name) {
    if (name == nullptr)
        return nullptr;
    for (const kelm_record_type* type : kTypes) {
        const std::string brief = short_name(type->class_name);
        if (std::strcmp(name, type->record_name) == 0 || std::strcmp(name, type->class_name) == 0 ||
            name == brief ||
            (brief.size() > 2 && brief.compare(brief.size() - 2, 2, "_t") == 0 &&
             name == brief.substr(0, brief.size() - 2)))
            return type;
    }
    return nullptr;
}
