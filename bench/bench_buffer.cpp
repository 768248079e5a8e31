// Throughput of the output buffer's appends and of walking DER with the inspection functions.
#include <vector>

#include <benchmark/benchmark.h>

#include "kelm/kelmasn.h"

namespace {

constexpr unsigned int kMiB = 1u << 20;

void BM_OneByteAppend(benchmark::State& state) {
    for (auto _ : state) {
        kelm_buffer_t buffer;
        for (unsigned int i = 0; i < kMiB; ++i)
            buffer.append(static_cast<unsigned char>(i));
        benchmark::DoNotOptimize(buffer.storage);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_OneByteAppend);

void BM_BlockAppend(benchmark::State& state) {
    const unsigned int block = static_cast<unsigned int>(state.range(0));
    std::vector<unsigned char> bytes(block, 0x5A);
    for (auto _ : state) {
        kelm_buffer_t buffer;
        for (unsigned int written = 0; written < kMiB; written += block)
            buffer.append(bytes.data(), block);
        benchmark::DoNotOptimize(buffer.storage);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kMiB);
}
BENCHMARK(BM_BlockAppend)->Arg(16)->Arg(256)->Arg(4096);

// About 1 MiB of SEQUENCEs, each holding an INTEGER, an OCTET STRING and a BOOLEAN.
std::vector<unsigned char> make_der_megabyte() {
    std::vector<unsigned char> bytes;
    while (bytes.size() < kMiB) {
        const unsigned char element[] = {0x30, 0x0D, 0x02, 0x02, 0x01, 0x00, 0x04, 0x04,
                                         'a',  'b',  'c',  'd',  0x01, 0x01, 0xFF};
        bytes.insert(bytes.end(), std::begin(element), std::end(element));
    }
    return bytes;
}

void BM_WalkDer(benchmark::State& state) {
    const std::vector<unsigned char> input = make_der_megabyte();
    for (auto _ : state) {
        std::vector<unsigned char> bytes = input;
        unsigned char* slots[2] = {bytes.data(), nullptr};
        unsigned int remaining = static_cast<unsigned int>(bytes.size());
        unsigned long elements = 0;
        while (remaining > 0) {
            unsigned int tag, cons, cls, definite, length;
            if (kelmAsnGetType(&slots[0], &remaining, &tag, &cons, &cls) != 0 ||
                kelmAsnGetLength(&slots[0], &remaining, &definite, &length) != 0)
                break;
            ++elements;
            if (cons)
                continue; // step into the constructed element
            if (tag == 2) {
                int64_t value;
                kelmAsnGetIntegerValue(&slots[0], &remaining, length, &value);
                benchmark::DoNotOptimize(value);
            } else {
                slots[0] += length;
                remaining -= length;
            }
        }
        benchmark::DoNotOptimize(elements);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * input.size());
}
BENCHMARK(BM_WalkDer);

} // namespace
