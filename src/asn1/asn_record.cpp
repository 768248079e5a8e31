// The one mechanism behind every message class: elements built from a record type's table,
// records copied into them and out of them, and records freed.
#include "asn_record.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <optional>

namespace {

using kind = kelm_field_kind;

constexpr size_t kAlign = alignof(std::max_align_t);

size_t aligned(size_t n) {
    return (n + kAlign - 1) & ~(kAlign - 1);
}

using text_list_t = kelm_asn_sequenceof<kelmasnUTF8String>;
using integer_list_t = kelm_asn_sequenceof<kelmasn_integer>;

// The size of the element object of a field.
size_t element_size(const kelm_record_field& f) {
    switch (f.kind) {
    case kind::integer:
    case kind::unsigned_integer:
    case kind::unsigned16:
    case kind::unsigned8:
        return sizeof(kelmasn_integer);
    case kind::text:
        return sizeof(kelmasnUTF8String);
    case kind::octet_text:
    case kind::bytes:
    case kind::fixed_bytes:
        return sizeof(kelmasn_octetstring);
    case kind::record:
    case kind::optional_record:
        return f.type->ops->object_size;
    case kind::record_list:
    case kind::record_list16:
    case kind::record_pointer_list:
        return f.type->ops->list_size;
    case kind::text_list:
        return sizeof(text_list_t);
    case kind::integer_list:
        return sizeof(integer_list_t);
    case kind::slots:
        return f.type->ops->slots_size;
    }
    return 0;
}

// Builds the element object of a field in place, with plain security: the record's own mode
// reaches it through registration.
kelm_asn_object* create_element(const kelm_record_field& f, void* where) {
    const security_t plain = KELM_SECURITY_PLAIN;
    switch (f.kind) {
    case kind::integer:
    case kind::unsigned_integer:
    case kind::unsigned16:
    case kind::unsigned8:
        return new (where) kelmasn_integer(plain);
    case kind::text:
        return new (where) kelmasnUTF8String(plain);
    case kind::octet_text:
    case kind::bytes:
    case kind::fixed_bytes:
        return new (where) kelmasn_octetstring(plain);
    case kind::record:
        return f.type->ops->create(where, plain);
    case kind::optional_record: {
        kelm_asn_object* nested = f.type->ops->create(where, plain);
        nested->set_optional(1);
        // Absent until a record is copied in: a nested record whose elements are all valid from
        // the start (an attribute list is one list, present and empty when built) would
        // otherwise count as present and be written for a NULL pointer.
        nested->invalidate_value(KELM_INVALIDATE_CONTAINER);
        return nested;
    }
    case kind::record_list:
    case kind::record_list16:
    case kind::record_pointer_list:
        return f.type->ops->create_list(where, plain);
    case kind::text_list:
        return new (where) text_list_t(plain);
    case kind::integer_list:
        return new (where) integer_list_t(plain);
    case kind::slots:
        return f.type->ops->create_slots(where, plain);
    }
    return nullptr;
}

// Typed access to the bytes of a record.
template <class T> T read_field(const void* record, unsigned int offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

template <class T> void write_field(void* record, unsigned int offset, T value) {
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof value);
}

unsigned char* field_address(void* record, unsigned int offset) {
    return static_cast<unsigned char*>(record) + offset;
}

const unsigned char* field_address(const void* record, unsigned int offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

// The count of a list field (16-bit for record_list16).
unsigned int read_count(const kelm_record_field& f, const void* record) {
    return f.kind == kind::record_list16 ? read_field<uint16_t>(record, f.aux)
                                         : read_field<uint32_t>(record, f.aux);
}

void write_count(const kelm_record_field& f, void* record, unsigned int count) {
    if (f.kind == kind::record_list16)
        write_field<uint16_t>(record, f.aux, static_cast<uint16_t>(count));
    else
        write_field<uint32_t>(record, f.aux, count);
}

} // namespace

kelm_asn_record::kelm_asn_record(const kelm_record_type& type, security_t sec)
    : kelm_asnbase(sec), type_(type), arena_(nullptr), constructed_(0) {
    const char* name = type.class_name;
    set_type_name(std::strncmp(name, "asn_", 4) == 0 ? name + 4 : name);
    try {
        build_elements();
    } catch (...) {
        destroy_elements();
        throw;
    }
}

kelm_asn_record::~kelm_asn_record() {
    destroy_elements();
}

// One block holds the child registry and every element object, so that building a record's
// elements costs one allocation however many fields it has.
void kelm_asn_record::build_elements() {
    const unsigned int n = type_.field_count;
    if (n == 0)
        return;
    const size_t registry = aligned(n * sizeof(kelm_asn_object*));
    size_t total = registry;
    for (unsigned int i = 0; i < n; ++i)
        total += aligned(element_size(type_.fields[i]));
    arena_ = static_cast<unsigned char*>(std::malloc(total));
    if (arena_ == nullptr)
        throw_memory_error("ASN: Out of memory");
    // The registry is sized for every field: registering never grows it.
    children = reinterpret_cast<kelm_asn_object**>(arena_);
    child_capacity = n;
    size_t at = registry;
    for (unsigned int i = 0; i < n; ++i) {
        const kelm_record_field& f = type_.fields[i];
        kelm_asn_object* element = create_element(f, arena_ + at);
        // Counted only once registered: destroy_elements finds the elements through the child
        // registry, so one that could not be registered (a nested record holding storage of its
        // own) is destroyed here.
        try {
            register_child(element);
        } catch (...) {
            element->~kelm_asn_object();
            throw;
        }
        ++constructed_;
        at += aligned(element_size(f));
    }
}

void kelm_asn_record::destroy_elements() {
    // In reverse order of construction; the child registry only keeps pointers.
    for (unsigned int i = constructed_; i-- > 0;) {
        kelm_asn_object* element = get_child(i);
        if (element != nullptr)
            element->~kelm_asn_object();
    }
    constructed_ = 0;
    // The registry lives in the block: the composite must not release it separately.
    if (arena_ != nullptr && children == reinterpret_cast<kelm_asn_object**>(arena_)) {
        children = nullptr;
        child_capacity = 0;
        child_count = 0;
    }
    std::free(arena_);
    arena_ = nullptr;
}

int kelm_asn_record::set_secure(security_t sec) {
    kelm_asnbase::set_secure(sec);
    for (unsigned int i = 0; i < constructed_; ++i)
        get_child(i)->set_secure(sec);
    return 0;
}

void kelm_asn_record::throw_memory_error(const char* message, int line) const {
    throw kelm_asn_memexception(type_.source, line != 0 ? line : type_.source_line, message);
}

unsigned int kelm_asn_record::set_record(const void* record) {
    // Every constructed element this record writes (itself, each list, each nested record) takes
    // one level of the same budget that decoding counts, so that a record too deep to be read
    // back is refused here with the status decoding would give, before a deep or cyclic record
    // of the caller can exhaust the stack.
    kelm_asn_nesting_guard level;
    if (!level.admitted())
        return KELM_ASN_BAD_ENCODING;
    const int entry_line = type_.list_failure_lines.entry;
    for (unsigned int i = 0; i < type_.field_count; ++i) {
        const kelm_record_field& f = type_.fields[i];
        kelm_asn_object* element = get_child(i);
        // A list or slot array is one more constructed level, also when it is empty.
        const bool is_list = f.kind == kind::record_list || f.kind == kind::record_list16 ||
                             f.kind == kind::record_pointer_list || f.kind == kind::text_list ||
                             f.kind == kind::integer_list || f.kind == kind::slots;
        std::optional<kelm_asn_nesting_guard> list_level;
        if (is_list && !list_level.emplace().admitted())
            return KELM_ASN_BAD_ENCODING;
        unsigned int status = KELM_ASN_OK;
        switch (f.kind) {
        case kind::integer:
        case kind::unsigned_integer:
            static_cast<kelmasn_integer*>(element)->set_value(
                read_field<int32_t>(record, f.offset));
            break;
        case kind::unsigned16:
            static_cast<kelmasn_integer*>(element)->set_value(
                read_field<uint16_t>(record, f.offset));
            break;
        case kind::unsigned8:
            static_cast<kelmasn_integer*>(element)->set_value(
                read_field<uint8_t>(record, f.offset));
            break;
        case kind::text:
            static_cast<kelmasnUTF8String*>(element)->set_value(
                read_field<char*>(record, f.offset));
            break;
        case kind::octet_text:
            kelm_set_strvalue(*static_cast<kelmasn_octetstring*>(element),
                              read_field<const char*>(record, f.offset));
            break;
        case kind::bytes: {
            const unsigned char* data = read_field<const unsigned char*>(record, f.offset);
            const uint32_t length = data != nullptr ? read_field<uint32_t>(record, f.aux) : 0;
            static_cast<kelmasn_octetstring*>(element)->kelm_asn_octetstring::set_value(data,
                                                                                        length);
            break;
        }
        case kind::fixed_bytes:
            static_cast<kelmasn_octetstring*>(element)->kelm_asn_octetstring::set_value(
                field_address(record, f.offset), f.size);
            break;
        case kind::record:
            status =
                static_cast<kelm_asn_record*>(element)->set_record(field_address(record, f.offset));
            break;
        case kind::optional_record: {
            const void* nested = read_field<const void*>(record, f.offset);
            if (nested != nullptr) {
                auto* present = static_cast<kelm_asn_record*>(element);
                status = present->set_record(nested);
                // Present whenever the pointer is set, also when copying the record changed the
                // validity of none of its elements (an empty attribute list).
                present->check_valid(0);
            }
            break;
        }
        case kind::record_list:
        case kind::record_list16: {
            const unsigned char* array = read_field<const unsigned char*>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            auto* list = static_cast<kelm_asn_composite*>(element);
            for (unsigned int k = 0; k < count && status == KELM_ASN_OK; ++k) {
                kelm_asn_record* entry = f.type->ops->add_to_list(*list);
                if (entry == nullptr)
                    throw_memory_error("ASN: Memory error", entry_line);
                status = entry->set_record(array + static_cast<size_t>(k) * f.type->record_size);
            }
            break;
        }
        case kind::record_pointer_list: {
            void* const* array = read_field<void* const*>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            auto* list = static_cast<kelm_asn_composite*>(element);
            for (unsigned int k = 0; k < count && status == KELM_ASN_OK; ++k) {
                kelm_asn_record* entry = f.type->ops->add_to_list(*list);
                if (entry == nullptr)
                    throw_memory_error("ASN: Memory error", entry_line);
                // A null entry is written as a record of zeros.
                if (array[k] != nullptr) {
                    status = entry->set_record(array[k]);
                } else {
                    void* zeros = std::calloc(1, f.type->record_size);
                    if (zeros == nullptr)
                        throw_memory_error("ASN: Memory error", entry_line);
                    try {
                        status = entry->set_record(zeros);
                    } catch (...) {
                        std::free(zeros);
                        throw;
                    }
                    std::free(zeros);
                }
            }
            break;
        }
        case kind::text_list: {
            char* const* array = read_field<char* const*>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            auto* list = static_cast<text_list_t*>(element);
            for (unsigned int k = 0; k < count; ++k) {
                kelmasnUTF8String* entry = list->add_child();
                if (entry == nullptr)
                    throw_memory_error("ASN: Memory error", entry_line);
                entry->set_value(array[k]);
            }
            break;
        }
        case kind::integer_list: {
            const uint32_t* array = read_field<const uint32_t*>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            auto* list = static_cast<integer_list_t*>(element);
            for (unsigned int k = 0; k < count; ++k) {
                kelmasn_integer* entry = list->add_child();
                if (entry == nullptr)
                    throw_memory_error("ASN: Memory error", entry_line);
                entry->set_value(static_cast<int>(array[k]));
            }
            break;
        }
        case kind::slots: {
            void* const* slots = reinterpret_cast<void* const*>(field_address(record, f.offset));
            auto* array = static_cast<kelm_asn_composite*>(element);
            for (unsigned int k = 0; k < f.size && status == KELM_ASN_OK; ++k) {
                const void* slot = read_field<const void*>(slots, k * sizeof(void*));
                if (slot == nullptr)
                    continue;
                kelm_asn_record* entry = f.type->ops->fill_slot(*array, k);
                if (entry == nullptr)
                    throw_memory_error("ASN: Memory error", entry_line);
                status = entry->set_record(slot);
            }
            break;
        }
        }
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

unsigned int kelm_asn_record::get_record(void* record) const {
    if (type_.clear != nullptr)
        type_.clear(record);
    else if (!(type_.flags & KELM_RECORD_KEEPS_RECORD))
        std::memset(record, 0, type_.record_size);
    // A type that ignores its elements' statuses goes on past a text that cannot be copied
    // (leaving it null) and returns 0; thrown failures stop it all the same.
    const bool stops_at_failure = !(type_.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS);
    const int array_line = type_.list_failure_lines.array;
    const int child_line = type_.list_failure_lines.child;
    for (unsigned int i = 0; i < type_.field_count; ++i) {
        const kelm_record_field& f = type_.fields[i];
        const kelm_asn_object* element = get_child(i);
        switch (f.kind) {
        case kind::integer: {
            int value = 0;
            static_cast<const kelmasn_integer*>(element)->get_value(value);
            write_field<int32_t>(record, f.offset, value);
            break;
        }
        case kind::unsigned_integer: {
            unsigned int value = 0;
            static_cast<const kelmasn_integer*>(element)->get_value(value);
            write_field<uint32_t>(record, f.offset, value);
            break;
        }
        case kind::unsigned16: {
            unsigned short value = 0;
            static_cast<const kelmasn_integer*>(element)->get_value(value);
            write_field<uint16_t>(record, f.offset, value);
            break;
        }
        case kind::unsigned8: {
            unsigned char value = 0;
            static_cast<const kelmasn_integer*>(element)->get_value(value);
            write_field<uint8_t>(record, f.offset, value);
            break;
        }
        case kind::text: {
            char* text = nullptr;
            const unsigned int status =
                static_cast<const kelmasnUTF8String*>(element)->get_value(text);
            write_field<char*>(record, f.offset, text);
            if (status != KELM_ASN_OK && stops_at_failure)
                return status;
            break;
        }
        case kind::octet_text: {
            char* text = nullptr;
            kelm_get_strvalue(*static_cast<const kelmasn_octetstring*>(element), text);
            write_field<char*>(record, f.offset, text);
            break;
        }
        case kind::bytes: {
            unsigned char* data = nullptr;
            unsigned int length = 0;
            static_cast<const kelmasn_octetstring*>(element)->get_value(data, length);
            write_field<unsigned char*>(record, f.offset, data);
            write_field<uint32_t>(record, f.aux, length);
            break;
        }
        case kind::fixed_bytes:
            static_cast<const kelmasn_octetstring*>(element)->get_value(
                f.size, field_address(record, f.offset));
            break;
        case kind::record: {
            const unsigned int status = static_cast<const kelm_asn_record*>(element)->get_record(
                field_address(record, f.offset));
            if (status != KELM_ASN_OK && stops_at_failure)
                return status;
            break;
        }
        case kind::optional_record: {
            if (!element->is_present())
                break;
            void* nested = std::malloc(f.type->record_size);
            if (nested == nullptr)
                throw_memory_error("ASN: Out of memory");
            write_field<void*>(record, f.offset, nested);
            const unsigned int status =
                static_cast<const kelm_asn_record*>(element)->get_record(nested);
            if (status != KELM_ASN_OK && stops_at_failure)
                return status;
            break;
        }
        case kind::record_list:
        case kind::record_list16:
        case kind::record_pointer_list:
        case kind::text_list:
        case kind::integer_list: {
            const auto* list = static_cast<const kelm_asn_composite*>(element);
            const unsigned int children = list->get_child_count();
            if (children == 0)
                break;
            const bool records = f.kind == kind::record_list || f.kind == kind::record_list16;
            const size_t entry_size = records                        ? f.type->record_size
                                      : f.kind == kind::integer_list ? sizeof(uint32_t)
                                                                     : sizeof(void*);
            unsigned char* array = static_cast<unsigned char*>(std::calloc(children, entry_size));
            if (array == nullptr)
                throw_memory_error("ASN: Memory error", array_line);
            write_field<unsigned char*>(record, f.offset, array);
            for (unsigned int k = 0; k < children; ++k) {
                const kelm_asn_object* child = list->get_child(k);
                if (child == nullptr)
                    throw_memory_error("ASN: Memory error", child_line);
                unsigned char* entry = array + k * entry_size;
                // Counted before it is filled: a failure part way through an entry leaves it
                // counted, so that freeing the record releases what it holds.
                write_count(f, record, k + 1);
                unsigned int status = KELM_ASN_OK;
                if (records) {
                    status = static_cast<const kelm_asn_record*>(child)->get_record(entry);
                } else if (f.kind == kind::record_pointer_list) {
                    void* nested = std::calloc(1, f.type->record_size);
                    if (nested == nullptr)
                        throw_memory_error("ASN: Memory error", array_line);
                    write_field<void*>(entry, 0, nested);
                    status = static_cast<const kelm_asn_record*>(child)->get_record(nested);
                } else if (f.kind == kind::text_list) {
                    char* text = nullptr;
                    status = static_cast<const kelmasnUTF8String*>(child)->get_value(text);
                    write_field<char*>(entry, 0, text);
                } else {
                    unsigned int value = 0;
                    static_cast<const kelmasn_integer*>(child)->get_value(value);
                    write_field<uint32_t>(entry, 0, value);
                }
                if (status != KELM_ASN_OK && stops_at_failure)
                    return status;
            }
            break;
        }
        case kind::slots: {
            const auto* array = static_cast<const kelm_asn_composite*>(element);
            unsigned char* slots = field_address(record, f.offset);
            for (unsigned int k = 0; k < f.size; ++k) {
                kelm_asn_record* entry = f.type->ops->slot_value(*array, k);
                if (entry == nullptr)
                    continue;
                void* nested = std::calloc(1, f.type->record_size);
                if (nested == nullptr)
                    throw_memory_error("ASN: Memory error", array_line);
                write_field<void*>(slots, k * sizeof(void*), nested);
                const unsigned int status = entry->get_record(nested);
                if (status != KELM_ASN_OK && stops_at_failure)
                    return status;
            }
            break;
        }
        }
    }
    return KELM_ASN_OK;
}

void kelm_asn_record::free_record(const kelm_record_type& type, void* record) {
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        switch (f.kind) {
        case kind::integer:
        case kind::unsigned_integer:
        case kind::unsigned16:
        case kind::unsigned8:
        case kind::fixed_bytes:
            break;
        case kind::text:
        case kind::octet_text:
        case kind::bytes:
            std::free(read_field<void*>(record, f.offset));
            break;
        case kind::record:
            free_record(*f.type, field_address(record, f.offset));
            break;
        case kind::optional_record: {
            void* nested = read_field<void*>(record, f.offset);
            if (nested != nullptr) {
                free_record(*f.type, nested);
                std::free(nested);
            }
            break;
        }
        case kind::record_list:
        case kind::record_list16: {
            unsigned char* array = read_field<unsigned char*>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            for (unsigned int k = 0; k < count; ++k)
                free_record(*f.type, array + static_cast<size_t>(k) * f.type->record_size);
            std::free(array);
            break;
        }
        case kind::record_pointer_list: {
            void** array = read_field<void**>(record, f.offset);
            const unsigned int count = array != nullptr ? read_count(f, record) : 0;
            for (unsigned int k = 0; k < count; ++k) {
                if (array[k] != nullptr) {
                    free_record(*f.type, array[k]);
                    std::free(array[k]);
                }
            }
            std::free(array);
            break;
        }
        case kind::text_list: {
            char** array = read_field<char**>(record, f.offset);
            if (array != nullptr)
                kelm_free_strings(static_cast<int>(read_count(f, record)), array);
            break;
        }
        case kind::integer_list:
            std::free(read_field<void*>(record, f.offset));
            break;
        case kind::slots: {
            unsigned char* slots = field_address(record, f.offset);
            for (unsigned int k = 0; k < f.size; ++k) {
                void* nested = read_field<void*>(slots, k * sizeof(void*));
                if (nested != nullptr) {
                    free_record(*f.type, nested);
                    std::free(nested);
                }
            }
            break;
        }
        }
    }
}

unsigned int kelm_asn_record::encode_record(const void* record, kelm_asn_buffer_t& out,
                                            int version) {
    try {
        const unsigned int status = set_record(record);
        if (status != KELM_ASN_OK)
            return status;
        return saveEncoding(*this, version, out);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}

unsigned int kelm_asn_record::decode_record(void* record, const kelm_asn_buffer_t& in,
                                            int version) {
    try {
        const unsigned int status = loadObject(*this, version, in);
        if (status != KELM_ASN_OK)
            return status;
        return get_record(record);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}

unsigned int kelm_asn_record::encode(const kelm_record_type& type, const void* record,
                                     kelm_asn_buffer_t& out, int version, security_t mode) {
    try {
        kelm_asn_record message(type, mode);
        return message.encode_record(record, out, version);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}

unsigned int kelm_asn_record::decode(const kelm_record_type& type, void* record,
                                     const kelm_asn_buffer_t& in, int version, security_t mode) {
    try {
        kelm_asn_record message(type, mode);
        return message.decode_record(record, in, version);
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        return e.status;
    }
}
