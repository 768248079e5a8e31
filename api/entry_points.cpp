// The typed entry points of every record type, the header query and the buffer utilities.
#include <cstdlib>
#include <cstring>

#include "attrlist_asn.h"
#include "kelm/attrlist.h"
#include "kelm/kelm_entry.h"

namespace {

// The version byte that the typed entry points write and require.
constexpr int kTypedVersion = 2;

// Builds the message class on the stack, runs one direction and destroys the object; an
// exception of the runtime's family from any of the three steps becomes its status.
template <class Message, class Record>
unsigned int encode_typed(kelm_asn_buffer_t& out, Record& record, security_t mode) {
    try {
        Message message(mode);
        return message.encode_obj(record, out, kTypedVersion);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}

template <class Message, class Record>
unsigned int decode_typed(kelm_asn_buffer_t& in, Record& record, security_t mode) {
    try {
        Message message(mode);
        return message.decode_obj(record, in, kTypedVersion);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}

} // namespace

#define KELM_DEFINE_ENTRY_POINTS(Message, Record)                                                  \
    unsigned int kelmAsnEncodeObj(kelm_asn_buffer_t& out, Record& record) {                        \
        return encode_typed<Message>(out, record, KELM_SECURITY_PLAIN);                            \
    }                                                                                              \
    unsigned int kelmAsnDecodeObj(kelm_asn_buffer_t& in, Record& record) {                         \
        return decode_typed<Message>(in, record, KELM_SECURITY_PLAIN);                             \
    }                                                                                              \
    unsigned int kelmAsnEncodeObjLCS(kelm_asn_buffer_t& out, Record& record) {                     \
        return encode_typed<Message>(out, record, KELM_SECURITY_LOCAL_CODESET);                    \
    }                                                                                              \
    unsigned int kelmAsnDecodeObjLCS(kelm_asn_buffer_t& in, Record& record) {                      \
        return decode_typed<Message>(in, record, KELM_SECURITY_LOCAL_CODESET);                     \
    }                                                                                              \
    void kelmAsnFreeObj(Record& record) {                                                          \
        Message::free_obj(record);                                                                 \
    }

KELM_DEFINE_ENTRY_POINTS(asn_uuid_t, uuid_t)
KELM_DEFINE_ENTRY_POINTS(asn_value_t, value_s_t)
KELM_DEFINE_ENTRY_POINTS(asn_attr_t, attr_s_t)
KELM_DEFINE_ENTRY_POINTS(asn_attrlist_t, attrlist_s_t)

unsigned int kelmasn_version(const kelm_asn_buffer_t& buffer, unsigned int& flag) {
    return kelm_asnbase::get_encoded_version(buffer, flag);
}

void kelm_asn_buffer_copy(const kelm_asn_buffer_t& source, kelm_asn_buffer_t& destination,
                          unsigned int& status) {
    destination.length = 0;
    destination.data = nullptr;
    status = KELM_ASN_OK;
    if (source.length == 0 || source.data == nullptr)
        return;
    destination.length = source.length;
    destination.data = static_cast<unsigned char*>(std::malloc(source.length));
    if (destination.data == nullptr) {
        status = KELM_ASN_OUT_OF_MEMORY;
        return;
    }
    std::memcpy(destination.data, source.data, source.length);
}

void kelm_asn_buffer_free(kelm_asn_buffer_t& buffer) {
    if (buffer.data != nullptr)
        std::free(buffer.data);
}
