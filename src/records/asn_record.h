/// \file
/// Message classes declared once as tables of fields.
///
/// Every record type of the product is a SEQUENCE whose elements map one to one onto the fields
/// of a plain C record. A type is declared by a kelm_record_type: its name, the record's size and
/// a table of kelm_record_field entries in encoding order (kind, record offsets, nested type).
/// One mechanism, kelm_asn_record, builds the element objects from that table and serves
/// encoding, decoding and freeing; the kelmasn tool maps the same tables to JSON. A type's quirk
/// is a flag or a small hook of its table.
///
/// Ownership: records filled by get_record own every string and array they point at, allocated
/// with malloc/calloc; free_record releases them (not the record itself) and resets nothing.
#ifndef KELM_ASN_RECORD_H
#define KELM_ASN_RECORD_H

#include <cstddef>
#include <new>

#include "asn_lists.h"
#include "asn_source_site.h"
#include "asn_utf8string.h"
#include "asnutils.h"

class kelm_asn_record;
struct kelm_record_type;

/// How a record field crosses between the record and its element.
enum class kelm_field_kind : unsigned char {
    integer,             ///< int32_t; INTEGER
    unsigned_integer,    ///< uint32_t; written as signed, read back with its bit pattern unchanged
    unsigned16,          ///< uint16_t; INTEGER, read back cut to 16 bits
    unsigned8,           ///< uint8_t; INTEGER, read back cut to 8 bits
    text,                ///< char*; UTF8String (converted in the local-code-set mode)
    octet_text,          ///< char*; OCTET STRING holding the string and its NUL
    bytes,               ///< uint32_t length at `aux`, unsigned char* at `offset`; OCTET STRING
    fixed_bytes,         ///< `size` inline bytes, written in full and read back as exactly `size`
    record,              ///< inline nested record of `type`
    optional_record,     ///< pointer to a `type` record, NULL when absent
    record_list,         ///< uint32_t count at `aux`, pointer to an array of `type` records
    record_list16,       ///< as record_list with a uint16_t count that wraps
    record_pointer_list, ///< uint32_t count at `aux`, array of pointers to separate records
    text_list,           ///< uint32_t count at `aux`, char** array
    integer_list,        ///< uint32_t count at `aux`, uint32_t* array
    slots,               ///< `size` pointers to `type` records, NULL marking an empty slot
};

/// One field of a record type's table: how the field crosses, where it lies in the record, and
/// the type of its nested records.
struct kelm_record_field {
    kelm_field_kind kind;         ///< how the field crosses between record and element
    const char* name;             ///< the record field's name
    unsigned int offset;          ///< the value, pointer, inline record or slot array
    unsigned int aux;             ///< the count or length of lists and byte arrays
    unsigned int size;            ///< bytes of a fixed array, or slots of a slot array
    const kelm_record_type* type; ///< element type of nested records, lists and slots
};

/// What a nested or listed record type needs from its C++ class; made by kelm_record_ops_for.
struct kelm_record_ops {
    /// Builds the message class in place at `where` (object_size bytes).
    kelm_asn_record* (*create)(void* where, security_t sec);
    size_t object_size; ///< the size of the message class
    /// Builds a SEQUENCE OF the message class in place at `where` (list_size bytes).
    kelm_asn_composite* (*create_list)(void* where, security_t sec);
    size_t list_size; ///< the size of the SEQUENCE OF
    /// Appends a new element to such a list; null when it cannot be created or registered.
    kelm_asn_record* (*add_to_list)(kelm_asn_composite& list);
    /// Builds a slot array of the message class in place at `where` (slots_size bytes).
    kelm_asn_composite* (*create_slots)(void* where, security_t sec);
    size_t slots_size; ///< the size of the slot array
    /// kelm_asn_arrayof::fill_slot of such a slot array.
    kelm_asn_record* (*fill_slot)(kelm_asn_composite& slots, unsigned int index);
    /// kelm_asn_arrayof::slot_value of such a slot array.
    kelm_asn_record* (*slot_value)(const kelm_asn_composite& slots, unsigned int index);
};

/// Flags of a record type.
enum : unsigned int {
    /// get_record does not clear the record before filling it.
    KELM_RECORD_KEEPS_RECORD = 1,
    /// get_record ignores the statuses of its elements' copies (a text that cannot be allocated
    /// is left null, a nested record's status is dropped) and returns 0.
    KELM_RECORD_IGNORES_ELEMENT_STATUS = 2,
    /// The SEQUENCE starts with the version element INTEGER 1, written always and never read back
    /// (the records reached by type code).
    KELM_RECORD_VERSION_ELEMENT = 4,
    /// The one field is the whole encoding, not wrapped in a SEQUENCE (the bare INTEGER of a type
    /// code).
    KELM_RECORD_BARE_ELEMENT = 8,
};

/// Source lines that a type's memory exceptions name, one per failure site of its lists, for a
/// type whose exceptions must name each site apart; a line left 0 names the type's own line.
struct kelm_list_failure_lines {
    int entry = 0; ///< an entry that cannot be created or added while encoding
    int array = 0; ///< an array (or a separately allocated entry) that cannot be allocated while
                   ///< decoding
    int child = 0; ///< a child missing before the list's count is reached while decoding
};

/// A record type: its names, the size of its C record, its table of fields in encoding order,
/// the operations of its class for the types that nest it, the site its memory exceptions name,
/// and its quirks.
struct kelm_record_type {
    const char* class_name;  ///< "asn_attr_t"; its stored type name drops "asn_" (16 characters)
    const char* record_name; ///< "attr_s_t"
    size_t record_size;      ///< sizeof the C record
    const kelm_record_field* fields; ///< the table of fields, in encoding order
    unsigned int field_count;        ///< the number of entries of `fields`
    const kelm_record_ops* ops;      ///< the operations of the type's message class
    const char* source;              ///< source file named by this type's memory exceptions
    int source_line;                 ///< and the line
    unsigned int flags;              ///< KELM_RECORD_* flags, or 0
    /// Clears the record before get_record fills it, for a type that clears only some fields;
    /// null for the ordinary whole-record clear.
    void (*clear)(void* record);
    /// The lines of this type's list failures, when they name each site apart.
    kelm_list_failure_lines list_failure_lines = {};
};

/// The number of fields of a table, for a kelm_record_type's field_count.
template <size_t N> constexpr unsigned int kelm_field_count(const kelm_record_field (&)[N]) {
    return N;
}

/// The message class of a record type: a SEQUENCE whose elements the type's table describes.
class KELM_API kelm_asn_record : public kelm_asnbase {
  public:
    /// The message class of `type`, with one element per field of its table, built with the
    /// mode `sec`. Exhausted memory throws kelm_asn_memexception.
    kelm_asn_record(const kelm_record_type& type, security_t sec);
    /// Destroys the elements; the records they were copied from or to are not touched.
    ~kelm_asn_record() override;

    /// The mode reaches every element, also those of nested records, so that texts anywhere in the
    /// record convert in the local-code-set mode and every buffer wipes in the secure mode.
    int set_secure(security_t sec) override;

    /// The record type the object was built for.
    const kelm_record_type& record_type() const { return type_; }
    /// The element of field `index`, in table order.
    kelm_asn_object* element(unsigned int index) const { return get_child(index); }

    /// Record to elements. Returns 0, or KELM_ASN_BAD_ENCODING for a record whose encoding would
    /// nest deeper than KELM_ASN_MAX_NESTING constructed levels (no decoder could read it back);
    /// exhausted memory is thrown.
    unsigned int set_record(const void* record);
    /// Elements to record (cleared first). Returns 0 or the status of a text conversion (0 for a
    /// type with KELM_RECORD_IGNORES_ELEMENT_STATUS); exhausted memory is thrown, leaving the
    /// record partly filled but consistent.
    unsigned int get_record(void* record) const;
    /// Releases what get_record allocated in `record`.
    static void free_record(const kelm_record_type& type, void* record);

    /// set_record and the header and encoding into `out`; exceptions of the runtime's family are
    /// reported on stderr and returned as their status.
    unsigned int encode_record(const void* record, kelm_asn_buffer_t& out, int version);
    /// The header check and decoding, then get_record; exceptions as for encode_record.
    unsigned int decode_record(void* record, const kelm_asn_buffer_t& in, int version);

    /// One whole call, as an entry point makes it: the message class of `type` built with `mode`,
    /// one direction run, the object destroyed. An exception of the runtime's family from any of
    /// these steps is reported on stderr and returned as its status.
    static unsigned int encode(const kelm_record_type& type, const void* record,
                               kelm_asn_buffer_t& out, int version, security_t mode);
    /// As encode, in the other direction: the header check, decoding and get_record.
    static unsigned int decode(const kelm_record_type& type, void* record,
                               const kelm_asn_buffer_t& in, int version, security_t mode);

  private:
    KELM_LOCAL void build_elements();
    KELM_LOCAL void destroy_elements();
    [[noreturn]] KELM_LOCAL void throw_memory_error(const char* message, int line = 0) const;

    const kelm_record_type& type_;
    unsigned char* arena_;     ///< every element object, built in place
    unsigned int constructed_; ///< elements built so far
};

/// The typed message class of record type `Record`, described by `Type`.
template <class Record, const kelm_record_type& Type>
class kelm_asn_message : public kelm_asn_record {
  public:
    using record_t = Record; ///< the C record of the type

    /// The message class of `Type`, built with the mode `sec`.
    explicit kelm_asn_message(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_record(Type, sec) {}

    /// set_record of `record`: record to elements.
    unsigned int set_value(Record& record) { return set_record(&record); }
    /// get_record into `record`: elements to record, which then owns what it points at.
    unsigned int get_value(Record& record) const { return get_record(&record); }
    /// encode_record of `record` into `out` (malloc'ed bytes the caller releases with
    /// kelm_asn_buffer_free).
    unsigned int encode_obj(Record& record, kelm_asn_buffer_t& out, int version) {
        return encode_record(&record, out, version);
    }
    /// decode_record of `in` into `record`, which then owns what it points at until free_obj.
    unsigned int decode_obj(Record& record, kelm_asn_buffer_t& in, int version) {
        return decode_record(&record, in, version);
    }
    /// free_record: releases every string and array that a decode allocated in `record`.
    static void free_obj(Record& record) { free_record(Type, &record); }
};

/// The operations that kelm_record_ops_for collects for a message class T.
namespace kelm_record_internal {

/// Builds a T in place at `where`.
template <class T> kelm_asn_record* create(void* where, security_t sec) {
    return new (where) T(sec);
}
/// Builds a SEQUENCE OF T in place at `where`.
template <class T> kelm_asn_composite* create_list(void* where, security_t sec) {
    return new (where) kelm_asn_sequenceof<T>(sec);
}
/// Appends a new T to a SEQUENCE OF T; null when it cannot be created or registered.
template <class T> kelm_asn_record* add_to_list(kelm_asn_composite& list) {
    return static_cast<kelm_asn_sequenceof<T>&>(list).add_child();
}
/// Builds a slot array of T in place at `where`.
template <class T> kelm_asn_composite* create_slots(void* where, security_t sec) {
    return new (where) kelm_asn_arrayof<T>(sec);
}
/// kelm_asn_arrayof<T>::fill_slot.
template <class T> kelm_asn_record* fill_slot(kelm_asn_composite& slots, unsigned int index) {
    return static_cast<kelm_asn_arrayof<T>&>(slots).fill_slot(index);
}
/// kelm_asn_arrayof<T>::slot_value.
template <class T>
kelm_asn_record* slot_value(const kelm_asn_composite& slots, unsigned int index) {
    return static_cast<const kelm_asn_arrayof<T>&>(slots).slot_value(index);
}

} // namespace kelm_record_internal

/// The operations of message class T, for the tables of the types that nest it.
template <class T>
inline constexpr kelm_record_ops kelm_record_ops_for = {
    kelm_record_internal::create<T>,      sizeof(T),
    kelm_record_internal::create_list<T>, sizeof(kelm_asn_sequenceof<T>),
    kelm_record_internal::add_to_list<T>, kelm_record_internal::create_slots<T>,
    sizeof(kelm_asn_arrayof<T>),          kelm_record_internal::fill_slot<T>,
    kelm_record_internal::slot_value<T>,
};

#endif
