// The record types the library knows, for tools that work by type name.
#ifndef KELM_ASN_RECORD_REGISTRY_H
#define KELM_ASN_RECORD_REGISTRY_H

#include "asn_record.h"

// Every record type with typed entry points, in the order of their families; `count` receives
// their number.
KELM_API const kelm_record_type* const* kelm_record_types(unsigned int& count);

// The type whose record name ("attr_s_t"), class name ("asn_attr_t") or short name ("attr_t",
// "attr") is `name`; null when there is none.
KELM_API const kelm_record_type* kelm_record_type_named(const char* name);

#endif
