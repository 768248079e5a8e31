// What a caller does with the statuses of a decode: every entry point returns 0 or a status of
// the 0x1065xxxx family (kelm_asn_status_text names it), and the record is released with
// kelmAsnFreeObj whatever the status, since a failed decode may have filled part of it. Exhausted
// memory returns 0x10652065 after one line on stderr; a type-code entry point given an unknown
// code returns 0xFFFFFFFF.
#include <cstdio>

#include <kelm/kelmasn.h>

template <typename Record>
static void decode(const char* what, unsigned char* bytes, unsigned long length) {
    kelm_asn_buffer_t buffer = {length, bytes};
    kelm_record_holder<Record> record; // zeroed, released by kelmAsnFreeObj at the end
    const unsigned int status = kelmAsnDecodeObj(buffer, record.record());
    switch (status) {
    case KELM_ASN_OK:
        std::printf("%s: decoded\n", what);
        break;
    case KELM_ASN_BAD_VERSION: // not a buffer of this library, or of another header version
    case KELM_ASN_OUT_OF_MEMORY:
    default: // the bytes do not hold a record of this type
        std::printf("%s: 0x%08X %s\n", what, status, kelm_asn_status_text(status));
        break;
    }
}

int main() {
    // An empty attribute list: header 04 02 AC DC, then 30 02 30 00.
    unsigned char empty_list[] = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x02, 0x30, 0x00};
    decode<attrlist_s_t>("empty attribute list", empty_list, sizeof empty_list);
    decode<attrlist_s_t>("header alone", empty_list, 4);
    unsigned char other_version[] = {0x04, 0x03, 0xAC, 0xDC, 0x30, 0x02, 0x30, 0x00};
    decode<attrlist_s_t>("header of version 3", other_version, sizeof other_version);
    decode<attrlist_s_t>("cut one byte short", empty_list, sizeof empty_list - 1);
    // A value_t starts with an INTEGER, where the list holds a SEQUENCE OF.
    decode<value_s_t>("attribute list read as a value", empty_list, sizeof empty_list);
    unsigned char surplus[] = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x04, 0x30, 0x00, 0x05, 0x00};
    decode<attrlist_s_t>("a NULL after the list", surplus, sizeof surplus);

    int number = 0;
    kelm_asn_buffer_t out = {0, nullptr};
    const unsigned int status = kelmasn_encode_obj(1, &number, 0x200, out);
    std::printf("type code 0x200: 0x%08X %s\n", status, kelm_asn_status_text(status));
    return 0;
}
