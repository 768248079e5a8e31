/// \file
/// The root of every ASN.1 value: tag, state flags, the cached contents encoding, an optional
/// default value, and the tag-length-value frame of BER/DER (X.690 (08/2015) 8.1) written and read
/// once for all types. Subclasses supply only their contents octets through decode_value and
/// encode_value.
///
/// Ownership: an object owns its default value and its cache buffer; it never owns its parent.
/// Value objects cannot be copied or assigned: both throw kelm_asn_unsupportederror.
#ifndef KELM_ASN_OBJECT_H
#define KELM_ASN_OBJECT_H

#include "asn_buffer.h"
#include "asn_status.h"

/// How far an invalidation travels: 0 keeps it to the object, any non-zero value also asks the
/// parent to re-check its validity.
enum invalidate_t : int {
    KELM_INVALIDATE_LOCAL = 0,     ///< The object only; the parent is not asked.
    KELM_INVALIDATE_CONTAINER = 1, ///< Also asks the parent to re-check its validity.
    KELM_INVALIDATE_NOTIFY = 2,    ///< Also asks the parent; the value the runtime itself passes.
};

class kelm_asn_object;

/// Decode callback called at the start of every asnread, before anything is read, with the
/// object and the input cursor.
typedef void (*kelm_asn_preread_t)(kelm_asn_object* object, kelm_r_buffer_t& input);
/// Decode callback called at the end of every asnread with the object, the input cursor and the
/// status that asnread returns (0 also for an absent optional element).
typedef void (*kelm_asn_postread_t)(kelm_asn_object* object, kelm_r_buffer_t& input, int status);

/// The root of every ASN.1 value object: the element's tag and class, its state flags (present,
/// optional, defaultable, cache valid, the encodings it accepts), a cache of its contents
/// octets, an optional default value and two decode callbacks.
///
/// asnwrite() and asnread() code one whole element (identifier, length, contents); a subclass
/// supplies only the contents through encode_value() and decode_value(). An object starts absent
/// with an invalid cache. A setter of a subclass stores a value, invalidates the cache of the
/// object and of every ancestor, and marks the value present; the cache is filled again by the
/// next get_encoding().
///
/// Ownership: the object owns its default value (set_default_value()) and its cache; it never
/// owns its parent. Objects are neither copied nor assigned.
class KELM_API kelm_asn_object {
  public:
    /// An absent object with an invalid cache, every flag zero, no parent, no default, no
    /// callbacks, and the type name "OBJECT". The cache takes the security `sec`; tag, class and
    /// the accepted encodings are set by the derived class's constructor.
    explicit kelm_asn_object(security_t sec);
    /// Refused: value objects are never copied (throws kelm_asn_unsupportederror).
    kelm_asn_object(const kelm_asn_object& other);
    /// Refused: value objects are never assigned (throws kelm_asn_unsupportederror).
    kelm_asn_object& operator=(const kelm_asn_object& other);

    // The virtual operations, in this order.

    /// Reads `length` contents octets from `input` into the value (the frame has been read
    /// already); advances `input` past them. Returns 0 or a status.
    virtual unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) = 0;
    /// Appends the contents octets of the value to `output`. Returns 0 or a status.
    virtual unsigned int encode_value(kelm_buffer_t& output) const = 0;
    /// Re-checks the validity of a container after a child changed; the base does nothing and
    /// returns 0.
    virtual int check_valid(int deep);
    /// Marks the cache invalid, and that of every ancestor.
    virtual void invalidate_encoding() const;
    /// Marks the value absent and the cache invalid; when a parent is set and `mode` is not
    /// KELM_INVALIDATE_LOCAL, asks the parent to re-check its validity.
    virtual void invalidate_value(invalidate_t mode);
    /// Marks the value present and asks the parent, if any, to re-check its validity.
    virtual void set_value_valid();
    /// 1 if an element of this tag number and class may hold this object's value, else 0. The
    /// base accepts exactly its own tag and class.
    virtual int check_type(unsigned int tag_number, int tag_class_number) const;
    /// Takes ownership of `value` as the default value, used while this element is absent, and
    /// marks the element defaultable; the previous default is deleted. Returns 0.
    virtual int set_default_value(kelm_asn_object* value);
    /// Fills the cache if needed, then appends the contents octets to `output`. Returns 0 or the
    /// status of filling the cache (nothing appended then).
    virtual unsigned int get_encoding(kelm_buffer_t& output) const;
    /// Fills the cache of contents octets when it is not valid: from the value when present,
    /// else from the default value, else KELM_ASN_VALUE_MISSING. Returns 0 or a status (the
    /// cache then stays invalid).
    virtual unsigned int get_encoding() const;
    /// Empties the value itself (a container also empties its children); the base does nothing.
    /// Returns 0 or the first non-zero status.
    virtual int emptyi();
    /// The number of children of a container. Called on an object that is not a container it
    /// throws the plain text "get_child_count() invoked on non-composite object".
    virtual unsigned int get_child_count() const;
    /// 1 if a primitive encoding is accepted when decoding, else 0.
    virtual int encoding_primitive_permitted() const;
    /// 1 if a constructed encoding is accepted when decoding, else 0.
    virtual int encoding_constructed_permitted() const;
    /// 1 if an indefinite length is accepted when decoding, else 0.
    virtual int encoding_indefinite_permitted() const;
    /// 1 if the last decoded identifier had the constructed bit, else 0.
    virtual int is_constructed() const;
    /// 1 if the last decoded length was indefinite, else 0.
    virtual int is_indefinite_length() const;
    /// 1 if the element's tag may follow its value rather than its type (an untagged CHOICE
    /// takes its alternative's, a character string's may name its code set), else 0.
    virtual int is_polymorphic() const;
    /// 1 if the element is written with the constructed bit, else 0.
    virtual int should_generate_constructed() const;
    /// Sets the tag class (0 universal, 1 application, 2 context-specific, 3 private); a valid
    /// cache is invalidated. Returns 0.
    virtual int set_class(int tag_class_number);
    /// Sets the tag number; a valid cache is invalidated. Returns 0.
    virtual int set_tag(unsigned int tag_number);
    /// Appends a one-line text form of the value to `output` (for a plain object
    /// "OBJECT(tag=<tag>, class=<class>)", or "Default:" and the default's form when only
    /// defaultable). KELM_ASN_VALUE_MISSING when neither present nor defaultable.
    virtual unsigned int display(kelm_buffer_t& output) const;
    /// Empties the value (emptyi()), marks it absent and re-checks validity. Returns 0.
    virtual int empty();
    /// Brings the value into its canonical form before encoding; the base does nothing and
    /// returns 0.
    virtual int normalize();
    /// 1 if the element may be absent, else 0.
    virtual int is_optional() const;
    /// 1 if the element has a default value, else 0.
    virtual int is_defaultable() const;
    /// 1 if the cache holds the contents octets of the current value, else 0.
    virtual int is_encoding_valid() const;
    /// The default value, owned by this object; null if none.
    virtual kelm_asn_object* get_default_value() const;
    /// 1 if the element is defaultable and either absent or encoded exactly as its default
    /// (such an element is left out on writing, X.690 11.5), else 0.
    virtual int is_default_value() const;
    /// 1 if the element is present, defaultable or optional, else 0.
    virtual int is_valid(int deep) const;
    /// 1 if a value is present, else 0.
    virtual int is_present() const;
    /// Releases the default value; the cache buffer releases its storage (wiped when secure).
    virtual ~kelm_asn_object();
    /// Sets the security of the object and of its cache. Returns 0.
    virtual int set_secure(security_t sec);
    /// Decodes one whole element at `input`: identifier, length (definite, or indefinite where
    /// the type accepts it) and contents. On success `input` is past the element and the value
    /// present. An optional or defaultable element whose tag does not match, or that finds no
    /// input, reads nothing and returns 0. Every failure restores `input`, except a missing
    /// end-of-contents after indefinite contents (KELM_ASN_BAD_ENCODING), which leaves it where
    /// the contents ended. Constructed contents nested deeper than KELM_ASN_MAX_NESTING give
    /// KELM_ASN_BAD_ENCODING.
    virtual unsigned int asnread(kelm_r_buffer_t& input);
    /// Appends one whole element to `output`: minimal identifier, definite length in the fewest
    /// octets, contents. An absent optional element and an element equal to its default write
    /// nothing and return 0; an element neither present nor defaultable gives
    /// KELM_ASN_VALUE_MISSING. On failure `output` is cut back to what it held before.
    virtual unsigned int asnwrite(kelm_buffer_t& output) const;
    /// 1 if both objects write the same octets with asnwrite() (identifier and length
    /// included), else 0.
    virtual int operator==(const kelm_asn_object& other) const;
    /// Makes the element optional (non-zero) or required; invalidates the cache. Returns 0.
    virtual int set_optional(int value);
    /// Whether a container with no children counts as present; the base ignores it and returns
    /// 0.
    virtual int set_empty_permitted(int value);
    /// 0 if whether the cache is valid differs from `expected`; else check_encode_flags().
    virtual int check_encode_flags(int expected) const;
    /// 1 if the object's encoding flags are consistent (a container asks its children); the
    /// base returns 1.
    virtual int check_encode_flags() const;
    /// Appends `indent` spaces and one line of state to `output`: the type name, then
    /// "(valid=", "present=", "optional=", "defaultable=", "enc_valid=" each with Y or N.
    /// Containers add a line per child. Returns 0.
    virtual unsigned int display_state_flags(kelm_buffer_t& output, int indent) const;

    /// The tag number.
    unsigned int get_tag() const { return tag; }
    /// The tag class: 0 universal, 1 application, 2 context-specific, 3 private.
    int get_class() const { return tag_class; }
    /// The containing object, told of changes; null if none. Not owned.
    kelm_asn_object* get_parent() const { return parent; }
    /// Sets the containing object (not owned).
    void set_parent(kelm_asn_object* container) { parent = container; }
    /// Sets the callback called at the start of every asnread (null for none).
    void set_preread(kelm_asn_preread_t callback) { preread = callback; }
    /// Sets the callback called at the end of every asnread (null for none).
    void set_postread(kelm_asn_postread_t callback) { postread = callback; }
    /// The type's name, at most 16 characters.
    const char* get_type_name() const { return type_name; }
    /// The security the object was made or last set with.
    security_t get_security() const { return security; }

    /// The identifier octets (X.690 8.1.2), minimal: one octet for tag numbers up to 30, else the
    /// high-tag form with the number in base 128, most significant group first.
    unsigned int write_type(kelm_buffer_t& output) const;
    /// The definite length of the cached contents in the fewest octets (X.690 8.1.3.5);
    /// KELM_ASN_BAD_ENCODING when the cache is not valid.
    unsigned int write_length(kelm_buffer_t& output) const;

  protected:
    /// Stores a type name of at most 16 characters, cut and zero-padded.
    void set_type_name(const char* name);
    /// Fills `encoding` from the value, or from the default value when absent.
    unsigned int fill_cache_from_value() const;
    /// get_encoding() of a type whose contents octets live in the cache itself (INTEGER, OCTET
    /// STRING): a present value's cache holds its octets even after a change of tag, class or
    /// optionality invalidated it, so it is revalidated rather than rebuilt.
    unsigned int get_encoding_kept_in_cache() const;

    mutable kelm_buffer_t encoding; ///< cache of the contents octets
    kelm_asn_object* parent;        ///< the containing object, told of changes; not owned
    kelm_asn_object* default_value; ///< owned
    int optional;                   ///< the element may be absent
    int defaultable;                ///< the element has a default value
    int value_valid;                ///< a value is present
    mutable int encoding_valid;     ///< the cache matches the value
    security_t security;            ///< the security the object was made with
    int constructed;                ///< the last decoded identifier had the constructed bit
    int indefinite;                 ///< the last decoded length was indefinite
    int generate_constructed;       ///< written with the constructed bit
    int tag_class;                  ///< 0 universal, 1 application, 2 context-specific, 3 private
    unsigned int tag;               ///< the tag number
    int primitive_permitted;        ///< a primitive encoding is accepted when decoding
    int constructed_permitted;      ///< a constructed encoding is accepted when decoding
    int indefinite_permitted;       ///< an indefinite length is accepted when decoding
    kelm_asn_preread_t preread;     ///< called at the start of every asnread; null if none
    kelm_asn_postread_t postread;   ///< called at the end of every asnread; null if none
    char type_name[17];             ///< the type's name, zero-padded

  private:
    unsigned int read_frame(kelm_r_buffer_t& input);
};

/// The abstract base of the primitive types; it adds nothing but its destructor.
class KELM_API kelm_asn_primitive : public kelm_asn_object {
  public:
    /// An absent primitive with the security `sec`.
    explicit kelm_asn_primitive(security_t sec) : kelm_asn_object(sec) {}
    ~kelm_asn_primitive() override;
};

/// Counts the constructed levels a decoding thread is inside, and refuses a level past
/// KELM_ASN_MAX_NESTING, so that no input can exhaust the stack. The count is the calling
/// thread's own.
class KELM_API kelm_asn_nesting_guard {
  public:
    /// Enters one level when the calling thread is inside fewer than KELM_ASN_MAX_NESTING.
    kelm_asn_nesting_guard();
    /// Leaves the level entered, if any.
    ~kelm_asn_nesting_guard();
    kelm_asn_nesting_guard(const kelm_asn_nesting_guard&) = delete;
    kelm_asn_nesting_guard& operator=(const kelm_asn_nesting_guard&) = delete;
    /// False when this level is one too deep.
    bool admitted() const { return admitted_; }
    /// The number of levels the calling thread is inside.
    static unsigned int depth();

  private:
    bool admitted_;
};

#endif
