// Descriptions of the status codes and the one-line exception report.
#include <cstdio>

#include "asn_status.h"

const char* kelm_asn_status_text(unsigned int status) {
    switch (status) {
    case KELM_ASN_OK:
        return "success";
    case KELM_ASN_OUT_OF_MEMORY:
        return "out of memory";
    case KELM_ASN_BAD_VERSION:
        return "no valid header of the requested encoding version";
    case KELM_ASN_UNSUPPORTED:
        return "unsupported operation";
    case KELM_ASN_INPUT_TOO_SHORT:
        return "input ends too early";
    case KELM_ASN_INTEGER_RANGE:
        return "integer out of range";
    case KELM_ASN_CONTENTS_REJECTED:
        return "empty contents where contents are required";
    case KELM_ASN_BAD_ENCODING:
        return "bad encoding";
    case KELM_ASN_INDEX_RANGE:
        return "index out of range";
    case KELM_ASN_INDEFINITE_NOT_PERMITTED:
        return "indefinite length not permitted";
    case KELM_ASN_CONSTRUCTED_NOT_PERMITTED:
        return "constructed encoding not permitted";
    case KELM_ASN_PRIMITIVE_NOT_PERMITTED:
        return "primitive encoding not permitted";
    case KELM_ASN_VALUE_MISSING:
        return "value missing";
    case KELM_ASN_BAD_BITSTRING:
    case KELM_ASN_BAD_BITSTRING_PADDING:
        return "bad BIT STRING contents";
    case KELM_ASN_UNEXPECTED_TAG:
        return "unexpected tag";
    case KELM_ASN_SURPLUS_CONTENTS:
        return "unconsumed contents in a SEQUENCE";
    case KELM_ASN_CHOICE_RANGE:
        return "choice alternative number out of range";
    case KELM_ASN_CHOICE_UNSELECTED:
        return "choice with nothing selected";
    case KELM_ASN_ANY_WITHOUT_VALUE:
        return "ANY without a value";
    case KELM_ASN_UNREPRESENTABLE:
        return "character not representable in the target code set";
    case KELM_ASN_CODESET_REJECTED:
        return "code set not accepted";
    case KELM_ASN_UNKNOWN_TYPE:
        return "unknown type code";
    default:
        return "unknown status";
    }
}

void kelm_asn_report_exception(const kelm_asn_exception& e) {
    std::fprintf(stderr, "Exception: %s [%8.8x] in %s at line %d\n", e.message, e.status, e.file,
                 e.line);
}
