// The direct codec: a record of a declared type written as its header and DER straight from the
// record and its field table, and DER read straight into the record, with no value object.
//
// The message classes (kelm_asn_record::encode and ::decode) stay the reference for what a call
// produces. The direct codec handles what it fully understands: every record the object path
// encodes without refusing it, and every buffer in the definite-length DER shape that the object
// path writes. For anything else (a record nested too deep, a null entry of a list of separately
// allocated records, a constructed string, an indefinite length, a tag or length in a form other
// than the fewest octets, a truncated or surplus element) it gives up before the caller can see
// anything: what it allocated is released, the record is put back byte for byte, and the caller
// runs the object path, which then gives the status, the stderr line and the record.
//
// Exhausted memory is not given up on: each allocation that the decoder makes is one of the
// record's own (a text, a byte array, a list's array, a separately allocated record) and fails
// exactly as get_record fails at that allocation: the same exception and site, or the same
// status, and for a type that ignores its elements' statuses the same silent null. The encoder
// makes one allocation, the output buffer, which fails as the output buffer of the object path.
//
// Ownership: a decode leaves the record owning every string and array it allocated, released with
// kelm_asn_record::free_record; an encode hands `out` a block of malloc, released with free.
#ifndef KELM_ASN_RECORD_DIRECT_H
#define KELM_ASN_RECORD_DIRECT_H

#include "asn_record.h"

// Encodes `record` straight into `out` (header with `version`, then the DER). Returns false,
// having changed nothing, when the object path must do the call; else true with the call's
// result in `status` (exceptions of the runtime's family already reported on stderr).
bool kelm_direct_encode(const kelm_record_type& type, const void* record, kelm_asn_buffer_t& out,
                        int version, security_t mode, unsigned int& status);

// Decodes `in` straight into `record`. Returns false, with the record as it came and nothing
// allocated, when the object path must do the call; else true with the call's result in `status`.
bool kelm_direct_decode(const kelm_record_type& type, void* record, const kelm_asn_buffer_t& in,
                        int version, security_t mode, unsigned int& status);

// True when calls must take the object path only: the environment variable
// KELMASN_FORCE_OBJECT_PATH is set to a non-empty value other than "0" when the process first
// asks, or kelm_force_object_path(true) was called.
bool kelm_object_path_forced();
// Forces the object path (or lets the direct codec run again) for the whole process.
void kelm_force_object_path(bool forced);

// One whole call as an entry point makes it: the direct codec, or the object path when the
// direct codec gives the call up or the object path is forced.
unsigned int kelm_record_encode(const kelm_record_type& type, const void* record,
                                kelm_asn_buffer_t& out, int version, security_t mode);
unsigned int kelm_record_decode(const kelm_record_type& type, void* record,
                                const kelm_asn_buffer_t& in, int version, security_t mode);

#endif
