// The entry points for C callers. Each forwards to the C++ entry point of the same job, so that
// what a caller sees (bytes, statuses, allocations, stderr lines) is that entry point's; the
// record types come from the one list of record_types.h, so a type added there needs nothing
// here.
#include "kelm/kelmasn_c.h"

#include <cstddef>
#include <iterator>

#include "kelm/kelmasn.h"
#include "record_registry.h"
#include "record_types.h"

namespace {

// A record type's five typed entry points, reached through an untyped record pointer.
struct record_entry_points {
    unsigned int (*encode)(kelm_asn_buffer_t& out, void* record);
    unsigned int (*decode)(kelm_asn_buffer_t& in, void* record);
    unsigned int (*encode_lcs)(kelm_asn_buffer_t& out, void* record);
    unsigned int (*decode_lcs)(kelm_asn_buffer_t& in, void* record);
    void (*free_record)(void* record);
};

template <typename Record> Record& record_of(void* record) {
    return *static_cast<Record*>(record);
}

template <typename Record>
constexpr record_entry_points entry_points_of = {
    [](kelm_asn_buffer_t& out, void* record) {
        return kelmAsnEncodeObj(out, record_of<Record>(record));
    },
    [](kelm_asn_buffer_t& in, void* record) {
        return kelmAsnDecodeObj(in, record_of<Record>(record));
    },
    [](kelm_asn_buffer_t& out, void* record) {
        return kelmAsnEncodeObjLCS(out, record_of<Record>(record));
    },
    [](kelm_asn_buffer_t& in, void* record) {
        return kelmAsnDecodeObjLCS(in, record_of<Record>(record));
    },
    [](void* record) { kelmAsnFreeObj(record_of<Record>(record)); },
};

// Indexed by kelm_record_type_id: the identifiers are the positions in the list.
#define KELM_C_ENTRY_POINTS(type, record) entry_points_of<record>,
constexpr record_entry_points kEntryPoints[] = {KELM_FOR_EACH_RECORD_TYPE(KELM_C_ENTRY_POINTS)};
#undef KELM_C_ENTRY_POINTS

// The identifiers of kelmasn_record_ids.h are generated from the same list by the build; they
// must name every type of the list, at its position.
#define KELM_C_RECORD_ID(type, record) KELM_RECORD_##record,
constexpr kelm_record_type_id kIdsInListOrder[] = {KELM_FOR_EACH_RECORD_TYPE(KELM_C_RECORD_ID)};
#undef KELM_C_RECORD_ID

constexpr bool ids_are_list_positions() {
    for (std::size_t position = 0; position < std::size(kIdsInListOrder); ++position)
        if (kIdsInListOrder[position] != position)
            return false;
    return std::size(kIdsInListOrder) == KELM_RECORD_TYPE_COUNT;
}
static_assert(ids_are_list_positions(),
              "kelmasn_record_ids.h does not follow the list of record_types.h: reconfigure");

// The entry points of `type`, or null for an identifier the library does not know.
const record_entry_points* entry_points_for(kelm_record_type_id type) {
    const unsigned int index = type;
    return index < std::size(kEntryPoints) ? &kEntryPoints[index] : nullptr;
}

} // namespace

unsigned int kelmasn_c_encode(kelm_record_type_id type, kelm_asn_buffer_t* out, void* record) {
    const record_entry_points* entry = entry_points_for(type);
    return entry == nullptr ? KELM_ASN_UNKNOWN_TYPE : entry->encode(*out, record);
}

unsigned int kelmasn_c_decode(kelm_record_type_id type, kelm_asn_buffer_t* in, void* record) {
    const record_entry_points* entry = entry_points_for(type);
    return entry == nullptr ? KELM_ASN_UNKNOWN_TYPE : entry->decode(*in, record);
}

unsigned int kelmasn_c_encode_lcs(kelm_record_type_id type, kelm_asn_buffer_t* out, void* record) {
    const record_entry_points* entry = entry_points_for(type);
    return entry == nullptr ? KELM_ASN_UNKNOWN_TYPE : entry->encode_lcs(*out, record);
}

unsigned int kelmasn_c_decode_lcs(kelm_record_type_id type, kelm_asn_buffer_t* in, void* record) {
    const record_entry_points* entry = entry_points_for(type);
    return entry == nullptr ? KELM_ASN_UNKNOWN_TYPE : entry->decode_lcs(*in, record);
}

unsigned int kelmasn_c_free(kelm_record_type_id type, void* record) {
    const record_entry_points* entry = entry_points_for(type);
    if (entry == nullptr)
        return KELM_ASN_UNKNOWN_TYPE;
    entry->free_record(record);
    return KELM_ASN_OK;
}

unsigned int kelmasn_c_record_type_count(void) {
    return std::size(kEntryPoints);
}

const char* kelmasn_c_record_type_name(kelm_record_type_id type) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    const unsigned int index = type;
    return index < count ? types[index]->record_name : nullptr;
}

unsigned int kelmasn_c_record_type_named(const char* name, kelm_record_type_id* type) {
    const kelm_record_type* named = kelm_record_type_named(name);
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int index = 0; named != nullptr && index < count; ++index)
        if (types[index] == named) {
            *type = static_cast<kelm_record_type_id>(index);
            return KELM_ASN_OK;
        }
    return KELM_ASN_UNKNOWN_TYPE;
}

unsigned int kelmasn_c_encode_obj(int version, void* record, unsigned int type,
                                  kelm_asn_buffer_t* out) {
    return kelmasn_encode_obj(version, record, type, *out);
}

unsigned int kelmasn_c_decode_obj(int version, kelm_asn_buffer_t* in, unsigned int type,
                                  void* record) {
    return kelmasn_decode_obj(version, *in, type, record);
}

unsigned int kelmasn_c_obj_free(int version, unsigned int type, void* record) {
    return kelmasn_obj_free(version, type, record);
}

unsigned int kelmasn_c_version(const kelm_asn_buffer_t* buffer, unsigned int* flag) {
    return kelmasn_version(*buffer, *flag);
}

void kelmasn_c_buffer_copy(const kelm_asn_buffer_t* source, kelm_asn_buffer_t* destination,
                           unsigned int* status) {
    kelm_asn_buffer_copy(*source, *destination, *status);
}

void kelmasn_c_buffer_free(kelm_asn_buffer_t* buffer) {
    kelm_asn_buffer_free(*buffer);
}

const char* kelmasn_c_status_text(unsigned int status) {
    return kelm_asn_status_text(status);
}

const char* kelmasn_c_library_version(void) {
    return kelmasn_library_version();
}

unsigned int kelmasn_c_get_type(unsigned char** cursor, unsigned int* remaining, unsigned int* tag,
                                unsigned int* constructed, unsigned int* tag_class) {
    return kelmAsnGetType(cursor, remaining, tag, constructed, tag_class);
}

unsigned int kelmasn_c_get_length(unsigned char** cursor, unsigned int* remaining,
                                  unsigned int* definite, unsigned int* length) {
    return kelmAsnGetLength(cursor, remaining, definite, length);
}

unsigned int kelmasn_c_get_integer_value(unsigned char** cursor, unsigned int* remaining,
                                         unsigned int size, int64_t* value) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, value);
}

unsigned int kelmasn_c_get_integer_bytes(unsigned char** cursor, unsigned int* remaining,
                                         unsigned int size, unsigned char** bytes,
                                         unsigned int* count, int order) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, bytes, count, order);
}

unsigned int kelmasn_c_get_long_integer_value_little_endian(unsigned char** cursor,
                                                            unsigned int* remaining,
                                                            unsigned int size,
                                                            unsigned char** bytes,
                                                            unsigned int* count) {
    return kelmAsnGetLongIntegerValueLittleEndian(cursor, remaining, size, bytes, count);
}

unsigned int kelmasn_c_get_long_integer_value_big_endian(unsigned char** cursor,
                                                         unsigned int* remaining, unsigned int size,
                                                         unsigned char** bytes,
                                                         unsigned int* count) {
    return kelmAsnGetLongIntegerValueBigEndian(cursor, remaining, size, bytes, count);
}

unsigned int kelmasn_c_get_null_value(unsigned char** cursor, unsigned int* remaining,
                                      unsigned int size) {
    return kelmAsnGetNullValue(cursor, remaining, size);
}

unsigned int kelmasn_c_get_bitstring_value(unsigned char** cursor, unsigned int* remaining,
                                           unsigned int size, unsigned char** bytes,
                                           unsigned int* bits) {
    return kelmAsnGetBitstringValue(cursor, remaining, size, bytes, bits);
}

unsigned int kelmasn_c_get_charstring_value(unsigned char** cursor, unsigned int* remaining,
                                            unsigned int size, char** text) {
    return kelmAsnGetCharstringValue(cursor, remaining, size, text);
}

unsigned int kelmasn_c_get_octetstring_value(unsigned char** cursor, unsigned int* remaining,
                                             unsigned int size, unsigned char** bytes,
                                             unsigned int* count) {
    return kelmAsnGetOctetstringValue(cursor, remaining, size, bytes, count);
}

unsigned int kelmasn_c_get_oid_value(unsigned char** cursor, unsigned int* remaining,
                                     unsigned int size, unsigned int* count,
                                     unsigned char** bytes) {
    // The record is the caller's two fields: it starts as they are and goes back whole, so that
    // what the function writes into it, and nothing else, reaches the caller. Without both there
    // is no record, and the function says so.
    if (count == nullptr || bytes == nullptr)
        return kelmAsnGetOIDValue(cursor, remaining, size, nullptr);
    kelm_asn_oid_t oid{*count, *bytes};
    const unsigned int status = kelmAsnGetOIDValue(cursor, remaining, size, &oid);
    *count = oid.count;
    *bytes = oid.bytes;
    return status;
}
