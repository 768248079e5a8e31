// What the record tests share to make and compare records of any type through the kinds' walks:
// random records filled by the reader walk (random_records.h), and records flattened by the
// writer walk into (path, value) lines for a field by field comparison.
#ifndef KELMASN_TEST_RECORD_WALKS_H
#define KELMASN_TEST_RECORD_WALKS_H

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "asn_record_kinds.h"
#include "random_records.h"

namespace kelm_test {

// A record flattened by the kinds' writer walk into (path, value) lines: what a field by field
// comparison looks at. A null text and an empty one are the same value (both are written as an
// empty value).
class FlatRecord {
  public:
    FlatRecord(const kelm_record_type& type, const void* record, std::string root)
        : root_(std::move(root)) {
        kelm_record_kinds::write_record(*this, type, record);
    }

    void integer(int64_t value) { put(std::to_string(value)); }
    void text(const char* value) { put(std::string("\"") + (value != nullptr ? value : "")); }
    void octet_text(const char* value) { text(value); }
    void bytes(const unsigned char* data, size_t n) {
        put("#" + std::string(reinterpret_cast<const char*>(data), n));
    }
    void absent() { put("(absent)"); }
    void begin_record(const kelm_record_type&) { frames_.push_back(Frame{next_path(), false}); }
    void end_record() { frames_.pop_back(); }
    void field(const char* name) { key_ = name; }
    void begin_list(size_t n) {
        const std::string path = next_path();
        lines_.emplace_back(path, "(count " + std::to_string(n) + ")");
        frames_.push_back(Frame{path, true});
    }
    void end_list() { frames_.pop_back(); }

    const std::vector<std::pair<std::string, std::string>>& lines() const { return lines_; }

  private:
    struct Frame {
        std::string path;
        bool is_list;
        unsigned long next_entry = 0;
    };

    // The path of the value about to be written: the next entry of the open list, or the field
    // of the open record named last.
    std::string next_path() {
        if (frames_.empty())
            return root_;
        Frame& top = frames_.back();
        if (top.is_list)
            return top.path + "[" + std::to_string(top.next_entry++) + "]";
        return top.path + "." + key_;
    }
    void put(const std::string& value) { lines_.emplace_back(next_path(), value); }

    std::string root_;
    std::vector<Frame> frames_;
    std::string key_;
    std::vector<std::pair<std::string, std::string>> lines_;
};

// The path of the first difference between two records, empty when they are equal.
inline std::string difference(const kelm_record_type& type, const void* a, const void* b,
                              const std::string& root) {
    const FlatRecord x(type, a, root), y(type, b, root);
    const size_t n = std::min(x.lines().size(), y.lines().size());
    for (size_t i = 0; i < n; ++i)
        if (x.lines()[i] != y.lines()[i])
            return x.lines()[i].first;
    return x.lines().size() == y.lines().size() ? "" : root + " (shape)";
}

} // namespace kelm_test

#endif
