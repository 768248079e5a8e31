// What the record tests share to make and compare records of any type through the kinds' walks:
// random records filled by the reader walk, and records flattened by the writer walk into
// (path, value) lines for a field by field comparison.
//
// Ownership: RandomRecords allocates with malloc, as free_record expects; the caller releases
// the records it fills with kelm_asn_record::free_record.
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

namespace kelm_test {

// --- random records --------------------------------------------------------------------------

// Fills records with random values through the kinds' reader walk: extreme and random integers,
// texts long enough for one-, two- and three-octet lengths (sometimes with UTF-8), optional
// records, lists and slots up to a depth. Every allocation is malloc'ed, as free_record expects.
class RandomRecords {
  public:
    explicit RandomRecords(unsigned int seed) : rng_(seed) {}

    // Fills a zeroed record whose own depth is `depth` (deeper records hold fewer entries).
    void fill(const kelm_record_type& type, void* record, int depth) {
        depth_ = depth - 1;
        kelm_record_kinds::read_record(*this, type, record);
    }

    void begin_record(const kelm_record_type&) { ++depth_; }
    void end_record() { --depth_; }
    bool enter_field(const char*) {
        positions_.push_back(Position::field);
        return true;
    }
    void enter_entry(size_t) {
        positions_.push_back(containers_.back() == Container::slots ? Position::slot
                                                                    : Position::entry);
    }
    void leave() { positions_.pop_back(); }

    int64_t integer(int64_t low, int64_t high) {
        static const uint32_t extremes[] = {0u,          1u,          0x7Fu,   0x80u,   0xFFFFFFFFu,
                                            0x7FFFFFFFu, 0x80000000u, 0xFFFFu, 0x10000u};
        const uint32_t bits = rng_() % 3 == 0
                                  ? extremes[rng_() % (sizeof extremes / sizeof extremes[0])]
                                  : static_cast<uint32_t>(rng_());
        // Any bit pattern of the field's width.
        return low < 0 ? static_cast<int32_t>(bits) : bits & static_cast<uint64_t>(high);
    }

    char* text() {
        static const unsigned int lengths[] = {0, 1, 12, 127, 128, 300, 70000};
        const unsigned int n = lengths[rng_() % 6 == 0 ? rng_() % 7 : rng_() % 3];
        std::string s;
        while (s.size() < n) {
            const unsigned int pick = rng_() % 20;
            if (pick == 0)
                s += "\xC3\xA9"; // é
            else if (pick == 1)
                s += "\xE4\xB8\xAD"; // 中
            else
                s += static_cast<char>('a' + rng_() % 26);
        }
        char* copy = static_cast<char*>(std::malloc(s.size() + 1));
        std::memcpy(copy, s.c_str(), s.size() + 1);
        return copy;
    }

    std::string bytes() { return random_bytes(rng_() % 5 == 0 ? 0 : rng_() % 300); }
    std::string fixed_bytes(size_t size) { return random_bytes(size); }

    // An optional record is there half the time; a slot a quarter of the time; an entry of a
    // list of separately allocated records always (a null entry would come back as a record of
    // zeros).
    bool present() {
        switch (positions_.back()) {
        case Position::field:
            return rng_() % 2 && depth_ < 3;
        case Position::slot:
            return rng_() % 4 == 0;
        case Position::entry:
            break;
        }
        return true;
    }

    size_t begin_list(uint64_t, const char*) {
        containers_.push_back(Container::list);
        return depth_ > 2 ? 0 : rng_() % 4;
    }
    size_t begin_slots(size_t size) {
        containers_.push_back(Container::slots);
        return depth_ < 3 ? size : 0;
    }
    void end_list() { containers_.pop_back(); }

    [[noreturn]] void out_of_memory() { throw std::bad_alloc(); }

  private:
    enum class Position { field, entry, slot };
    enum class Container { list, slots };

    std::string random_bytes(size_t n) {
        std::string b(n, '\0');
        for (char& c : b)
            c = static_cast<char>(rng_());
        return b;
    }

    std::mt19937 rng_;
    int depth_ = 0;
    std::vector<Position> positions_;
    std::vector<Container> containers_;
};

// --- comparison ------------------------------------------------------------------------------

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
