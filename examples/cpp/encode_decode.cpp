// Encodes an attribute list, decodes it into a fresh record, prints what came back, and releases
// both the encoded bytes and the decoded record's memory.
#include <cstdio>

#include <kelm/kelmasn.h>

static void print_bytes(const kelm_asn_buffer_t& buffer) {
    for (unsigned long i = 0; i < buffer.length; ++i)
        std::printf("%s%02X", i == 0 ? "" : " ", buffer.data[i]);
    std::printf("\n");
}

int main() {
    // One attribute "color" with one value: type 1, text "blue", no bytes. The record only
    // points at these; the library copies what it needs while encoding.
    char blue[] = "blue";
    char color[] = "color";
    value_s_t value = {1, blue, 0, nullptr};
    attr_s_t attribute = {color, 1, &value};
    attrlist_s_t list = {1, &attribute};

    kelm_asn_buffer_t encoded = {0, nullptr};
    unsigned int status = kelmAsnEncodeObj(encoded, list);
    if (status != KELM_ASN_OK) {
        std::printf("encode failed: 0x%08X %s\n", status, kelm_asn_status_text(status));
        return 1;
    }
    std::printf("encoded %lu bytes:\n", encoded.length);
    print_bytes(encoded);

    // The record to decode into starts zeroed; the holder zeroes it and calls kelmAsnFreeObj
    // when it goes out of scope.
    {
        kelm_record_holder<attrlist_s_t> decoded;
        status = kelmAsnDecodeObj(encoded, decoded.record());
        if (status != KELM_ASN_OK) {
            std::printf("decode failed: 0x%08X %s\n", status, kelm_asn_status_text(status));
            kelm_asn_buffer_free(encoded);
            return 1;
        }
        for (uint32_t i = 0; i < decoded->attr_count; ++i) {
            const attr_s_t& attr = decoded->attrs[i];
            std::printf("attribute %s:", attr.name);
            for (uint32_t j = 0; j < attr.value_count; ++j)
                std::printf(" (type %u, text \"%s\", %u bytes)", attr.values[j].value_type,
                            attr.values[j].str_value, attr.values[j].bin_length);
            std::printf("\n");
        }
    }

    // The same without the holder: zero the record, decode, use, release.
    attrlist_s_t plain = {};
    status = kelmAsnDecodeObj(encoded, plain);
    std::printf("plain decode: status %u, %u attribute(s)\n", status, plain.attr_count);
    kelmAsnFreeObj(plain); // also right after a failed decode: it releases what was filled

    kelm_asn_buffer_free(encoded);
    return 0;
}
