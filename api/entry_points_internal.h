// The five typed entry points of a record type, stamped out from its field table.
#ifndef KELM_ENTRY_POINTS_INTERNAL_H
#define KELM_ENTRY_POINTS_INTERNAL_H

#include "asn_record_direct.h"

// The version byte that the typed entry points write and require.
inline constexpr int kelm_typed_entry_version = 2;

// Each record type's five entry points: the direct codec in the plain or the local-code-set mode,
// or the message class built on the stack with that mode when the direct codec leaves the call
// to it; the free function builds no object. `Type` is the record type's kelm_record_type,
// `Record` its C record.
#define KELM_DEFINE_ENTRY_POINTS(Type, Record)                                                     \
    unsigned int kelmAsnEncodeObj(kelm_asn_buffer_t& out, Record& record) {                        \
        return kelm_record_encode(Type, &record, out, kelm_typed_entry_version,                    \
                                  KELM_SECURITY_PLAIN);                                            \
    }                                                                                              \
    unsigned int kelmAsnDecodeObj(kelm_asn_buffer_t& in, Record& record) {                         \
        return kelm_record_decode(Type, &record, in, kelm_typed_entry_version,                     \
                                  KELM_SECURITY_PLAIN);                                            \
    }                                                                                              \
    unsigned int kelmAsnEncodeObjLCS(kelm_asn_buffer_t& out, Record& record) {                     \
        return kelm_record_encode(Type, &record, out, kelm_typed_entry_version,                    \
                                  KELM_SECURITY_LOCAL_CODESET);                                    \
    }                                                                                              \
    unsigned int kelmAsnDecodeObjLCS(kelm_asn_buffer_t& in, Record& record) {                      \
        return kelm_record_decode(Type, &record, in, kelm_typed_entry_version,                     \
                                  KELM_SECURITY_LOCAL_CODESET);                                    \
    }                                                                                              \
    void kelmAsnFreeObj(Record& record) {                                                          \
        kelm_asn_record::free_record(Type, &record);                                               \
    }

#endif
