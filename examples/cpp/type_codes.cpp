// The entry points that select a record type by a type code: a bare integer (0x106) and a list of
// object updates (0x104), encoded with header version 1 and decoded back; an unknown code.
#include <cstdio>

#include <kelm/kelmasn.h>

static void print_bytes(const char* what, const kelm_asn_buffer_t& buffer) {
    std::printf("%s:", what);
    for (unsigned long i = 0; i < buffer.length; ++i)
        std::printf(" %02X", buffer.data[i]);
    std::printf("\n");
}

int main() {
    const int version = 1;

    int number = 1;
    kelm_asn_buffer_t encoded = {0, nullptr};
    unsigned int status = kelmasn_encode_obj(version, &number, KELMASN_TYPE_INTEGER, encoded);
    std::printf("encode int: status %u\n", status);
    print_bytes("int 1", encoded);
    int back = 0;
    status = kelmasn_decode_obj(version, encoded, KELMASN_TYPE_INTEGER, &back);
    std::printf("decode int: status %u, value %d\n", status, back);
    // The header carries the version: asking for another one refuses the buffer.
    status = kelmasn_decode_obj(2, encoded, KELMASN_TYPE_INTEGER, &back);
    std::printf("decode int as version 2: status 0x%08X\n", status);
    kelm_asn_buffer_free(encoded);

    char text[] = "x";
    ekobj_update_s_t update = {7, text, -1};
    ekobj_update_list_s_t list = {1, &update};
    encoded = {0, nullptr};
    status = kelmasn_encode_obj(version, &list, KELMASN_TYPE_EKOBJ_UPDATE_LIST, encoded);
    std::printf("encode update list: status %u\n", status);
    print_bytes("update list", encoded);
    ekobj_update_list_s_t decoded = {};
    status = kelmasn_decode_obj(version, encoded, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &decoded);
    std::printf("decode update list: status %u, %u update(s): %d \"%s\" %d\n", status,
                decoded.count, decoded.updates[0].number1, decoded.updates[0].text,
                decoded.updates[0].number2);
    kelmasn_obj_free(version, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &decoded);
    kelm_asn_buffer_free(encoded);

    encoded = {0, nullptr};
    status = kelmasn_encode_obj(version, &number, 0x105, encoded);
    std::printf("unknown type code: status 0x%08X, %lu bytes written\n", status, encoded.length);
    return 0;
}
