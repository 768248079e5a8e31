// The direct codec of records: DER written from a record and its table in two passes (the sizes
// bottom-up, then the contents back to front into one block), and DER read straight into the
// record. How each field's element is sized, written and read belongs to the field's kind
// (direct_size, direct_write and direct_read in asn_record_kinds.h, where a kind's writing and
// reading sit together); here are the two passes, the nesting depth, the conversion of texts and
// the entry points.
#include "asn_record_direct.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "asn_direct_der.h"
#include "asn_record_kinds.h"
#include "kelmz_internal.h"

namespace {

using namespace kelm_record_kinds;
using namespace kelm_direct_der;

// The largest encoding the direct encoder writes: the runtime's lengths are 32-bit, and the
// buffer keeps its capacity below 4 GiB. Anything larger is left to the object path.
constexpr size_t kLargestEncoding = 0xF0000000u;

// The largest record that a decode can put back, from a copy on the stack, when it gives up.
constexpr size_t kLargestSavedRecord = 2048;

// Internal result of the decoder: the object path must do the call. Never a status of the family.
constexpr unsigned int kGiveUp = 1;

const unsigned int kUnusualFlags = KELM_RECORD_VERSION_ELEMENT | KELM_RECORD_BARE_ELEMENT;

// The record's text in UTF-8, for the local-code-set mode.
kelmz_detail::OwnedText text_in_utf8(const char* text) {
    return kelmz_detail::local_to_utf8(text, std::strlen(text), kelmz_detail::current_codeset(),
                                       kelmz_detail::Route::Fastest);
}

// --- encoding ----------------------------------------------------------------------------------

// Two passes over the record: the size_ operations give each element's full size bottom-up, the
// write_ operations then fill the block back to front, so that every length is known when its
// element is closed. Each field's kind says what its element is (direct_size, direct_write of
// asn_record_kinds.h). The passes visit the same fields in opposite orders; the local-code-set
// mode converts each text in both, with the same result. The first pass gives up (returns false)
// on what the object path refuses: a record nested past KELM_ASN_MAX_NESTING, a null entry of a
// list of separately allocated records, an encoding too large.
class Encoder {
  public:
    Encoder(bool local_codeset, unsigned int depth) : lcs_(local_codeset), depth_(depth) {}

    // Writes the record's SEQUENCE so that it ends at `end`; returns where it starts.
    unsigned char* write_encoding(const kelm_record_type& type, const void* record,
                                  unsigned char* end) {
        w_ = end;
        write_record(type, record);
        return w_;
    }

    // --- the first pass: each adds an element's full size to `total` ---

    bool size_integer(int value, size_t& total) {
        unsigned char octets[5];
        return add(total, element_size(integer_octets(value, octets)));
    }

    bool size_text(const char* text, size_t& total) {
        return add(total, element_size(text_length(text)));
    }

    bool size_octets(size_t n, size_t& total) { return add(total, element_size(n)); }

    bool size_null(size_t& total) { return add(total, 2); }

    // The record's SEQUENCE, one level deeper.
    __attribute__((flatten)) bool size_record(const kelm_record_type& type, const void* record,
                                              size_t& total) {
        if (!enter())
            return false;
        size_t contents = 0;
        for (unsigned int i = 0; i < type.field_count; ++i)
            if (!size_field(type.fields[i], record, contents))
                return false;
        leave();
        const size_t size = element_size(contents);
        return size < kLargestEncoding && add(total, size);
    }

    // A SEQUENCE OF, one level deeper, whose entries size_entries(contents) adds up.
    template <class SizeEntries> bool size_list(size_t& total, SizeEntries&& size_entries) {
        if (!enter())
            return false;
        size_t contents = 0;
        if (!size_entries(contents))
            return false;
        leave();
        return add(total, element_size(contents));
    }

    // --- the second pass, back to front ---

    void write_integer(int value) {
        unsigned char octets[5];
        write_primitive(kInteger, octets, integer_octets(value, octets));
    }

    // Inline for the plain mode; the conversion of the local-code-set mode is a call of its own.
    void write_text(const char* text) {
        if (text == nullptr || text[0] == '\0')
            write_primitive(kUtf8String, nullptr, 0);
        else if (lcs_)
            write_local_text(text);
        else
            write_primitive(kUtf8String, text, std::strlen(text));
    }

    __attribute__((noinline)) void write_local_text(const char* text) {
        const kelmz_detail::OwnedText utf8 = text_in_utf8(text);
        write_primitive(kUtf8String, utf8.chars(), utf8.length());
    }

    void write_octets(const void* octets, size_t n) { write_primitive(kOctetString, octets, n); }

    void write_null() {
        put(0x00);
        put(kNull);
    }

    __attribute__((flatten)) void write_record(const kelm_record_type& type, const void* record) {
        const unsigned char* end = w_;
        for (unsigned int i = type.field_count; i-- > 0;)
            write_field(type.fields[i], record);
        close(kSequence, end);
    }

    // A SEQUENCE OF whose entries write_entries() writes, the last first.
    template <class WriteEntries> void write_list(WriteEntries&& write_entries) {
        const unsigned char* end = w_;
        write_entries();
        close(kSequence, end);
    }

  private:
    bool enter() {
        if (depth_ >= KELM_ASN_MAX_NESTING)
            return false;
        ++depth_;
        return true;
    }
    void leave() { --depth_; }

    bool add(size_t& total, size_t size) {
        total += size;
        return total < kLargestEncoding;
    }

    // The octets of a text's UTF8String contents.
    size_t text_length(const char* text) {
        if (text == nullptr || text[0] == '\0')
            return 0;
        return lcs_ ? local_text_length(text) : std::strlen(text);
    }

    __attribute__((noinline)) size_t local_text_length(const char* text) {
        return text_in_utf8(text).length();
    }

    bool size_field(const kelm_record_field& f, const void* record, size_t& total) {
        return visit_field_kind(f.kind, [&](auto kind) {
            return decltype(kind)::direct_size(*this, f, record, total);
        });
    }

    void write_field(const kelm_record_field& f, const void* record) {
        visit_field_kind(f.kind,
                         [&](auto kind) { decltype(kind)::direct_write(*this, f, record); });
    }

    void put(unsigned char octet) { *--w_ = octet; }
    void put(const void* octets, size_t n) {
        w_ -= n;
        if (n != 0)
            std::memcpy(w_, octets, n);
    }
    void put_length(size_t n) {
        if (n < 128) {
            put(static_cast<unsigned char>(n));
            return;
        }
        unsigned char octets = 0;
        for (; n != 0; n >>= 8, ++octets)
            put(static_cast<unsigned char>(n & 0xFF));
        put(static_cast<unsigned char>(0x80 | octets));
    }
    // Closes the element whose contents start at w_ and end at `end`.
    void close(unsigned char identifier, const unsigned char* end) {
        put_length(static_cast<size_t>(end - w_));
        put(identifier);
    }

    void write_primitive(unsigned char identifier, const void* octets, size_t n) {
        put(octets, n);
        put_length(n);
        put(identifier);
    }

    bool lcs_;
    unsigned int depth_;
    unsigned char* w_ = nullptr;
};

// --- decoding ----------------------------------------------------------------------------------

// What the record mechanism's get_record does, read straight from the DER: the same clearing,
// then each field as its kind reads it (direct_read of asn_record_kinds.h), with the same
// allocations in the same order, the same failures and the same statuses. Returns 0, a status
// that get_record would return, or kGiveUp.
class Decoder {
  public:
    static constexpr unsigned int give_up = kGiveUp;

    Decoder(bool local_codeset, unsigned int depth) : lcs_(local_codeset), depth_(depth) {}

    // Fills `record` from the contents of its SEQUENCE.
    __attribute__((flatten)) unsigned int fill_record(const kelm_record_type& type, Span in,
                                                      void* record) {
        if (type.clear != nullptr)
            type.clear(record);
        else if (!(type.flags & KELM_RECORD_KEEPS_RECORD))
            std::memset(record, 0, type.record_size);
        const copy_context context{type, !(type.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS)};
        for (unsigned int i = 0; i < type.field_count; ++i) {
            const kelm_record_field& f = type.fields[i];
            const unsigned int status = visit_field_kind(f.kind, [&](auto kind) {
                return decltype(kind)::direct_read(*this, in, f, record, context);
            });
            if (status != KELM_ASN_OK)
                return status;
        }
        return in.empty() ? KELM_ASN_OK : kGiveUp; // surplus elements
    }

    // A nested record's SEQUENCE, one level deeper.
    unsigned int nested_record(const kelm_record_type& type, Span contents, void* record) {
        if (!enter())
            return kGiveUp;
        const unsigned int status = fill_record(type, contents, record);
        leave();
        return status;
    }

    // The next element as a SEQUENCE OF, one level deeper, its contents handed to
    // fill_entries(contents), whose result is returned.
    template <class FillEntries> unsigned int read_list(Span& in, FillEntries&& fill_entries) {
        Span contents{};
        if (!read_element(in, kSequence, contents))
            return kGiveUp;
        if (!enter())
            return kGiveUp;
        const unsigned int status = fill_entries(contents);
        leave();
        return status;
    }

    // kelmasnUTF8String::get_value: exhausted memory is a status, not an exception.
    unsigned int copy_text(Span c, char*& text) const {
        text = nullptr;
        const auto count = static_cast<unsigned int>(c.size());
        const char* source = reinterpret_cast<const char*>(c.p);
        if (count != 0 && lcs_) {
            try {
                const kelmz_detail::OwnedText local = kelmz_detail::utf8_to_local(
                    source, count, kelmz_detail::current_codeset(), kelmz_detail::Route::Fastest);
                const auto length = static_cast<unsigned int>(local.length());
                text = static_cast<char*>(std::malloc(length + 1));
                if (text == nullptr)
                    return KELM_ASN_OUT_OF_MEMORY;
                std::memcpy(text, local.chars(), length + 1);
                return KELM_ASN_OK;
            } catch (const kelm_asn_memexception&) {
                return KELM_ASN_OUT_OF_MEMORY;
            }
        }
        text = static_cast<char*>(std::malloc(count + 1));
        if (text == nullptr)
            return KELM_ASN_OUT_OF_MEMORY;
        if (count != 0)
            std::memcpy(text, source, count);
        text[count] = '\0';
        return KELM_ASN_OK;
    }

  private:
    bool enter() {
        if (depth_ >= KELM_ASN_MAX_NESTING)
            return false;
        ++depth_;
        return true;
    }
    void leave() { --depth_; }

    bool lcs_;
    unsigned int depth_;
};

bool header_fits(const kelm_asn_buffer_t& in, int version) {
    return static_cast<unsigned int>(in.length) > 4 && in.data != nullptr &&
           in.data[2] == kMagic1 && in.data[3] == kMagic2 &&
           in.data[1] == static_cast<unsigned char>(version) && in.data[0] != 0;
}

bool environment_forces_object_path() {
    const char* value = std::getenv("KELMASN_FORCE_OBJECT_PATH");
    return value != nullptr && value[0] != '\0' && std::strcmp(value, "0") != 0;
}

std::atomic<bool>& object_path_flag() {
    static std::atomic<bool> forced{environment_forces_object_path()};
    return forced;
}

bool handled_mode(security_t mode) {
    return mode == KELM_SECURITY_PLAIN || mode == KELM_SECURITY_LOCAL_CODESET;
}

} // namespace

bool kelm_direct_encode(const kelm_record_type& type, const void* record, kelm_asn_buffer_t& out,
                        int version, security_t mode, unsigned int& status) {
    if ((type.flags & kUnusualFlags) || !handled_mode(mode))
        return false;
    const bool lcs = mode == KELM_SECURITY_LOCAL_CODESET;
    const unsigned int depth = kelm_asn_nesting_guard::depth();
    try {
        size_t body = 0; // the record's SEQUENCE, added by the first pass
        if (!Encoder(lcs, depth).size_record(type, record, body))
            return false;
        const auto total = static_cast<unsigned int>(kHeaderLength + body);
        kelm_buffer_t block(KELM_SECURITY_PLAIN);
        block.extend(total);
        unsigned char* const data = block.storage;
        data[0] = kHeaderLength;
        data[1] = static_cast<unsigned char>(version);
        data[2] = kMagic1;
        data[3] = kMagic2;
        if (Encoder(lcs, depth).write_encoding(type, record, data + total) != data + kHeaderLength)
            return false; // the passes disagree: never expected, the object path decides
        block.remaining = total;
        unsigned char* bytes = nullptr;
        unsigned int length = 0;
        block.detach(bytes, length);
        out.data = bytes;
        out.length = length;
        status = KELM_ASN_OK;
    } catch (const kelm_asn_exception& e) {
        kelm_asn_report_exception(e);
        status = e.status;
    }
    return true;
}

bool kelm_direct_decode(const kelm_record_type& type, void* record, const kelm_asn_buffer_t& in,
                        int version, security_t mode, unsigned int& status) {
    if ((type.flags & kUnusualFlags) || !handled_mode(mode) ||
        type.record_size > kLargestSavedRecord)
        return false;
    if (!header_fits(in, version)) {
        status = KELM_ASN_BAD_VERSION; // the record is not touched
        return true;
    }
    const auto total = static_cast<unsigned int>(in.length);
    const unsigned int skip = in.data[0];
    Span all{in.data + (skip < total ? skip : total), in.data + total};
    Span contents{};
    // Bytes after the record's element are not read, as the object path leaves them.
    if (!read_element(all, kSequence, contents))
        return false;
    const unsigned int depth = kelm_asn_nesting_guard::depth();
    if (depth >= KELM_ASN_MAX_NESTING)
        return false;
    unsigned char saved[kLargestSavedRecord];
    std::memcpy(saved, record, type.record_size);
    unsigned int result;
    try {
        result = Decoder(mode == KELM_SECURITY_LOCAL_CODESET, depth + 1)
                     .fill_record(type, contents, record);
    } catch (const kelm_asn_exception& e) {
        // Exhausted memory at one of the record's own allocations: reported as get_record
        // reports it, the record partly filled but consistent, as the object path leaves it.
        kelm_asn_report_exception(e);
        status = e.status;
        return true;
    }
    if (result == kGiveUp) {
        kelm_asn_record::free_record(type, record);
        std::memcpy(record, saved, type.record_size);
        return false;
    }
    status = result;
    return true;
}

bool kelm_object_path_forced() {
    return object_path_flag().load(std::memory_order_relaxed);
}

void kelm_force_object_path(bool forced) {
    object_path_flag().store(forced, std::memory_order_relaxed);
}

unsigned int kelm_record_encode(const kelm_record_type& type, const void* record,
                                kelm_asn_buffer_t& out, int version, security_t mode) {
    unsigned int status = KELM_ASN_OK;
    if (!kelm_object_path_forced() && kelm_direct_encode(type, record, out, version, mode, status))
        return status;
    return kelm_asn_record::encode(type, record, out, version, mode);
}

unsigned int kelm_record_decode(const kelm_record_type& type, void* record,
                                const kelm_asn_buffer_t& in, int version, security_t mode) {
    unsigned int status = KELM_ASN_OK;
    if (!kelm_object_path_forced() && kelm_direct_decode(type, record, in, version, mode, status))
        return status;
    return kelm_asn_record::decode(type, record, in, version, mode);
}
