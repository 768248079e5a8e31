/// \file
/// Status codes, the security setting, the exception family and the runtime's limits.
///
/// Codec operations return an unsigned 32-bit status (0 for success). Only exhausted memory and
/// refused operations are thrown, as kelm_asn_exception records; the exported entry points catch
/// them and return their status.
#ifndef KELM_ASN_STATUS_H
#define KELM_ASN_STATUS_H

#include "asn_export.h"

/// security_t is passed to every buffer, value object and message class at construction.
enum security_t : int {
    /// Nothing particular: buffers release their storage as it is, texts pass unchanged.
    KELM_SECURITY_PLAIN = 0,
    /// Buffers overwrite their storage with zeros before releasing or moving it.
    KELM_SECURITY_SECURE = 1,
    /// Text elements convert between the local code set and UTF-8.
    KELM_SECURITY_LOCAL_CODESET = 2,
};

/// Status codes of the runtime and of the exported entry points.
enum : unsigned int {
    KELM_ASN_OK = 0,                                 ///< success
    KELM_ASN_OUT_OF_MEMORY = 0x10652065,             ///< memory exhausted
    KELM_ASN_BAD_VERSION = 0x10652196,               ///< no valid header of the requested version
    KELM_ASN_UNSUPPORTED = 0x10652197,               ///< an operation the runtime refuses
    KELM_ASN_INPUT_TOO_SHORT = 0x10652198,           ///< the input ends too early
    KELM_ASN_INTEGER_RANGE = 0x10652199,             ///< an integer out of range
    KELM_ASN_CONTENTS_REJECTED = 0x1065219a,         ///< empty contents where some are required
    KELM_ASN_BAD_ENCODING = 0x1065219b,              ///< an encoding that breaks the rules
    KELM_ASN_INDEX_RANGE = 0x1065219c,               ///< an index out of range
    KELM_ASN_INDEFINITE_NOT_PERMITTED = 0x1065219d,  ///< indefinite length where not accepted
    KELM_ASN_CONSTRUCTED_NOT_PERMITTED = 0x1065219e, ///< constructed form where not accepted
    KELM_ASN_PRIMITIVE_NOT_PERMITTED = 0x1065219f,   ///< primitive form where not accepted
    KELM_ASN_VALUE_MISSING = 0x106521a0,             ///< a required value is absent
    KELM_ASN_BAD_BITSTRING = 0x106521a2,             ///< bad BIT STRING contents
    KELM_ASN_BAD_BITSTRING_PADDING = 0x106521a3,     ///< unused bits before the last segment
    KELM_ASN_UNEXPECTED_TAG = 0x106521a4,            ///< a tag that is not the one expected
    KELM_ASN_SURPLUS_CONTENTS = 0x106521a5,          ///< contents left over in a SEQUENCE
    KELM_ASN_CHOICE_RANGE = 0x106521a7,              ///< no such alternative of a CHOICE
    KELM_ASN_CHOICE_UNSELECTED = 0x106521a8,         ///< a CHOICE with nothing selected
    KELM_ASN_ANY_WITHOUT_VALUE = 0x106521a9,         ///< raw access to an ANY with a syntax
    KELM_ASN_UNREPRESENTABLE = 0x106521ab,           ///< a character without a form in the target
    KELM_ASN_CODESET_REJECTED = 0x106521ac,          ///< a code set the class does not accept
    /// Unknown type code given to a type-code entry point (-1 as an int).
    KELM_ASN_UNKNOWN_TYPE = 0xffffffff,
};

/// Names of the DER inspection functions' own failures; they share the runtime's numbers.
enum : unsigned int {
    KELM_DER_SHORT = KELM_ASN_INPUT_TOO_SHORT,        ///< not enough bytes left
    KELM_DER_TOO_LONG = KELM_ASN_INTEGER_RANGE,       ///< more than 8 content bytes where at most 8
    KELM_DER_EMPTY = KELM_ASN_CONTENTS_REJECTED,      ///< no content where some is required
    KELM_DER_BAD_UNUSED_BITS = KELM_ASN_BAD_ENCODING, ///< a bad BIT STRING unused-bits byte
    KELM_DER_NULL_OUTPUT = KELM_ASN_INDEX_RANGE,      ///< a null output record
};

/// The runtime's bounds, in one place.
enum : unsigned int {
    /// Deepest nesting of constructed elements (sequences, lists, constructed string segments)
    /// that any decoder of the runtime accepts. The deepest legitimate record of the library
    /// needs well under this; each level costs a few hundred bytes of stack, so the limit keeps
    /// a decoder far inside a 256 KiB thread stack whatever the input.
    KELM_ASN_MAX_NESTING = 64,
};

/// A short English description of a status code; "unknown status" for codes outside the table.
KELM_API const char* kelm_asn_status_text(unsigned int status);

/// The exception record thrown by the runtime: a plain record, thrown by value.
struct KELM_API kelm_asn_exception {
    const char* file;    ///< source file of the throw site
    int line;            ///< source line of the throw site
    const char* message; ///< what failed
    unsigned int status; ///< a status code from the table above

    /// An exception of site `file_name`:`line_number` with message `text` and status `code`;
    /// the texts are not copied (the runtime passes literals).
    kelm_asn_exception(const char* file_name, int line_number, const char* text, unsigned int code)
        : file(file_name), line(line_number), message(text), status(code) {}
};

/// Exhausted memory; status KELM_ASN_OUT_OF_MEMORY.
struct KELM_API kelm_asn_memexception : kelm_asn_exception {
    /// An exhausted-memory exception of the given site and message.
    kelm_asn_memexception(const char* file_name, int line_number, const char* text)
        : kelm_asn_exception(file_name, line_number, text, KELM_ASN_OUT_OF_MEMORY) {}
};

/// A refused operation; status KELM_ASN_UNSUPPORTED.
struct KELM_API kelm_asn_unsupportederror : kelm_asn_exception {
    /// A refused-operation exception of the given site and message.
    kelm_asn_unsupportederror(const char* file_name, int line_number, const char* text)
        : kelm_asn_exception(file_name, line_number, text, KELM_ASN_UNSUPPORTED) {}
};

/// Writes the one line "Exception: <message> [<status>] in <file> at line <n>" to stderr.
KELM_API void kelm_asn_report_exception(const kelm_asn_exception& e);

#endif
