// Records as JSON, through the same field tables that the library encodes and decodes with.
//
// Texts are strings (null for a null pointer), byte arrays are hex strings, lists are arrays,
// absent optional records are null, slot arrays are arrays of their slots (null for an empty
// slot; the empty slots after the last filled one are left out), integers are numbers.
#ifndef KELMASN_TOOL_JSON_RECORDS_H
#define KELMASN_TOOL_JSON_RECORDS_H

#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "asn_record.h"
#include "local_text.h"

namespace kelmasn_tool {

// A JSON document that does not fit the type; what() names the field ("attrs[1].name: ...").
class JsonFieldError : public std::runtime_error {
  public:
    explicit JsonFieldError(const std::string& what) : std::runtime_error(what) {}
};

// How texts and missing fields are taken.
struct JsonOptions {
    // A field that the document leaves out is an error instead of zero or null.
    bool strict = false;
    // The record's texts are in the local code set (as the local-code-set entry points read and
    // write them) and the JSON's in UTF-8: each text is converted, and one that the local code
    // set cannot hold is an error. Null: texts are UTF-8 on both sides.
    const LocalText* local = nullptr;
    // The lengths of the OCTET STRINGs that the record's texts kept with their NUL came from, in
    // the order of the record's fields: a text that came without its NUL is read no further, and
    // one past the lengths given not at all. Null: such texts are read up to their NUL (records
    // that the tool built itself).
    const std::vector<size_t>* octet_text_lengths = nullptr;
};

nlohmann::ordered_json record_to_json(const kelm_record_type& type, const void* record,
                                      const JsonOptions& options = {});

// Fills `record` (zeroed, type.record_size bytes) from `json`, allocating with malloc so that
// kelm_asn_record::free_record releases it, also after a JsonFieldError.
void record_from_json(const kelm_record_type& type, const nlohmann::ordered_json& json,
                      void* record, const JsonOptions& options = {});

} // namespace kelmasn_tool

#endif
