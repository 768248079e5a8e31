// Certificate requests, object updates and lists of them: each class's set_value and get_value
// sit side by side and copy the same elements in the same order.
#include "asn_ekobjs.h"

#include <cstdlib>
#include <cstring>

#include "asn_ekobjs_internal.h"
#include "asn_source_site.h"
#include "asn_type_name_internal.h"

namespace {

// The position that the memory exception of this file reports. Existing callers, their logs and
// the tools that read them match this value in the exception line: it must never change, whatever
// becomes of this file's layout.
// A failed allocation of the copy of a certificate request's body.
constexpr kelm_source_site kBodyCopySite = {"src/asn1/asn_ekobjs.cpp", 88};

// The first non-zero of two statuses.
unsigned int first_failure(unsigned int earlier, unsigned int later) {
    return earlier != KELM_ASN_OK ? earlier : later;
}

} // namespace

// --- kelm_asn_cert_request_in ----------------------------------------------------------------

kelm_asn_cert_request_in::kelm_asn_cert_request_in(security_t sec)
    : kelm_v37_asnbase(sec), string1(KELM_SECURITY_PLAIN), string2(KELM_SECURITY_PLAIN),
      body(KELM_SECURITY_PLAIN) {
    kelm_store_type_name(type_name, "cert_request_in");
    body.set_optional(1);
    register_child(&string1);
    register_child(&string2);
    register_child(&body);
}

kelm_asn_cert_request_in::~kelm_asn_cert_request_in() = default;

unsigned int kelm_asn_cert_request_in::set_value(const cert_request_in& record) {
    unsigned int status = kelm_set_strvalue(string1, record.string1);
    status = first_failure(status, kelm_set_strvalue(string2, record.string2));
    // The body is raw bytes: no NUL is added, and an empty body is left out. A length without
    // bytes is taken as no body, as the record types' byte arrays do, rather than read from null.
    if (record.body_length != 0 && record.body != nullptr)
        status = first_failure(status, body.set_value(record.body, record.body_length));
    return status;
}

unsigned int kelm_asn_cert_request_in::get_value(cert_request_in& record) const {
    record.string1 = nullptr;
    record.string2 = nullptr;
    record.body_length = 0;
    record.body = nullptr;
    unsigned int status = kelm_get_strvalue(string1, record.string1);
    status = first_failure(status, kelm_get_strvalue(string2, record.string2));
    if (!body.is_present())
        return status;
    unsigned char* stored = nullptr;
    unsigned int length = 0;
    status = first_failure(status, body.get_value(stored, length));
    record.body_length = length;
    if (length == 0)
        return status;
    record.body = kelm_copy_cert_request_body(stored, length);
    return status;
}

unsigned char* kelm_copy_cert_request_body(const unsigned char* stored, unsigned int length) {
    auto* body = static_cast<unsigned char*>(std::malloc(length));
    if (body == nullptr)
        throw kelm_asn_memexception(kBodyCopySite.file, kBodyCopySite.line,
                                    "Out of memory get_obj_body()");
    std::memcpy(body, stored, length);
    return body;
}

void kelm_asn_cert_request_in::free_obj(cert_request_in& record) {
    if (record.string1 != nullptr)
        std::free(record.string1);
    if (record.string2 != nullptr)
        std::free(record.string2);
    // Kept for compatibility: the length, not the pointer, says whether there is a body.
    if (record.body_length != 0)
        std::free(record.body);
}

// --- kelm_asn_ekobj_update_t -----------------------------------------------------------------

kelm_asn_ekobj_update_t::kelm_asn_ekobj_update_t(security_t sec)
    : kelm_v37_asnbase(sec), number1(KELM_SECURITY_PLAIN), text(KELM_SECURITY_PLAIN),
      number2(KELM_SECURITY_PLAIN) {
    kelm_store_type_name(type_name, "ekobj_update");
    register_child(&number1);
    register_child(&text);
    register_child(&number2);
}

kelm_asn_ekobj_update_t::~kelm_asn_ekobj_update_t() = default;

unsigned int kelm_asn_ekobj_update_t::set_value(const ekobj_update_s_t& record) {
    unsigned int status = number1.set_value(record.number1);
    status = first_failure(status, kelm_set_strvalue(text, record.text));
    status = first_failure(status, number2.set_value(record.number2));
    return status;
}

unsigned int kelm_asn_ekobj_update_t::get_value(ekobj_update_s_t& record) const {
    std::memset(&record, 0, sizeof record);
    // The numbers' read statuses are not looked at: a number that does not fit reads as 0.
    record.number1 = kelm_intvalue(number1);
    record.number2 = kelm_intvalue(number2);
    return kelm_get_strvalue(text, record.text);
}

void kelm_asn_ekobj_update_t::free_obj(ekobj_update_s_t& record) {
    if (record.text != nullptr)
        std::free(record.text);
}

// --- kelm_asn_ekobj_update_list_t ------------------------------------------------------------

kelm_asn_ekobj_update_list_t::kelm_asn_ekobj_update_list_t(security_t sec)
    : kelm_v37_asnbase(sec), updates(KELM_SECURITY_PLAIN) {
    kelm_store_type_name(type_name, "update_list");
    register_child(&updates);
}

kelm_asn_ekobj_update_list_t::~kelm_asn_ekobj_update_list_t() = default;

unsigned int kelm_asn_ekobj_update_list_t::set_value(const ekobj_update_list_s_t& record) {
    if (record.count == 0 || record.updates == nullptr)
        return KELM_ASN_OK;
    unsigned int status = KELM_ASN_OK;
    for (unsigned int i = 0; i < record.count; ++i) {
        // add_child deletes an entry that it cannot register.
        kelm_asn_ekobj_update_t* entry = updates.add_child();
        if (entry == nullptr)
            return KELM_ASN_OUT_OF_MEMORY;
        status = entry->set_value(record.updates[i]);
        if (status != KELM_ASN_OK)
            return status;
    }
    return status;
}

unsigned int kelm_asn_ekobj_update_list_t::get_value(ekobj_update_list_s_t& record) const {
    record.count = 0;
    record.updates = nullptr;
    record.count = updates.get_child_count();
    if (record.count == 0)
        return KELM_ASN_OK;
    const size_t bytes = static_cast<size_t>(record.count) * sizeof(ekobj_update_s_t);
    // Kept for compatibility: when the array cannot be allocated, count keeps the number of
    // entries while updates stays null.
    record.updates = static_cast<ekobj_update_s_t*>(std::malloc(bytes));
    if (record.updates == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    // Entries not reached after a failure stay zeroed, so that free_obj can release the record.
    std::memset(record.updates, 0, bytes);
    for (unsigned int i = 0; i < record.count; ++i) {
        const kelm_asn_ekobj_update_t* entry = updates.element(i);
        if (entry == nullptr)
            return KELM_ASN_OUT_OF_MEMORY;
        const unsigned int status = entry->get_value(record.updates[i]);
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

void kelm_asn_ekobj_update_list_t::free_obj(ekobj_update_list_s_t& record) {
    // A record whose array could not be allocated holds a count and a null array.
    if (record.updates == nullptr)
        return;
    for (unsigned int i = 0; i < record.count; ++i)
        kelm_asn_ekobj_update_t::free_obj(record.updates[i]);
    std::free(record.updates);
}
