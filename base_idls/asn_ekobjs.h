/// \file
/// The message classes of certificate requests and object updates, written by hand rather than
/// declared as field tables: each derives from kelm_v37_asnbase, so its SEQUENCE starts with the
/// version element INTEGER 1, which set_value never changes and get_value never reads. Texts are
/// OCTET STRINGs that hold the text with its NUL (kelm_set_strvalue / kelm_get_strvalue).
///
/// Ownership: get_value allocates every text, body and array it stores in the record with malloc;
/// free_obj releases them with free (not the record itself) and resets nothing.
#ifndef KELM_ASN_EKOBJS_H
#define KELM_ASN_EKOBJS_H

#include "asn_lists.h"
#include "asnutils.h"
#include "kelm/ekobjs.h"

/// cert_request ::= SEQUENCE { INTEGER (1), OCTET STRING, OCTET STRING, OCTET STRING OPTIONAL }
class KELM_API kelm_asn_cert_request_in : public kelm_v37_asnbase {
  public:
    /// The message with its four elements, the body optional.
    explicit kelm_asn_cert_request_in(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_cert_request_in() override;

    /// The two texts, then the body when body_length is not 0 (and body not null). Returns the
    /// first non-zero status.
    unsigned int set_value(const cert_request_in& record);
    /// Clears the four fields, then reads the two texts (never null: at least an empty string)
    /// and the body (null and length 0 when absent). Throws kelm_asn_memexception when memory
    /// runs out.
    unsigned int get_value(cert_request_in& record) const;
    /// Releases both texts, and the body when body_length is not 0: the length decides, not the
    /// pointer.
    static void free_obj(cert_request_in& record);

  private:
    kelm_asn_octetstring string1;
    kelm_asn_octetstring string2;
    kelm_asn_octetstring body;
};

/// ekobj_update ::= SEQUENCE { INTEGER (1), INTEGER, OCTET STRING, INTEGER }
class KELM_API kelm_asn_ekobj_update_t : public kelm_v37_asnbase {
  public:
    /// The message with its four elements.
    explicit kelm_asn_ekobj_update_t(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_ekobj_update_t() override;

    /// Returns the first non-zero status.
    unsigned int set_value(const ekobj_update_s_t& record);
    /// Clears the record, reads the two numbers (0 when one does not fit 32 bits) and the text.
    /// Throws kelm_asn_memexception when memory runs out.
    unsigned int get_value(ekobj_update_s_t& record) const;
    /// Releases the text with free when it is not null.
    static void free_obj(ekobj_update_s_t& record);

  private:
    kelm_asn_integer number1;
    kelm_asn_octetstring text;
    kelm_asn_integer number2;
};

/// update_list ::= SEQUENCE { INTEGER (1), SEQUENCE OF ekobj_update }
/// Out of memory while copying the list is returned as 0x10652065, not thrown.
class KELM_API kelm_asn_ekobj_update_list_t : public kelm_v37_asnbase {
  public:
    /// The message with the version element and an empty list.
    explicit kelm_asn_ekobj_update_list_t(security_t sec = KELM_SECURITY_PLAIN);
    ~kelm_asn_ekobj_update_list_t() override;

    /// One list entry per update; stops at the first entry that cannot be added or filled, the
    /// entries before it staying in the list.
    unsigned int set_value(const ekobj_update_list_s_t& record);
    /// `count` is the number of entries, `updates` a malloc'ed array of them (null when there are
    /// none). A failure part way leaves the entries not yet read zeroed, so that free_obj can
    /// release the record.
    unsigned int get_value(ekobj_update_list_s_t& record) const;
    /// Releases the text of each of the `count` entries, then the array, with free; nothing
    /// when `updates` is null (an array that could not be allocated).
    static void free_obj(ekobj_update_list_s_t& record);

  private:
    kelm_asn_sequenceof<kelm_asn_ekobj_update_t> updates;
};

#endif
