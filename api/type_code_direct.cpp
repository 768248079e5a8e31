// The direct codec of the records reached by type code. Each type's encoding and decoding sit
// side by side; decoding reads the whole buffer first and fills the record only once it is known
// to be in the shape written here, so that a buffer left to the message classes leaves the record
// untouched and nothing allocated.
#include "type_code_direct_internal.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "asn_copies_internal.h"
#include "asn_direct_der.h"
#include "asn_ekobjs_internal.h"
#include "asn_object.h"
#include "kelm/ekobjs.h"

namespace {

using namespace kelm_direct_der;

constexpr size_t kLargestEncoding = 0xF0000000u;
// The version element INTEGER 1 that starts each SEQUENCE of these records.
constexpr unsigned char kVersionElement[] = {kInteger, 0x01, 0x01};

// --- writing, front to back, into one block of the known size ----------------------------------

class Writer {
  public:
    explicit Writer(unsigned char* at) : w_(at) {}
    unsigned char* end() const { return w_; }

    void header(unsigned char identifier, size_t n) { w_ = put_header(w_, identifier, n); }
    void octets(const void* data, size_t n) {
        if (n != 0)
            std::memcpy(w_, data, n);
        w_ += n;
    }
    void primitive(unsigned char identifier, const void* data, size_t n) {
        header(identifier, n);
        octets(data, n);
    }
    void integer(int value) {
        unsigned char bytes[5];
        primitive(kInteger, bytes, integer_octets(value, bytes));
    }

  private:
    unsigned char* w_;
};

size_t integer_size(int value) {
    unsigned char bytes[5];
    return element_size(integer_octets(value, bytes));
}

// A text kept with its NUL (kelm_set_strvalue): a null pointer as the single octet 00.
size_t stored_text_length(const char* text) {
    return text != nullptr ? std::strlen(text) + 1 : 1;
}
void write_stored_text(Writer& out, const char* text) {
    out.primitive(kOctetString, text != nullptr ? text : "", stored_text_length(text));
}

bool body_present(const cert_request_in& r) {
    return r.body_length != 0 && r.body != nullptr;
}
size_t cert_request_contents(const cert_request_in& r) {
    return sizeof kVersionElement + element_size(stored_text_length(r.string1)) +
           element_size(stored_text_length(r.string2)) +
           (body_present(r) ? element_size(r.body_length) : 0);
}
void write_cert_request(Writer& out, const cert_request_in& r) {
    out.header(kSequence, cert_request_contents(r));
    out.octets(kVersionElement, sizeof kVersionElement);
    write_stored_text(out, r.string1);
    write_stored_text(out, r.string2);
    if (body_present(r))
        out.primitive(kOctetString, r.body, r.body_length);
}

size_t update_contents(const ekobj_update_s_t& u) {
    return sizeof kVersionElement + integer_size(u.number1) +
           element_size(stored_text_length(u.text)) + integer_size(u.number2);
}
unsigned int update_count(const ekobj_update_list_s_t& l) {
    return l.updates != nullptr ? l.count : 0;
}
size_t updates_contents(const ekobj_update_list_s_t& l) {
    size_t n = 0;
    for (unsigned int i = 0; i < update_count(l); ++i)
        n += element_size(update_contents(l.updates[i]));
    return n;
}
size_t update_list_contents(const ekobj_update_list_s_t& l) {
    return sizeof kVersionElement + element_size(updates_contents(l));
}
void write_update_list(Writer& out, const ekobj_update_list_s_t& l) {
    out.header(kSequence, update_list_contents(l));
    out.octets(kVersionElement, sizeof kVersionElement);
    out.header(kSequence, updates_contents(l));
    for (unsigned int i = 0; i < update_count(l); ++i) {
        const ekobj_update_s_t& u = l.updates[i];
        out.header(kSequence, update_contents(u));
        out.octets(kVersionElement, sizeof kVersionElement);
        out.integer(u.number1);
        write_stored_text(out, u.text);
        out.integer(u.number2);
    }
}

// The header and the element of `size` octets that `write` writes, into one block handed to
// `buffer`. False when the encoding is too large for the direct codec.
template <class Write>
bool encode_block(int version, size_t size, Write write, kelm_asn_buffer_t& buffer) {
    if (size >= kLargestEncoding)
        return false;
    const auto total = static_cast<unsigned int>(kHeaderLength + size);
    kelm_buffer_t block(KELM_SECURITY_PLAIN);
    block.extend(total);
    unsigned char* data = block.storage;
    data[0] = kHeaderLength;
    data[1] = static_cast<unsigned char>(version);
    data[2] = kMagic1;
    data[3] = kMagic2;
    Writer out(data + kHeaderLength);
    write(out);
    if (out.end() != data + total)
        return false; // the sizes and the writing disagree: never expected
    block.remaining = total;
    unsigned char* bytes = nullptr;
    unsigned int length = 0;
    block.detach(bytes, length);
    buffer.data = bytes;
    buffer.length = length;
    return true;
}

// --- reading ------------------------------------------------------------------------------------

bool header_fits(const kelm_asn_buffer_t& in, int version) {
    return static_cast<unsigned int>(in.length) > 4 && in.data != nullptr &&
           in.data[2] == kMagic1 && in.data[3] == kMagic2 &&
           in.data[1] == static_cast<unsigned char>(version) && in.data[0] != 0;
}

// The octets after the header, as loadObject hands them to the object.
Span after_header(const kelm_asn_buffer_t& in) {
    const auto total = static_cast<unsigned int>(in.length);
    const unsigned int skip = in.data[0];
    return Span{in.data + (skip < total ? skip : total), in.data + total};
}

// The version element: any INTEGER, never read back.
bool skip_version(Span& in) {
    Span ignored{};
    return read_element(in, kInteger, ignored);
}

// cert_request: the version, two texts, the body when the next element is an OCTET STRING.
struct CertRequestView {
    Span string1, string2, body;
    bool has_body = false;
};

bool read_cert_request(Span all, CertRequestView& view) {
    Span c{};
    if (!read_element(all, kSequence, c) || !skip_version(c) ||
        !read_element(c, kOctetString, view.string1) ||
        !read_element(c, kOctetString, view.string2))
        return false;
    if (!c.empty()) {
        if (!read_element(c, kOctetString, view.body))
            return false;
        view.has_body = true;
    }
    return c.empty();
}

// As kelm_asn_cert_request_in::get_value: the four fields cleared, then filled in order.
unsigned int fill_cert_request(const CertRequestView& view, cert_request_in& r) {
    r.string1 = nullptr;
    r.string2 = nullptr;
    r.body_length = 0;
    r.body = nullptr;
    r.string1 = reinterpret_cast<char*>(
        kelm_copy_stored_string(view.string1.p, static_cast<unsigned int>(view.string1.size())));
    r.string2 = reinterpret_cast<char*>(
        kelm_copy_stored_string(view.string2.p, static_cast<unsigned int>(view.string2.size())));
    if (!view.has_body)
        return KELM_ASN_OK;
    const auto length = static_cast<unsigned int>(view.body.size());
    r.body_length = length;
    if (length != 0)
        r.body = kelm_copy_cert_request_body(view.body.p, length);
    return KELM_ASN_OK;
}

// update: the version, INTEGER, OCTET STRING, INTEGER.
struct UpdateView {
    Span number1, text, number2;
};

bool read_update(Span& list, UpdateView& view) {
    Span c{};
    return read_element(list, kSequence, c) && skip_version(c) &&
           read_element(c, kInteger, view.number1) && read_element(c, kOctetString, view.text) &&
           read_element(c, kInteger, view.number2) && c.empty();
}

// The list's updates, each checked; false for anything else.
bool read_update_list(Span all, Span& updates, unsigned int& count) {
    Span c{};
    if (!read_element(all, kSequence, c) || !skip_version(c) ||
        !read_element(c, kSequence, updates) || !c.empty())
        return false;
    count = 0;
    for (Span scan = updates; !scan.empty(); ++count) {
        UpdateView view;
        if (!read_update(scan, view))
            return false;
    }
    return true;
}

int read_integer(Span c) {
    return integer_value(c.p, static_cast<unsigned int>(c.size()));
}

// As kelm_asn_ekobj_update_list_t::get_value: exhausted memory for the array is a status, with
// the count kept; entries not reached stay zeroed.
unsigned int fill_update_list(Span updates, unsigned int count, ekobj_update_list_s_t& l) {
    l.count = 0;
    l.updates = nullptr;
    l.count = count;
    if (count == 0)
        return KELM_ASN_OK;
    const size_t bytes = static_cast<size_t>(count) * sizeof(ekobj_update_s_t);
    l.updates = static_cast<ekobj_update_s_t*>(std::malloc(bytes));
    if (l.updates == nullptr)
        return KELM_ASN_OUT_OF_MEMORY;
    std::memset(l.updates, 0, bytes);
    for (unsigned int i = 0; i < count; ++i) {
        UpdateView view;
        read_update(updates, view);
        ekobj_update_s_t& u = l.updates[i];
        std::memset(&u, 0, sizeof u);
        u.number1 = read_integer(view.number1);
        u.number2 = read_integer(view.number2);
        u.text = reinterpret_cast<char*>(
            kelm_copy_stored_string(view.text.p, static_cast<unsigned int>(view.text.size())));
    }
    return KELM_ASN_OK;
}

} // namespace

bool kelm_type_code_direct(int operation, int version, void* record, unsigned int type,
                           kelm_asn_buffer_t& buffer, unsigned int& status) {
    // Nested at most three levels deep; a caller already that deep is left to the object path.
    if (kelm_asn_nesting_guard::depth() + 3 > KELM_ASN_MAX_NESTING)
        return false;
    if (operation == 0) {
        status = KELM_ASN_OK;
        switch (type) {
        case KELMASN_TYPE_CERT_REQUEST: {
            const auto& r = *static_cast<const cert_request_in*>(record);
            return encode_block(
                version, element_size(cert_request_contents(r)),
                [&](Writer& out) { write_cert_request(out, r); }, buffer);
        }
        case KELMASN_TYPE_EKOBJ_UPDATE_LIST: {
            const auto& l = *static_cast<const ekobj_update_list_s_t*>(record);
            return encode_block(
                version, element_size(update_list_contents(l)),
                [&](Writer& out) { write_update_list(out, l); }, buffer);
        }
        default: {
            const int value = *static_cast<const int*>(record);
            return encode_block(
                version, integer_size(value), [&](Writer& out) { out.integer(value); }, buffer);
        }
        }
    }
    if (!header_fits(buffer, version)) {
        status = KELM_ASN_BAD_VERSION; // the record is not touched
        return true;
    }
    const Span all = after_header(buffer);
    switch (type) {
    case KELMASN_TYPE_CERT_REQUEST: {
        CertRequestView view;
        if (!read_cert_request(all, view))
            return false;
        status = fill_cert_request(view, *static_cast<cert_request_in*>(record));
        return true;
    }
    case KELMASN_TYPE_EKOBJ_UPDATE_LIST: {
        Span updates{};
        unsigned int count = 0;
        if (!read_update_list(all, updates, count))
            return false;
        status = fill_update_list(updates, count, *static_cast<ekobj_update_list_s_t*>(record));
        return true;
    }
    default: {
        // The int receives what was read, 0 when the value does not fit 32 bits, and the read's
        // status is returned.
        Span all_octets = all, c{};
        if (!read_element(all_octets, kInteger, c))
            return false;
        const auto n = static_cast<unsigned int>(c.size());
        const bool fits = integer_fits(c.p, n);
        *static_cast<int*>(record) = fits ? integer_value(c.p, n) : 0;
        status = fits ? KELM_ASN_OK : KELM_ASN_INTEGER_RANGE;
        return true;
    }
    }
}
