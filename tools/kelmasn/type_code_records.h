// The record types that the library reaches only by type code (certificate requests, lists of
// object updates and a bare int), for the tool's encode and decode.
//
// Their JSON follows the same rules as the table-driven types (json_records.h): texts are strings
// or null, the body is a hex string, the updates an array of objects. A bare int is the object
// {"value": n}.
#ifndef KELMASN_TOOL_TYPE_CODE_RECORDS_H
#define KELMASN_TOOL_TYPE_CODE_RECORDS_H

#include <string>

#include "asn_record.h"

namespace kelmasn_tool {

struct TypeCodeRecord {
    const char* name;       // "cert_request_in"
    const char* class_name; // the hand-written message class, for the listing
    unsigned int code;      // 0x103
    // The record's fields, for JSON only: the library encodes these records with their
    // hand-written classes through kelmasn_encode_obj and kelmasn_decode_obj.
    const kelm_record_type* json_fields;
};

// Every record type reached by type code; `count` receives their number.
const TypeCodeRecord* type_code_records(unsigned int& count);

// The type named `name` ("cert_request_in") or whose code `name` is, in decimal or in hex with
// 0x ("259", "0x103"); null when there is none.
const TypeCodeRecord* type_code_record_named(const std::string& name);

// True when `name` is a number (decimal, or hex with 0x); `code` receives it.
bool parse_type_code(const std::string& name, unsigned int& code);

} // namespace kelmasn_tool

#endif
