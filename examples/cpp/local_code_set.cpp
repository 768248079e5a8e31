// The LCS entry points convert a record's texts between the calling thread's locale and the
// UTF-8 of the wire. Here the program's texts are UTF-8 (locale C.UTF-8) while encoding; decoding
// the same buffer in the "C" locale (ASCII) gives "?" for each character ASCII cannot hold.
#include <clocale>
#include <cstdio>
#include <cstring>

#include <kelm/kelmasn.h>

int main() {
    if (std::setlocale(LC_ALL, "C.UTF-8") == nullptr) {
        std::printf("the C.UTF-8 locale is missing\n");
        return 1;
    }
    char name[] = "Gen\xC3\xA8ve"; // "Genève" in UTF-8
    char text[] = "caf\xC3\xA9";   // "café"
    value_s_t value = {1, text, 0, nullptr};
    attr_s_t attribute = {name, 1, &value};
    attrlist_s_t list = {1, &attribute};

    kelm_asn_buffer_t encoded = {0, nullptr};
    unsigned int status = kelmAsnEncodeObjLCS(encoded, list);
    std::printf("encode in C.UTF-8: status %u, %lu bytes\n", status, encoded.length);

    kelm_record_holder<attrlist_s_t> utf8;
    status = kelmAsnDecodeObjLCS(encoded, utf8.record());
    std::printf("decode in C.UTF-8: status %u, %s = %s\n", status, utf8->attrs[0].name,
                utf8->attrs[0].values[0].str_value);

    std::setlocale(LC_ALL, "C");
    kelm_record_holder<attrlist_s_t> ascii;
    status = kelmAsnDecodeObjLCS(encoded, ascii.record());
    std::printf("decode in C: status %u, %s = %s\n", status, ascii->attrs[0].name,
                ascii->attrs[0].values[0].str_value);

    // The plain entry points pass the wire's UTF-8 through unchanged, whatever the locale.
    kelm_record_holder<attrlist_s_t> plain;
    status = kelmAsnDecodeObj(encoded, plain.record());
    std::printf("plain decode: status %u, name of %zu bytes\n", status,
                std::strlen(plain->attrs[0].name));

    kelm_asn_buffer_free(encoded);
    return 0;
}
