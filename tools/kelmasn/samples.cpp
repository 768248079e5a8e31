// Filled records to start from, made through the record kinds' reader walk.
#include "samples.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "asn_record_kinds.h"

namespace kelmasn_tool {
namespace {

// Records nest at most this deep in a sample; deeper lists are empty, optional records absent.
constexpr int kSampleDepth = 3;

class SampleReader {
  public:
    explicit SampleReader(bool minimal) : minimal_(minimal) {}

    void begin_record(const kelm_record_type&) { ++depth_; }
    void end_record() { --depth_; }
    bool enter_field(const char* name) {
        names_.push_back(name);
        return true;
    }
    void enter_entry(size_t) { names_.push_back(names_.back()); }
    void leave() { names_.pop_back(); }

    int64_t integer(int64_t low, int64_t high) {
        const int64_t value = minimal_ ? 0 : ++counter_;
        return value < low ? low : value > high ? high : value;
    }
    char* text() {
        const std::string value = minimal_ ? "" : names_.empty() ? "text" : names_.back();
        char* copy = static_cast<char*>(std::malloc(value.size() + 1));
        if (copy == nullptr)
            out_of_memory();
        std::memcpy(copy, value.c_str(), value.size() + 1);
        return copy;
    }
    std::string bytes() { return minimal_ ? std::string() : std::string("\x01\x02\x03\x04", 4); }
    std::string fixed_bytes(size_t size) {
        std::string value(size, '\0');
        for (size_t i = 0; i < size && !minimal_; ++i)
            value[i] = static_cast<char>(i + 1);
        return value;
    }
    bool present() { return !minimal_ && depth_ < kSampleDepth; }
    size_t begin_list(uint64_t, const char*) { return !minimal_ && depth_ < kSampleDepth ? 2 : 0; }
    size_t begin_slots(size_t size) {
        return !minimal_ && depth_ < kSampleDepth && size > 0 ? 1 : 0;
    }
    void end_list() {}
    [[noreturn]] void out_of_memory() { throw std::bad_alloc(); }

  private:
    bool minimal_;
    int depth_ = 0;
    int64_t counter_ = 0;
    std::vector<std::string> names_;
};

} // namespace

void fill_sample(const kelm_record_type& type, void* record, bool minimal) {
    SampleReader reader(minimal);
    kelm_record_kinds::read_record(reader, type, record);
}

} // namespace kelmasn_tool
