// The one mechanism behind every message class: elements built from a record type's table,
// records copied into them and out of them, and records freed.
#include "asn_record.h"

#include "asn_record_kinds.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

using namespace kelm_record_kinds;

constexpr size_t kAlign = alignof(std::max_align_t);

size_t aligned(size_t n) {
    return (n + kAlign - 1) & ~(kAlign - 1);
}

size_t element_size(const kelm_record_field& f) {
    return visit_field_kind(f.kind, [&](auto kind) { return decltype(kind)::element_size(f); });
}

// Builds the element object of a field in place, with plain security: the record's own mode
// reaches it through registration.
kelm_asn_object* create_element(const kelm_record_field& f, void* where) {
    return visit_field_kind(f.kind, [&](auto kind) { return decltype(kind)::create(f, where); });
}

// Whether a class name starts with "asn_", which the stored type name leaves out. The same answer
// as strncmp(name, "asn_", 4) == 0, without the call: the first differing character (a
// terminating zero included) ends the test.
bool has_message_class_prefix(const char* name) {
    return name[0] == 'a' && name[1] == 's' && name[2] == 'n' && name[3] == '_';
}

} // namespace

kelm_asn_record::kelm_asn_record(const kelm_record_type& type, security_t sec)
    : kelm_asnbase(sec), type_(type), arena_(nullptr), constructed_(0) {
    const char* name = type.class_name;
    set_type_name(has_message_class_prefix(name) ? name + 4 : name);
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
    const copy_context context{type_, true};
    for (unsigned int i = 0; i < type_.field_count; ++i) {
        const kelm_record_field& f = type_.fields[i];
        kelm_asn_object* element = get_child(i);
        const unsigned int status = visit_field_kind(f.kind, [&](auto kind) -> unsigned int {
            using Kind = decltype(kind);
            // A list or slot array is one more constructed level, also when it is empty.
            if constexpr (Kind::is_list) {
                kelm_asn_nesting_guard list_level;
                if (!list_level.admitted())
                    return KELM_ASN_BAD_ENCODING;
                return Kind::to_element(f, record, element, context);
            } else {
                return Kind::to_element(f, record, element, context);
            }
        });
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
    const copy_context context{type_, !(type_.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS)};
    for (unsigned int i = 0; i < type_.field_count; ++i) {
        const kelm_record_field& f = type_.fields[i];
        const kelm_asn_object* element = get_child(i);
        const unsigned int status = visit_field_kind(f.kind, [&](auto kind) -> unsigned int {
            return decltype(kind)::from_element(f, element, record, context);
        });
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

void kelm_asn_record::free_record(const kelm_record_type& type, void* record) {
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        visit_field_kind(f.kind, [&](auto kind) { decltype(kind)::release(f, record); });
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
