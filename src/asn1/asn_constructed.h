/// \file
/// The constructed types: a registry of children (composite), SEQUENCE, an untagged CHOICE, an
/// open ANY value, and an element that is always present and writes nothing.
///
/// Ownership: a composite does not own its children (they are members of the derived class, or
/// owned by the list templates); it releases only its pointer array. An ANY does not own its
/// syntax object.
#ifndef KELM_ASN_CONSTRUCTED_H
#define KELM_ASN_CONSTRUCTED_H

#include "asn_object.h"
#include "asn_primitives.h"

/// A constructed element that keeps a registry of children, in registration order, which is
/// their encoding order. It becomes present as soon as every child is valid and at least one is
/// present or defaultable, or, when empty is permitted, even when none is; each change of a child
/// re-runs this check up to the root.
///
/// Ownership: the children are not owned (they are members of the derived class, or owned by
/// the list templates); the composite releases only its pointer array.
class KELM_API kelm_asn_composite : public kelm_asn_object {
  public:
    /// A constructed element that accepts definite and indefinite lengths.
    explicit kelm_asn_composite(security_t sec);
    /// Allocates `capacity` child slots at once. Deliberately leaves the constructed flags and
    /// indefinite_permitted at zero: a derived class that needs them sets them.
    kelm_asn_composite(unsigned int capacity, security_t sec);
    /// Releases the pointer array, never a child.
    ~kelm_asn_composite() override;

    /// Makes the composite present when every child is valid and at least one is present or
    /// defaultable (or, with empty permitted, when none is), absent otherwise; a change climbs
    /// to the parent.
    int check_valid(int deep) override;
    /// Unless `mode` is KELM_INVALIDATE_CONTAINER, first invalidates every child; then marks
    /// the composite absent and always asks the parent to re-check.
    void invalidate_value(invalidate_t mode) override;
    /// emptyi() of each child in order; the first non-zero status.
    int emptyi() override;
    /// The number of registered children.
    unsigned int get_child_count() const override;
    /// "COMPOSITE-OBJECT(tag=<tag>, class=<class>) {", then each child's display() in order
    /// (stopping at the first non-zero status); no closing brace is written.
    unsigned int display(kelm_buffer_t& output) const override;
    /// normalize() of each child in order; the first non-zero status.
    int normalize() override;
    /// With `deep` non-zero, first re-checks every child and itself; then as
    /// kelm_asn_object::is_valid.
    int is_valid(int deep) const override;
    /// Sets whether the composite counts as present with no child present, then re-checks.
    /// Returns 0.
    int set_empty_permitted(int value) override;
    int check_encode_flags(int expected) const override;
    /// 1 if the composite's own encoding is not valid; otherwise 1 only if every child that is
    /// not an absent optional one answers check_encode_flags(1) with non-zero.
    int check_encode_flags() const override;
    /// The composite's own line, then each child's lines indented by two more.
    unsigned int display_state_flags(kelm_buffer_t& output, int indent) const override;

    /// Appends a child (encoding order is registration order) and makes this its parent; a
    /// composite whose security is not plain gives the child its security. Throws
    /// kelm_asn_memexception when the array
    /// cannot grow (the array is then unchanged). Returns 0.
    virtual int register_child(kelm_asn_object* child);
    /// Puts a child first. Kept for compatibility: on a full array the array grows by 512 slots
    /// but the existing pointers are not moved, so the new child overwrites the first slot and the
    /// previous first child leaves the registry while the count still grows by one.
    virtual int register_child_before(kelm_asn_object* child);
    /// 1 if the composite counts as present with no child present, else 0 (1 by default).
    virtual int get_empty_permitted() const;

    /// The child of index `index` in registration order; null when `index` is not below the
    /// child count.
    kelm_asn_object* get_child(unsigned int index) const;
    /// The same as get_child(): null when `index` is not below the child count.
    kelm_asn_object* operator[](unsigned int index) const { return get_child(index); }
    /// The number of slots of the child array.
    unsigned int get_child_capacity() const { return child_capacity; }

  protected:
    /// Grows the child array by `step` slots (throws kelm_asn_memexception, array unchanged).
    void grow_children(unsigned int step);
    /// Makes `child` one of ours: parent and security.
    void adopt(kelm_asn_object* child);

    int empty_permitted;         ///< counts as present with no child present; 1 by default
    unsigned int child_count;    ///< number of registered children
    unsigned int child_capacity; ///< slots in the child array
    kelm_asn_object** children;  ///< the children in registration order; not owned
};

/// SEQUENCE (universal 16): the children one after another in one frame (X.690 8.9).
class KELM_API kelm_asn_sequence : public kelm_asn_composite {
  public:
    /// An empty SEQUENCE (universal 16), constructed, definite or indefinite length accepted.
    explicit kelm_asn_sequence(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_sequence() override;

    /// Reads each child in registration order from the contents; an optional or defaultable
    /// child whose tag does not match is skipped. Contents left over after the last child give
    /// KELM_ASN_SURPLUS_CONTENTS: unknown elements are refused, not skipped.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Writes each child with asnwrite() in registration order; the first failure is returned.
    unsigned int encode_value(kelm_buffer_t& output) const override;
};

/// An untagged CHOICE: only the selected alternative is written, with no frame of its own.
class KELM_API kelm_asn_choice : public kelm_asn_composite {
  public:
    /// A CHOICE with no alternative and nothing selected.
    explicit kelm_asn_choice(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_choice() override;

    /// Never reached: the frame is the alternative's (throws kelm_asn_unsupportederror).
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Never reached: the frame is the alternative's (throws kelm_asn_unsupportederror).
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// Makes the choice present when the selected alternative is valid, absent when it is not;
    /// nothing when none is selected.
    int check_valid(int deep) override;
    /// 1: the choice has the tag of its selected alternative.
    int is_polymorphic() const override;
    /// Throws the text "Attempt to change tag of ASN.1 CHOICE object"; see set_tag_unchecked.
    int set_tag(unsigned int tag_number) override;
    /// The selected alternative's normalize(); 0 when none is selected.
    int normalize() override;
    /// The selected alternative's; 0 when none is selected.
    int is_encoding_valid() const override;
    /// Tries each alternative's asnread() in order on the same input; the first that succeeds
    /// is selected. When none does: 0 (nothing read) for an optional or defaultable choice,
    /// else KELM_ASN_UNEXPECTED_TAG, also when the choice has no alternative.
    unsigned int asnread(kelm_r_buffer_t& input) override;
    /// Writes the selected alternative with its own asnwrite(); nothing for an absent optional
    /// choice or one equal to its default; KELM_ASN_CHOICE_UNSELECTED when none is selected.
    unsigned int asnwrite(kelm_buffer_t& output) const override;
    int check_encode_flags(int expected) const override;
    /// 1 if the choice's encoding is not valid; else 0 when none is selected, or whether the
    /// selected alternative's check_encode_flags(1) is non-zero.
    int check_encode_flags() const override;
    /// The choice's own line, then for each alternative its lines indented by two more, the
    /// selected one preceded by a line "SELECTED:".
    unsigned int display_state_flags(kelm_buffer_t& output, int indent) const override;

    /// Sets the tag as kelm_asn_object::set_tag does; the only way to change a choice's tag.
    virtual int set_tag_unchecked(unsigned int tag_number);

    /// Selects the alternative of index `index` (registration order). Returns 0, or
    /// KELM_ASN_CHOICE_RANGE when `index` is not an alternative.
    unsigned int select(unsigned int index);
    /// The selected alternative's index, -1 when none.
    int selected() const { return selection; }

  protected:
    int selection; ///< index of the selected alternative, -1 when none
};

/// ANY: raw contents octets of any tag, or a syntax object coded in its place.
class KELM_API kelm_asn_any : public kelm_asn_object {
  public:
    /// A hook called before the ANY is read (preparse) or written (preencode); a non-zero
    /// result is returned at once.
    typedef int (*hook_t)(kelm_asn_any* any);

    /// An absent ANY with no syntax and no hooks; primitive and constructed encodings are
    /// accepted, indefinite lengths are not.
    explicit kelm_asn_any(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_any() override;

    /// Copies the `length` contents octets as the raw value; KELM_ASN_ANY_WITHOUT_VALUE when a
    /// syntax is set.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Appends the raw contents octets; KELM_ASN_ANY_WITHOUT_VALUE when a syntax is set.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// With a syntax set: a valid syntax makes a present ANY absent, an invalid one makes an
    /// absent ANY present. Kept this way round for compatibility with existing callers.
    int check_valid(int deep) override;
    void invalidate_value(invalidate_t mode) override;
    /// 1: an ANY accepts every tag.
    int check_type(unsigned int tag_number, int tag_class_number) const override;
    /// As kelm_asn_object::set_secure, also for the raw contents; a secure ANY makes its syntax
    /// secure.
    int set_secure(security_t sec) override;
    /// Calls the preparse hook (a non-zero result is returned at once); then, without a syntax,
    /// reads one whole element of any tag as the raw value, to be written back with the
    /// constructed bit it was read with; with a syntax, has the syntax read itself.
    unsigned int asnread(kelm_r_buffer_t& input) override;
    /// Calls the preencode hook (a non-zero result is returned at once); then writes the raw
    /// value as one element, or has the syntax write itself.
    unsigned int asnwrite(kelm_buffer_t& output) const override;

    /// Codes `syntax` in place of the raw contents from now on, with this ANY as its parent;
    /// a previous syntax object is detached. `syntax` must not be null; it is not owned.
    void set_syntax(kelm_asn_object* syntax);
    /// The syntax object; null if none. Not owned.
    kelm_asn_object* get_syntax() const { return syntax; }
    /// Sets the hook called before reading (null for none).
    void set_preparse(hook_t hook) { preparse = hook; }
    /// Sets the hook called before writing (null for none).
    void set_preencode(hook_t hook) { preencode = hook; }
    /// Replaces the raw contents octets with a copy of `length` octets and marks the value
    /// present; KELM_ASN_ANY_WITHOUT_VALUE when a syntax is set.
    unsigned int set_value(const unsigned char* octets, unsigned int length);
    /// Points `octets` at the raw contents octets, held by the ANY (not a copy, valid until the
    /// next change), and sets `length` to their count. KELM_ASN_ANY_WITHOUT_VALUE when a syntax
    /// is set, KELM_ASN_VALUE_MISSING when neither present nor defaultable.
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;

  private:
    kelm_buffer_t contents;
    kelm_asn_object* syntax;
    hook_t preparse;
    hook_t preencode;
};

/// An element that is always valid and present and reads and writes nothing.
class KELM_API kelm_asn_nothing : public kelm_asn_primitive {
  public:
    /// An element that is valid and present from the start.
    explicit kelm_asn_nothing(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_nothing() override;

    /// Reads nothing; returns 0.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Writes nothing; returns 0.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// 1.
    int is_valid(int deep) const override;
    /// 1.
    int is_present() const override;
    /// Reads nothing; returns 0.
    unsigned int asnread(kelm_r_buffer_t& input) override;
    /// Writes nothing; returns 0.
    unsigned int asnwrite(kelm_buffer_t& output) const override;
};

#endif
