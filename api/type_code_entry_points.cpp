// The entry points that select a record type by a numeric type code, and their dispatcher. Only
// certificate requests (0x103), lists of object updates (0x104) and a bare int (0x106) are
// reached this way; every other record type has typed entry points instead.
#include "asn_ekobjs.h"
#include "asn_record_direct.h"
#include "kelm/ekobjs.h"
#include "type_code_direct_internal.h"
#include "type_code_guard_internal.h"

namespace {

enum : int {
    kEncode = 0,
    kDecode = 1,
    kFree = 2,
};

// Encodes with `version` or decodes a buffer of `version`, through a message class built with
// the plain mode. Kept for compatibility with existing callers: the status of set_value is not
// consulted, so that a record copied only in part is encoded as far as it was copied.
template <class Message, class Record>
unsigned int encode_or_decode(int operation, int version, Record& record,
                              kelm_asn_buffer_t& buffer) {
    Message message(KELM_SECURITY_PLAIN);
    if (operation == kEncode) {
        message.set_value(record);
        return kelm_asnbase::saveEncoding(message, version, buffer);
    }
    const unsigned int status = kelm_asnbase::loadObject(message, version, buffer);
    if (status != KELM_ASN_OK)
        return status;
    return message.get_value(record);
}

// The bare INTEGER of type code 0x106. On decoding, the int receives what was read also when
// the value does not fit 32 bits (then 0), and the read's status is returned.
unsigned int encode_or_decode_integer(int operation, int version, int& record,
                                      kelm_asn_buffer_t& buffer) {
    kelm_asn_integer integer(KELM_SECURITY_PLAIN);
    if (operation == kEncode) {
        integer.set_value(record);
        return kelm_asnbase::saveEncoding(integer, version, buffer);
    }
    const unsigned int status = kelm_asnbase::loadObject(integer, version, buffer);
    if (status != KELM_ASN_OK)
        return status;
    int value = 0;
    const unsigned int read = integer.get_value(value);
    record = value;
    return read;
}

} // namespace

unsigned int main_func(int operation, int version, void* record, unsigned int type,
                       kelm_asn_buffer_t& buffer) {
    if (type != KELMASN_TYPE_CERT_REQUEST && type != KELMASN_TYPE_EKOBJ_UPDATE_LIST &&
        type != KELMASN_TYPE_INTEGER)
        return KELM_ASN_UNKNOWN_TYPE;
    if (operation == kFree) {
        if (type == KELMASN_TYPE_CERT_REQUEST)
            kelm_asn_cert_request_in::free_obj(*static_cast<cert_request_in*>(record));
        else if (type == KELMASN_TYPE_EKOBJ_UPDATE_LIST)
            kelm_asn_ekobj_update_list_t::free_obj(*static_cast<ekobj_update_list_s_t*>(record));
        return KELM_ASN_OK;
    }
    return kelm_type_code_guarded([&]() -> unsigned int {
        unsigned int status = KELM_ASN_OK;
        if (!kelm_object_path_forced() &&
            kelm_type_code_direct(operation, version, record, type, buffer, status))
            return status;
        switch (type) {
        case KELMASN_TYPE_CERT_REQUEST:
            return encode_or_decode<kelm_asn_cert_request_in>(
                operation, version, *static_cast<cert_request_in*>(record), buffer);
        case KELMASN_TYPE_EKOBJ_UPDATE_LIST:
            return encode_or_decode<kelm_asn_ekobj_update_list_t>(
                operation, version, *static_cast<ekobj_update_list_s_t*>(record), buffer);
        default:
            return encode_or_decode_integer(operation, version, *static_cast<int*>(record), buffer);
        }
    });
}

unsigned int kelmasn_encode_obj(int version, void* record, unsigned int type,
                                kelm_asn_buffer_t& out) {
    return main_func(kEncode, version, record, type, out);
}

unsigned int kelmasn_decode_obj(int version, kelm_asn_buffer_t& in, unsigned int type,
                                void* record) {
    return main_func(kDecode, version, record, type, in);
}

unsigned int kelmasn_obj_free(int version, unsigned int type, void* record) {
    kelm_asn_buffer_t none{0, nullptr};
    return main_func(kFree, version, record, type, none);
}
