// What each kind of record field does, in one place per kind.
//
// A kind is a struct of static operations:
//   element_size, create       the element object that carries the field in a message object
//   to_element, from_element   the copies between the record and that element (set_record and
//                              get_record of kelm_asn_record), exactly as the message classes
//                              define them
//   release                    what free_record releases
//   write(out, ...)            the field's value handed to a writer (the tool's JSON, the tests'
//                              comparisons), in terms of a few value shapes
//   read(in, ...)              the field filled from a reader (the tool's JSON, the tests' random
//                              records), allocating with malloc as get_record does
//   direct_size(encoder, ...)  the direct codec's first pass: the full size of the field's
//                              element added to a total; false when the call is left to the
//                              object path
//   direct_write(encoder, ...) its second pass: the field's element written back to front
//   direct_read(decoder, ...)  the field read straight from its DER element, as from_element
//                              fills it from the element object: the same allocations in the
//                              same order, the same failures and statuses, or decoder.give_up
// kelm_visit_field_kind is the one place that turns a kelm_field_kind into its struct.
//
// A writer offers: integer(int64_t), text(const char*), octet_text(const char*),
// bytes(const unsigned char*, size_t), absent(), begin_record(type) / end_record(),
// field(name), begin_list(n) / end_list().
// A reader offers: begin_record(type) / end_record(), enter_field(name) (false when the field is
// not given; leave() follows a true), integer(min, max), text() (malloc'ed or null),
// bytes() (std::string), fixed_bytes(size) (std::string of exactly `size` bytes), present(),
// begin_list(max, what) (the entries of a list, at most `max`) or begin_slots(size) (the slots
// given, at most `size`) / end_list(), enter_entry(k) / leave(), and out_of_memory(), which does
// not return.
// A direct encoder offers, for its first pass, size_integer(int, total), size_text(text, total),
// size_octets(n, total), size_record(type, record, total), size_null(total) and
// size_list(total, fn) (fn(contents) adds the entries' sizes to `contents`), each false when the
// call is left to the object path; for its second pass the mirror images write_integer(int),
// write_text(text), write_octets(octets, n), write_record(type, record), write_null() and
// write_list(fn) (fn() writes the entries, the last first).
// A direct decoder offers copy_text(contents, text) (kelmasnUTF8String::get_value's status),
// nested_record(type, contents, record) and read_list(in, fn) (fn(contents) fills the entries of
// a SEQUENCE OF), the last two one level deeper, and give_up, its result for a call left to the
// object path; the elements themselves are read with kelm_direct_der's read_element.
//
// Ownership: read and direct_read allocate with malloc/calloc, so that free_record releases what
// they filled.
#ifndef KELM_ASN_RECORD_KINDS_H
#define KELM_ASN_RECORD_KINDS_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>

#include "asn_copies_internal.h"
#include "asn_direct_der.h"
#include "asn_record.h"

namespace kelm_record_kinds {

namespace der = kelm_direct_der;

using text_list_t = kelm_asn_sequenceof<kelmasnUTF8String>;
using integer_list_t = kelm_asn_sequenceof<kelmasn_integer>;

// --- access to the bytes of a record -----------------------------------------------------------

template <class T> T load(const void* record, size_t offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

template <class T> void store(void* record, size_t offset, T value) {
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof value);
}

inline unsigned char* at(void* record, size_t offset) {
    return static_cast<unsigned char*>(record) + offset;
}

inline const unsigned char* at(const void* record, size_t offset) {
    return static_cast<const unsigned char*>(record) + offset;
}

// What a copy between a record and its elements (or, for the direct codec, its DER) needs to know
// of the record type it serves.
struct copy_context {
    const kelm_record_type& type;
    bool stops_at_failure; // false for a type that ignores its elements' statuses

    // A memory exception at `line` of the type's source (its own line when 0).
    [[noreturn]] void memory_error(const char* message, int line = 0) const {
        throw kelm_asn_memexception(type.source, line != 0 ? line : type.source_line, message);
    }
};

// --- the record walks of writers and readers ---------------------------------------------------

template <class Out> void write_record(Out& out, const kelm_record_type& type, const void* record);
template <class In> void read_record(In& in, const kelm_record_type& type, void* record);

// --- scalar kinds ------------------------------------------------------------------------------

struct scalar_kind {
    static constexpr bool is_list = false;
    static void release(const kelm_record_field&, void*) {}
};

// An integer member of type Member: INTEGER on the wire, written from its value read as Written
// and read back through the element's get_value into a Read.
//   int32_t   written and read as int: INTEGER
//   uint32_t  written through its signed view (int32_t), read back with its bits unchanged
//   uint16_t  written as is, read back cut to 16 bits
//   uint8_t   written as is, read back cut to 8 bits
template <class Member, class Written, class Read> struct integer_kind_of : scalar_kind {
    static size_t element_size(const kelm_record_field&) { return sizeof(kelmasn_integer); }
    static kelm_asn_object* create(const kelm_record_field&, void* where) {
        return new (where) kelmasn_integer(KELM_SECURITY_PLAIN);
    }
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        static_cast<kelmasn_integer*>(element)->set_value(load<Written>(record, f.offset));
        return KELM_ASN_OK;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context&) {
        Read value = 0;
        static_cast<const kelmasn_integer*>(element)->get_value(value);
        store<Member>(record, f.offset, static_cast<Member>(value));
        return KELM_ASN_OK;
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        out.integer(load<Member>(r, f.offset));
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        store<Member>(r, f.offset,
                      static_cast<Member>(in.integer(std::numeric_limits<Member>::min(),
                                                     std::numeric_limits<Member>::max())));
    }
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        return encoder.size_integer(load<Written>(r, f.offset), total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_integer(load<Written>(r, f.offset));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder&, der::Span& in, const kelm_record_field& f, void* r,
                                    const copy_context&) {
        der::Span c{};
        if (!der::read_element(in, der::kInteger, c))
            return Decoder::give_up;
        store<Member>(
            r, f.offset,
            static_cast<Member>(der::integer_value(c.p, static_cast<unsigned int>(c.size()))));
        return KELM_ASN_OK;
    }
};

using integer_kind = integer_kind_of<int32_t, int32_t, int>;
using unsigned_integer_kind = integer_kind_of<uint32_t, int32_t, unsigned int>;
using unsigned16_kind = integer_kind_of<uint16_t, uint16_t, unsigned short>;
using unsigned8_kind = integer_kind_of<uint8_t, uint8_t, unsigned char>;

// --- texts and bytes ---------------------------------------------------------------------------

struct owned_pointer_kind {
    static constexpr bool is_list = false;
    static void release(const kelm_record_field& f, void* record) {
        std::free(load<void*>(record, f.offset));
    }
};

// char*: UTF8String, converted in the local-code-set mode.
struct text_kind : owned_pointer_kind {
    static size_t element_size(const kelm_record_field&) { return sizeof(kelmasnUTF8String); }
    static kelm_asn_object* create(const kelm_record_field&, void* where) {
        return new (where) kelmasnUTF8String(KELM_SECURITY_PLAIN);
    }
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        static_cast<kelmasnUTF8String*>(element)->set_value(load<char*>(record, f.offset));
        return KELM_ASN_OK;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context& context) {
        char* text = nullptr;
        const unsigned int status = static_cast<const kelmasnUTF8String*>(element)->get_value(text);
        store<char*>(record, f.offset, text);
        return context.stops_at_failure ? status : KELM_ASN_OK;
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        out.text(load<const char*>(r, f.offset));
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        store<char*>(r, f.offset, in.text());
    }
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        return encoder.size_text(load<const char*>(r, f.offset), total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_text(load<const char*>(r, f.offset));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span& in, const kelm_record_field& f,
                                    void* r, const copy_context& context) {
        der::Span c{};
        if (!der::read_element(in, der::kUtf8String, c))
            return Decoder::give_up;
        char* text = nullptr;
        const unsigned int status = decoder.copy_text(c, text);
        store<char*>(r, f.offset, text);
        return context.stops_at_failure ? status : KELM_ASN_OK;
    }
};

struct octet_string_element {
    static size_t element_size(const kelm_record_field&) { return sizeof(kelmasn_octetstring); }
    static kelm_asn_object* create(const kelm_record_field&, void* where) {
        return new (where) kelmasn_octetstring(KELM_SECURITY_PLAIN);
    }
};

// char*: an OCTET STRING holding the text and its NUL.
struct octet_text_kind : owned_pointer_kind, octet_string_element {
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        kelm_set_strvalue(*static_cast<kelmasn_octetstring*>(element),
                          load<const char*>(record, f.offset));
        return KELM_ASN_OK;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context&) {
        char* text = nullptr;
        kelm_get_strvalue(*static_cast<const kelmasn_octetstring*>(element), text);
        store<char*>(record, f.offset, text);
        return KELM_ASN_OK;
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        out.octet_text(load<const char*>(r, f.offset));
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        store<char*>(r, f.offset, in.text());
    }
    // The text with its NUL; a null pointer as the single octet 00.
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        const char* text = load<const char*>(r, f.offset);
        return encoder.size_octets(text != nullptr ? std::strlen(text) + 1 : 1, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        const char* text = load<const char*>(r, f.offset);
        encoder.write_octets(text != nullptr ? text : "",
                             text != nullptr ? std::strlen(text) + 1 : 1);
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder&, der::Span& in, const kelm_record_field& f, void* r,
                                    const copy_context&) {
        der::Span c{};
        if (!der::read_element(in, der::kOctetString, c))
            return Decoder::give_up;
        store<unsigned char*>(r, f.offset,
                              kelm_copy_stored_string(c.p, static_cast<unsigned int>(c.size())));
        return KELM_ASN_OK;
    }
};

// unsigned char* with a uint32_t length at `aux`: OCTET STRING.
struct bytes_kind : owned_pointer_kind, octet_string_element {
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        const unsigned char* data = load<const unsigned char*>(record, f.offset);
        const uint32_t length = data != nullptr ? load<uint32_t>(record, f.aux) : 0;
        static_cast<kelmasn_octetstring*>(element)->kelm_asn_octetstring::set_value(data, length);
        return KELM_ASN_OK;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context&) {
        unsigned char* data = nullptr;
        unsigned int length = 0;
        static_cast<const kelmasn_octetstring*>(element)->get_value(data, length);
        store<unsigned char*>(record, f.offset, data);
        store<uint32_t>(record, f.aux, length);
        return KELM_ASN_OK;
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        const unsigned char* data = load<const unsigned char*>(r, f.offset);
        out.bytes(data, data != nullptr ? load<uint32_t>(r, f.aux) : 0);
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        const std::string value = in.bytes();
        unsigned char* data = nullptr;
        if (!value.empty()) {
            data = static_cast<unsigned char*>(std::malloc(value.size()));
            if (data == nullptr)
                in.out_of_memory();
            std::memcpy(data, value.data(), value.size());
        }
        store<unsigned char*>(r, f.offset, data);
        store<uint32_t>(r, f.aux, static_cast<uint32_t>(value.size()));
    }
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        const void* data = load<const void*>(r, f.offset);
        return encoder.size_octets(data != nullptr ? load<uint32_t>(r, f.aux) : 0, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        const void* data = load<const void*>(r, f.offset);
        encoder.write_octets(data, data != nullptr ? load<uint32_t>(r, f.aux) : 0);
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder&, der::Span& in, const kelm_record_field& f, void* r,
                                    const copy_context&) {
        der::Span c{};
        if (!der::read_element(in, der::kOctetString, c))
            return Decoder::give_up;
        store<unsigned char*>(r, f.offset,
                              kelm_copy_stored_octets(c.p, static_cast<unsigned int>(c.size())));
        store<uint32_t>(r, f.aux, static_cast<uint32_t>(c.size()));
        return KELM_ASN_OK;
    }
};

// `size` bytes inline: written in full, read back as exactly `size` bytes.
struct fixed_bytes_kind : scalar_kind, octet_string_element {
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        static_cast<kelmasn_octetstring*>(element)->kelm_asn_octetstring::set_value(
            at(record, f.offset), f.size);
        return KELM_ASN_OK;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context&) {
        static_cast<const kelmasn_octetstring*>(element)->get_value(f.size, at(record, f.offset));
        return KELM_ASN_OK;
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        out.bytes(at(r, f.offset), f.size);
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        const std::string value = in.fixed_bytes(f.size);
        std::memcpy(at(r, f.offset), value.data(), f.size);
    }
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void*,
                            size_t& total) {
        return encoder.size_octets(f.size, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_octets(at(r, f.offset), f.size);
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder&, der::Span& in, const kelm_record_field& f, void* r,
                                    const copy_context&) {
        der::Span c{};
        if (!der::read_element(in, der::kOctetString, c))
            return Decoder::give_up;
        // The stored length is not checked against the array's: missing bytes read as zeros.
        const size_t copied = c.size() < f.size ? c.size() : f.size;
        if (copied != 0)
            std::memcpy(at(r, f.offset), c.p, copied);
        if (copied < f.size)
            std::memset(at(r, f.offset) + copied, 0, f.size - copied);
        return KELM_ASN_OK;
    }
};

// --- nested records ----------------------------------------------------------------------------

// A record of `type` in a block of its own, zeroed, for a reader; the caller frees it with
// free_record and free.
template <class In> void* new_record(In& in, const kelm_record_type& type) {
    void* record = std::calloc(1, type.record_size);
    if (record == nullptr)
        in.out_of_memory();
    return record;
}

// Releases a record in a block of its own, when there is one.
inline void release_owned_record(const kelm_record_type& type, void* record) {
    if (record != nullptr) {
        kelm_asn_record::free_record(type, record);
        std::free(record);
    }
}

// The record reached through the pointer at `slot`, for a writer: absent when null.
template <class Out>
void write_pointed_record(Out& out, const kelm_record_type& type, const void* slot) {
    const void* nested = load<const void*>(slot, 0);
    if (nested != nullptr)
        write_record(out, type, nested);
    else
        out.absent();
}

// A record in a block of its own stored at `slot`, when the reader has one there.
template <class In> void read_pointed_record(In& in, const kelm_record_type& type, void* slot) {
    if (!in.present())
        return;
    void* nested = new_record(in, type);
    store<void*>(slot, 0, nested);
    read_record(in, type, nested);
}

// The nested record of `type`, inline.
struct record_kind {
    static constexpr bool is_list = false;
    static size_t element_size(const kelm_record_field& f) { return f.type->ops->object_size; }
    static kelm_asn_object* create(const kelm_record_field& f, void* where) {
        return f.type->ops->create(where, KELM_SECURITY_PLAIN);
    }
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        return static_cast<kelm_asn_record*>(element)->set_record(at(record, f.offset));
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context& context) {
        const unsigned int status =
            static_cast<const kelm_asn_record*>(element)->get_record(at(record, f.offset));
        return context.stops_at_failure ? status : KELM_ASN_OK;
    }
    static void release(const kelm_record_field& f, void* record) {
        kelm_asn_record::free_record(*f.type, at(record, f.offset));
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        write_record(out, *f.type, at(r, f.offset));
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        read_record(in, *f.type, at(r, f.offset));
    }
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        return encoder.size_record(*f.type, at(r, f.offset), total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_record(*f.type, at(r, f.offset));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span& in, const kelm_record_field& f,
                                    void* r, const copy_context& context) {
        der::Span c{};
        if (!der::read_element(in, der::kSequence, c))
            return Decoder::give_up;
        const unsigned int status = decoder.nested_record(*f.type, c, at(r, f.offset));
        return status == Decoder::give_up || context.stops_at_failure ? status : KELM_ASN_OK;
    }
};

// A pointer to a record of `type`, NULL when absent: an OPTIONAL element.
struct optional_record_kind {
    static constexpr bool is_list = false;
    static size_t element_size(const kelm_record_field& f) { return f.type->ops->object_size; }
    static kelm_asn_object* create(const kelm_record_field& f, void* where) {
        kelm_asn_object* nested = f.type->ops->create(where, KELM_SECURITY_PLAIN);
        nested->set_optional(1);
        // Absent until a record is copied in: a nested record whose elements are all valid from
        // the start (an attribute list is one list, present and empty when built) would
        // otherwise count as present and be written for a NULL pointer.
        nested->invalidate_value(KELM_INVALIDATE_CONTAINER);
        return nested;
    }
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context&) {
        const void* nested = load<const void*>(record, f.offset);
        if (nested == nullptr)
            return KELM_ASN_OK;
        auto* present = static_cast<kelm_asn_record*>(element);
        const unsigned int status = present->set_record(nested);
        // Present whenever the pointer is set, also when copying the record changed the validity
        // of none of its elements (an empty attribute list).
        present->check_valid(0);
        return status;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context& context) {
        if (!element->is_present())
            return KELM_ASN_OK;
        void* nested = std::malloc(f.type->record_size);
        if (nested == nullptr)
            context.memory_error("ASN: Out of memory");
        store<void*>(record, f.offset, nested);
        const unsigned int status =
            static_cast<const kelm_asn_record*>(element)->get_record(nested);
        return context.stops_at_failure ? status : KELM_ASN_OK;
    }
    static void release(const kelm_record_field& f, void* record) {
        release_owned_record(*f.type, load<void*>(record, f.offset));
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        write_pointed_record(out, *f.type, at(r, f.offset));
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        read_pointed_record(in, *f.type, at(r, f.offset));
    }
    // Absent: nothing written.
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        const void* nested = load<const void*>(r, f.offset);
        return nested == nullptr || encoder.size_record(*f.type, nested, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        const void* nested = load<const void*>(r, f.offset);
        if (nested != nullptr)
            encoder.write_record(*f.type, nested);
    }
    // Absent when the next element is not a SEQUENCE (or there is none), the next field then
    // read from the same octets.
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span& in, const kelm_record_field& f,
                                    void* r, const copy_context& context) {
        if (in.empty())
            return KELM_ASN_OK;
        const unsigned char identifier = der::next_identifier(in);
        if (identifier != der::kSequence) {
            // Another tag number or class: absent. A primitive SEQUENCE, or a tag number in the
            // high-tag form, is left to the object path.
            const bool same_class = (identifier & 0xC0) == 0;
            const unsigned char number = identifier & 0x1F;
            if (same_class && (number == 0x10 || number == 0x1F))
                return Decoder::give_up;
            return KELM_ASN_OK;
        }
        der::Span c{};
        if (!der::read_element(in, der::kSequence, c))
            return Decoder::give_up;
        void* nested = std::malloc(f.type->record_size);
        if (nested == nullptr)
            context.memory_error("ASN: Out of memory");
        store<void*>(r, f.offset, nested);
        const unsigned int status = decoder.nested_record(*f.type, c, nested);
        return status == Decoder::give_up || context.stops_at_failure ? status : KELM_ASN_OK;
    }
};

// --- lists -------------------------------------------------------------------------------------

// What every list kind shares: a count at `aux` (32 bits unless Count says otherwise) and a
// pointer to an array of entries at `offset`. Entry describes one entry: its size in the array,
// the element it is written with, how it is read back, released, written and read; for the direct
// codec, the identifier of its DER element (direct_identifier), its size and writing, and its
// filling from that element's contents once the list has read the element (direct_read).
template <class Entry, class Count = uint32_t> struct list_kind {
    static constexpr bool is_list = true;

    static unsigned int count(const kelm_record_field& f, const void* record) {
        return load<Count>(record, f.aux);
    }
    static void set_count(const kelm_record_field& f, void* record, unsigned int n) {
        store<Count>(record, f.aux, static_cast<Count>(n));
    }

    static size_t element_size(const kelm_record_field& f) { return Entry::list_size(f); }
    static kelm_asn_object* create(const kelm_record_field& f, void* where) {
        return Entry::create_list(f, where);
    }

    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context& context) {
        const unsigned char* array = load<const unsigned char*>(record, f.offset);
        const unsigned int n = array != nullptr ? count(f, record) : 0;
        auto* list = static_cast<kelm_asn_composite*>(element);
        unsigned int status = KELM_ASN_OK;
        for (unsigned int k = 0; k < n && status == KELM_ASN_OK; ++k)
            status = Entry::add(f, *list, array + static_cast<size_t>(k) * Entry::size(f), context);
        return status;
    }

    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context& context) {
        const auto* list = static_cast<const kelm_asn_composite*>(element);
        const unsigned int children = list->get_child_count();
        if (children == 0)
            return KELM_ASN_OK;
        const size_t entry_size = Entry::size(f);
        auto* array = static_cast<unsigned char*>(std::calloc(children, entry_size));
        if (array == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.array);
        store<unsigned char*>(record, f.offset, array);
        for (unsigned int k = 0; k < children; ++k) {
            const kelm_asn_object* child = list->get_child(k);
            if (child == nullptr)
                context.memory_error("ASN: Memory error", context.type.list_failure_lines.child);
            // Counted before it is filled: a failure part way through an entry leaves it
            // counted, so that freeing the record releases what it holds.
            set_count(f, record, k + 1);
            const unsigned int status = Entry::get(f, child, array + k * entry_size, context);
            if (status != KELM_ASN_OK && context.stops_at_failure)
                return status;
        }
        return KELM_ASN_OK;
    }

    static void release(const kelm_record_field& f, void* record) {
        unsigned char* array = load<unsigned char*>(record, f.offset);
        Entry::release_array(f, array, array != nullptr ? count(f, record) : 0);
    }

    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        const unsigned char* array = load<const unsigned char*>(r, f.offset);
        const unsigned int n = array != nullptr ? count(f, r) : 0;
        out.begin_list(n);
        for (unsigned int k = 0; k < n; ++k)
            Entry::write(out, f, array + static_cast<size_t>(k) * Entry::size(f));
        out.end_list();
    }

    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        const size_t n =
            in.begin_list(std::numeric_limits<Count>::max(),
                          sizeof(Count) == 2 ? "entries fit the 16-bit count" : "entries");
        if (n > 0) {
            auto* array = static_cast<unsigned char*>(std::calloc(n, Entry::size(f)));
            if (array == nullptr)
                in.out_of_memory();
            store<unsigned char*>(r, f.offset, array);
            for (size_t k = 0; k < n; ++k) {
                // The count covers every entry started, so that freeing releases a partial one.
                set_count(f, r, static_cast<unsigned int>(k + 1));
                in.enter_entry(k);
                Entry::read(in, f, array + k * Entry::size(f));
                in.leave();
            }
        }
        in.end_list();
    }

    // SEQUENCE OF the entries.
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        return encoder.size_list(total, [&](size_t& contents) {
            const unsigned char* array = load<const unsigned char*>(r, f.offset);
            const unsigned int n = array != nullptr ? count(f, r) : 0;
            const size_t entry_size = Entry::size(f);
            for (unsigned int k = 0; k < n; ++k)
                if (!Entry::direct_size(encoder, f, array + static_cast<size_t>(k) * entry_size,
                                        contents))
                    return false;
            return true;
        });
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_list([&] {
            const unsigned char* array = load<const unsigned char*>(r, f.offset);
            const unsigned int n = array != nullptr ? count(f, r) : 0;
            const size_t entry_size = Entry::size(f);
            for (unsigned int k = n; k-- > 0;)
                Entry::direct_write(encoder, f, array + static_cast<size_t>(k) * entry_size);
        });
    }
    // The entries are counted first, then read into an array of that many.
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span& in, const kelm_record_field& f,
                                    void* r, const copy_context& context) {
        return decoder.read_list(in, [&](der::Span contents) -> unsigned int {
            unsigned int n = 0;
            for (der::Span scan = contents, entry{}; !scan.empty(); ++n)
                if (!der::read_element(scan, Entry::direct_identifier, entry))
                    return Decoder::give_up;
            if (n == 0)
                return KELM_ASN_OK;
            const size_t entry_size = Entry::size(f);
            auto* array = static_cast<unsigned char*>(std::calloc(n, entry_size));
            if (array == nullptr)
                context.memory_error("ASN: Memory error", context.type.list_failure_lines.array);
            store<unsigned char*>(r, f.offset, array);
            for (unsigned int k = 0; k < n; ++k) {
                // Counted before it is filled, so that freeing releases a partly filled entry.
                set_count(f, r, k + 1);
                der::Span c{};
                der::read_element(contents, Entry::direct_identifier, c);
                const unsigned int status =
                    Entry::direct_read(decoder, c, f, array + k * entry_size, context);
                if (status == Decoder::give_up ||
                    (status != KELM_ASN_OK && context.stops_at_failure))
                    return status;
            }
            return KELM_ASN_OK;
        });
    }
};

// Entries of a list of records held in the array itself.
struct record_entry {
    static size_t size(const kelm_record_field& f) { return f.type->record_size; }
    static size_t list_size(const kelm_record_field& f) { return f.type->ops->list_size; }
    static kelm_asn_object* create_list(const kelm_record_field& f, void* where) {
        return f.type->ops->create_list(where, KELM_SECURITY_PLAIN);
    }
    static unsigned int add(const kelm_record_field& f, kelm_asn_composite& list,
                            const unsigned char* entry, const copy_context& context) {
        kelm_asn_record* element = f.type->ops->add_to_list(list);
        if (element == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
        return element->set_record(entry);
    }
    static unsigned int get(const kelm_record_field&, const kelm_asn_object* child,
                            unsigned char* entry, const copy_context&) {
        return static_cast<const kelm_asn_record*>(child)->get_record(entry);
    }
    static void release_array(const kelm_record_field& f, unsigned char* array, unsigned int n) {
        for (unsigned int k = 0; k < n; ++k)
            kelm_asn_record::free_record(*f.type, array + static_cast<size_t>(k) * size(f));
        std::free(array);
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* e) {
        write_record(out, *f.type, e);
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* e) {
        read_record(in, *f.type, e);
    }
    static constexpr unsigned char direct_identifier = der::kSequence;
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* e,
                            size_t& total) {
        return encoder.size_record(*f.type, e, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* e) {
        encoder.write_record(*f.type, e);
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span c, const kelm_record_field& f,
                                    void* e, const copy_context&) {
        return decoder.nested_record(*f.type, c, e);
    }
};

// Entries of a list of records each in a block of its own, the array holding their pointers.
struct record_pointer_entry {
    static size_t size(const kelm_record_field&) { return sizeof(void*); }
    static size_t list_size(const kelm_record_field& f) { return f.type->ops->list_size; }
    static kelm_asn_object* create_list(const kelm_record_field& f, void* where) {
        return f.type->ops->create_list(where, KELM_SECURITY_PLAIN);
    }
    static unsigned int add(const kelm_record_field& f, kelm_asn_composite& list,
                            const unsigned char* entry, const copy_context& context) {
        kelm_asn_record* element = f.type->ops->add_to_list(list);
        if (element == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
        const void* nested = load<const void*>(entry, 0);
        if (nested != nullptr)
            return element->set_record(nested);
        // A null entry is written as a record of zeros.
        void* zeros = std::calloc(1, f.type->record_size);
        if (zeros == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
        unsigned int status;
        try {
            status = element->set_record(zeros);
        } catch (...) {
            std::free(zeros);
            throw;
        }
        std::free(zeros);
        return status;
    }
    static unsigned int get(const kelm_record_field& f, const kelm_asn_object* child,
                            unsigned char* entry, const copy_context& context) {
        void* nested = std::calloc(1, f.type->record_size);
        if (nested == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.array);
        store<void*>(entry, 0, nested);
        return static_cast<const kelm_asn_record*>(child)->get_record(nested);
    }
    static void release_array(const kelm_record_field& f, unsigned char* array, unsigned int n) {
        for (unsigned int k = 0; k < n; ++k)
            release_owned_record(*f.type, load<void*>(array, k * sizeof(void*)));
        std::free(array);
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* e) {
        write_pointed_record(out, *f.type, e);
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* e) {
        read_pointed_record(in, *f.type, e);
    }
    static constexpr unsigned char direct_identifier = der::kSequence;
    // A null entry is written by the object path as a record of zeros that it allocates: such a
    // list is left to it.
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* e,
                            size_t& total) {
        const void* nested = load<const void*>(e, 0);
        return nested != nullptr && encoder.size_record(*f.type, nested, total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* e) {
        encoder.write_record(*f.type, load<const void*>(e, 0));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span c, const kelm_record_field& f,
                                    void* e, const copy_context& context) {
        void* nested = std::calloc(1, f.type->record_size);
        if (nested == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.array);
        store<void*>(e, 0, nested);
        return decoder.nested_record(*f.type, c, nested);
    }
};

// Entries of a list of texts: char* each, UTF8String on the wire.
struct text_entry {
    static size_t size(const kelm_record_field&) { return sizeof(char*); }
    static size_t list_size(const kelm_record_field&) { return sizeof(text_list_t); }
    static kelm_asn_object* create_list(const kelm_record_field&, void* where) {
        return new (where) text_list_t(KELM_SECURITY_PLAIN);
    }
    static unsigned int add(const kelm_record_field&, kelm_asn_composite& list,
                            const unsigned char* entry, const copy_context& context) {
        kelmasnUTF8String* element = static_cast<text_list_t&>(list).add_child();
        if (element == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
        element->set_value(load<char*>(entry, 0));
        return KELM_ASN_OK;
    }
    static unsigned int get(const kelm_record_field&, const kelm_asn_object* child,
                            unsigned char* entry, const copy_context&) {
        char* text = nullptr;
        const unsigned int status = static_cast<const kelmasnUTF8String*>(child)->get_value(text);
        store<char*>(entry, 0, text);
        return status;
    }
    static void release_array(const kelm_record_field&, unsigned char* array, unsigned int n) {
        if (array != nullptr)
            kelm_free_strings(static_cast<int>(n), reinterpret_cast<char**>(array));
    }
    template <class Out> static void write(Out& out, const kelm_record_field&, const void* e) {
        out.text(load<const char*>(e, 0));
    }
    template <class In> static void read(In& in, const kelm_record_field&, void* e) {
        store<char*>(e, 0, in.text());
    }
    static constexpr unsigned char direct_identifier = der::kUtf8String;
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field&, const void* e,
                            size_t& total) {
        return encoder.size_text(load<const char*>(e, 0), total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field&, const void* e) {
        encoder.write_text(load<const char*>(e, 0));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span c, const kelm_record_field&,
                                    void* e, const copy_context&) {
        char* text = nullptr;
        const unsigned int status = decoder.copy_text(c, text);
        store<char*>(e, 0, text);
        return status;
    }
};

// Entries of a list of unsigned 32-bit integers, INTEGER on the wire through the signed view.
struct integer_entry {
    static size_t size(const kelm_record_field&) { return sizeof(uint32_t); }
    static size_t list_size(const kelm_record_field&) { return sizeof(integer_list_t); }
    static kelm_asn_object* create_list(const kelm_record_field&, void* where) {
        return new (where) integer_list_t(KELM_SECURITY_PLAIN);
    }
    static unsigned int add(const kelm_record_field&, kelm_asn_composite& list,
                            const unsigned char* entry, const copy_context& context) {
        kelmasn_integer* element = static_cast<integer_list_t&>(list).add_child();
        if (element == nullptr)
            context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
        element->set_value(static_cast<int>(load<uint32_t>(entry, 0)));
        return KELM_ASN_OK;
    }
    static unsigned int get(const kelm_record_field&, const kelm_asn_object* child,
                            unsigned char* entry, const copy_context&) {
        unsigned int value = 0;
        static_cast<const kelmasn_integer*>(child)->get_value(value);
        store<uint32_t>(entry, 0, value);
        return KELM_ASN_OK;
    }
    static void release_array(const kelm_record_field&, unsigned char* array, unsigned int) {
        std::free(array);
    }
    template <class Out> static void write(Out& out, const kelm_record_field&, const void* e) {
        out.integer(load<uint32_t>(e, 0));
    }
    template <class In> static void read(In& in, const kelm_record_field&, void* e) {
        store<uint32_t>(e, 0, static_cast<uint32_t>(in.integer(0, UINT32_MAX)));
    }
    static constexpr unsigned char direct_identifier = der::kInteger;
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field&, const void* e,
                            size_t& total) {
        return encoder.size_integer(static_cast<int>(load<uint32_t>(e, 0)), total);
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field&, const void* e) {
        encoder.write_integer(static_cast<int>(load<uint32_t>(e, 0)));
    }
    template <class Decoder>
    static unsigned int direct_read(Decoder&, der::Span c, const kelm_record_field&, void* e,
                                    const copy_context&) {
        store<uint32_t>(
            e, 0,
            static_cast<uint32_t>(der::integer_value(c.p, static_cast<unsigned int>(c.size()))));
        return KELM_ASN_OK;
    }
};

using record_list_kind = list_kind<record_entry>;
using record_list16_kind = list_kind<record_entry, uint16_t>; // the 16-bit count wraps
using record_pointer_list_kind = list_kind<record_pointer_entry>;
using text_list_kind = list_kind<text_entry>;
using integer_list_kind = list_kind<integer_entry>;

// `size` pointers to records of `type` inline, NULL marking an empty slot: SEQUENCE OF
// CHOICE { NULL, record }, where the empty slots after the last filled one are not written.
struct slots_kind {
    static constexpr bool is_list = true;

    static const void* slot(const kelm_record_field& f, const void* record, unsigned int k) {
        return load<const void*>(at(record, f.offset), k * sizeof(void*));
    }
    // The last filled slot plus one: the slots written, the empty ones after it left out.
    static unsigned int slots_written(const kelm_record_field& f, const void* record) {
        unsigned int used = f.size;
        while (used > 0 && slot(f, record, used - 1) == nullptr)
            --used;
        return used;
    }

    static size_t element_size(const kelm_record_field& f) { return f.type->ops->slots_size; }
    static kelm_asn_object* create(const kelm_record_field& f, void* where) {
        return f.type->ops->create_slots(where, KELM_SECURITY_PLAIN);
    }
    static unsigned int to_element(const kelm_record_field& f, const void* record,
                                   kelm_asn_object* element, const copy_context& context) {
        auto* array = static_cast<kelm_asn_composite*>(element);
        unsigned int status = KELM_ASN_OK;
        for (unsigned int k = 0; k < f.size && status == KELM_ASN_OK; ++k) {
            const void* filled = slot(f, record, k);
            if (filled == nullptr)
                continue;
            kelm_asn_record* entry = f.type->ops->fill_slot(*array, k);
            if (entry == nullptr)
                context.memory_error("ASN: Memory error", context.type.list_failure_lines.entry);
            status = entry->set_record(filled);
        }
        return status;
    }
    static unsigned int from_element(const kelm_record_field& f, const kelm_asn_object* element,
                                     void* record, const copy_context& context) {
        const auto* array = static_cast<const kelm_asn_composite*>(element);
        unsigned char* slots = at(record, f.offset);
        for (unsigned int k = 0; k < f.size; ++k) {
            kelm_asn_record* entry = f.type->ops->slot_value(*array, k);
            if (entry == nullptr)
                continue;
            void* nested = std::calloc(1, f.type->record_size);
            if (nested == nullptr)
                context.memory_error("ASN: Memory error", context.type.list_failure_lines.array);
            store<void*>(slots, k * sizeof(void*), nested);
            const unsigned int status = entry->get_record(nested);
            if (status != KELM_ASN_OK && context.stops_at_failure)
                return status;
        }
        return KELM_ASN_OK;
    }
    static void release(const kelm_record_field& f, void* record) {
        for (unsigned int k = 0; k < f.size; ++k)
            release_owned_record(*f.type, const_cast<void*>(slot(f, record, k)));
    }
    template <class Out> static void write(Out& out, const kelm_record_field& f, const void* r) {
        // As on the wire, the empty slots after the last filled one are left out.
        const unsigned int used = slots_written(f, r);
        out.begin_list(used);
        for (unsigned int k = 0; k < used; ++k)
            write_pointed_record(out, *f.type, at(r, f.offset + k * sizeof(void*)));
        out.end_list();
    }
    template <class In> static void read(In& in, const kelm_record_field& f, void* r) {
        const size_t n = in.begin_slots(f.size);
        for (size_t k = 0; k < n; ++k) {
            in.enter_entry(k);
            read_pointed_record(in, *f.type, at(r, f.offset + k * sizeof(void*)));
            in.leave();
        }
        in.end_list();
    }

    // An empty slot is NULL.
    template <class Encoder>
    static bool direct_size(Encoder& encoder, const kelm_record_field& f, const void* r,
                            size_t& total) {
        return encoder.size_list(total, [&](size_t& contents) {
            const unsigned int used = slots_written(f, r);
            for (unsigned int k = 0; k < used; ++k) {
                const void* filled = slot(f, r, k);
                if (filled != nullptr ? !encoder.size_record(*f.type, filled, contents)
                                      : !encoder.size_null(contents))
                    return false;
            }
            return true;
        });
    }
    template <class Encoder>
    static void direct_write(Encoder& encoder, const kelm_record_field& f, const void* r) {
        encoder.write_list([&] {
            for (unsigned int k = slots_written(f, r); k-- > 0;) {
                const void* filled = slot(f, r, k);
                if (filled != nullptr)
                    encoder.write_record(*f.type, filled);
                else
                    encoder.write_null();
            }
        });
    }
    // An empty slot (NULL) stays null in the record.
    template <class Decoder>
    static unsigned int direct_read(Decoder& decoder, der::Span& in, const kelm_record_field& f,
                                    void* r, const copy_context& context) {
        return decoder.read_list(in, [&](der::Span contents) -> unsigned int {
            unsigned char* slots = at(r, f.offset);
            for (unsigned int k = 0; !contents.empty(); ++k) {
                if (k >= f.size)
                    return Decoder::give_up; // more slots than the record holds
                if (der::read_null(contents))
                    continue;
                der::Span c{};
                if (!der::read_element(contents, der::kSequence, c))
                    return Decoder::give_up;
                void* nested = std::calloc(1, f.type->record_size);
                if (nested == nullptr)
                    context.memory_error("ASN: Memory error",
                                         context.type.list_failure_lines.array);
                store<void*>(slots, k * sizeof(void*), nested);
                const unsigned int status = decoder.nested_record(*f.type, c, nested);
                if (status == Decoder::give_up ||
                    (status != KELM_ASN_OK && context.stops_at_failure))
                    return status;
            }
            return KELM_ASN_OK;
        });
    }
};

// The struct of kind `kind`, handed to `fn` as a value of that type: the one place where a
// field's kind is looked at.
template <class Fn> decltype(auto) visit_field_kind(kelm_field_kind kind, Fn&& fn) {
    switch (kind) {
    case kelm_field_kind::integer:
        return fn(integer_kind{});
    case kelm_field_kind::unsigned_integer:
        return fn(unsigned_integer_kind{});
    case kelm_field_kind::unsigned16:
        return fn(unsigned16_kind{});
    case kelm_field_kind::unsigned8:
        return fn(unsigned8_kind{});
    case kelm_field_kind::text:
        return fn(text_kind{});
    case kelm_field_kind::octet_text:
        return fn(octet_text_kind{});
    case kelm_field_kind::bytes:
        return fn(bytes_kind{});
    case kelm_field_kind::fixed_bytes:
        return fn(fixed_bytes_kind{});
    case kelm_field_kind::record:
        return fn(record_kind{});
    case kelm_field_kind::optional_record:
        return fn(optional_record_kind{});
    case kelm_field_kind::record_list:
        return fn(record_list_kind{});
    case kelm_field_kind::record_list16:
        return fn(record_list16_kind{});
    case kelm_field_kind::record_pointer_list:
        return fn(record_pointer_list_kind{});
    case kelm_field_kind::text_list:
        return fn(text_list_kind{});
    case kelm_field_kind::integer_list:
        return fn(integer_list_kind{});
    case kelm_field_kind::slots:
        break;
    }
    return fn(slots_kind{});
}

template <class Out> void write_record(Out& out, const kelm_record_type& type, const void* record) {
    out.begin_record(type);
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        out.field(f.name);
        visit_field_kind(f.kind, [&](auto kind) { decltype(kind)::write(out, f, record); });
    }
    out.end_record();
}

template <class In> void read_record(In& in, const kelm_record_type& type, void* record) {
    in.begin_record(type);
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        if (!in.enter_field(f.name))
            continue; // a field not given stays zero or null
        visit_field_kind(f.kind, [&](auto kind) { decltype(kind)::read(in, f, record); });
        in.leave();
    }
    in.end_record();
}

} // namespace kelm_record_kinds

#endif
