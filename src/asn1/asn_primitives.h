// The universal primitive types: INTEGER, BOOLEAN, NULL, BIT STRING (with a named-bit variant)
// and OCTET STRING.
//
// Every getter answers KELM_ASN_VALUE_MISSING for an absent value without default, and the
// default's value for an absent value with one. Getters that return pointers point into the
// object's own storage, valid until the next change of the value.
#ifndef KELM_ASN_PRIMITIVES_H
#define KELM_ASN_PRIMITIVES_H

#include "asn_object.h"

// INTEGER (universal 2). The contents octets live in the cache; beside them a 32-bit value that
// is meaningful while `int_valid` is set.
class KELM_API kelm_asn_integer : public kelm_asn_primitive {
  public:
    explicit kelm_asn_integer(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_integer() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    unsigned int get_encoding() const override;
    using kelm_asn_object::get_encoding;
    int set_default_value(kelm_asn_object* value) override;
    int set_secure(security_t sec) override;

    // Stores the value in minimal two's-complement form (X.690 8.3.2).
    unsigned int set_value(int value);
    // Stores the octets as given (no check of minimal form; 0 octets are accepted).
    unsigned int set_value(const unsigned char* octets, unsigned int length);
    // KELM_ASN_INTEGER_RANGE when the octets do not fit a signed 32-bit value.
    unsigned int get_value(int& value) const;
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;
    unsigned int set_default_value(int value);
    unsigned int set_default_value(const unsigned char* octets, unsigned int length);

  private:
    // Recomputes the 32-bit value from the cached octets.
    void compute_value();

    int value;
    int int_valid;
};

// BOOLEAN (universal 1). Holds whatever set_value was given; 1 or 0 after decoding.
class KELM_API kelm_asn_boolean : public kelm_asn_primitive {
  public:
    explicit kelm_asn_boolean(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_boolean() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int set_default_value(kelm_asn_object* value) override;

    unsigned int set_value(int value);
    unsigned int get_value(int& value) const;
    unsigned int set_default_value(int value);

  private:
    int value;
};

// NULL (universal 5): no value, always present and valid.
class KELM_API kelm_asn_null : public kelm_asn_primitive {
  public:
    explicit kelm_asn_null(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_null() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int set_default_value(kelm_asn_object* value) override;
    int is_valid(int deep) const override;
    int is_present() const override;
};

// BIT STRING (universal 3). Its own buffer holds the bit octets; beside them one count octet.
//
// Kept for compatibility with existing buffers: set_value stores the number of bits USED in the
// last octet as the count octet and writes it unchanged as the first contents octet; reading back
// gives octets * 8 when the count octet is 0 and octets * 8 - 8 + count otherwise. Values set
// through this class therefore read back correctly through it.
class KELM_API kelm_asn_bitstring : public kelm_asn_primitive {
  public:
    explicit kelm_asn_bitstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_bitstring() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    int set_default_value(kelm_asn_object* value) override;
    int set_secure(security_t sec) override;

    unsigned int set_value(const unsigned char* bit_octets, unsigned int bit_count);
    unsigned int get_value(unsigned char*& bit_octets, unsigned int& bit_count) const;
    unsigned int set_default_value(const unsigned char* bit_octets, unsigned int bit_count);

  protected:
    unsigned int decode_segments(kelm_r_buffer_t& input, unsigned int length);
    // The bit octets of any bit string (a named-bits value may default to a plain one).
    static const kelm_buffer_t& stored_bits(const kelm_asn_bitstring& value) { return value.bits; }

    mutable kelm_buffer_t bits;
    mutable unsigned char count;
};

// A BIT STRING of named bits: bit 0 is the most significant bit of the first octet. Written with
// trailing zero octets removed and the count octet recomputed from the last octet.
class KELM_API kelm_asn_namedbits : public kelm_asn_bitstring {
  public:
    explicit kelm_asn_namedbits(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_namedbits() override;

    unsigned int asnwrite(kelm_buffer_t& output) const override;

    unsigned int set_bit(unsigned int bit, int on);
    unsigned int get_bit(unsigned int bit, int& on) const;
};

// OCTET STRING (universal 4). The contents octets live in the cache, with one 0x00 kept just past
// the last octet (not counted), so that text can be used as a NUL-terminated string.
class KELM_API kelm_asn_octetstring : public kelm_asn_primitive {
  public:
    explicit kelm_asn_octetstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_octetstring() override;

    unsigned int decode_value(kelm_r_buffer_t& input, unsigned int length) override;
    unsigned int encode_value(kelm_buffer_t& output) const override;
    unsigned int get_encoding() const override;
    using kelm_asn_object::get_encoding;
    int set_default_value(kelm_asn_object* value) override;
    int set_secure(security_t sec) override;

    unsigned int set_value(const unsigned char* octets, unsigned int length);
    unsigned int get_value(unsigned char*& octets, unsigned int& length) const;
    unsigned int set_default_value(const unsigned char* octets, unsigned int length);

  protected:
    // Replaces the contents with `length` octets and keeps the hidden 0x00 after them.
    void store_contents(const unsigned char* octets, unsigned int length);
};

#endif
