/// \file
/// Lists: SEQUENCE OF T, whose elements the list creates, owns and deletes, and a positional
/// array with holes, written as a SEQUENCE OF a CHOICE of NULL (an empty slot) or T (a filled
/// slot), so that the index of every element survives encoding.
///
/// T is any value class with a constructor taking security_t.
#ifndef KELM_ASN_LISTS_H
#define KELM_ASN_LISTS_H

#include <memory>
#include <new>

#include "asn_constructed.h"
#include "asn_source_site.h"

/// The throw sites of the list templates, fixed values that existing callers match.
namespace kelm_asn_list_sites {

/// The position that the memory exception of this file reports. Existing callers match this value
/// in the exception line: it must never change, whatever becomes of this file's layout.
/// A failed allocation of an element read by a SEQUENCE OF.
inline constexpr kelm_source_site kSequenceOfElementSite = {"src/asn1/asn_lists.h", 41};

} // namespace kelm_asn_list_sites

/// SEQUENCE OF T: a list whose elements it creates, owns and deletes. A new list is present and
/// empty; made optional, an empty list counts as absent and is not written.
template <class T> class kelm_asn_sequenceof : public kelm_asn_sequence {
  public:
    /// A new list is present and empty.
    explicit kelm_asn_sequenceof(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_sequence(sec) {
        set_type_name("SEQUENCEOF");
        set_value_valid();
    }

    /// Deletes every element.
    ~kelm_asn_sequenceof() override {
        delete_elements();
        invalidate_encoding();
    }

    /// Reads elements of type T until the contents end (definite length) or an end-of-contents
    /// mark is next (indefinite length; the frame reader consumes the mark). An element that does
    /// not decode ends the read with its status; the elements read before it stay in the list.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override {
        kelm_r_buffer_t contents = input;
        empty();
        if (!indefinite)
            contents.remaining = length;
        for (;;) {
            if (indefinite ? check_EOC(contents) == 1 : contents.remaining == 0)
                break;
            std::unique_ptr<T> element(new (std::nothrow) T(security));
            if (!element)
                throw kelm_asn_memexception(kelm_asn_list_sites::kSequenceOfElementSite.file,
                                            kelm_asn_list_sites::kSequenceOfElementSite.line,
                                            "Out of memory in asn_sequenceof:decode_value");
            const unsigned int status = element->asnread(contents);
            if (status != KELM_ASN_OK)
                return status;
            register_child(element.get());
            element.release();
        }
        if (indefinite) {
            input.remaining = contents.remaining;
        } else {
            input.remaining -= length;
        }
        input.cursor = contents.cursor;
        return KELM_ASN_OK;
    }

    /// The elements' own validity is not examined: a list is valid when it is non-empty or may be
    /// empty.
    int check_valid(int) override {
        if (child_count == 0 && !get_empty_permitted()) {
            invalidate_value(KELM_INVALIDATE_CONTAINER);
            return 0;
        }
        if (is_present() && (parent == nullptr || parent->is_present()))
            return 0;
        set_value_valid();
        return 0;
    }

    int emptyi() override {
        delete_elements();
        invalidate_encoding();
        return 0;
    }

    /// An optional list that is empty counts as absent and is not written.
    int set_optional(int value) override {
        if (value)
            set_empty_permitted(0);
        return kelm_asn_object::set_optional(value);
    }

    /// KELM_ASN_INDEX_RANGE when there is no element `index`.
    virtual unsigned int delete_child(unsigned int index) {
        if (index >= child_count)
            return KELM_ASN_INDEX_RANGE;
        kelm_asn_object* doomed = children[index];
        for (unsigned int i = index; i + 1 < child_count; ++i)
            children[i] = children[i + 1];
        delete doomed;
        --child_count;
        children[child_count] = nullptr;
        invalidate_encoding();
        return KELM_ASN_OK;
    }

    /// A new element at the end; null when it cannot be allocated or registered.
    virtual T* add_child() { return add_element(false); }
    /// A new element at the front; null when it cannot be allocated or registered.
    virtual T* add_child_before() { return add_element(true); }

    /// Element `index`, null past the end.
    T* element(unsigned int index) const { return static_cast<T*>(get_child(index)); }

  private:
    T* add_element(bool before) {
        T* element = new (std::nothrow) T(security);
        if (element == nullptr)
            return nullptr;
        try {
            if (before)
                register_child_before(element);
            else
                register_child(element);
        } catch (const kelm_asn_memexception&) {
            delete element;
            return nullptr;
        }
        return element;
    }

    void delete_elements() {
        for (unsigned int i = 0; i < child_count; ++i) {
            delete children[i];
            children[i] = nullptr;
        }
        child_count = 0;
    }
};

/// A positional array with holes, written as SEQUENCE OF CHOICE { NULL, T }: an empty slot is a
/// NULL, a filled one its T, so that the index of every element survives encoding. The element's
/// frame and state are those of the list of slots, to which every operation is forwarded; its tag
/// cannot be changed.
template <class T> class kelm_asn_arrayof : public kelm_asn_composite {
  public:
    /// One slot on the wire: NULL for an empty slot (alternative 0), T for a filled one (1).
    class cherce : public kelm_asn_choice {
      public:
        /// A slot with both alternatives registered and nothing selected.
        explicit cherce(security_t sec = KELM_SECURITY_PLAIN)
            : kelm_asn_choice(sec), filler(KELM_SECURITY_PLAIN), value(KELM_SECURITY_PLAIN) {
            register_child(&filler);
            register_child(&value);
        }
        ~cherce() override = default;

        kelm_asn_null filler; ///< alternative 0: the empty slot
        T value;              ///< alternative 1: the slot's element
    };

    /// An array with no slot.
    explicit kelm_asn_arrayof(security_t sec = KELM_SECURITY_PLAIN)
        : kelm_asn_composite(sec), elements(sec) {
        set_type_name("SARRAYOF");
        elements.set_parent(this);
    }
    ~kelm_asn_arrayof() override = default;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override {
        return elements.decode_value(input, length);
    }
    unsigned int encode_value(kelm_buffer_t& output) const override {
        return elements.encode_value(output);
    }
    unsigned int get_child_count() const override { return elements.get_child_count(); }
    int encoding_primitive_permitted() const override {
        return elements.encoding_primitive_permitted();
    }
    int encoding_constructed_permitted() const override {
        return elements.encoding_constructed_permitted();
    }
    int encoding_indefinite_permitted() const override {
        return elements.encoding_indefinite_permitted();
    }
    int is_constructed() const override { return elements.is_constructed(); }
    int is_indefinite_length() const override { return elements.is_indefinite_length(); }
    int is_polymorphic() const override { return 1; }
    int should_generate_constructed() const override {
        return elements.should_generate_constructed();
    }
    /// The message is shared with the choice on purpose.
    int set_tag(unsigned int) override { throw "Attempt to change tag of ASN.1 CHOICE object"; }
    int is_optional() const override { return elements.is_optional(); }
    int is_defaultable() const override { return elements.is_defaultable(); }
    int is_encoding_valid() const override { return elements.is_encoding_valid(); }
    kelm_asn_object* get_default_value() const override { return elements.get_default_value(); }
    int is_default_value() const override { return elements.is_default_value(); }
    int is_present() const override { return elements.is_present(); }
    unsigned int asnread(kelm_r_buffer_t& input) override { return elements.asnread(input); }
    unsigned int asnwrite(kelm_buffer_t& output) const override {
        return elements.asnwrite(output);
    }
    int set_optional(int value) override {
        kelm_asn_object::set_optional(value);
        if (value)
            elements.set_empty_permitted(0);
        return elements.set_optional(value);
    }
    int set_empty_permitted(int value) override {
        kelm_asn_composite::set_empty_permitted(value);
        return elements.set_empty_permitted(value);
    }
    int check_encode_flags(int expected) const override {
        return elements.check_encode_flags(expected);
    }
    int check_encode_flags() const override { return elements.check_encode_flags(); }
    /// The slots created from now on take the mode too.
    int set_secure(security_t sec) override {
        kelm_asn_composite::set_secure(sec);
        return elements.set_secure(sec);
    }

    /// The slots as they stand: each a cherce whose selected() is 0 (empty) or 1 (filled).
    kelm_asn_sequenceof<cherce>& slots() { return elements; }
    /// The slots as they stand, read only.
    const kelm_asn_sequenceof<cherce>& slots() const { return elements; }

    /// Fills slot `index` after the last slot written so far: empty slots (NULL) are appended up
    /// to it, then a filled one whose T is returned. Null when memory runs out or `index` is
    /// below the slots already written.
    T* fill_slot(unsigned int index) {
        if (index < elements.get_child_count())
            return nullptr;
        while (elements.get_child_count() < index) {
            cherce* empty_slot = elements.add_child();
            if (empty_slot == nullptr)
                return nullptr;
            empty_slot->select(0);
        }
        cherce* filled = elements.add_child();
        if (filled == nullptr)
            return nullptr;
        filled->select(1);
        return &filled->value;
    }

    /// The T of slot `index` when that slot is filled, else null.
    T* slot_value(unsigned int index) const {
        cherce* slot = elements.element(index);
        return slot != nullptr && slot->selected() == 1 ? &slot->value : nullptr;
    }

  private:
    kelm_asn_sequenceof<cherce> elements;
};

#endif
