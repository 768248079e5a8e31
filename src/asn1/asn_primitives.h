/// \file
/// The universal primitive types: INTEGER, BOOLEAN, NULL, BIT STRING (with a named-bit variant)
/// and OCTET STRING.
///
/// Every getter answers KELM_ASN_VALUE_MISSING for an absent value without default, and the
/// default's value for an absent value with one. Getters that return pointers point into the
/// object's own storage, valid until the next change of the value.
#ifndef KELM_ASN_PRIMITIVES_H
#define KELM_ASN_PRIMITIVES_H

#include "asn_object.h"

/// INTEGER (universal 2). The contents octets live in the cache; beside them a 32-bit value that
/// is meaningful while `int_valid` is set.
class KELM_API kelm_asn_integer : public kelm_asn_primitive {
  public:
    /// An absent INTEGER (universal 2), primitive form only.
    explicit kelm_asn_integer(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_integer() override;

    /// Copies the `length` contents octets as they are (any length, minimal or not, is
    /// accepted) and marks the value present.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Nothing to do: the octets already are the cache. Returns 0.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// The octets of a present value are the cache itself, so it is revalidated rather than
    /// rebuilt; an absent value takes its default's.
    unsigned int get_encoding() const override;
    using kelm_asn_object::get_encoding;
    /// As kelm_asn_object::set_default_value.
    int set_default_value(kelm_asn_object* value) override;
    /// Sets the security of the object and of the buffer that holds its octets. Returns 0.
    int set_secure(security_t sec) override;

    /// Stores the value in minimal two's-complement form (X.690 8.3.2).
    unsigned int set_value(int value);
    /// Stores the octets as given (no check of minimal form; 0 octets are accepted).
    unsigned int set_value(const unsigned char* octets, unsigned int length);
    /// The value as a signed 32-bit integer; KELM_ASN_INTEGER_RANGE when the octets do not fit
    /// one (more than four octets, unless the first is 0x00).
    unsigned int get_value(int& value) const;
    /// Points `octets` at the contents octets, most significant first, held by the object (not
    /// a copy), and sets `length` to their count.
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;
    /// Makes a new INTEGER of this tag and class holding `value` the default value (owned).
    unsigned int set_default_value(int value);
    /// Makes a new INTEGER of this tag and class holding the octets the default value (owned).
    unsigned int set_default_value(const unsigned char* octets, unsigned int length);

  private:
    /// Recomputes the 32-bit value from the cached octets.
    void compute_value();

    int value;     ///< the value, meaningful while int_valid is set
    int int_valid; ///< the octets fit a signed 32-bit value
};

/// BOOLEAN (universal 1). Holds whatever set_value was given; 1 or 0 after decoding.
class KELM_API kelm_asn_boolean : public kelm_asn_primitive {
  public:
    /// An absent BOOLEAN (universal 1), primitive form only.
    explicit kelm_asn_boolean(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_boolean() override;

    /// One contents octet: 1 when it is non-zero, else 0; any other length gives
    /// KELM_ASN_BAD_ENCODING.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// One octet: 0x00 for the value 0, 0xFF for any other.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// As kelm_asn_object::set_default_value.
    int set_default_value(kelm_asn_object* value) override;

    /// Stores `value` unchanged (any non-zero value is true) and marks it present.
    unsigned int set_value(int value);
    /// The value as stored, or 1 or 0 after decoding.
    unsigned int get_value(int& value) const;
    /// Makes a new BOOLEAN of this tag and class holding `value` the default value (owned).
    unsigned int set_default_value(int value);

  private:
    int value; ///< as set, or 1 or 0 after decoding
};

/// NULL (universal 5): no value, always present and valid.
class KELM_API kelm_asn_null : public kelm_asn_primitive {
  public:
    /// A NULL (universal 5), primitive form only.
    explicit kelm_asn_null(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_null() override;

    /// Accepts only empty contents; any other length gives KELM_ASN_BAD_ENCODING.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Writes nothing. Returns 0.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// As kelm_asn_object::set_default_value.
    int set_default_value(kelm_asn_object* value) override;
    /// 1.
    int is_valid(int deep) const override;
    /// 1.
    int is_present() const override;
};

/// BIT STRING (universal 3). Its own buffer holds the bit octets; beside them one count octet.
///
/// Kept for compatibility with existing buffers: set_value stores the number of bits USED in the
/// last octet as the count octet and writes it unchanged as the first contents octet; reading back
/// gives octets * 8 when the count octet is 0 and octets * 8 - 8 + count otherwise. Values set
/// through this class therefore read back correctly through it.
class KELM_API kelm_asn_bitstring : public kelm_asn_primitive {
  public:
    /// An absent BIT STRING (universal 3); primitive and constructed forms are accepted,
    /// indefinite lengths are not.
    explicit kelm_asn_bitstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_bitstring() override;

    /// Primitive form: the count octet (at most 7), then the bit octets; constructed form: the
    /// segments joined, where only the last may leave bits unused. The unused bits of the last
    /// octet are cleared. KELM_ASN_BAD_BITSTRING for empty contents, a count octet above 7 or
    /// no segment; KELM_ASN_BAD_BITSTRING_PADDING for a segment with unused bits that is not
    /// the last.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// The count octet as stored, then the bit octets.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// As kelm_asn_object::set_default_value.
    int set_default_value(kelm_asn_object* value) override;
    /// Sets the security of the object and of the buffer that holds its bits. Returns 0.
    int set_secure(security_t sec) override;

    /// Stores the first `bit_count` bits of `bit_octets` (the bits past them in the last octet
    /// cleared) and marks the value present; the count octet becomes `bit_count` modulo 8.
    unsigned int set_value(const unsigned char* bit_octets, unsigned int bit_count);
    /// Points `bit_octets` at the bit octets, held by the object (not a copy), and sets
    /// `bit_count` from their number and the count octet as the class notes.
    unsigned int get_value(unsigned char*& bit_octets, unsigned int& bit_count) const;
    /// Makes a new BIT STRING of this tag and class holding the bits the default value (owned).
    unsigned int set_default_value(const unsigned char* bit_octets, unsigned int bit_count);

  protected:
    /// Reads the segments of a constructed encoding and joins their bits.
    unsigned int decode_segments(kelm_r_buffer_t& input, unsigned int length);
    /// The bit octets of any bit string (a named-bits value may default to a plain one).
    static const kelm_buffer_t& stored_bits(const kelm_asn_bitstring& value) { return value.bits; }

    mutable kelm_buffer_t bits;  ///< the bit octets, without the count octet
    mutable unsigned char count; ///< the count octet (see the class)
};

/// A BIT STRING of named bits: bit 0 is the most significant bit of the first octet. Written with
/// trailing zero octets removed and the count octet recomputed from the last octet.
class KELM_API kelm_asn_namedbits : public kelm_asn_bitstring {
  public:
    /// An absent named-bits BIT STRING (universal 3).
    explicit kelm_asn_namedbits(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_namedbits() override;

    /// Removes the trailing zero octets and recomputes the count octet from the last octet,
    /// then writes the element as kelm_asn_object::asnwrite. Kept for compatibility with
    /// existing buffers: a last octet ending in binary 100 gets the count 1, never 2.
    unsigned int asnwrite(kelm_buffer_t& output) const override;

    /// Sets (`on` non-zero) or clears bit number `bit`, growing the value with zero octets to
    /// reach a bit that is set; marks the value present.
    unsigned int set_bit(unsigned int bit, int on);
    /// Sets `on` to bit number `bit` (0 beyond the stored octets).
    unsigned int get_bit(unsigned int bit, int& on) const;
};

/// OCTET STRING (universal 4). The contents octets live in the cache, with one 0x00 kept just past
/// the last octet (not counted), so that text can be used as a NUL-terminated string.
class KELM_API kelm_asn_octetstring : public kelm_asn_primitive {
  public:
    /// An absent OCTET STRING (universal 4); primitive and constructed forms and indefinite
    /// lengths are accepted.
    explicit kelm_asn_octetstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_octetstring() override;

    /// Primitive form: the contents octets; constructed form: the segments' octets joined (no
    /// segment gives an empty value). A failing segment's status is returned unchanged.
    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    /// Nothing to do: the octets already are the cache. Returns 0.
    unsigned int encode_value(kelm_buffer_t& output) const override;
    /// The octets of a present value are the cache itself, so it is revalidated rather than
    /// rebuilt; an absent value takes its default's.
    unsigned int get_encoding() const override;
    using kelm_asn_object::get_encoding;
    /// As kelm_asn_object::set_default_value.
    int set_default_value(kelm_asn_object* value) override;
    /// Sets the security of the object and of the cache that holds its octets. Returns 0.
    int set_secure(security_t sec) override;

    /// Stores a copy of `length` octets and marks the value present.
    unsigned int set_value(const unsigned char* octets, unsigned int length);
    /// Points `octets` at the octets, held by the object (not a copy, followed by a 0x00 that
    /// is not counted), and sets `length` to their count.
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;
    /// Makes a new OCTET STRING of this tag and class holding the octets the default value
    /// (owned).
    unsigned int set_default_value(const unsigned char* octets, unsigned int length);

  protected:
    /// Replaces the contents with `length` octets and keeps the hidden 0x00 after them.
    void store_contents(const unsigned char* octets, unsigned int length);
};

#endif
