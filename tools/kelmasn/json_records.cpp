// Records as JSON, driven by the record types' field tables.
#include "json_records.h"

#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace kelmasn_tool {
namespace {

using json = nlohmann::ordered_json;
using kind = kelm_field_kind;

template <class T> T load(const void* record, unsigned int offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

template <class T> void store(void* record, unsigned int offset, T value) {
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof value);
}

unsigned char* at(void* record, unsigned int offset) {
    return static_cast<unsigned char*>(record) + offset;
}

const unsigned char* at(const void* record, unsigned int offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

std::string hex(const unsigned char* bytes, size_t n) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(2 * n);
    for (size_t i = 0; i < n; ++i) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 15];
    }
    return out;
}

json text_json(const char* text) {
    return text != nullptr ? json(text) : json(nullptr);
}

// A text kept in an OCTET STRING comes back without a NUL when the stored value had none (kept so
// for existing buffers): it is read no further than its own heap block.
json octet_text_json(const char* text) {
    if (text == nullptr)
        return nullptr;
    return json(std::string(text, strnlen(text, malloc_usable_size(const_cast<char*>(text)))));
}

unsigned int count_of(const kelm_record_field& f, const void* record) {
    return f.kind == kind::record_list16 ? load<uint16_t>(record, f.aux)
                                         : load<uint32_t>(record, f.aux);
}

json field_to_json(const kelm_record_field& f, const void* record) {
    switch (f.kind) {
    case kind::integer:
        return load<int32_t>(record, f.offset);
    case kind::unsigned_integer:
        return load<uint32_t>(record, f.offset);
    case kind::unsigned16:
        return load<uint16_t>(record, f.offset);
    case kind::unsigned8:
        return load<uint8_t>(record, f.offset);
    case kind::text:
        return text_json(load<const char*>(record, f.offset));
    case kind::octet_text:
        return octet_text_json(load<const char*>(record, f.offset));
    case kind::bytes: {
        const unsigned char* data = load<const unsigned char*>(record, f.offset);
        return hex(data, data != nullptr ? load<uint32_t>(record, f.aux) : 0);
    }
    case kind::fixed_bytes:
        return hex(at(record, f.offset), f.size);
    case kind::record:
        return record_to_json(*f.type, at(record, f.offset));
    case kind::optional_record: {
        const void* nested = load<const void*>(record, f.offset);
        return nested != nullptr ? record_to_json(*f.type, nested) : json(nullptr);
    }
    case kind::record_list:
    case kind::record_list16: {
        json list = json::array();
        const unsigned char* array = load<const unsigned char*>(record, f.offset);
        const unsigned int n = array != nullptr ? count_of(f, record) : 0;
        for (unsigned int i = 0; i < n; ++i)
            list.push_back(record_to_json(*f.type, array + i * f.type->record_size));
        return list;
    }
    case kind::record_pointer_list: {
        json list = json::array();
        void* const* array = load<void* const*>(record, f.offset);
        const unsigned int n = array != nullptr ? count_of(f, record) : 0;
        for (unsigned int i = 0; i < n; ++i)
            list.push_back(array[i] != nullptr ? record_to_json(*f.type, array[i]) : json(nullptr));
        return list;
    }
    case kind::text_list: {
        json list = json::array();
        char* const* array = load<char* const*>(record, f.offset);
        const unsigned int n = array != nullptr ? count_of(f, record) : 0;
        for (unsigned int i = 0; i < n; ++i)
            list.push_back(text_json(array[i]));
        return list;
    }
    case kind::integer_list: {
        json list = json::array();
        const uint32_t* array = load<const uint32_t*>(record, f.offset);
        const unsigned int n = array != nullptr ? count_of(f, record) : 0;
        for (unsigned int i = 0; i < n; ++i)
            list.push_back(array[i]);
        return list;
    }
    case kind::slots: {
        // As on the wire, the empty slots after the last filled one are left out.
        unsigned int used = f.size;
        while (used > 0 &&
               load<const void*>(at(record, f.offset), (used - 1) * sizeof(void*)) == nullptr)
            --used;
        json list = json::array();
        for (unsigned int i = 0; i < used; ++i) {
            const void* slot = load<const void*>(at(record, f.offset), i * sizeof(void*));
            list.push_back(slot != nullptr ? record_to_json(*f.type, slot) : json(nullptr));
        }
        return list;
    }
    }
    return nullptr;
}

// --- from JSON -------------------------------------------------------------------------------

void record_from_json_at(const kelm_record_type& type, const json& value, void* record,
                         const std::string& path, unsigned int depth);

[[noreturn]] void fail(const std::string& path, const std::string& what) {
    throw JsonFieldError(path + ": " + what);
}

int64_t integer_in(const json& value, const std::string& path, int64_t low, int64_t high) {
    if (!value.is_number_integer())
        fail(path, "expected an integer");
    const int64_t n = value.is_number_unsigned()
                          ? (value.get<uint64_t>() > static_cast<uint64_t>(high)
                                 ? high + (high < std::numeric_limits<int64_t>::max() ? 1 : 0)
                                 : static_cast<int64_t>(value.get<uint64_t>()))
                          : value.get<int64_t>();
    if (n < low || n > high)
        fail(path, "integer out of range " + std::to_string(low) + " to " + std::to_string(high));
    return n;
}

char* text_from(const json& value, const std::string& path) {
    if (value.is_null())
        return nullptr;
    if (!value.is_string())
        fail(path, "expected a string or null");
    const std::string& text = value.get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos)
        fail(path, "a text cannot hold a NUL character");
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        fail(path, "out of memory");
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

std::string hex_from(const json& value, const std::string& path) {
    if (!value.is_string())
        fail(path, "expected a hex string");
    const std::string& text = value.get_ref<const std::string&>();
    if (text.size() % 2 != 0)
        fail(path, "a hex string needs an even number of digits");
    std::string bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        int byte = 0;
        for (size_t k = i; k < i + 2; ++k) {
            const char c = text[k];
            const int digit = c >= '0' && c <= '9'   ? c - '0'
                              : c >= 'a' && c <= 'f' ? c - 'a' + 10
                              : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                     : -1;
            if (digit < 0)
                fail(path, "not a hex digit at position " + std::to_string(k));
            byte = byte * 16 + digit;
        }
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

const json& array_from(const json& value, const std::string& path) {
    if (!value.is_array())
        fail(path, "expected an array");
    if (value.size() > 0xFFFFFFFFu)
        fail(path, "too many entries");
    return value;
}

// `depth` counts the records that hold the field, the outermost included.
void field_from_json(const kelm_record_field& f, const json& value, const std::string& path,
                     void* record, unsigned int depth) {
    switch (f.kind) {
    case kind::integer:
        store<int32_t>(record, f.offset,
                       static_cast<int32_t>(integer_in(value, path, INT32_MIN, INT32_MAX)));
        return;
    case kind::unsigned_integer:
        store<uint32_t>(record, f.offset,
                        static_cast<uint32_t>(integer_in(value, path, 0, UINT32_MAX)));
        return;
    case kind::unsigned16:
        store<uint16_t>(record, f.offset,
                        static_cast<uint16_t>(integer_in(value, path, 0, UINT16_MAX)));
        return;
    case kind::unsigned8:
        store<uint8_t>(record, f.offset,
                       static_cast<uint8_t>(integer_in(value, path, 0, UINT8_MAX)));
        return;
    case kind::text:
    case kind::octet_text:
        store<char*>(record, f.offset, text_from(value, path));
        return;
    case kind::bytes: {
        const std::string bytes = hex_from(value, path);
        unsigned char* data = nullptr;
        if (!bytes.empty()) {
            data = static_cast<unsigned char*>(std::malloc(bytes.size()));
            if (data == nullptr)
                fail(path, "out of memory");
            std::memcpy(data, bytes.data(), bytes.size());
        }
        store<unsigned char*>(record, f.offset, data);
        store<uint32_t>(record, f.aux, static_cast<uint32_t>(bytes.size()));
        return;
    }
    case kind::fixed_bytes: {
        const std::string bytes = hex_from(value, path);
        if (bytes.size() != f.size)
            fail(path, "expected exactly " + std::to_string(f.size) + " bytes");
        std::memcpy(at(record, f.offset), bytes.data(), f.size);
        return;
    }
    case kind::record:
        record_from_json_at(*f.type, value, at(record, f.offset), path, depth + 1);
        return;
    case kind::optional_record: {
        if (value.is_null())
            return;
        void* nested = std::calloc(1, f.type->record_size);
        if (nested == nullptr)
            fail(path, "out of memory");
        store<void*>(record, f.offset, nested);
        record_from_json_at(*f.type, value, nested, path, depth + 1);
        return;
    }
    case kind::record_list:
    case kind::record_list16:
    case kind::record_pointer_list:
    case kind::text_list:
    case kind::integer_list: {
        const json& list = array_from(value, path);
        if (f.kind == kind::record_list16 && list.size() > UINT16_MAX)
            fail(path, "at most 65535 entries fit the 16-bit count");
        if (list.empty())
            return;
        const bool records = f.kind == kind::record_list || f.kind == kind::record_list16;
        const size_t entry_size = records                        ? f.type->record_size
                                  : f.kind == kind::integer_list ? sizeof(uint32_t)
                                                                 : sizeof(void*);
        unsigned char* array = static_cast<unsigned char*>(std::calloc(list.size(), entry_size));
        if (array == nullptr)
            fail(path, "out of memory");
        store<unsigned char*>(record, f.offset, array);
        unsigned int filled = 0;
        for (const json& entry : list) {
            const std::string entry_path = path + "[" + std::to_string(filled) + "]";
            unsigned char* slot = array + filled * entry_size;
            // The count covers every entry started, so that freeing releases a partial one too.
            if (f.kind == kind::record_list16)
                store<uint16_t>(record, f.aux, static_cast<uint16_t>(filled + 1));
            else
                store<uint32_t>(record, f.aux, filled + 1);
            if (records) {
                record_from_json_at(*f.type, entry, slot, entry_path, depth + 1);
            } else if (f.kind == kind::record_pointer_list) {
                if (!entry.is_null()) {
                    void* nested = std::calloc(1, f.type->record_size);
                    if (nested == nullptr)
                        fail(entry_path, "out of memory");
                    store<void*>(slot, 0, nested);
                    record_from_json_at(*f.type, entry, nested, entry_path, depth + 1);
                }
            } else if (f.kind == kind::text_list) {
                store<char*>(slot, 0, text_from(entry, entry_path));
            } else {
                store<uint32_t>(
                    slot, 0, static_cast<uint32_t>(integer_in(entry, entry_path, 0, UINT32_MAX)));
            }
            ++filled;
        }
        return;
    }
    case kind::slots: {
        const json& list = array_from(value, path);
        if (list.size() > f.size)
            fail(path, "at most " + std::to_string(f.size) + " slots");
        for (unsigned int i = 0; i < list.size(); ++i) {
            if (list[i].is_null())
                continue;
            void* nested = std::calloc(1, f.type->record_size);
            if (nested == nullptr)
                fail(path, "out of memory");
            store<void*>(at(record, f.offset), i * sizeof(void*), nested);
            record_from_json_at(*f.type, list[i], nested, path + "[" + std::to_string(i) + "]",
                                depth + 1);
        }
        return;
    }
    }
}

void record_from_json_at(const kelm_record_type& type, const json& value, void* record,
                         const std::string& path, unsigned int depth) {
    // Every record is at least one constructed level of its encoding, so a document nested
    // deeper than the limit could not be encoded; refusing it here also keeps a deeply nested
    // document from exhausting the stack.
    if (depth > KELM_ASN_MAX_NESTING)
        fail(path, "records nest deeper than " + std::to_string(KELM_ASN_MAX_NESTING) + " levels");
    if (!value.is_object())
        fail(path.empty() ? std::string(type.record_name) : path,
             std::string("expected an object for ") + type.record_name);
    for (auto it = value.begin(); it != value.end(); ++it) {
        bool known = false;
        for (unsigned int i = 0; i < type.field_count; ++i)
            known = known || it.key() == type.fields[i].name;
        if (!known)
            fail(path.empty() ? it.key() : path + "." + it.key(),
                 std::string("no such field in ") + type.record_name);
    }
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        auto found = value.find(f.name);
        if (found == value.end())
            continue; // an absent field stays zero or null
        field_from_json(f, *found, path.empty() ? std::string(f.name) : path + "." + f.name, record,
                        depth);
    }
}

} // namespace

json record_to_json(const kelm_record_type& type, const void* record) {
    json object = json::object();
    for (unsigned int i = 0; i < type.field_count; ++i)
        object[type.fields[i].name] = field_to_json(type.fields[i], record);
    return object;
}

void record_from_json(const kelm_record_type& type, const json& value, void* record) {
    record_from_json_at(type, value, record, "", 1);
}

} // namespace kelmasn_tool
