// Random records of any type, filled through the record kinds' reader walk; shared by the record
// battery and the tests that hand the library's encodings to other decoders.
//
// Ownership: every text, array and nested record that fill() puts into a record is malloc'ed, as
// kelm_asn_record::free_record (and the free entry points) expect.
#ifndef KELMASN_TEST_RANDOM_RECORDS_H
#define KELMASN_TEST_RANDOM_RECORDS_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "asn_record_kinds.h"

namespace kelm_test {

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

} // namespace kelm_test

#endif
