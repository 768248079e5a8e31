// Records as JSON, driven by the record types' field tables.
#include "json_records.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

#include "asn_record_kinds.h"

namespace kelmasn_tool {
namespace {

using json = nlohmann::ordered_json;

std::string hex(const unsigned char* bytes, size_t n) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    out.reserve(2 * n);
    for (size_t i = 0; i < n; ++i) {
        out += digits[bytes[i] >> 4];
        out += digits[bytes[i] & 15];
    }
    return out;
}

// Builds the JSON of a record from the kinds' walk: objects for records, arrays for lists.
class JsonWriter {
  public:
    explicit JsonWriter(const JsonOptions& options) : options_(options) {}

    json result() { return std::move(result_); }

    void integer(int64_t value) { put(value); }
    void text(const char* value) {
        if (value == nullptr) {
            put(nullptr);
            return;
        }
        std::string utf8;
        // A text that is not of the local code set is shown as it is (the dump replaces what is
        // not UTF-8).
        if (options_.local != nullptr && options_.local->from_local(value, utf8))
            put(utf8);
        else
            put(value);
    }
    // A text kept in an OCTET STRING comes back without a NUL when the stored value had none (kept
    // so for existing buffers): it is read no further than the OCTET STRING it came from.
    void octet_text(const char* value) {
        const std::vector<size_t>* lengths = options_.octet_text_lengths;
        const size_t bound = lengths == nullptr                   ? static_cast<size_t>(-1)
                             : next_octet_text_ < lengths->size() ? (*lengths)[next_octet_text_]
                                                                  : 0;
        ++next_octet_text_;
        if (value == nullptr)
            put(nullptr);
        else
            put(bound == static_cast<size_t>(-1) ? std::string(value)
                                                 : std::string(value, strnlen(value, bound)));
    }
    void bytes(const unsigned char* data, size_t n) { put(hex(data, n)); }
    void absent() { put(nullptr); }
    void begin_record(const kelm_record_type&) { open(json::object()); }
    void end_record() { close(); }
    void field(const char* name) { levels_.back().key = name; }
    void begin_list(size_t) { open(json::array()); }
    void end_list() { close(); }

  private:
    struct Level {
        json value;
        const char* key = nullptr;
    };

    void open(json value) { levels_.push_back(Level{std::move(value)}); }
    void close() {
        json value = std::move(levels_.back().value);
        levels_.pop_back();
        put(std::move(value));
    }
    void put(json value) {
        if (levels_.empty())
            result_ = std::move(value);
        else if (levels_.back().value.is_array())
            levels_.back().value.push_back(std::move(value));
        else
            levels_.back().value[levels_.back().key] = std::move(value);
    }

    const JsonOptions& options_;
    size_t next_octet_text_ = 0;
    std::vector<Level> levels_;
    json result_;
};

// --- from JSON -------------------------------------------------------------------------------

[[noreturn]] void fail(const std::string& path, const std::string& what) {
    throw JsonFieldError(path + ": " + what);
}

int64_t integer_in(const json& value, const std::string& path, int64_t low, int64_t high) {
    if (!value.is_number_integer())
        fail(path, "expected an integer");
    const int64_t n = value.is_number_unsigned()
                          ? (value.get<uint64_t>() > static_cast<uint64_t>(high)
                                 ? high + (high < std::numeric_limits<int64_t>::max() ? 1 : 0)
                                 : static_cast<int64_t>(value.get<uint64_t>()))
                          : value.get<int64_t>();
    if (n < low || n > high)
        fail(path, "integer out of range " + std::to_string(low) + " to " + std::to_string(high));
    return n;
}

char* text_from(const json& value, const std::string& path) {
    if (value.is_null())
        return nullptr;
    if (!value.is_string())
        fail(path, "expected a string or null");
    const std::string& text = value.get_ref<const std::string&>();
    if (text.find('\0') != std::string::npos)
        fail(path, "a text cannot hold a NUL character");
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        fail(path, "out of memory");
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

std::string hex_from(const json& value, const std::string& path) {
    if (!value.is_string())
        fail(path, "expected a hex string");
    const std::string& text = value.get_ref<const std::string&>();
    if (text.size() % 2 != 0)
        fail(path, "a hex string needs an even number of digits");
    std::string bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        int byte = 0;
        for (size_t k = i; k < i + 2; ++k) {
            const char c = text[k];
            const int digit = c >= '0' && c <= '9'   ? c - '0'
                              : c >= 'a' && c <= 'f' ? c - 'a' + 10
                              : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                                     : -1;
            if (digit < 0)
                fail(path, "not a hex digit at position " + std::to_string(k));
            byte = byte * 16 + digit;
        }
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

// Fills a record from a JSON document for the kinds' walk; every error names the field's path.
class JsonReader {
  public:
    JsonReader(const json& document, const JsonOptions& options) : options_(options) {
        levels_.push_back(Level{&document, ""});
    }

    void begin_record(const kelm_record_type& type) {
        // Every record is at least one constructed level of its encoding, so a document nested
        // deeper than the limit could not be encoded; refusing it here also keeps a deeply nested
        // document from exhausting the stack.
        if (++depth_ > KELM_ASN_MAX_NESTING)
            fail(path(),
                 "records nest deeper than " + std::to_string(KELM_ASN_MAX_NESTING) + " levels");
        if (!value().is_object())
            fail(path().empty() ? std::string(type.record_name) : path(),
                 std::string("expected an object for ") + type.record_name);
        for (auto it = value().begin(); it != value().end(); ++it) {
            bool known = false;
            for (unsigned int i = 0; i < type.field_count; ++i)
                known = known || it.key() == type.fields[i].name;
            if (!known)
                fail(path().empty() ? it.key() : path() + "." + it.key(),
                     std::string("no such field in ") + type.record_name);
        }
    }
    void end_record() { --depth_; }

    bool enter_field(const char* name) {
        auto found = value().find(name);
        if (found == value().end()) {
            if (options_.strict)
                fail(path().empty() ? std::string(name) : path() + "." + name,
                     "missing (every field is required with --strict)");
            return false;
        }
        levels_.push_back(Level{&*found, path().empty() ? std::string(name) : path() + "." + name});
        return true;
    }
    void enter_entry(size_t k) {
        levels_.push_back(Level{&value()[k], path() + "[" + std::to_string(k) + "]"});
    }
    void leave() { levels_.pop_back(); }

    int64_t integer(int64_t low, int64_t high) { return integer_in(value(), path(), low, high); }
    char* text() {
        char* utf8 = text_from(value(), path());
        if (utf8 == nullptr || options_.local == nullptr)
            return utf8;
        std::string local;
        const bool held = options_.local->to_local(utf8, local);
        std::free(utf8);
        if (!held)
            fail(path(),
                 "the local code set " + options_.local->codeset() + " cannot hold this text");
        char* copy = static_cast<char*>(std::malloc(local.size() + 1));
        if (copy == nullptr)
            fail(path(), "out of memory");
        std::memcpy(copy, local.c_str(), local.size() + 1);
        return copy;
    }
    std::string bytes() { return hex_from(value(), path()); }
    std::string fixed_bytes(size_t size) {
        std::string value_bytes = hex_from(value(), path());
        if (value_bytes.size() != size)
            fail(path(), "expected exactly " + std::to_string(size) + " bytes");
        return value_bytes;
    }
    bool present() { return !value().is_null(); }
    size_t begin_list(uint64_t max, const char* what) {
        if (!value().is_array())
            fail(path(), "expected an array");
        if (value().size() > max)
            fail(path(), "at most " + std::to_string(max) + " " + what);
        return value().size();
    }
    size_t begin_slots(size_t size) { return begin_list(size, "slots"); }
    void end_list() {}
    [[noreturn]] void out_of_memory() { fail(path(), "out of memory"); }

  private:
    struct Level {
        const json* value;
        std::string path;
    };

    const json& value() const { return *levels_.back().value; }
    const std::string& path() const { return levels_.back().path; }

    const JsonOptions& options_;
    std::vector<Level> levels_;
    unsigned int depth_ = 0;
};

} // namespace

json record_to_json(const kelm_record_type& type, const void* record, const JsonOptions& options) {
    JsonWriter writer(options);
    kelm_record_kinds::write_record(writer, type, record);
    return writer.result();
}

void record_from_json(const kelm_record_type& type, const json& value, void* record,
                      const JsonOptions& options) {
    JsonReader reader(value, options);
    kelm_record_kinds::read_record(reader, type, record);
}

} // namespace kelmasn_tool
