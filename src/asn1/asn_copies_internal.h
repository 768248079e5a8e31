// The copies of stored octets that a record receives, shared by the value adapters (asnutils.cpp)
// and the direct codec of records, so that both allocate and fail alike, at the same sites.
// Internal to the library: nothing here is exported or installed.
//
// Ownership: each result is a malloc block that the caller frees with free.
#ifndef KELM_ASN_COPIES_INTERNAL_H
#define KELM_ASN_COPIES_INTERNAL_H

// A NUL-terminated copy of a stored string (kelm_get_strvalue): the empty string when fewer than
// two octets are stored, else exactly the stored octets. Throws kelm_asn_memexception when memory
// runs out.
unsigned char* kelm_copy_stored_string(const unsigned char* stored, unsigned int count);

// A copy of `count` stored octets, null when there are none (kelmasn_octetstring's counted
// getter). Throws kelm_asn_memexception when memory runs out.
unsigned char* kelm_copy_stored_octets(const unsigned char* stored, unsigned int count);

#endif
