// Properties of decoding arbitrary bytes as a record.
#include "record_properties.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "kelm/ekobjs.h"
#include "record_registry.h"

namespace kelmasn_fuzz {
namespace {

// A zeroed record of a type, released with the type's free function.
struct Record {
    explicit Record(const kelm_record_type& t) : type(t), bytes(std::calloc(1, t.record_size)) {}
    ~Record() {
        kelm_asn_record::free_record(type, bytes);
        std::free(bytes);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    const kelm_record_type& type;
    void* bytes;
};

// Encodes a record into `out`; the status of the call.
unsigned int encode(const kelm_record_type& type, const void* record, std::vector<uint8_t>& out) {
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status =
        kelm_asn_record::encode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
    out.assign(buffer.data, buffer.data + buffer.length);
    std::free(buffer.data);
    return status;
}

unsigned int decode(const kelm_record_type& type, const std::vector<uint8_t>& in, void* record) {
    kelm_asn_buffer_t buffer{in.size(), const_cast<uint8_t*>(in.data())};
    return kelm_asn_record::decode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
}

// The records reached by type code, with their codes and sizes.
struct CodedType {
    unsigned int code;
    size_t size;
    const char* name;
};
const CodedType kCodedTypes[] = {
    {0x103, sizeof(cert_request_in), "cert_request_in"},
    {0x104, sizeof(ekobj_update_list_s_t), "ekobj_update_list_s_t"},
    {0x106, sizeof(int), "int"},
};

// Decoding through the type-code entry points must not crash or leak, whatever the input and its
// version byte, and the record must free cleanly. It is not re-encoded: these types keep their
// texts in OCTET STRINGs, and a stored value that does not end in its NUL comes back without
// one, which callers use as a string at their own risk (kept so for existing buffers).
std::string check_coded_decoding(const CodedType& coded, const kelm_asn_buffer_t& input) {
    const int version = input.length > 1 ? input.data[1] : 2;
    std::vector<unsigned char> record(coded.size, 0);
    kelm_asn_buffer_t in = input;
    const unsigned int status = kelmasn_decode_obj(version, in, coded.code, record.data());
    kelmasn_obj_free(version, coded.code, record.data());
    if (status == 0xFFFFFFFFu)
        return std::string(coded.name) + ": its type code was not recognised";
    return "";
}

} // namespace

std::string check_record_decoding(const uint8_t* data, size_t size) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    if (size == 0 || count == 0)
        return "";
    const unsigned int coded_count = sizeof kCodedTypes / sizeof kCodedTypes[0];
    const unsigned int selector = data[0] % (count + coded_count);
    // An exact-size copy: the sanitizers see any read past the input.
    std::unique_ptr<uint8_t[]> exact(new uint8_t[size - 1 + 1]);
    if (size > 1)
        std::memcpy(exact.get(), data + 1, size - 1);
    kelm_asn_buffer_t input{size - 1, exact.get()};
    if (selector >= count)
        return check_coded_decoding(kCodedTypes[selector - count], input);
    const kelm_record_type& type = *types[selector];

    Record first(type);
    if (kelm_asn_record::decode(type, first.bytes, input, 2, KELM_SECURITY_PLAIN) != 0)
        return ""; // refused; the record must still free cleanly (done by ~Record)
    std::vector<uint8_t> encoded;
    if (encode(type, first.bytes, encoded) != 0)
        return std::string(type.record_name) + ": a decoded record does not encode";
    Record second(type);
    if (decode(type, encoded, second.bytes) != 0)
        return std::string(type.record_name) + ": a re-encoded record does not decode";
    std::vector<uint8_t> again;
    if (encode(type, second.bytes, again) != 0)
        return std::string(type.record_name) + ": the second encoding failed";
    if (again != encoded)
        return std::string(type.record_name) + ": encoding is not a fixed point";
    return "";
}

} // namespace kelmasn_fuzz
