// Throughput of the code-set converters over about 1 MiB of text: ASCII-heavy Latin-1 for the
// converters that read IA5, and the same text in T.61, BMP, Universal or UTF-8 for the others.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "kelm/kelmasn.h"

namespace {

using Octets = std::vector<unsigned char>;

constexpr unsigned int kMiB = 1u << 20;

// Mostly ASCII with a sprinkling of accented Latin-1 letters, as in names and addresses.
Octets latin1_text() {
    const std::string line = "Jos\xE9 M\xFCller, Stra\xDF"
                             "e 12, 8004 Z\xFCrich; Fran\xE7oise Le Br\xEB"
                             "c'h (Qu\xE9"
                             "bec) - R\xE9sum\xE9 of staff member 4711.\n";
    Octets text;
    while (text.size() + line.size() <= kMiB)
        text.insert(text.end(), line.begin(), line.end());
    return text;
}

// Only characters of the PrintableString table.
Octets printable_text() {
    const std::string line = "Jose Mueller, Strasse 12, 8004 Zuerich (Quebec) - Resume of staff "
                             "member 4711? Yes/no: 'ok' + more. ";
    Octets text;
    while (text.size() + line.size() <= kMiB)
        text.insert(text.end(), line.begin(), line.end());
    return text;
}

using Converter = unsigned int (*)(const kelm_r_buffer_t&, kelm_buffer_t&);
using ValueConverter = unsigned int (*)(kelm_r_buffer_t, kelm_buffer_t&);

// The Latin-1 text converted once, to serve as the input of a benchmark.
template <typename F> Octets converted(F convert, Octets input) {
    kelm_r_buffer_t src(input.data(), static_cast<unsigned int>(input.size()));
    kelm_buffer_t dst;
    convert(src, dst);
    return Octets(dst.cursor, dst.cursor + dst.used());
}

template <typename F> void run(benchmark::State& state, F convert, Octets input) {
    kelm_r_buffer_t src(input.data(), static_cast<unsigned int>(input.size()));
    for (auto _ : state) {
        kelm_buffer_t dst;
        if (convert(src, dst) != KELM_ASN_OK) {
            state.SkipWithError("the conversion failed");
            break;
        }
        benchmark::DoNotOptimize(dst.storage);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * input.size());
}

const Octets& latin1() {
    static const Octets text = latin1_text();
    return text;
}
const Octets& t61() {
    static const Octets text = converted(IA52T61, latin1());
    return text;
}
const Octets& bmp() {
    static const Octets text = converted(IA52BMP, latin1());
    return text;
}
const Octets& ucs4() {
    static const Octets text = converted(IA52U, latin1());
    return text;
}
const Octets& utf8() {
    static const Octets text = converted(IA52UTF8, latin1());
    return text;
}

void BM_Codeset_IA52T61(benchmark::State& s) {
    run(s, IA52T61, latin1());
}
void BM_Codeset_T612BMP(benchmark::State& s) {
    run(s, T612BMP, t61());
}
void BM_Codeset_T612IA5(benchmark::State& s) {
    run(s, T612IA5, t61());
}
void BM_Codeset_BMP2IA5(benchmark::State& s) {
    run(s, BMP2IA5, bmp());
}
void BM_Codeset_IA52U(benchmark::State& s) {
    run(s, IA52U, latin1());
}
void BM_Codeset_IA52BMP(benchmark::State& s) {
    run(s, IA52BMP, latin1());
}
void BM_Codeset_BMP2U(benchmark::State& s) {
    run(s, BMP2U, bmp());
}
void BM_Codeset_U2IA5(benchmark::State& s) {
    run(s, U2IA5, ucs4());
}
void BM_Codeset_U2BMP(benchmark::State& s) {
    run(s, U2BMP, ucs4());
}
void BM_Codeset_UTF82IA5(benchmark::State& s) {
    run(s, UTF82IA5, utf8());
}
void BM_Codeset_UTF82BMP(benchmark::State& s) {
    run(s, UTF82BMP, utf8());
}
void BM_Codeset_IA52UTF8(benchmark::State& s) {
    run(s, IA52UTF8, latin1());
}
void BM_Codeset_BMP2UTF8(benchmark::State& s) {
    run(s, BMP2UTF8, bmp());
}
void BM_Codeset_U2UTF8(benchmark::State& s) {
    run(s, U2UTF8, ucs4());
}
void BM_Codeset_IA52V(benchmark::State& s) {
    run(s, IA52V, printable_text());
}
void BM_Codeset_IA52P(benchmark::State& s) {
    run(s, IA52P, printable_text());
}

BENCHMARK(BM_Codeset_IA52T61);
BENCHMARK(BM_Codeset_T612BMP);
BENCHMARK(BM_Codeset_T612IA5);
BENCHMARK(BM_Codeset_BMP2IA5);
BENCHMARK(BM_Codeset_IA52U);
BENCHMARK(BM_Codeset_IA52BMP);
BENCHMARK(BM_Codeset_BMP2U);
BENCHMARK(BM_Codeset_U2IA5);
BENCHMARK(BM_Codeset_U2BMP);
BENCHMARK(BM_Codeset_UTF82IA5);
BENCHMARK(BM_Codeset_UTF82BMP);
BENCHMARK(BM_Codeset_IA52UTF8);
BENCHMARK(BM_Codeset_BMP2UTF8);
BENCHMARK(BM_Codeset_U2UTF8);
BENCHMARK(BM_Codeset_IA52V);
BENCHMARK(BM_Codeset_IA52P);

} // namespace
