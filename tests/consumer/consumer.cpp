// A program outside the project that uses the installed library: it reads a long-form length with
// the DER inspection functions and fills an output buffer, and prints what it got, then the
// version of the library it runs with and of the headers it was compiled against.
#include <cstdio>

#include <kelm/kelmasn.h>

int main() {
    unsigned char length_octets[] = {0x82, 0x01, 0x00};
    unsigned char* cursor = length_octets;
    unsigned int remaining = sizeof length_octets;
    unsigned int definite = 0;
    unsigned int length = 0;
    const unsigned int status = kelmAsnGetLength(&cursor, &remaining, &definite, &length);
    if (status != KELM_ASN_OK) {
        std::printf("kelmAsnGetLength failed: %s\n", kelm_asn_status_text(status));
        return 1;
    }
    std::printf("length %u, definite %u, %u bytes left\n", length, definite, remaining);

    kelm_buffer_t buffer;
    buffer.append(static_cast<unsigned char>(0x04));
    buffer.append("kelm");
    std::printf("buffer holds %u bytes:", buffer.used());
    for (unsigned int i = 0; i < buffer.used(); ++i)
        std::printf(" %02X", buffer.cursor[i]);
    std::printf("\n");

    std::printf("library %s, headers %s\n", kelmasn_library_version(), KELMASN_VERSION_STRING);
    return 0;
}
