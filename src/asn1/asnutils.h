/// \file
/// Value adapters between record fields of plain widths and the runtime's value objects, the
/// message base with its four-byte header, and the string helpers.
///
/// The encoded-buffer header is 04 (header length), the version's low byte, AC, DC, followed by
/// the DER encoding of the message.
#ifndef KELM_ASNUTILS_H
#define KELM_ASNUTILS_H

#include "asn_constructed.h"
#include "asn_primitives.h"
#include "kelm_asn_buffer.h"

/// The empty string stored for a null text pointer.
extern KELM_API const char* const NULL_STRING;

/// The base of every message class: an empty SEQUENCE, plus the header format.
class KELM_API kelm_asnbase : public kelm_asn_sequence {
  public:
    /// An empty message: a SEQUENCE with no element yet.
    explicit kelm_asnbase(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asnbase() override;

    int set_default_value(kelm_asn_object* value) override;
    using kelm_asn_sequence::set_default_value;
    /// Installs an empty message as the default value.
    int set_default_value();

    /// Writes the header and the object's encoding; on success the bytes (malloc'ed) are handed
    /// to `buffer`, which the caller releases with kelm_asn_buffer_free. On failure `buffer` is
    /// untouched and the partial bytes are released.
    static unsigned int saveEncoding(const kelm_asn_object& object, int version,
                                     kelm_asn_buffer_t& buffer);
    /// Checks the header for `version` and has the object read the bytes after it.
    /// KELM_ASN_BAD_VERSION, without reading further, when the header does not fit.
    static unsigned int loadObject(kelm_asn_object& object, int version,
                                   const kelm_asn_buffer_t& buffer);
    /// Kept for compatibility with existing callers: reports whether the buffer carries a usable
    /// header, not the version itself. `flag` is 0 exactly when the result is 0.
    static unsigned int get_encoded_version(const kelm_asn_buffer_t& buffer, unsigned int& flag);
};

/// A message base whose first element is INTEGER 1, a format version written but never read
/// back into a record.
class KELM_API kelm_v37_asnbase : public kelm_asnbase {
  public:
    /// A message whose first element is the INTEGER 1.
    explicit kelm_v37_asnbase(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_v37_asnbase() override;

  protected:
    kelm_asn_integer version_element; ///< the format version, INTEGER 1
};

/// INTEGER field adapter: narrow reads truncate to the target width without a range check.
class KELM_API kelmasn_integer : public kelm_asn_integer {
  public:
    /// An absent INTEGER.
    explicit kelmasn_integer(security_t sec = KELM_SECURITY_PLAIN);
    ~kelmasn_integer() override;

    int set_default_value(kelm_asn_object* value) override;
    using kelm_asn_integer::set_default_value;
    /// Installs the default value 0.
    virtual int set_default_value();

    using kelm_asn_integer::get_value;
    /// The value (kelm_intvalue) cut to its low 8 bits. Returns 0.
    unsigned int get_value(unsigned char& target) const;
    /// The value (kelm_intvalue) cut to its low 16 bits. Returns 0.
    unsigned int get_value(unsigned short& target) const;
    /// The value (kelm_intvalue): 0 when it cannot be read as a 32-bit value. Returns 0.
    unsigned int get_value(int& target) const;
    /// The value (kelm_intvalue) taken as unsigned 32 bits. Returns 0.
    unsigned int get_value(unsigned int& target) const;
};

/// OCTET STRING field adapter: NUL-terminated strings (stored with their NUL), single
/// characters, counted and fixed-size byte arrays.
class KELM_API kelmasn_octetstring : public kelm_asn_octetstring {
  public:
    /// An absent OCTET STRING.
    explicit kelmasn_octetstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelmasn_octetstring() override;

    int set_default_value(kelm_asn_object* value) override;
    using kelm_asn_octetstring::set_default_value;
    /// Installs the stored form of an empty string, the single byte 00.
    virtual int set_default_value();

    using kelm_asn_octetstring::set_value;
    /// The character and a NUL: c 00, or the single byte 00 for c == 0.
    unsigned int set_value(unsigned char c);
    /// The text with its NUL (kelm_set_strvalue); a null pointer as the single byte 00.
    unsigned int set_value(const char* text);
    /// The text with its NUL (kelm_set_strvalue); a null pointer as the single byte 00.
    unsigned int set_value(const unsigned char* text);

    using kelm_asn_octetstring::get_value;
    /// The first stored byte, or 0 when nothing is stored.
    unsigned int get_value(unsigned char& target) const;
    /// Exactly `count` bytes into a fixed-size array. Kept for compatibility: the stored length
    /// is not checked against `count`; bytes past the stored ones are taken as zeros, so a short
    /// value never exposes other memory.
    unsigned int get_value(unsigned int count, unsigned char* target) const;
    /// A malloc'ed copy of the stored bytes (null when none) and their count; the caller frees.
    /// (The octet string's own overload of this signature points into the object instead.)
    unsigned int get_value(unsigned char*& target, unsigned int& count) const;
    /// A malloc'ed NUL-terminated copy (see kelm_get_strvalue); the caller frees.
    unsigned int get_value(char*& target) const;
    /// A malloc'ed NUL-terminated copy (see kelm_get_strvalue); the caller frees.
    unsigned int get_value(unsigned char*& target) const;
};

/// The value of an INTEGER, 0 when it cannot be read as a 32-bit value.
KELM_API int kelm_intvalue(const kelm_asn_integer& value);

/// Stores a NUL-terminated string with its NUL; a null pointer is stored as the single byte 00.
KELM_API unsigned int kelm_set_strvalue(kelm_asn_octetstring& value, const unsigned char* text);
/// As kelm_set_strvalue(kelm_asn_octetstring&, const unsigned char*).
KELM_API unsigned int kelm_set_strvalue(kelm_asn_octetstring& value, const char* text);

/// A malloc'ed copy of a stored string, which the caller frees: the empty string when fewer than
/// two bytes are stored, else exactly the stored bytes (which end in their NUL when they came
/// from kelm_set_strvalue; a value from elsewhere is copied as it is, without an added NUL).
/// Throws kelm_asn_memexception when memory runs out.
KELM_API unsigned int kelm_get_strvalue(const kelm_asn_octetstring& value, unsigned char*& text);
/// As kelm_get_strvalue(const kelm_asn_octetstring&, unsigned char*&); the caller frees the
/// copy with free().
KELM_API unsigned int kelm_get_strvalue(const kelm_asn_octetstring& value, char*& text);

/// Releases the first `count` strings of `array` (when count > 0), then the array itself.
KELM_API void kelm_free_strings(int count, char** array);

#endif
