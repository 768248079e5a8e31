// Whole records through the typed entry points: time and allocations per record, and MB/s of
// encoded output.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "kelm/kelmasn.h"

namespace {

char* text(const std::string& s) {
    char* copy = static_cast<char*>(std::malloc(s.size() + 1));
    std::memcpy(copy, s.c_str(), s.size() + 1);
    return copy;
}

// 10 attributes of 3 values: texts of about 12 characters, 16-byte binary values.
attrlist_s_t make_attribute_list() {
    attrlist_s_t list{10, static_cast<attr_s_t*>(std::calloc(10, sizeof(attr_s_t)))};
    for (unsigned int a = 0; a < 10; ++a) {
        attr_s_t& attr = list.attrs[a];
        attr.name = text("attribute-" + std::to_string(a) + "x");
        attr.value_count = 3;
        attr.values = static_cast<value_s_t*>(std::calloc(3, sizeof(value_s_t)));
        for (unsigned int v = 0; v < 3; ++v) {
            value_s_t& value = attr.values[v];
            value.value_type = v;
            value.str_value = text("value-text-" + std::to_string(v));
            value.bin_length = 16;
            value.bin_value = static_cast<unsigned char*>(std::malloc(16));
            std::memset(value.bin_value, 0x40 + v, 16);
        }
    }
    return list;
}

void report(benchmark::State& state, unsigned long records, unsigned long allocations,
            size_t encoded_size) {
    state.SetItemsProcessed(static_cast<int64_t>(records));
    state.SetBytesProcessed(static_cast<int64_t>(records * encoded_size));
    state.counters["allocs_per_record"] =
        static_cast<double>(allocations) / static_cast<double>(records);
    state.counters["encoded_bytes"] = static_cast<double>(encoded_size);
}

void BM_AttributeListEncode(benchmark::State& state) {
    attrlist_s_t list = make_attribute_list();
    kelm_asn_buffer_t sample{0, nullptr};
    kelmAsnEncodeObj(sample, list);
    const size_t size = sample.length;
    kelm_asn_buffer_free(sample);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_buffer_t out{0, nullptr};
        kelmAsnEncodeObj(out, list);
        benchmark::DoNotOptimize(out.data);
        kelm_asn_buffer_free(out);
        ++records;
    }
    report(state, records, kelm_test::allocation_count(), size);
    kelmAsnFreeObj(list);
}
BENCHMARK(BM_AttributeListEncode);

void BM_AttributeListDecode(benchmark::State& state) {
    attrlist_s_t list = make_attribute_list();
    kelm_asn_buffer_t wire{0, nullptr};
    kelmAsnEncodeObj(wire, list);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        attrlist_s_t back{};
        kelmAsnDecodeObj(wire, back);
        benchmark::DoNotOptimize(back.attrs);
        kelmAsnFreeObj(back);
        ++records;
    }
    report(state, records, kelm_test::allocation_count(), wire.length);
    kelm_asn_buffer_free(wire);
    kelmAsnFreeObj(list);
}
BENCHMARK(BM_AttributeListDecode);

} // namespace
