// The typed entry points of every record type, the header query and the buffer utilities.
#include <cstdlib>
#include <cstring>

#include "attrlist_asn.h"
#include "kelm/attrlist.h"
#include "kelm/kelm_entry.h"

namespace {

// The version byte that the typed entry points write and require.
constexpr int kTypedVersion = 2;

} // namespace

// Each record type's five entry points: the typed message class built on the stack with plain
// or local-code-set mode, one direction, destroyed; the free function builds no object.
#define KELM_DEFINE_ENTRY_POINTS(Type, Record)                                                     \
    unsigned int kelmAsnEncodeObj(kelm_asn_buffer_t& out, Record& record) {                        \
        return kelm_asn_record::encode(Type, &record, out, kTypedVersion, KELM_SECURITY_PLAIN);    \
    }                                                                                              \
    unsigned int kelmAsnDecodeObj(kelm_asn_buffer_t& in, Record& record) {                         \
        return kelm_asn_record::decode(Type, &record, in, kTypedVersion, KELM_SECURITY_PLAIN);     \
    }                                                                                              \
    unsigned int kelmAsnEncodeObjLCS(kelm_asn_buffer_t& out, Record& record) {                     \
        return kelm_asn_record::encode(Type, &record, out, kTypedVersion,                          \
                                       KELM_SECURITY_LOCAL_CODESET);                               \
    }                                                                                              \
    unsigned int kelmAsnDecodeObjLCS(kelm_asn_buffer_t& in, Record& record) {                      \
        return kelm_asn_record::decode(Type, &record, in, kTypedVersion,                           \
                                       KELM_SECURITY_LOCAL_CODESET);                               \
    }                                                                                              \
    void kelmAsnFreeObj(Record& record) {                                                          \
        kelm_asn_record::free_record(Type, &record);                                               \
    }

KELM_DEFINE_ENTRY_POINTS(kelm_uuid_type, uuid_t)
KELM_DEFINE_ENTRY_POINTS(kelm_value_type, value_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_attr_type, attr_s_t)
KELM_DEFINE_ENTRY_POINTS(kelm_attrlist_type, attrlist_s_t)

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
