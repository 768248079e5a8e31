// The copy of a certificate request's body, shared by the message class and the direct codec of
// the type-code entry points, so that both allocate and fail alike, at the same site. Internal to
// the library: not exported, not installed.
#ifndef KELM_ASN_EKOBJS_INTERNAL_H
#define KELM_ASN_EKOBJS_INTERNAL_H

// A malloc'ed copy of `length` (not 0) body octets, which the caller frees. Throws
// kelm_asn_memexception when memory runs out.
unsigned char* kelm_copy_cert_request_body(const unsigned char* stored, unsigned int length);

#endif
