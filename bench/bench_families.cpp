// An audit event of 20 elements through the typed entry points: time and allocations per record,
// MB/s of encoded output. The ACL and the name/value tree are the workloads W2 and W3 of
// bench_direct_codec.cpp.
#include <cstdlib>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "kelm/kelmasn.h"
#include "workloads.h"

namespace {

using namespace kelm_bench;

template <class Record> void encode_bench(benchmark::State& state, Record record) {
    kelm_asn_buffer_t sample{0, nullptr};
    kelmAsnEncodeObj(sample, record);
    const size_t size = sample.length;
    kelm_asn_buffer_free(sample);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_buffer_t out{0, nullptr};
        kelmAsnEncodeObj(out, record);
        benchmark::DoNotOptimize(out.data);
        kelm_asn_buffer_free(out);
        ++records;
    }
    state.SetItemsProcessed(static_cast<int64_t>(records));
    state.SetBytesProcessed(static_cast<int64_t>(records * size));
    state.counters["allocs_per_record"] =
        static_cast<double>(kelm_test::allocation_count()) / static_cast<double>(records);
    state.counters["encoded_bytes"] = static_cast<double>(size);
    kelmAsnFreeObj(record);
}

template <class Record> void decode_bench(benchmark::State& state, Record record) {
    kelm_asn_buffer_t wire{0, nullptr};
    kelmAsnEncodeObj(wire, record);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        Record back{};
        kelmAsnDecodeObj(wire, back);
        benchmark::DoNotOptimize(&back);
        kelmAsnFreeObj(back);
        ++records;
    }
    state.SetItemsProcessed(static_cast<int64_t>(records));
    state.SetBytesProcessed(static_cast<int64_t>(records * wire.length));
    state.counters["allocs_per_record"] =
        static_cast<double>(kelm_test::allocation_count()) / static_cast<double>(records);
    kelm_asn_buffer_free(wire);
    kelmAsnFreeObj(record);
}

void BM_AuditEventEncode(benchmark::State& state) {
    encode_bench(state, make_event());
}
void BM_AuditEventDecode(benchmark::State& state) {
    decode_bench(state, make_event());
}
BENCHMARK(BM_AuditEventEncode);
BENCHMARK(BM_AuditEventDecode);

} // namespace
