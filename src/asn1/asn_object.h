// The root of every ASN.1 value: tag, state flags, the cached contents encoding, an optional
// default value, and the tag-length-value frame of BER/DER (X.690 (08/2015) 8.1) written and read
// once for all types. Subclasses supply only their contents octets through decode_value and
// encode_value.
//
// Ownership: an object owns its default value and its cache buffer; it never owns its parent.
// Value objects cannot be copied or assigned: both throw kelm_asn_unsupportederror.
#ifndef KELM_ASN_OBJECT_H
#define KELM_ASN_OBJECT_H

#include "asn_buffer.h"
#include "asn_status.h"

// How far an invalidation travels: 0 keeps it to the object, any non-zero value also asks the
// parent to re-check its validity.
enum invalidate_t : int {
    KELM_INVALIDATE_LOCAL = 0,
    KELM_INVALIDATE_CONTAINER = 1,
    KELM_INVALIDATE_NOTIFY = 2,
};

class kelm_asn_object;

// Decode callbacks, called at the start and at the end of every asnread.
typedef void (*kelm_asn_preread_t)(kelm_asn_object* object, kelm_r_buffer_t& input);
typedef void (*kelm_asn_postread_t)(kelm_asn_object* object, kelm_r_buffer_t& input, int status);

class KELM_API kelm_asn_object {
  public:
    explicit kelm_asn_object(security_t sec);
    // Refused: value objects are never copied (throws kelm_asn_unsupportederror).
    kelm_asn_object(const kelm_asn_object& other);
    // Refused: value objects are never assigned (throws kelm_asn_unsupportederror).
    kelm_asn_object& operator=(const kelm_asn_object& other);

    // The virtual operations, in this order.
    virtual unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) = 0;
    virtual unsigned int encode_value(kelm_buffer_t& output) const = 0;
    virtual int check_valid(int deep);
    virtual void invalidate_encoding() const;
    virtual void invalidate_value(invalidate_t mode);
    virtual void set_value_valid();
    virtual int check_type(unsigned int tag_number, int tag_class_number) const;
    virtual int set_default_value(kelm_asn_object* value);
    virtual unsigned int get_encoding(kelm_buffer_t& output) const;
    virtual unsigned int get_encoding() const;
    virtual int emptyi();
    virtual unsigned int get_child_count() const;
    virtual int encoding_primitive_permitted() const;
    virtual int encoding_constructed_permitted() const;
    virtual int encoding_indefinite_permitted() const;
    virtual int is_constructed() const;
    virtual int is_indefinite_length() const;
    virtual int is_polymorphic() const;
    virtual int should_generate_constructed() const;
    virtual int set_class(int tag_class_number);
    virtual int set_tag(unsigned int tag_number);
    virtual unsigned int display(kelm_buffer_t& output) const;
    virtual int empty();
    virtual int normalize();
    virtual int is_optional() const;
    virtual int is_defaultable() const;
    virtual int is_encoding_valid() const;
    virtual kelm_asn_object* get_default_value() const;
    virtual int is_default_value() const;
    virtual int is_valid(int deep) const;
    virtual int is_present() const;
    virtual ~kelm_asn_object();
    virtual int set_secure(security_t sec);
    virtual unsigned int asnread(kelm_r_buffer_t& input);
    virtual unsigned int asnwrite(kelm_buffer_t& output) const;
    virtual int operator==(const kelm_asn_object& other) const;
    virtual int set_optional(int value);
    virtual int set_empty_permitted(int value);
    virtual int check_encode_flags(int expected) const;
    virtual int check_encode_flags() const;
    virtual unsigned int display_state_flags(kelm_buffer_t& output, int indent) const;

    unsigned int get_tag() const { return tag; }
    int get_class() const { return tag_class; }
    kelm_asn_object* get_parent() const { return parent; }
    void set_parent(kelm_asn_object* container) { parent = container; }
    void set_preread(kelm_asn_preread_t callback) { preread = callback; }
    void set_postread(kelm_asn_postread_t callback) { postread = callback; }
    const char* get_type_name() const { return type_name; }
    security_t get_security() const { return security; }

    // The identifier octets (X.690 8.1.2), minimal: one octet for tag numbers up to 30, else the
    // high-tag form with the number in base 128, most significant group first.
    unsigned int write_type(kelm_buffer_t& output) const;
    // The definite length of the cached contents in the fewest octets (X.690 8.1.3.5);
    // KELM_ASN_BAD_ENCODING when the cache is not valid.
    unsigned int write_length(kelm_buffer_t& output) const;

  protected:
    // Stores a type name of at most 16 characters, cut and zero-padded.
    void set_type_name(const char* name);
    // Fills `encoding` from the value, or from the default value when absent.
    unsigned int fill_cache_from_value() const;
    // get_encoding() of a type whose contents octets live in the cache itself (INTEGER, OCTET
    // STRING): a present value's cache holds its octets even after a change of tag, class or
    // optionality invalidated it, so it is revalidated rather than rebuilt.
    unsigned int get_encoding_kept_in_cache() const;

    mutable kelm_buffer_t encoding; // cache of the contents octets
    kelm_asn_object* parent;
    kelm_asn_object* default_value; // owned
    int optional;
    int defaultable;
    int value_valid;
    mutable int encoding_valid;
    security_t security;
    int constructed;
    int indefinite;
    int generate_constructed;
    int tag_class;
    unsigned int tag;
    int primitive_permitted;
    int constructed_permitted;
    int indefinite_permitted;
    kelm_asn_preread_t preread;
    kelm_asn_postread_t postread;
    char type_name[17];

  private:
    unsigned int read_frame(kelm_r_buffer_t& input);
};

// The abstract base of the primitive types; it adds nothing but its destructor.
class KELM_API kelm_asn_primitive : public kelm_asn_object {
  public:
    explicit kelm_asn_primitive(security_t sec) : kelm_asn_object(sec) {}
    ~kelm_asn_primitive() override;
};

// Counts the constructed levels a decoding thread is inside, and refuses a level past
// KELM_ASN_MAX_NESTING, so that no input can exhaust the stack.
class KELM_API kelm_asn_nesting_guard {
  public:
    kelm_asn_nesting_guard();
    ~kelm_asn_nesting_guard();
    kelm_asn_nesting_guard(const kelm_asn_nesting_guard&) = delete;
    kelm_asn_nesting_guard& operator=(const kelm_asn_nesting_guard&) = delete;
    // False when this level is one too deep.
    bool admitted() const { return admitted_; }
    // The number of levels the calling thread is inside.
    static unsigned int depth();

  private:
    bool admitted_;
};

#endif
