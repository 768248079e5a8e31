// Walks an encoded record with the DER functions alone, without knowing its type: checks the
// header, then prints every element with its offset in the body, its tag and its length, and the
// value of integers and UTF8Strings.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include <kelm/kelmasn.h>

// Prints the elements of `length` bytes from *cursor, which lies `offset` bytes into the body.
static unsigned int walk(unsigned char** cursor, unsigned int* remaining, unsigned int length,
                         unsigned int offset, int depth) {
    const unsigned int end = *remaining - length;
    while (*remaining > end) {
        const unsigned int at = offset + (length - (*remaining - end));
        // kelmAsnGetType may store a position in the pointer slot after the cursor (high tag
        // numbers), so it gets the first of two adjacent slots.
        unsigned char* slots[2] = {*cursor, nullptr};
        unsigned int tag = 0, constructed = 0, tag_class = 0, definite = 0, size = 0;
        unsigned int status = kelmAsnGetType(&slots[0], remaining, &tag, &constructed, &tag_class);
        if (status == KELM_ASN_OK)
            status = kelmAsnGetLength(&slots[0], remaining, &definite, &size);
        if (status == KELM_ASN_OK && (!definite || size > *remaining))
            status = KELM_ASN_BAD_ENCODING; // this walk reads DER: definite lengths that fit
        if (status != KELM_ASN_OK) {
            std::printf("offset %u: %s\n", at, kelm_asn_status_text(status));
            return status;
        }
        *cursor = slots[0];
        const unsigned int contents = offset + (length - (*remaining - end));
        std::printf("%*soffset %u: class %u tag %u%s, length %u", depth * 2, "", at, tag_class, tag,
                    constructed ? " constructed" : "", size);
        if (constructed) {
            std::printf("\n");
            status = walk(cursor, remaining, size, contents, depth + 1);
            if (status != KELM_ASN_OK)
                return status;
            continue;
        }
        if (tag_class == 0 && tag == 2 && size >= 1 && size <= 8) {
            int64_t value = 0;
            status = kelmAsnGetIntegerValue(cursor, remaining, size, &value);
            std::printf(", INTEGER %lld\n", static_cast<long long>(value));
        } else if (tag_class == 0 && tag == 12) {
            char* text = nullptr;
            status = kelmAsnGetCharstringValue(cursor, remaining, size, &text);
            std::printf(", UTF8String \"%s\"\n", text != nullptr ? text : "");
            std::free(text);
        } else {
            *cursor += size;
            *remaining -= size;
            std::printf("\n");
        }
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

int main() {
    char blue[] = "blue";
    char color[] = "color";
    value_s_t value = {1, blue, 0, nullptr};
    attr_s_t attribute = {color, 1, &value};
    attrlist_s_t list = {1, &attribute};
    kelm_asn_buffer_t encoded = {0, nullptr};
    if (kelmAsnEncodeObj(encoded, list) != KELM_ASN_OK)
        return 1;

    unsigned int usable = 1;
    if (kelmasn_version(encoded, usable) != KELM_ASN_OK || usable != 0) {
        std::printf("no usable header\n");
        return 1;
    }
    const unsigned int header = encoded.data[0]; // byte 0 holds the header's length
    std::printf("header: length %u, version %u\n", header, encoded.data[1]);
    unsigned char* cursor = encoded.data + header;
    unsigned int remaining = static_cast<unsigned int>(encoded.length) - header;
    const unsigned int status = walk(&cursor, &remaining, remaining, 0, 0);
    kelm_asn_buffer_free(encoded);
    return status == KELM_ASN_OK ? 0 : 1;
}
