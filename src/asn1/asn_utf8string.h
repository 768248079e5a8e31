/// \file
/// The text field adapter: a UTF8String whose value is a NUL-terminated string of the record,
/// converted between the local code set and UTF-8 when the element is in the local-code-set mode
/// (security_t 2), and passed through unchanged otherwise.
#ifndef KELM_ASN_UTF8STRING_H
#define KELM_ASN_UTF8STRING_H

#include "asn_charstring.h"

/// The text field adapter: a UTF8String holding a NUL-terminated string of a record. In the
/// local-code-set mode (KELM_SECURITY_LOCAL_CODESET) the text is converted from the calling
/// thread's local code set to UTF-8 when set and back when read; a character without a form in
/// the target, and each byte of ill-formed input, becomes '?', so conversion never fails for bad
/// text. In the other modes the bytes pass unchanged.
class KELM_API kelmasnUTF8String : public kelm_asn_UTF8String {
  public:
    /// An absent UTF8String with the mode `sec`.
    explicit kelmasnUTF8String(security_t sec = KELM_SECURITY_PLAIN);
    ~kelmasnUTF8String() override;

    int set_default_value(kelm_asn_object* value) override;
    using kelm_asn_UTF8String::set_default_value;
    /// Sets the value to the empty string.
    int set_default_value();

    /// Stores the text (a null pointer or the empty string as a zero-length value, without the
    /// NUL that OCTET STRING texts carry).
    virtual unsigned int set_value(const char* text);
    /// As set_value(const char*).
    unsigned int set_value(const unsigned char* text);
    using kelm_asn_UTF8String::set_value;

    /// A malloc'ed NUL-terminated copy of the value, which the caller frees: the empty string for
    /// a zero-length value. KELM_ASN_OUT_OF_MEMORY (and `text` null) when memory runs out.
    virtual unsigned int get_value(char*& text) const;
    /// As get_value(char*&); the caller frees the copy.
    unsigned int get_value(unsigned char*& text) const;
    using kelm_asn_UTF8String::get_value;
};

#endif
