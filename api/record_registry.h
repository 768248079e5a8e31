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

#endif
