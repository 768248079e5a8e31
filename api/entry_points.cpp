// The header query and the buffer utilities.
#include <cstdlib>
#include <cstring>

#include "asnutils.h"
#include "kelm/kelm_entry.h"

unsigned int kelmasn_version(const kelm_asn_buffer_t& buffer, unsigned int& flag) {
    return kelm_asnbase::get_encoded_version(buffer, flag);
}

void kelm_asn_buffer_copy(const kelm_asn_buffer_t& source, kelm_asn_buffer_t& destination,
                          unsigned int& status) {
    destination.length = 0;
    destination.data = nullptr;
    status = KELM_ASN_OK;
    if (source.length == 0 || source.data == nullptr)
        return;
    destination.length = source.length;
    destination.data = static_cast<unsigned char*>(std::malloc(source.length));
    if (destination.data == nullptr) {
        status = KELM_ASN_OUT_OF_MEMORY;
        return;
    }
    std::memcpy(destination.data, source.data, source.length);
}

void kelm_asn_buffer_free(kelm_asn_buffer_t& buffer) {
    if (buffer.data != nullptr)
        std::free(buffer.data);
}
