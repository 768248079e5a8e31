// The table of record types, in the order of their families.
#include "record_registry.h"

#include <cstring>
#include <string>

#include "ekobjs_asn.h"
#include "record_types.h"

namespace {

#define KELM_REGISTER_RECORD_TYPE(type, record) &type,
const kelm_record_type* const kTypes[] = {KELM_FOR_EACH_RECORD_TYPE(KELM_REGISTER_RECORD_TYPE)};
#undef KELM_REGISTER_RECORD_TYPE

const kelm_type_code_type kTypeCodeTypes[] = {
    {KELMASN_TYPE_CERT_REQUEST, &kelm_cert_request_layout},
    {KELMASN_TYPE_EKOBJ_UPDATE_LIST, &kelm_ekobj_update_list_layout},
    {KELMASN_TYPE_INTEGER, &kelm_bare_int_layout},
};

// The short name: the class name without "asn_". A name given without the final "_t" of a short
// name is matched by kelm_record_type_named.
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

const kelm_type_code_type* kelm_type_code_types(unsigned int& count) {
    count = sizeof kTypeCodeTypes / sizeof kTypeCodeTypes[0];
    return kTypeCodeTypes;
}
