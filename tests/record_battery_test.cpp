// The same battery for every record type, driven by the type's field table: the empty record,
// random records (extreme integers, long and non-ASCII texts) round-tripped and compared field
// by field, every truncation of a valid buffer, every allocation failed in turn, and garbage.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_record_registry.h"

namespace {

using kind = kelm_field_kind;
using Bytes = std::vector<unsigned char>;

// --- random records --------------------------------------------------------------------------

template <class T> void put(void* record, unsigned int offset, T value) {
    std::memcpy(static_cast<unsigned char*>(record) + offset, &value, sizeof value);
}

template <class T> T get(const void* record, unsigned int offset) {
    T value;
    std::memcpy(&value, static_cast<const unsigned char*>(record) + offset, sizeof value);
    return value;
}

class Generator {
  public:
    explicit Generator(unsigned int seed) : rng_(seed) {}

    // Fills a zeroed record; every allocation is malloc'ed so that free_record releases it.
    void fill(const kelm_record_type& type, void* record, int depth) {
        for (unsigned int i = 0; i < type.field_count; ++i)
            fill_field(type.fields[i], record, depth);
    }

  private:
    uint32_t integer() {
        static const uint32_t extremes[] = {0u,          1u,          0x7Fu,   0x80u,   0xFFFFFFFFu,
                                            0x7FFFFFFFu, 0x80000000u, 0xFFFFu, 0x10000u};
        return rng_() % 3 == 0 ? extremes[rng_() % (sizeof extremes / sizeof extremes[0])]
                               : static_cast<uint32_t>(rng_());
    }

    // Texts long enough for one-, two- and three-octet lengths, sometimes with UTF-8.
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

    unsigned char* bytes(unsigned int n) {
        if (n == 0)
            return nullptr;
        unsigned char* b = static_cast<unsigned char*>(std::malloc(n));
        for (unsigned int i = 0; i < n; ++i)
            b[i] = static_cast<unsigned char>(rng_());
        return b;
    }

    unsigned int entries(int depth) { return depth > 2 ? 0 : rng_() % 4; }

    void* nested(const kelm_record_type& type, int depth) {
        void* record = std::calloc(1, type.record_size);
        fill(type, record, depth + 1);
        return record;
    }

    void fill_field(const kelm_record_field& f, void* record, int depth) {
        switch (f.kind) {
        case kind::integer:
        case kind::unsigned_integer:
            put<uint32_t>(record, f.offset, integer());
            return;
        case kind::unsigned16:
            put<uint16_t>(record, f.offset, static_cast<uint16_t>(integer()));
            return;
        case kind::unsigned8:
            put<uint8_t>(record, f.offset, static_cast<uint8_t>(integer()));
            return;
        case kind::text:
        case kind::octet_text:
            put<char*>(record, f.offset, text());
            return;
        case kind::bytes: {
            const unsigned int n = rng_() % 5 == 0 ? 0 : rng_() % 300;
            put<unsigned char*>(record, f.offset, bytes(n));
            put<uint32_t>(record, f.aux, n);
            return;
        }
        case kind::fixed_bytes:
            for (unsigned int i = 0; i < f.size; ++i)
                put<uint8_t>(record, f.offset + i, static_cast<uint8_t>(rng_()));
            return;
        case kind::record:
            fill(*f.type, static_cast<unsigned char*>(record) + f.offset, depth + 1);
            return;
        case kind::optional_record:
            put<void*>(record, f.offset,
                       rng_() % 2 && depth < 3 ? nested(*f.type, depth) : nullptr);
            return;
        case kind::record_list:
        case kind::record_list16: {
            const unsigned int n = entries(depth);
            unsigned char* array =
                n ? static_cast<unsigned char*>(std::calloc(n, f.type->record_size)) : nullptr;
            for (unsigned int k = 0; k < n; ++k)
                fill(*f.type, array + k * f.type->record_size, depth + 1);
            put<unsigned char*>(record, f.offset, array);
            if (f.kind == kind::record_list16)
                put<uint16_t>(record, f.aux, static_cast<uint16_t>(n));
            else
                put<uint32_t>(record, f.aux, n);
            return;
        }
        case kind::record_pointer_list: {
            const unsigned int n = entries(depth);
            void** array = n ? static_cast<void**>(std::calloc(n, sizeof(void*))) : nullptr;
            for (unsigned int k = 0; k < n; ++k)
                array[k] = nested(*f.type, depth);
            put<void**>(record, f.offset, array);
            put<uint32_t>(record, f.aux, n);
            return;
        }
        case kind::text_list: {
            const unsigned int n = entries(depth);
            char** array = n ? static_cast<char**>(std::calloc(n, sizeof(char*))) : nullptr;
            for (unsigned int k = 0; k < n; ++k)
                array[k] = text();
            put<char**>(record, f.offset, array);
            put<uint32_t>(record, f.aux, n);
            return;
        }
        case kind::integer_list: {
            const unsigned int n = entries(depth);
            uint32_t* array =
                n ? static_cast<uint32_t*>(std::calloc(n, sizeof(uint32_t))) : nullptr;
            for (unsigned int k = 0; k < n; ++k)
                array[k] = integer();
            put<uint32_t*>(record, f.offset, array);
            put<uint32_t>(record, f.aux, n);
            return;
        }
        case kind::slots:
            for (unsigned int k = 0; k < f.size; ++k)
                if (depth < 3 && rng_() % 4 == 0)
                    put<void*>(static_cast<unsigned char*>(record) + f.offset, k * sizeof(void*),
                               nested(*f.type, depth));
            return;
        }
    }

    std::mt19937 rng_;
};

// --- comparison ------------------------------------------------------------------------------

// The path of the first difference between two records, empty when they are equal. A null text
// and an empty one are equal (both are written as an empty value).
std::string difference(const kelm_record_type& type, const void* a, const void* b,
                       const std::string& path);

std::string text_difference(const char* a, const char* b, const std::string& path) {
    const char* x = a != nullptr ? a : "";
    const char* y = b != nullptr ? b : "";
    return std::strcmp(x, y) == 0 ? "" : path;
}

unsigned int count_of(const kelm_record_field& f, const void* record) {
    return f.kind == kind::record_list16 ? get<uint16_t>(record, f.aux)
                                         : get<uint32_t>(record, f.aux);
}

std::string field_difference(const kelm_record_field& f, const void* a, const void* b,
                             const std::string& path) {
    const unsigned char* pa = static_cast<const unsigned char*>(a);
    const unsigned char* pb = static_cast<const unsigned char*>(b);
    switch (f.kind) {
    case kind::integer:
    case kind::unsigned_integer:
        return get<uint32_t>(a, f.offset) == get<uint32_t>(b, f.offset) ? "" : path;
    case kind::unsigned16:
        return get<uint16_t>(a, f.offset) == get<uint16_t>(b, f.offset) ? "" : path;
    case kind::unsigned8:
        return get<uint8_t>(a, f.offset) == get<uint8_t>(b, f.offset) ? "" : path;
    case kind::text:
    case kind::octet_text:
        return text_difference(get<const char*>(a, f.offset), get<const char*>(b, f.offset), path);
    case kind::bytes: {
        const uint32_t na = get<uint32_t>(a, f.aux), nb = get<uint32_t>(b, f.aux);
        const unsigned char* da = get<const unsigned char*>(a, f.offset);
        const unsigned char* db = get<const unsigned char*>(b, f.offset);
        return na == nb && (na == 0 || std::memcmp(da, db, na) == 0) ? "" : path;
    }
    case kind::fixed_bytes:
        return std::memcmp(pa + f.offset, pb + f.offset, f.size) == 0 ? "" : path;
    case kind::record:
        return difference(*f.type, pa + f.offset, pb + f.offset, path);
    case kind::optional_record: {
        const void* na = get<const void*>(a, f.offset);
        const void* nb = get<const void*>(b, f.offset);
        if (na == nullptr || nb == nullptr)
            return na == nb ? "" : path + " (presence)";
        return difference(*f.type, na, nb, path);
    }
    case kind::record_list:
    case kind::record_list16:
    case kind::record_pointer_list:
    case kind::text_list:
    case kind::integer_list: {
        const unsigned int n = count_of(f, a);
        if (n != count_of(f, b))
            return path + " (count)";
        for (unsigned int k = 0; k < n; ++k) {
            const std::string at = path + "[" + std::to_string(k) + "]";
            std::string d;
            if (f.kind == kind::record_list || f.kind == kind::record_list16)
                d = difference(
                    *f.type, get<const unsigned char*>(a, f.offset) + k * f.type->record_size,
                    get<const unsigned char*>(b, f.offset) + k * f.type->record_size, at);
            else if (f.kind == kind::record_pointer_list)
                d = difference(*f.type, get<void* const*>(a, f.offset)[k],
                               get<void* const*>(b, f.offset)[k], at);
            else if (f.kind == kind::text_list)
                d = text_difference(get<char* const*>(a, f.offset)[k],
                                    get<char* const*>(b, f.offset)[k], at);
            else
                d = get<const uint32_t*>(a, f.offset)[k] == get<const uint32_t*>(b, f.offset)[k]
                        ? ""
                        : at;
            if (!d.empty())
                return d;
        }
        return "";
    }
    case kind::slots:
        for (unsigned int k = 0; k < f.size; ++k) {
            const void* sa = get<const void*>(pa + f.offset, k * sizeof(void*));
            const void* sb = get<const void*>(pb + f.offset, k * sizeof(void*));
            const std::string at = path + "[" + std::to_string(k) + "]";
            if (sa == nullptr || sb == nullptr) {
                if (sa != sb)
                    return at + " (presence)";
                continue;
            }
            const std::string d = difference(*f.type, sa, sb, at);
            if (!d.empty())
                return d;
        }
        return "";
    }
    return path;
}

std::string difference(const kelm_record_type& type, const void* a, const void* b,
                       const std::string& path) {
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const std::string d =
            field_difference(type.fields[i], a, b, path + "." + type.fields[i].name);
        if (!d.empty())
            return d;
    }
    return "";
}

// --- encode and decode -----------------------------------------------------------------------

// A record of a type, freed with the type's own free function.
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

unsigned int encode(const kelm_record_type& type, const void* record, Bytes& out) {
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status =
        kelm_asn_record::encode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
    out.assign(buffer.data, buffer.data + buffer.length);
    std::free(buffer.data);
    return status;
}

unsigned int decode(const kelm_record_type& type, const Bytes& in, void* record) {
    // An exact-size copy, so that the sanitizers catch any read past the input.
    std::unique_ptr<unsigned char[]> exact(new unsigned char[in.size() + 1]);
    std::copy(in.begin(), in.end(), exact.get());
    kelm_asn_buffer_t buffer{in.size(), exact.get()};
    return kelm_asn_record::decode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
}

std::vector<const kelm_record_type*> all_types() {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    return std::vector<const kelm_record_type*>(types, types + count);
}

class RecordBattery : public ::testing::TestWithParam<const kelm_record_type*> {};

std::string type_label(const ::testing::TestParamInfo<const kelm_record_type*>& info) {
    return info.param->record_name;
}

} // namespace

TEST_P(RecordBattery, TheEmptyRecordRoundTrips) {
    const kelm_record_type& type = *GetParam();
    Record empty(type);
    Bytes wire;
    ASSERT_EQ(encode(type, empty.bytes, wire), 0u);
    ASSERT_GT(wire.size(), 4u);
    Record back(type);
    ASSERT_EQ(decode(type, wire, back.bytes), 0u);
    EXPECT_EQ(difference(type, empty.bytes, back.bytes, type.record_name), "");
}

TEST_P(RecordBattery, RandomRecordsRoundTripFieldByField) {
    const kelm_record_type& type = *GetParam();
    Generator generator(1234);
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        Record original(type);
        generator.fill(type, original.bytes, 0);
        Bytes wire;
        ASSERT_EQ(encode(type, original.bytes, wire), 0u);
        Record back(type);
        ASSERT_EQ(decode(type, wire, back.bytes), 0u);
        EXPECT_EQ(difference(type, original.bytes, back.bytes, type.record_name), "");
        Bytes again;
        ASSERT_EQ(encode(type, back.bytes, again), 0u);
        EXPECT_EQ(again, wire) << "decoding then encoding gives the same bytes";
    }
}

TEST_P(RecordBattery, EveryTruncationGivesAStatusAndFreesCleanly) {
    const kelm_record_type& type = *GetParam();
    Generator generator(99);
    Record original(type);
    generator.fill(type, original.bytes, 1);
    Bytes wire;
    ASSERT_EQ(encode(type, original.bytes, wire), 0u);
    const size_t step = wire.size() > 4000 ? wire.size() / 1000 : 1;
    for (size_t n = 0; n < wire.size(); n += step) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " of " << wire.size());
        Record back(type);
        EXPECT_NE(decode(type, Bytes(wire.begin(), wire.begin() + n), back.bytes), 0u);
    }
}

TEST_P(RecordBattery, EveryAllocationOfAnEncodeAndADecodeFailsCleanly) {
    const kelm_record_type& type = *GetParam();
    Generator generator(7);
    Record original(type);
    generator.fill(type, original.bytes, 2);
    Bytes wire;
    ASSERT_EQ(encode(type, original.bytes, wire), 0u);
    std::unique_ptr<unsigned char[]> exact(new unsigned char[wire.size()]);
    std::copy(wire.begin(), wire.end(), exact.get());
    const kelm_asn_buffer_t input{wire.size(), exact.get()};
    for (int direction = 0; direction < 2; ++direction) {
        for (unsigned long n = 1;; ++n) {
            SCOPED_TRACE(::testing::Message()
                         << (direction ? "decode" : "encode") << ", allocation " << n);
            Record back(type);
            kelm_asn_buffer_t out{0, nullptr};
            unsigned int status;
            bool failed;
            ::testing::internal::CaptureStderr();
            {
                kelm_test::ScopedAllocationFailure failure(n);
                status = direction ? kelm_asn_record::decode(type, back.bytes, input, 2,
                                                             KELM_SECURITY_PLAIN)
                                   : kelm_asn_record::encode(type, original.bytes, out, 2,
                                                             KELM_SECURITY_PLAIN);
                failed = kelm_test::failure_delivered();
            }
            const std::string err = ::testing::internal::GetCapturedStderr();
            std::free(out.data);
            if (!failed) {
                EXPECT_EQ(status, 0u);
                break;
            }
            // A type that ignores its elements' statuses decodes on past a text it cannot
            // allocate, silently.
            const bool ignored = direction == 1 && status == 0 && err.empty() &&
                                 (type.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS);
            if (!ignored) {
                EXPECT_EQ(status, 0x10652065u) << err;
            }
            EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
        }
    }
}

TEST_P(RecordBattery, GarbageAfterAValidHeaderNeverCrashes) {
    const kelm_record_type& type = *GetParam();
    std::mt19937 rng(55);
    for (int round = 0; round < 200; ++round) {
        Bytes wire = {0x04, 0x02, 0xAC, 0xDC, 0x30};
        const unsigned int n = rng() % 60;
        wire.push_back(static_cast<unsigned char>(rng() % 2 ? n : 0x80));
        for (unsigned int i = 0; i < n; ++i)
            wire.push_back(static_cast<unsigned char>(rng() % 3 == 0 ? 0x30 : rng()));
        Record back(type);
        decode(type, wire, back.bytes); // any status; the record must free cleanly
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, RecordBattery, ::testing::ValuesIn(all_types()), type_label);
