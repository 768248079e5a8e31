// The direct codec of records against the object path, on arbitrary bytes.
#include "direct_codec_properties.h"

#include <malloc.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "asn_record_direct.h"
#include "asn_record_kinds.h"
#include "record_registry.h"

namespace kelmasn_fuzz {
namespace {

using kelm_record_kinds::at;
using kelm_record_kinds::load;

constexpr unsigned char kPattern = 0xA5;
constexpr unsigned int kTypeCodeTypes = 3;

// What a call writes on stderr, captured through a temporary file put in place of descriptor 2.
class StderrCapture {
  public:
    StderrCapture() {
        std::fflush(stderr);
        file_ = std::tmpfile();
        saved_ = dup(2);
        if (file_ != nullptr && saved_ >= 0)
            dup2(fileno(file_), 2);
    }
    ~StderrCapture() { text(); }
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    // Puts stderr back and returns what was written in between (once).
    std::string text() {
        std::string captured;
        if (saved_ < 0)
            return captured;
        std::fflush(stderr);
        dup2(saved_, 2);
        close(saved_);
        saved_ = -1;
        if (file_ == nullptr)
            return captured;
        std::rewind(file_);
        char chunk[256];
        size_t n;
        while ((n = std::fread(chunk, 1, sizeof chunk, file_)) > 0)
            captured.append(chunk, n);
        std::fclose(file_);
        file_ = nullptr;
        return captured;
    }

  private:
    std::FILE* file_ = nullptr;
    int saved_ = -1;
};

// The record's values as text, pointers followed: what a field by field comparison looks at.
void describe(const kelm_record_type& type, const void* record, std::string& out);

// A text of the record, read no further than its block: an OCTET STRING text stored without its
// NUL comes back without one (kept so for existing buffers).
void describe_text(const char* text, std::string& out) {
    if (text == nullptr) {
        out += "null;";
        return;
    }
    out += "\"" + std::string(text, strnlen(text, malloc_usable_size(const_cast<char*>(text)))) +
           "\";";
}

void describe_bytes(const unsigned char* data, size_t n, std::string& out) {
    out += "#" + std::to_string(n) + ":";
    if (data != nullptr)
        out.append(reinterpret_cast<const char*>(data), n);
    out += ';';
}

void describe_pointed(const kelm_record_type& type, const void* nested, std::string& out) {
    if (nested == nullptr) {
        out += "absent;";
        return;
    }
    describe(type, nested, out);
}

void describe(const kelm_record_type& type, const void* record, std::string& out) {
    out += '{';
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        switch (f.kind) {
        case kelm_field_kind::integer:
        case kelm_field_kind::unsigned_integer:
            out += std::to_string(load<uint32_t>(record, f.offset)) + ";";
            break;
        case kelm_field_kind::unsigned16:
            out += std::to_string(load<uint16_t>(record, f.offset)) + ";";
            break;
        case kelm_field_kind::unsigned8:
            out += std::to_string(load<uint8_t>(record, f.offset)) + ";";
            break;
        case kelm_field_kind::text:
        case kelm_field_kind::octet_text:
            describe_text(load<const char*>(record, f.offset), out);
            break;
        case kelm_field_kind::bytes: {
            const auto* data = load<const unsigned char*>(record, f.offset);
            describe_bytes(data, load<uint32_t>(record, f.aux), out);
            break;
        }
        case kelm_field_kind::fixed_bytes:
            describe_bytes(at(record, f.offset), f.size, out);
            break;
        case kelm_field_kind::record:
            describe(*f.type, at(record, f.offset), out);
            break;
        case kelm_field_kind::optional_record:
            describe_pointed(*f.type, load<const void*>(record, f.offset), out);
            break;
        case kelm_field_kind::slots:
            for (unsigned int k = 0; k < f.size; ++k)
                describe_pointed(*f.type,
                                 load<const void*>(at(record, f.offset), k * sizeof(void*)), out);
            break;
        default: {
            const auto* array = load<const unsigned char*>(record, f.offset);
            const unsigned int n = f.kind == kelm_field_kind::record_list16
                                       ? load<uint16_t>(record, f.aux)
                                       : load<uint32_t>(record, f.aux);
            out += "[" + std::to_string(n) + (array != nullptr ? "" : " null") + "]";
            if (array == nullptr)
                break;
            for (unsigned int k = 0; k < n; ++k) {
                if (f.kind == kelm_field_kind::record_list ||
                    f.kind == kelm_field_kind::record_list16)
                    describe(*f.type, array + k * f.type->record_size, out);
                else if (f.kind == kelm_field_kind::record_pointer_list)
                    describe_pointed(*f.type, load<const void*>(array, k * sizeof(void*)), out);
                else if (f.kind == kelm_field_kind::text_list)
                    describe_text(load<const char*>(array, k * sizeof(void*)), out);
                else
                    out += std::to_string(load<uint32_t>(array, k * sizeof(uint32_t))) + ";";
            }
            break;
        }
        }
    }
    out += '}';
}

// The record's bytes with every pointer (inline nested records included) zeroed.
void mask_pointers(const kelm_record_type& type, unsigned char* record) {
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        switch (f.kind) {
        case kelm_field_kind::integer:
        case kelm_field_kind::unsigned_integer:
        case kelm_field_kind::unsigned16:
        case kelm_field_kind::unsigned8:
        case kelm_field_kind::fixed_bytes:
            break;
        case kelm_field_kind::record:
            mask_pointers(*f.type, record + f.offset);
            break;
        case kelm_field_kind::slots:
            std::memset(record + f.offset, 0, f.size * sizeof(void*));
            break;
        default:
            std::memset(record + f.offset, 0, sizeof(void*));
            break;
        }
    }
}

// A record block filled with the pattern, decoded into one way.
struct Decoded {
    const kelm_record_type& type;
    std::vector<unsigned char> record;
    unsigned int status = 0;
    std::string err;
    bool untouched = false;

    Decoded(const kelm_record_type& t, const kelm_asn_buffer_t& in, security_t mode, bool direct)
        : type(t), record(t.record_size, kPattern) {
        StderrCapture capture;
        bool done = false;
        if (direct)
            done = kelm_direct_decode(type, record.data(), in, 2, mode, status);
        if (!done)
            status = kelm_asn_record::decode(type, record.data(), in, 2, mode);
        err = capture.text();
        untouched = true;
        for (unsigned char byte : record)
            untouched = untouched && byte == kPattern;
    }
    ~Decoded() {
        if (!untouched)
            kelm_asn_record::free_record(type, record.data());
    }
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;
};

struct Encoded {
    unsigned int status = 0;
    std::string err;
    std::vector<unsigned char> bytes;

    Encoded(const kelm_record_type& type, const void* record, security_t mode, bool direct) {
        kelm_asn_buffer_t out{0, nullptr};
        StderrCapture capture;
        bool done = false;
        if (direct)
            done = kelm_direct_encode(type, record, out, 2, mode, status);
        if (!done)
            status = kelm_asn_record::encode(type, record, out, 2, mode);
        err = capture.text();
        if (out.data != nullptr)
            bytes.assign(out.data, out.data + out.length);
        std::free(out.data);
    }
};

std::string compare(const Decoded& reference, const Decoded& direct) {
    if (reference.status != direct.status)
        return "decode statuses differ: object path " + std::to_string(reference.status) +
               ", direct " + std::to_string(direct.status);
    if (reference.err != direct.err)
        return "decode stderr differs: object path \"" + reference.err + "\", direct \"" +
               direct.err + "\"";
    if (reference.untouched != direct.untouched)
        return "one decode left the record untouched, the other did not";
    if (reference.untouched)
        return "";
    return decoded_records_differ(reference.type, reference.record.data(), direct.record.data());
}

} // namespace

std::string decoded_records_differ(const kelm_record_type& type, const unsigned char* reference,
                                   const unsigned char* other) {
    std::string a, b;
    describe(type, reference, a);
    describe(type, other, b);
    if (a != b)
        return "decoded records differ: object path " + a + ", direct " + b;
    std::vector<unsigned char> x(reference, reference + type.record_size),
        y(other, other + type.record_size);
    mask_pointers(type, x.data());
    mask_pointers(type, y.data());
    if (x != y)
        return "decoded records differ byte by byte, pointers aside";
    return "";
}

std::string check_direct_codec(const uint8_t* data, size_t size) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    if (size == 0 || count == 0)
        return "";
    const unsigned int selector = data[0] % (count + kTypeCodeTypes);
    if (selector >= count)
        return "";
    const kelm_record_type& type = *types[selector];
    const security_t mode = (data[0] / (count + kTypeCodeTypes)) % 2 != 0
                                ? KELM_SECURITY_LOCAL_CODESET
                                : KELM_SECURITY_PLAIN;
    // An exact-size copy: the sanitizers see any read past the input.
    std::unique_ptr<uint8_t[]> exact(new uint8_t[size]);
    std::memcpy(exact.get(), data + 1, size - 1);
    const kelm_asn_buffer_t in{size - 1, size > 1 ? exact.get() : nullptr};

    const Decoded reference(type, in, mode, false);
    const Decoded direct(type, in, mode, true);
    std::string broken = compare(reference, direct);
    if (!broken.empty() || reference.status != 0)
        return broken.empty() ? "" : std::string(type.record_name) + ": " + broken;

    const Encoded encoded_reference(type, reference.record.data(), mode, false);
    const Encoded encoded_direct(type, reference.record.data(), mode, true);
    if (encoded_reference.status != encoded_direct.status ||
        encoded_reference.err != encoded_direct.err ||
        encoded_reference.bytes != encoded_direct.bytes)
        return std::string(type.record_name) + ": the decoded record encodes differently";
    return "";
}

} // namespace kelmasn_fuzz
