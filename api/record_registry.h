// The record types the library knows, for the tool, the tests and the fuzz targets that work by
// type name. Internal: not exported by the shared library and not installed.
#ifndef KELM_RECORD_REGISTRY_H
#define KELM_RECORD_REGISTRY_H

#include "asn_record.h"

// Every record type with typed entry points, in the order of their families; `count` receives
// their number.
const kelm_record_type* const* kelm_record_types(unsigned int& count);

// The type whose record name ("attr_s_t"), class name ("asn_attr_t") or short name ("attr_t",
// "attr") is `name`; null when there is none.
const kelm_record_type* kelm_record_type_named(const char* name);

// A record type reached by type code (kelmasn_encode_obj and kelmasn_decode_obj): its code and its
// description.
struct kelm_type_code_type {
    unsigned int code;
    const kelm_record_type* type;
};

// The record types reached by type code, in the order of their codes; `count` receives their
// number.
const kelm_type_code_type* kelm_type_code_types(unsigned int& count);

#endif
