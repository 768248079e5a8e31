// Encoding and decoding of INTEGERs and OCTET STRINGs, one value object per element as the
// message classes use them: time and allocations per element.
#include <vector>

#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "asnbase.h"

namespace {

void report_per_element(benchmark::State& state, unsigned long elements,
                        unsigned long allocations) {
    state.SetItemsProcessed(static_cast<int64_t>(elements));
    state.counters["allocs_per_element"] =
        elements == 0 ? 0.0 : static_cast<double>(allocations) / static_cast<double>(elements);
}

constexpr unsigned int kIntegers = 1000000;
constexpr unsigned int kStrings = 100000;

std::vector<unsigned char> encoded_integers() {
    kelm_buffer_t out;
    for (unsigned int i = 0; i < kIntegers; ++i) {
        kelm_asn_integer value;
        value.set_value(static_cast<int>(i * 2654435761u));
        value.asnwrite(out);
    }
    return std::vector<unsigned char>(out.cursor, out.cursor + out.used());
}

void BM_IntegerEncode(benchmark::State& state) {
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_buffer_t out;
        for (unsigned int i = 0; i < kIntegers; ++i) {
            kelm_asn_integer value;
            value.set_value(static_cast<int>(i * 2654435761u));
            value.asnwrite(out);
        }
        benchmark::DoNotOptimize(out.storage);
        elements += kIntegers;
    }
    report_per_element(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_IntegerEncode)->Unit(benchmark::kMillisecond);

void BM_IntegerDecode(benchmark::State& state) {
    std::vector<unsigned char> input = encoded_integers();
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_r_buffer_t in(input.data(), static_cast<unsigned int>(input.size()));
        long sum = 0;
        for (unsigned int i = 0; i < kIntegers; ++i) {
            kelm_asn_integer value;
            value.asnread(in);
            int read = 0;
            value.get_value(read);
            sum += read;
        }
        benchmark::DoNotOptimize(sum);
        elements += kIntegers;
    }
    report_per_element(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_IntegerDecode)->Unit(benchmark::kMillisecond);

void BM_OctetStringEncode(benchmark::State& state) {
    const std::vector<unsigned char> data(100, 0x61);
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_buffer_t out;
        for (unsigned int i = 0; i < kStrings; ++i) {
            kelm_asn_octetstring value;
            value.set_value(data.data(), 100);
            value.asnwrite(out);
        }
        benchmark::DoNotOptimize(out.storage);
        elements += kStrings;
    }
    report_per_element(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_OctetStringEncode)->Unit(benchmark::kMillisecond);

void BM_OctetStringDecode(benchmark::State& state) {
    const std::vector<unsigned char> data(100, 0x61);
    kelm_buffer_t encoded;
    for (unsigned int i = 0; i < kStrings; ++i) {
        kelm_asn_octetstring value;
        value.set_value(data.data(), 100);
        value.asnwrite(encoded);
    }
    std::vector<unsigned char> input(encoded.cursor, encoded.cursor + encoded.used());
    unsigned long elements = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_r_buffer_t in(input.data(), static_cast<unsigned int>(input.size()));
        for (unsigned int i = 0; i < kStrings; ++i) {
            kelm_asn_octetstring value;
            value.asnread(in);
            benchmark::DoNotOptimize(value.is_present());
        }
        elements += kStrings;
    }
    report_per_element(state, elements, kelm_test::allocation_count());
}
BENCHMARK(BM_OctetStringDecode)->Unit(benchmark::kMillisecond);

} // namespace
