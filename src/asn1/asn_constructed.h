// The constructed types: a registry of children (composite), SEQUENCE, an untagged CHOICE, an
// open ANY value, and an element that is always present and writes nothing.
//
// Ownership: a composite does not own its children (they are members of the derived class, or
// owned by the list templates); it releases only its pointer array. An ANY does not own its
// syntax object.
#ifndef KELM_ASN_CONSTRUCTED_H
#define KELM_ASN_CONSTRUCTED_H

#include "asn_object.h"
#include "asn_primitives.h"

class KELM_API kelm_asn_composite : public kelm_asn_object {
  public:
    // A constructed element that accepts definite and indefinite lengths.
    explicit kelm_asn_composite(security_t sec);
    // Allocates `capacity` child slots at once. Deliberately leaves the constructed flags and
    // indefinite_permitted at zero: a derived class that needs them sets them.
    kelm_asn_composite(unsigned int capacity, security_t sec);
    ~kelm_asn_composite() override;

    int check_valid(int deep) override;
    void invalidate_value(invalidate_t mode) override;
    int emptyi() override;
    unsigned int get_child_count() const override;
    unsigned int display(kelm_buffer_t& output) const override;
    int normalize() override;
    int is_valid(int deep) const override;
    int set_empty_permitted(int value) override;
    int check_encode_flags(int expected) const override;
    int check_encode_flags() const override;
    unsigned int display_state_flags(kelm_buffer_t& output, int indent) const override;

    // Appends a child (encoding order is registration order) and makes this its parent.
    virtual int register_child(kelm_asn_object* child);
    // Puts a child first. Kept for compatibility: on a full array the array grows by 512 slots
    // but the existing pointers are not moved, so the new child overwrites the first slot and the
    // previous first child leaves the registry while the count still grows by one.
    virtual int register_child_before(kelm_asn_object* child);
    virtual int get_empty_permitted() const;

    // Null when `index` is not below the child count.
    kelm_asn_object* get_child(unsigned int index) const;
    kelm_asn_object* operator[](unsigned int index) const { return get_child(index); }
    unsigned int get_child_capacity() const { return child_capacity; }

  protected:
    // Grows the child array by `step` slots (throws kelm_asn_memexception, array unchanged).
    void grow_children(unsigned int step);
    // Makes `child` one of ours: parent and security.
    void adopt(kelm_asn_object* child);

    int empty_permitted;
    unsigned int child_count;
    unsigned int child_capacity;
    kelm_asn_object** children;
};

// SEQUENCE (universal 16): the children one after another in one frame (X.690 8.9).
class KELM_API kelm_asn_sequence : public kelm_asn_composite {
  public:
    explicit kelm_asn_sequence(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_sequence() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
};

// An untagged CHOICE: only the selected alternative is written, with no frame of its own.
class KELM_API kelm_asn_choice : public kelm_asn_composite {
  public:
    explicit kelm_asn_choice(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_choice() override;

    // Never reached: the frame is the alternative's (both throw kelm_asn_unsupportederror).
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int check_valid(int deep) override;
    int is_polymorphic() const override;
    // Throws the text "Attempt to change tag of ASN.1 CHOICE object"; see set_tag_unchecked.
    int set_tag(unsigned int tag_number) override;
    int normalize() override;
    int is_encoding_valid() const override;
    unsigned int asnread(kelm_r_buffer_t& input) override;
    unsigned int asnwrite(kelm_buffer_t& output) const override;
    int check_encode_flags(int expected) const override;
    int check_encode_flags() const override;
    unsigned int display_state_flags(kelm_buffer_t& output, int indent) const override;

    virtual int set_tag_unchecked(unsigned int tag_number);

    // KELM_ASN_CHOICE_RANGE when `index` is not an alternative.
    unsigned int select(unsigned int index);
    // The selected alternative's index, -1 when none.
    int selected() const { return selection; }

  protected:
    int selection;
};

// ANY: raw contents octets of any tag, or a syntax object coded in its place.
class KELM_API kelm_asn_any : public kelm_asn_object {
  public:
    typedef int (*hook_t)(kelm_asn_any* any);

    explicit kelm_asn_any(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_any() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int check_valid(int deep) override;
    void invalidate_value(invalidate_t mode) override;
    int check_type(unsigned int tag_number, int tag_class_number) const override;
    int set_secure(security_t sec) override;
    unsigned int asnread(kelm_r_buffer_t& input) override;
    unsigned int asnwrite(kelm_buffer_t& output) const override;

    // `syntax` must not be null; it is not owned.
    void set_syntax(kelm_asn_object* syntax);
    kelm_asn_object* get_syntax() const { return syntax; }
    void set_preparse(hook_t hook) { preparse = hook; }
    void set_preencode(hook_t hook) { preencode = hook; }
    // Raw contents; KELM_ASN_ANY_WITHOUT_VALUE when a syntax is set.
    unsigned int set_value(const unsigned char* octets, unsigned int length);
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;

  private:
    kelm_buffer_t contents;
    kelm_asn_object* syntax;
    hook_t preparse;
    hook_t preencode;
};

// An element that is always valid and present and reads and writes nothing.
class KELM_API kelm_asn_nothing : public kelm_asn_primitive {
  public:
    explicit kelm_asn_nothing(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_nothing() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int is_valid(int deep) const override;
    int is_present() const override;
    unsigned int asnread(kelm_r_buffer_t& input) override;
    unsigned int asnwrite(kelm_buffer_t& output) const override;
};

#endif
