// A C program outside the project that uses the installed library through kelmasn_c.h: it
// encodes an attribute list, decodes the bytes into a zeroed record, prints what it got and
// releases everything.
#include <stdio.h>

#include <kelm/kelmasn_c.h>

int main(void) {
    value_s_t value = {1, "admins", 0, NULL};
    attr_s_t attr = {"groups", 1, &value};
    attrlist_s_t list = {1, &attr};

    kelm_asn_buffer_t buffer = {0, NULL};
    unsigned int status = kelmasn_c_encode(KELM_RECORD_attrlist_s_t, &buffer, &list);
    if (status != 0) {
        fprintf(stderr, "encode: %s\n", kelmasn_c_status_text(status));
        return 1;
    }
    printf("%s encoded in %lu bytes\n", kelmasn_c_record_type_name(KELM_RECORD_attrlist_s_t),
           buffer.length);

    attrlist_s_t decoded = {0};
    status = kelmasn_c_decode(KELM_RECORD_attrlist_s_t, &buffer, &decoded);
    kelmasn_c_buffer_free(&buffer);
    if (status == 0)
        printf("%s = %s\n", decoded.attrs[0].name, decoded.attrs[0].values[0].str_value);
    else
        fprintf(stderr, "decode: %s\n", kelmasn_c_status_text(status));
    kelmasn_c_free(KELM_RECORD_attrlist_s_t, &decoded);
    return status == 0 ? 0 : 1;
}
