// Record types as the subcommands reach them, by name or type code, and the calls that encode and
// decode their records.
#ifndef KELMASN_TOOL_TOOL_TYPES_H
#define KELMASN_TOOL_TOOL_TYPES_H

#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "asn_record.h"
#include "json_records.h"
#include "kelm/kelmasn.h"

namespace kelmasn_tool {

// "status 0x106521a4 (unexpected tag)"
std::string status_line(unsigned int status);

// "0x103"
std::string code_text(unsigned int code);

// The offset of the record in a buffer: after the header (its first octet gives its length, 4
// for the header 04 vv AC DC that the library writes) when the magic octets AC DC are there, else
// 0.
size_t record_offset(const std::vector<unsigned char>& bytes);

// A record type as the tool reaches it: through the record mechanism, or by its type code.
struct ToolType {
    const kelm_record_type* type;
    unsigned int code; // 0 for a type with typed entry points
};

// The type that TYPE names: a record type's name, or a type code's record name or number. Null
// `type` when nothing has that name; `code` then holds a number given as TYPE (0 for a name).
ToolType resolve_type(const std::string& name);

// A zeroed record of the type's size, released as its type releases records.
struct RecordStorage {
    explicit RecordStorage(const ToolType& t)
        : type(t), bytes(std::calloc(1, t.type->record_size)) {}
    ~RecordStorage() {
        if (bytes != nullptr) {
            if (type.code != 0)
                kelmasn_obj_free(0, type.code, bytes);
            else
                kelm_asn_record::free_record(*type.type, bytes);
        }
        std::free(bytes);
    }
    RecordStorage(const RecordStorage&) = delete;
    RecordStorage& operator=(const RecordStorage&) = delete;
    const ToolType& type;
    void* bytes;
};

// The records reached by type code go through kelmasn_encode_obj and kelmasn_decode_obj, always
// in the plain mode; every other type through the record mechanism in the mode asked for.
unsigned int encode_record(const ToolType& t, void* record, kelm_asn_buffer_t& out, int version,
                           bool local);
unsigned int decode_record(const ToolType& t, void* record, kelm_asn_buffer_t& in, int version,
                           bool local);

// The type named `type_name` for `decode` or `encode`; null with the message written when there is
// none, or when --lcs is asked of a type reached by type code.
const ToolType* find_type(const std::string& type_name, bool local, ToolType& found);

// Every record type, the typed ones first.
std::vector<ToolType> all_types();

// The first record type that decodes `bytes` (with the version byte of their header), into
// `found`; false when none does.
bool first_decoding_type(const std::vector<unsigned char>& bytes, ToolType& found);

// The type named for check, canon and diff: the one given, or the first that decodes the buffer.
// Null with the message written when there is none.
const ToolType* type_for(const std::string& type_name, const std::vector<unsigned char>& bytes,
                         const std::string& path, ToolType& found);

// Writes a buffer to `output` ("-": standard output); false when it cannot.
bool write_output(const std::string& output, const kelm_asn_buffer_t& buffer);

// The JSON of a record that the library decoded from `bytes`: the texts it keeps with their NUL
// are read no further than the OCTET STRINGs they came from.
nlohmann::ordered_json decoded_json(const ToolType& type, const void* record,
                                    const std::vector<unsigned char>& bytes,
                                    JsonOptions options = {});

// Why no record type decodes a buffer, for the error line: a missing header ("; offset 0: ...")
// or elements that do not parse ("; offset N: ..."); nothing when neither is the reason.
std::string undecodable_reason(const std::vector<unsigned char>& bytes);

// Where a buffer that does not decode as `type` stops fitting it, for the error line: a missing
// header ("; offset 0: ..."), a header version other than `version` (unless negative), elements
// that do not parse ("; offset N: ...") or the first element that does not fit the type's shape
// ("; the first element that does not fit: offset N: path: ..."); nothing when all fit (the
// library refused something else, such as a value).
std::string mismatch_of(const ToolType& type, const std::vector<unsigned char>& bytes,
                        int version = -1);

// The field of a JSON record of `type` whose value the library refuses to encode: the deepest value
// that, left out or emptied (a list entry, a text, a number), lets the rest of the document encode
// with `options`, `version` and, for `local`, the local code set. Empty when no one value does.
std::string refused_field(const ToolType& type, const nlohmann::ordered_json& document,
                          JsonOptions options, int version, bool local);

// A JSON record of `type`, read from `path` as `bytes`, encoded with `options`, the header's
// `version` and, for `local`, the local code set, into `out` (released with
// kelm_asn_buffer_free). False with the message written when the JSON does not parse, does not fit
// the type, or the library refuses it (then naming the field it refuses, when one value is why).
bool encode_json_record(const ToolType& type, const std::string& path,
                        const std::vector<unsigned char>& bytes, const JsonOptions& options,
                        int version, bool local, kelm_asn_buffer_t& out);

} // namespace kelmasn_tool

#endif
