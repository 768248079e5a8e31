// How a record type is declared: its message class, its C record, where its exceptions say they
// were thrown, its quirks, and each field named once as the member of its record.
//
//     KELM_DEFINE_RECORD_TYPE(kelm_attr_type, asn_attr_t, attr_s_t,
//                             kelm_site("base_idls/attrlist_asn.cpp", 69), kelm_no_quirks,
//                             KELM_FIELD(name),
//                             KELM_LIST(values, value_count));
//
// The field's kind follows from the member's C type wherever only one wire form fits it:
//
//     int32_t                 INTEGER
//     uint16_t, uint8_t       INTEGER, read back cut to 16 or 8 bits
//     char*                   UTF8String (converted in the local-code-set mode)
//     unsigned char[N]        OCTET STRING of exactly N bytes
//     R (a record type)       the nested record, inline
//     R*                      the nested record, OPTIONAL (NULL when absent)
//     R* [N]                  N slots, SEQUENCE OF CHOICE { NULL, R }
//
// Where the wire form is a choice, the declaration names it:
//
//     KELM_SIGNED_VIEW(m)     uint32_t written as a signed INTEGER, read back with its bits
//     unchanged KELM_OCTET_TEXT(m)      char* kept in an OCTET STRING together with its NUL
//     KELM_BYTES(m, length)   unsigned char* with a uint32_t length: OCTET STRING
//     KELM_LIST(m, count)     R* (uint32_t or uint16_t count), R** (separately allocated entries),
//                             char** or uint32_t*: SEQUENCE OF
//
// A member whose type fits none of these, or a count or length of another width, is a compile
// error.
#ifndef KELM_ASN_RECORD_DECLARE_H
#define KELM_ASN_RECORD_DECLARE_H

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "asn_record.h"

// The record type of C record R; specialised for every record by KELM_MESSAGE_CLASS.
template <class R> struct kelm_record_traits {};

// The quirks of a record type, built as kelm_no_quirks.ignores_element_status() and so on.
struct kelm_record_quirks {
    unsigned int flags = 0;
    void (*clear)(void* record) = nullptr;
    kelm_list_failure_lines list_failure_lines = {};

    // get_record does not clear the record before filling it.
    constexpr kelm_record_quirks keeps_record() const {
        kelm_record_quirks q = *this;
        q.flags |= KELM_RECORD_KEEPS_RECORD;
        return q;
    }
    // get_record goes on past an element whose copy fails and returns 0.
    constexpr kelm_record_quirks ignores_element_status() const {
        kelm_record_quirks q = *this;
        q.flags |= KELM_RECORD_IGNORES_ELEMENT_STATUS;
        return q;
    }
    // The SEQUENCE starts with the version element INTEGER 1.
    constexpr kelm_record_quirks version_element() const {
        kelm_record_quirks q = *this;
        q.flags |= KELM_RECORD_VERSION_ELEMENT;
        return q;
    }
    // The one field is the whole encoding.
    constexpr kelm_record_quirks bare_element() const {
        kelm_record_quirks q = *this;
        q.flags |= KELM_RECORD_BARE_ELEMENT;
        return q;
    }
    // get_record clears the record with `hook` instead of clearing all of it.
    constexpr kelm_record_quirks cleared_by(void (*hook)(void*)) const {
        kelm_record_quirks q = *this;
        q.clear = hook;
        return q;
    }
    // The lines that the list failures name, each apart (see kelm_list_failure_lines).
    constexpr kelm_record_quirks list_failures_at(int entry, int array, int child) const {
        kelm_record_quirks q = *this;
        q.list_failure_lines.entry = entry;
        q.list_failure_lines.array = array;
        q.list_failure_lines.child = child;
        return q;
    }
};

inline constexpr kelm_record_quirks kelm_no_quirks{};

// The site that a record type's memory exceptions name, written as a call so that it passes
// through a macro argument whole. Existing callers match these names and lines on stderr, so each
// type declares them as fixed values: moving or reformatting a declaration changes nothing a
// caller sees.
constexpr kelm_source_site kelm_site(const char* file, int line) {
    return {file, line};
}

namespace kelm_record_declare {

template <class> inline constexpr bool always_false = false;

template <class T, class = void> struct is_record : std::false_type {};
template <class T>
struct is_record<T, std::void_t<decltype(kelm_record_traits<T>::type)>> : std::true_type {};

template <class T> inline constexpr bool is_record_v = is_record<T>::value;

template <class T> constexpr const kelm_record_type* type_of() {
    return kelm_record_traits<T>::type;
}

constexpr kelm_record_field make(kelm_field_kind kind, const char* name, size_t offset,
                                 size_t aux = 0, size_t size = 0,
                                 const kelm_record_type* type = nullptr) {
    return {kind,
            name,
            static_cast<unsigned int>(offset),
            static_cast<unsigned int>(aux),
            static_cast<unsigned int>(size),
            type};
}

// A field whose kind follows from its member's type.
template <class Member> constexpr kelm_record_field field(const char* name, size_t offset) {
    using kind = kelm_field_kind;
    if constexpr (std::is_same_v<Member, int32_t>) {
        return make(kind::integer, name, offset);
    } else if constexpr (std::is_same_v<Member, uint32_t>) {
        static_assert(always_false<Member>, "an unsigned 32-bit member travels through its signed "
                                            "view: declare it with KELM_SIGNED_VIEW");
        return {};
    } else if constexpr (std::is_same_v<Member, uint16_t>) {
        return make(kind::unsigned16, name, offset);
    } else if constexpr (std::is_same_v<Member, uint8_t>) {
        return make(kind::unsigned8, name, offset);
    } else if constexpr (std::is_same_v<Member, char*>) {
        return make(kind::text, name, offset);
    } else if constexpr (std::is_array_v<Member> &&
                         std::is_same_v<std::remove_extent_t<Member>, unsigned char>) {
        return make(kind::fixed_bytes, name, offset, 0, std::extent_v<Member>);
    } else if constexpr (std::is_array_v<Member> &&
                         std::is_pointer_v<std::remove_extent_t<Member>> &&
                         is_record_v<std::remove_pointer_t<std::remove_extent_t<Member>>>) {
        return make(kind::slots, name, offset, 0, std::extent_v<Member>,
                    type_of<std::remove_pointer_t<std::remove_extent_t<Member>>>());
    } else if constexpr (is_record_v<Member>) {
        return make(kind::record, name, offset, 0, 0, type_of<Member>());
    } else if constexpr (std::is_pointer_v<Member> && is_record_v<std::remove_pointer_t<Member>>) {
        return make(kind::optional_record, name, offset, 0, 0,
                    type_of<std::remove_pointer_t<Member>>());
    } else {
        static_assert(always_false<Member>, "no wire form for this member's type");
        return {};
    }
}

template <class Member> constexpr kelm_record_field signed_view(const char* name, size_t offset) {
    static_assert(std::is_same_v<Member, uint32_t>, "KELM_SIGNED_VIEW takes a uint32_t member");
    return make(kelm_field_kind::unsigned_integer, name, offset);
}

template <class Member> constexpr kelm_record_field octet_text(const char* name, size_t offset) {
    static_assert(std::is_same_v<Member, char*>, "KELM_OCTET_TEXT takes a char* member");
    return make(kelm_field_kind::octet_text, name, offset);
}

template <class Member, class Length>
constexpr kelm_record_field bytes(const char* name, size_t offset, size_t length_offset) {
    static_assert(std::is_same_v<Member, unsigned char*>, "KELM_BYTES takes an unsigned char*");
    static_assert(std::is_same_v<Length, uint32_t>, "the length of KELM_BYTES is a uint32_t");
    return make(kelm_field_kind::bytes, name, offset, length_offset);
}

template <class Member, class Count>
constexpr kelm_record_field list(const char* name, size_t offset, size_t count_offset) {
    using kind = kelm_field_kind;
    static_assert(std::is_pointer_v<Member>, "a list member points at its entries");
    using Entry = std::remove_pointer_t<Member>;
    if constexpr (is_record_v<Entry>) {
        static_assert(std::is_same_v<Count, uint32_t> || std::is_same_v<Count, uint16_t>,
                      "the count of a list of records is a uint32_t or a uint16_t");
        return make(std::is_same_v<Count, uint16_t> ? kind::record_list16 : kind::record_list, name,
                    offset, count_offset, 0, type_of<Entry>());
    } else {
        static_assert(std::is_same_v<Count, uint32_t>, "the count of this list is a uint32_t");
        if constexpr (std::is_pointer_v<Entry> && is_record_v<std::remove_pointer_t<Entry>>) {
            return make(kind::record_pointer_list, name, offset, count_offset, 0,
                        type_of<std::remove_pointer_t<Entry>>());
        } else if constexpr (std::is_same_v<Entry, char*>) {
            return make(kind::text_list, name, offset, count_offset);
        } else if constexpr (std::is_same_v<Entry, uint32_t>) {
            return make(kind::integer_list, name, offset, count_offset);
        } else {
            static_assert(always_false<Entry>, "no list of this entry type");
            return {};
        }
    }
}

template <class Class, class Record, size_t N>
constexpr kelm_record_type make_type(const char* class_name, const char* record_name,
                                     const kelm_record_field (&fields)[N], kelm_source_site site,
                                     kelm_record_quirks quirks) {
    static_assert(std::is_same_v<typename Class::record_t, Record>,
                  "the message class serves another record");
    return {class_name,
            record_name,
            sizeof(Record),
            fields,
            static_cast<unsigned int>(N),
            &kelm_record_ops_for<Class>,
            site.file,
            site.line,
            quirks.flags,
            quirks.clear,
            quirks.list_failure_lines};
}

// The description of a record that a hand-written message class encodes (no kelm_asn_record is
// built for it): its fields for the tool and the tests. Its class throws at sites of its own.
template <class Record, size_t N>
constexpr kelm_record_type make_layout(const char* class_name, const char* record_name,
                                       const kelm_record_field (&fields)[N],
                                       kelm_record_quirks quirks) {
    return {class_name,
            record_name,
            sizeof(Record),
            fields,
            static_cast<unsigned int>(N),
            nullptr,
            nullptr,
            0,
            quirks.flags,
            quirks.clear,
            quirks.list_failure_lines};
}

} // namespace kelm_record_declare

// The message class `Class` of C record `Record`, described by the record type `Type` that
// KELM_DEFINE_RECORD_TYPE defines.
#define KELM_MESSAGE_CLASS(Class, Record, Type)                                                    \
    extern KELM_API const kelm_record_type Type;                                                   \
    template <> struct kelm_record_traits<Record> {                                                \
        static constexpr const kelm_record_type* type = &Type;                                     \
    };                                                                                             \
    class KELM_API Class : public kelm_asn_message<Record, Type> {                                 \
      public:                                                                                      \
        using kelm_asn_message::kelm_asn_message;                                                  \
    }

// The record type `Type` of C record `Record` that a hand-written message class encodes, described
// by KELM_DEFINE_RECORD_LAYOUT.
#define KELM_RECORD_LAYOUT(Record, Type)                                                           \
    extern const kelm_record_type Type;                                                            \
    template <> struct kelm_record_traits<Record> {                                                \
        static constexpr const kelm_record_type* type = &Type;                                     \
    }

// Field declarations, valid inside KELM_DEFINE_RECORD_TYPE and KELM_DEFINE_RECORD_LAYOUT.
#define KELM_FIELD(member)                                                                         \
    kelm_record_declare::field<decltype(declared_record::member)>(                                 \
        #member, offsetof(declared_record, member))
#define KELM_SIGNED_VIEW(member)                                                                   \
    kelm_record_declare::signed_view<decltype(declared_record::member)>(                           \
        #member, offsetof(declared_record, member))
#define KELM_OCTET_TEXT(member)                                                                    \
    kelm_record_declare::octet_text<decltype(declared_record::member)>(                            \
        #member, offsetof(declared_record, member))
#define KELM_BYTES(member, length)                                                                 \
    kelm_record_declare::bytes<decltype(declared_record::member),                                  \
                               decltype(declared_record::length)>(                                 \
        #member, offsetof(declared_record, member), offsetof(declared_record, length))
#define KELM_LIST(member, count)                                                                   \
    kelm_record_declare::list<decltype(declared_record::member),                                   \
                              decltype(declared_record::count)>(                                   \
        #member, offsetof(declared_record, member), offsetof(declared_record, count))

// Defines record type `Type` of message class `Class` and C record `Record`: the site its memory
// exceptions name, its quirks, then its fields in encoding order.
#define KELM_DEFINE_RECORD_TYPE(Type, Class, Record, Site, Quirks, ...)                            \
    namespace {                                                                                    \
    namespace Type##_declaration {                                                                 \
        using declared_record = Record;                                                            \
        const kelm_record_field fields[] = {__VA_ARGS__};                                          \
    }                                                                                              \
    }                                                                                              \
    const kelm_record_type Type = kelm_record_declare::make_type<Class, Record>(                   \
        #Class, #Record, Type##_declaration::fields, Site, Quirks)

// Defines the description `Type` of C record `Record`, which the hand-written class named
// `ClassName` encodes; `RecordName` is the record's name for the tool. Fields as for
// KELM_DEFINE_RECORD_TYPE.
#define KELM_DEFINE_RECORD_LAYOUT(Type, Record, ClassName, RecordName, Quirks, ...)                \
    namespace {                                                                                    \
    namespace Type##_declaration {                                                                 \
        using declared_record = Record;                                                            \
        const kelm_record_field fields[] = {__VA_ARGS__};                                          \
    }                                                                                              \
    }                                                                                              \
    const kelm_record_type Type = kelm_record_declare::make_layout<Record>(                        \
        ClassName, RecordName, Type##_declaration::fields, Quirks)

#endif
