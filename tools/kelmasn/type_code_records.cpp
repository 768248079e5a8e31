// Field tables of the records reached by type code, used only to map them to and from JSON.
#include "type_code_records.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>

#include "kelm/ekobjs.h"

namespace kelmasn_tool {
namespace {

using kind = kelm_field_kind;

const kelm_record_field cert_request_fields[] = {
    {kind::octet_text, "string1", offsetof(cert_request_in, string1), 0, 0, nullptr},
    {kind::octet_text, "string2", offsetof(cert_request_in, string2), 0, 0, nullptr},
    {kind::bytes, "body", offsetof(cert_request_in, body), offsetof(cert_request_in, body_length),
     0, nullptr},
};

const kelm_record_field ekobj_update_fields[] = {
    {kind::integer, "number1", offsetof(ekobj_update_s_t, number1), 0, 0, nullptr},
    {kind::octet_text, "text", offsetof(ekobj_update_s_t, text), 0, 0, nullptr},
    {kind::integer, "number2", offsetof(ekobj_update_s_t, number2), 0, 0, nullptr},
};

const kelm_record_type ekobj_update_json = {"kelm_asn_ekobj_update_t",
                                            "ekobj_update_s_t",
                                            sizeof(ekobj_update_s_t),
                                            ekobj_update_fields,
                                            kelm_field_count(ekobj_update_fields),
                                            nullptr,
                                            __FILE__,
                                            __LINE__,
                                            0,
                                            nullptr};

const kelm_record_field ekobj_update_list_fields[] = {
    {kind::record_list, "updates", offsetof(ekobj_update_list_s_t, updates),
     offsetof(ekobj_update_list_s_t, count), 0, &ekobj_update_json},
};

const kelm_record_field integer_fields[] = {
    {kind::integer, "value", 0, 0, 0, nullptr},
};

const kelm_record_type cert_request_json = {"kelm_asn_cert_request_in",
                                            "cert_request_in",
                                            sizeof(cert_request_in),
                                            cert_request_fields,
                                            kelm_field_count(cert_request_fields),
                                            nullptr,
                                            __FILE__,
                                            __LINE__,
                                            0,
                                            nullptr};

const kelm_record_type ekobj_update_list_json = {"kelm_asn_ekobj_update_list_t",
                                                 "ekobj_update_list_s_t",
                                                 sizeof(ekobj_update_list_s_t),
                                                 ekobj_update_list_fields,
                                                 kelm_field_count(ekobj_update_list_fields),
                                                 nullptr,
                                                 __FILE__,
                                                 __LINE__,
                                                 0,
                                                 nullptr};

const kelm_record_type integer_json = {"kelm_asn_integer",
                                       "int",
                                       sizeof(int),
                                       integer_fields,
                                       kelm_field_count(integer_fields),
                                       nullptr,
                                       __FILE__,
                                       __LINE__,
                                       0,
                                       nullptr};

const TypeCodeRecord kRecords[] = {
    {"cert_request_in", "kelm_asn_cert_request_in", KELMASN_TYPE_CERT_REQUEST, &cert_request_json},
    {"ekobj_update_list_s_t", "kelm_asn_ekobj_update_list_t", KELMASN_TYPE_EKOBJ_UPDATE_LIST,
     &ekobj_update_list_json},
    {"int", "kelm_asn_integer", KELMASN_TYPE_INTEGER, &integer_json},
};

} // namespace

const TypeCodeRecord* type_code_records(unsigned int& count) {
    count = sizeof kRecords / sizeof kRecords[0];
    return kRecords;
}

bool parse_type_code(const std::string& name, unsigned int& code) {
    if (name.empty() || name[0] < '0' || name[0] > '9')
        return false;
    const bool hex = name.size() > 2 && name[0] == '0' && (name[1] == 'x' || name[1] == 'X');
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(name.c_str(), &end, hex ? 16 : 10);
    if (errno != 0 || *end != '\0' || value > 0xFFFFFFFFul)
        return false;
    code = static_cast<unsigned int>(value);
    return true;
}

const TypeCodeRecord* type_code_record_named(const std::string& name) {
    unsigned int code = 0;
    const bool numeric = parse_type_code(name, code);
    for (const TypeCodeRecord& record : kRecords)
        if (numeric ? record.code == code : name == record.name)
            return &record;
    return nullptr;
}

} // namespace kelmasn_tool
