// SEQUENCE OF lists: encode and decode cost per element as the list grows from a thousand to a
// million elements, so that linear growth shows as a flat time per element.
#include <vector>

#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "asnbase.h"

namespace {

// SEQUENCE { a INTEGER, b INTEGER, c INTEGER }
struct Triple : kelm_asn_sequence {
    explicit Triple(security_t sec = KELM_SECURITY_PLAIN) : kelm_asn_sequence(sec) {
        register_child(&a);
        register_child(&b);
        register_child(&c);
    }
    kelm_asn_integer a, b, c;
};

void report(benchmark::State& state, unsigned long elements, unsigned long allocations) {
    state.SetItemsProcessed(static_cast<int64_t>(elements));
    state.counters["allocs_per_element"] =
        static_cast<double>(allocations) / static_cast<double>(elements);
}

void BM_IntegerListEncode(benchmark::State& state) {
    const unsigned int n = static_cast<unsigned int>(state.range(0));
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_sequenceof<kelm_asn_integer> list;
        for (unsigned int i = 0; i < n; ++i)
            list.add_child()->set_value(static_cast<int>(i));
        kelm_buffer_t out;
        list.asnwrite(out);
        benchmark::DoNotOptimize(out.storage);
        elements += n;
    }
    report(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_IntegerListEncode)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);

void BM_IntegerListDecode(benchmark::State& state) {
    const unsigned int n = static_cast<unsigned int>(state.range(0));
    std::vector<unsigned char> input;
    {
        kelm_asn_sequenceof<kelm_asn_integer> list;
        for (unsigned int i = 0; i < n; ++i)
            list.add_child()->set_value(static_cast<int>(i));
        kelm_buffer_t out;
        list.asnwrite(out);
        input.assign(out.cursor, out.cursor + out.used());
    }
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_sequenceof<kelm_asn_integer> list;
        kelm_r_buffer_t in(input.data(), static_cast<unsigned int>(input.size()));
        list.asnread(in);
        benchmark::DoNotOptimize(list.get_child_count());
        elements += n;
    }
    report(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_IntegerListDecode)
    ->RangeMultiplier(10)
    ->Range(1000, 1000000)
    ->Unit(benchmark::kMicrosecond);

void BM_TripleListEncode(benchmark::State& state) {
    const unsigned int n = static_cast<unsigned int>(state.range(0));
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_sequenceof<Triple> list;
        for (unsigned int i = 0; i < n; ++i) {
            Triple* t = list.add_child();
            t->a.set_value(static_cast<int>(i));
            t->b.set_value(-static_cast<int>(i));
            t->c.set_value(static_cast<int>(i) * 1000);
        }
        kelm_buffer_t out;
        list.asnwrite(out);
        benchmark::DoNotOptimize(out.storage);
        elements += n;
    }
    report(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_TripleListEncode)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMicrosecond);

void BM_TripleListDecode(benchmark::State& state) {
    const unsigned int n = static_cast<unsigned int>(state.range(0));
    std::vector<unsigned char> input;
    {
        kelm_asn_sequenceof<Triple> list;
        for (unsigned int i = 0; i < n; ++i) {
            Triple* t = list.add_child();
            t->a.set_value(static_cast<int>(i));
            t->b.set_value(-static_cast<int>(i));
            t->c.set_value(static_cast<int>(i) * 1000);
        }
        kelm_buffer_t out;
        list.asnwrite(out);
        input.assign(out.cursor, out.cursor + out.used());
    }
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_sequenceof<Triple> list;
        kelm_r_buffer_t in(input.data(), static_cast<unsigned int>(input.size()));
        list.asnread(in);
        benchmark::DoNotOptimize(list.get_child_count());
        elements += n;
    }
    report(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_TripleListDecode)
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
