/// \file
/// The character-string types: one class, kelm_asn_charstring, carries every ASN.1 restricted
/// character string, and eight subclasses only restrict the code sets a value may take.
///
/// A code set is named by the universal tag of its string type (X.680 (08/2015) 41):
///
///     12 UTF8String   19 PrintableString   20 TeletexString (T.61)   22 IA5String
///     26 VisibleString   28 UniversalString (UCS-4)   30 BMPString (UCS-2)
///
/// The code set of a value and its tag are the same number: changing the code set re-tags the
/// object.
///
/// One content for the setters and the encoding. A value is held as the contents octets of its
/// current code set, in the OCTET STRING cache (with the hidden 0x00 after them), never as an
/// array of wide characters. Every setter and every in-place conversion stores through that
/// cache and leaves it valid, so a value set here encodes without a stale cache; a decoded value
/// lives in the same place, so it reads back through every getter. The OCTET STRING set_value
/// and get_value see the same octets.
///
/// Statuses: KELM_ASN_CODESET_REJECTED when the class does not accept the code set asked for,
/// KELM_ASN_UNREPRESENTABLE when a character has no form in the target code set (or the stored
/// code set cannot be read in it), KELM_ASN_VALUE_MISSING for an absent value without default.
/// A failed setter or conversion leaves the stored value and code set as they were. Exhausted
/// memory throws kelm_asn_memexception, as every buffer does.
///
/// Ownership: getters append to a buffer the caller owns; setters copy what they are given.
#ifndef KELM_ASN_CHARSTRING_H
#define KELM_ASN_CHARSTRING_H

#include "asn_buffer.h"
#include "asn_primitives.h"

/// The code-set numbers, which are also the universal tag numbers.
enum : unsigned int {
    KELM_CODESET_NONE = 0,       ///< no preferred code set chosen; the bare class's code set
    KELM_CODESET_UTF8 = 12,      ///< UTF8String: UTF-8, one to six octets a character
    KELM_CODESET_PRINTABLE = 19, ///< PrintableString: one octet a character, those IA52P accepts
    KELM_CODESET_T61 = 20,       ///< TeletexString: T.61, an accent octet before a letter
    KELM_CODESET_IA5 = 22,       ///< IA5String: one octet a character, Latin-1 above 0x7F
    KELM_CODESET_VISIBLE = 26,   ///< VisibleString: one octet a character, those IA52V accepts
    KELM_CODESET_UNIVERSAL = 28, ///< UniversalString: UCS-4, four octets a character
    KELM_CODESET_BMP = 30,       ///< BMPString: UCS-2, two octets a character
};

/// A character string of any code set. The bare class accepts no code set: it keeps the OCTET
/// STRING tag 4 and code set 0, and every setter of it is refused; the subclasses are the types
/// to use.
class KELM_API kelm_asn_charstring : public kelm_asn_octetstring {
  public:
    /// An absent character string with tag 4 and code set 0 (no code set accepted).
    explicit kelm_asn_charstring(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_charstring() override;

    /// set_codeset(tag_number): the tag is the code set.
    int set_tag(unsigned int tag_number) override;
    /// 1: the tag follows the code set of the value.
    int is_polymorphic() const override;

    /// The virtual operations added after those of kelm_asn_object, in this order.

    /// 1 when a value of this class may be held in code set `codeset`, else 0.
    virtual int check_accepted_codeset(unsigned int codeset) const;
    /// 1 when a value set from text should take code set `codeset` if it can, else 0.
    virtual int check_preferred_codeset(unsigned int codeset) const;
    /// Re-tags the value (its octets are not converted). KELM_ASN_CODESET_REJECTED when the class
    /// does not accept `codeset`; the tag and code set are then unchanged.
    virtual unsigned int set_codeset(unsigned int codeset);

    /// The value in the local code set, appended to `output`: converted to IA5 as get_value_IA5
    /// does, then mapped octet by octet through IA52Local_table. An octet without a local form
    /// becomes `substitute`; with a zero substitute the call fails with KELM_ASN_UNREPRESENTABLE
    /// and `output` is emptied (its length set to 0).
    virtual unsigned int get_value_C(kelm_buffer_t& output, char substitute) const;
    /// Text in the local code set, zero-terminated (null is taken as empty). Each octet is
    /// mapped to IA5 through Local2IA5_table (an octet without a mapping fails), then the text
    /// takes the preferred code set chosen with set_preferred_codeset if it can, else the first
    /// code set of 19, 20, 26, 22, 30, 12, 28 that this class prefers and that can hold it, else
    /// the first of the same list that the class accepts and that can hold it.
    virtual unsigned int set_value_C(char* text);

    /// The getters append the value, converted to their code set, to `output`; on failure
    /// `output` is left as it was. A VisibleString value reads back only as VisibleString, kept
    /// for compatibility with existing buffers. UTF-8 content read as Printable or Visible is
    /// checked octet by octet as if it were IA5, not decoded.
    virtual unsigned int get_value_IA5(kelm_buffer_t& output) const;
    /// With `convert` 0 the octets are stored unchanged as IA5 (KELM_ASN_CODESET_REJECTED when
    /// the class does not accept 22). Otherwise the IA5 text takes the preferred code set chosen
    /// with set_preferred_codeset if it can, else the first of 19, 20, 26, 22, 12, 30 that the
    /// class prefers and that can hold it, else the first of 22, 12, 30, 28, 19, 20, 26 that the
    /// class accepts and that can hold it.
    virtual unsigned int set_value_IA5(char* text, int convert);
    /// As set_value_IA5(char*, int), the text being the `remaining` octets from the cursor of
    /// `text` (which is not moved).
    virtual unsigned int set_value_IA5(kelm_r_buffer_t& text, int convert);

    /// \name The getter and the raw setters of each code set
    /// The setters below store their octets unchanged in their code set, without checking the
    /// characters, or answer KELM_ASN_CODESET_REJECTED when the class does not accept it. A
    /// kelm_r_buffer_t gives its `remaining` octets from `cursor` and is not moved; a char*
    /// gives the octets before its terminating zero (null is taken as empty). The getters
    /// append the value converted to their code set, as get_value_IA5 does.
    ///@{

    /// The value as PrintableString octets, appended to `output`.
    virtual unsigned int get_value_printable(kelm_buffer_t& output) const;
    /// Stores the text unchanged as a PrintableString value (code set 19).
    virtual unsigned int set_value_printable(char* text);
    /// Stores the octets unchanged as a PrintableString value (code set 19).
    virtual unsigned int set_value_printable(kelm_r_buffer_t& text);
    /// The value as VisibleString octets, appended to `output`.
    virtual unsigned int get_value_visible(kelm_buffer_t& output) const;
    /// Stores the text unchanged as a VisibleString value (code set 26).
    virtual unsigned int set_value_visible(char* text);
    /// Stores the octets unchanged as a VisibleString value (code set 26).
    virtual unsigned int set_value_visible(kelm_r_buffer_t& text);
    /// The value as T.61 octets, appended to `output`.
    virtual unsigned int get_value_T61(kelm_buffer_t& output) const;
    /// Stores the text unchanged as a TeletexString value (code set 20).
    virtual unsigned int set_value_T61(char* text);
    /// Stores the octets unchanged as a TeletexString value (code set 20).
    virtual unsigned int set_value_T61(kelm_r_buffer_t& text);
    /// The value as big-endian UCS-2 octets, appended to `output`.
    virtual unsigned int get_value_BMP(kelm_buffer_t& output) const;
    /// The 16-bit units up to the first zero unit, two octets each exactly as they lie in
    /// memory (not reordered to the big-endian UCS-2 of the encoding).
    virtual unsigned int set_value_BMP(unsigned short* units);
    /// Stores the octets unchanged as a BMPString value (code set 30).
    virtual unsigned int set_value_BMP(kelm_r_buffer_t& text);
    /// The value as big-endian UCS-4 octets, appended to `output`.
    virtual unsigned int get_value_Univ(kelm_buffer_t& output) const;
    /// Stores an empty value (zero octets) in code set 28 whatever the array holds; kept for
    /// compatibility with existing callers. UCS-4 text is set through the kelm_r_buffer_t form.
    virtual unsigned int set_value_Univ(unsigned int* characters);
    /// Stores the octets unchanged as a UniversalString value (code set 28).
    virtual unsigned int set_value_Univ(kelm_r_buffer_t& text);
    /// The value as UTF-8 octets, appended to `output`.
    virtual unsigned int get_value_UTF8(kelm_buffer_t& output) const;
    /// Stores the text unchanged as a UTF8String value (code set 12).
    virtual unsigned int set_value_UTF8(char* text);
    /// Stores the octets unchanged as a UTF8String value (code set 12).
    virtual unsigned int set_value_UTF8(kelm_r_buffer_t& text);
    ///@}

    /// The code set of the value, which is also its tag (0 for the bare class).
    virtual unsigned int get_codeset() const;

    /// \name In-place conversions
    /// The stored value is converted to the named code set as the getter of that code set reads
    /// it, stored, and re-tagged. KELM_ASN_CODESET_REJECTED when the class does not accept the
    /// code set; 0 and nothing changed when the value already is in it. An absent value is never
    /// converted: KELM_ASN_VALUE_MISSING without default, and 0 with one (the default stays the
    /// value used while absent, and is never copied in). A failed conversion leaves the value and
    /// its code set as they were.
    ///@{

    /// Converts the value in place to PrintableString (19).
    unsigned int convert2printable();
    /// Converts the value in place to VisibleString (26).
    unsigned int convert2visible();
    /// Converts the value in place to TeletexString (20).
    unsigned int convert2T61();
    /// Converts the value in place to IA5String (22).
    unsigned int convert2IA5();
    /// Converts the value in place to BMPString (30).
    unsigned int convert2BMP();
    /// Converts the value in place to UniversalString (28).
    unsigned int convert2Univ();
    /// Converts the value in place to UTF8String (12).
    unsigned int convert2UTF8();
    ///@}

  protected:
    /// Converts the value in place to `target` (the common part of the convert2* operations).
    unsigned int convert_to(unsigned int target);
    /// Re-reads the stored value as `target`, appending to `output`.
    unsigned int read_as(unsigned int target, kelm_buffer_t& output) const;

    unsigned int codeset;           ///< the current code set, equal to the tag once one is set
    unsigned int preferred_codeset; ///< KELM_CODESET_NONE until set_preferred_codeset chooses one

  private:
    /// The octets a getter reads and their code set: the object's own when present, else its
    /// default's (a character string's own code set, or the tag of a plain OCTET STRING).
    unsigned int value_to_read(kelm_r_buffer_t& octets, unsigned int& stored) const;
    /// The raw setters: stores `octets` unchanged in `target` if the class accepts it.
    unsigned int store_as(unsigned int target, const kelm_r_buffer_t& octets);
    /// Replaces the value and the code set. Nothing changes if memory runs out.
    void replace_value(const kelm_r_buffer_t& octets, unsigned int target);
    /// The passes of set_value_C and of set_value_IA5 with conversion, over IA5 text.
    unsigned int take_ia5_text(const kelm_r_buffer_t& ia5, bool from_local_text);
    /// Converts `ia5` to `target` and stores it; false (nothing changed) when the class does not
    /// accept `target` or the text has no form in it.
    bool try_ia5_text_as(const kelm_r_buffer_t& ia5, unsigned int target);
};

/// IA5String (22).
class KELM_API kelm_asn_ia5String : public kelm_asn_charstring {
  public:
    /// An absent IA5String, tag and code set 22, the one code set it accepts and prefers.
    explicit kelm_asn_ia5String(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_ia5String() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// PrintableString (19).
class KELM_API kelm_asn_printableString : public kelm_asn_charstring {
  public:
    /// An absent PrintableString, tag and code set 19, the one code set it accepts and prefers.
    explicit kelm_asn_printableString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_printableString() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// VisibleString (26).
class KELM_API kelm_asn_visibleString : public kelm_asn_charstring {
  public:
    /// An absent VisibleString, tag and code set 26, the one code set it accepts and prefers.
    explicit kelm_asn_visibleString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_visibleString() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// TeletexString, T.61 (20).
class KELM_API kelm_asn_teletexString : public kelm_asn_charstring {
  public:
    /// An absent TeletexString, tag and code set 20, the one code set it accepts and prefers.
    explicit kelm_asn_teletexString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_teletexString() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// BMPString, UCS-2 (30).
class KELM_API kelm_asn_bmpString : public kelm_asn_charstring {
  public:
    /// An absent BMPString, tag and code set 30, the one code set it accepts and prefers.
    explicit kelm_asn_bmpString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_bmpString() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// UniversalString, UCS-4 (28).
class KELM_API kelm_asn_universalString : public kelm_asn_charstring {
  public:
    /// An absent UniversalString, tag and code set 28, the one code set it accepts and prefers.
    explicit kelm_asn_universalString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_universalString() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// UTF8String (12). Constructed as an OCTET STRING (tag 4), it takes tag 12 when its constructor
/// sets its code set.
class KELM_API kelm_asn_UTF8String : public kelm_asn_charstring {
  public:
    /// An absent UTF8String, tag and code set 12, the one code set it accepts and prefers.
    explicit kelm_asn_UTF8String(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_UTF8String() override;
    int is_polymorphic() const override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;
};

/// The directory string of directory-style names: the CHOICE of PrintableString, TeletexString,
/// BMPString, UniversalString, UTF8String and IA5String (X.520 DirectoryString, with IA5String
/// added). It decodes any of these tags and keeps the octets as received, re-tagged; set from
/// text it takes the narrowest code set that holds the text: Printable, else T.61, else UTF-8.
/// VisibleString is accepted as a code set but not as an incoming tag. A new directory string
/// has code set 19 (PrintableString), the first one text is tried in.
class KELM_API kelm_asn_directoryString : public kelm_asn_charstring {
  public:
    /// An absent directory string with tag and code set 19 (PrintableString). It accepts the
    /// code sets 19, 20, 22, 26, 28, 30 and 12, and prefers 19, 20, 28 and 12.
    explicit kelm_asn_directoryString(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_directoryString() override;

    /// 1 when `tag_class_number` is the object's class and `tag_number` is 19, 20, 30, 28, 12 or
    /// 22.
    int check_type(unsigned int tag_number, int tag_class_number) const override;
    /// 1: the tag follows the code set of the value.
    int is_polymorphic() const override;
    /// Absent without default: KELM_ASN_VALUE_MISSING. With a preferred code set chosen, the
    /// value is converted to it (it keeps its code set if it has no form there) and 0 returned.
    /// Otherwise the value takes the first of Printable, T.61, Visible, IA5, BMP, UTF-8,
    /// Universal that the class prefers and that can hold it; a value none of them can hold (a
    /// VisibleString value) keeps the code set it has, which the class accepts, and 0 is
    /// returned, so that it still encodes.
    int normalize() override;
    int check_accepted_codeset(unsigned int codeset) const override;
    int check_preferred_codeset(unsigned int codeset) const override;

    /// Converts the value in place to PrintableString; if that works the call ends with 0 and
    /// the preferred code set is not changed. Otherwise, for `codeset` 12, 20, 28 or 30 the
    /// value is converted in place to it, and on success that code set becomes the preferred
    /// one; that conversion's status is returned. Any other code set returns the status of the
    /// failed PrintableString conversion.
    unsigned int set_preferred_codeset(unsigned int codeset);
};

#endif
