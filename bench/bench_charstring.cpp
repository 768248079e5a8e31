// set_value_C of a directory string, as the message classes set a name from local text: time
// and allocations per call for text that lands in PrintableString, in T.61 and in UTF-8.
#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "asnbase.h"

namespace {

// The same length of name in each case, so that only the code set chosen differs.
char kPrintableName[] = "Access Control List 42 for the Zurich office";
char kTeletexName[] = "cn=acl42,ou=zurich,o=example@directory;tag#7";
char kUTF8Name[] = "acl\x01"
                   "42 for the Zurich office with a control octet";

void BM_DirectoryStringSetValueC(benchmark::State& state, char* text, unsigned int codeset) {
    kelm_asn_directoryString value;
    if (value.set_value_C(text) != 0 || value.get_codeset() != codeset) {
        state.SkipWithError("the text did not land in the expected code set");
        return;
    }
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        benchmark::DoNotOptimize(value.set_value_C(text));
    }
    state.counters["allocs_per_call"] = benchmark::Counter(
        static_cast<double>(kelm_test::allocation_count()), benchmark::Counter::kAvgIterations);
}
BENCHMARK_CAPTURE(BM_DirectoryStringSetValueC, printable, kPrintableName, 19);
BENCHMARK_CAPTURE(BM_DirectoryStringSetValueC, teletex, kTeletexName, 20);
BENCHMARK_CAPTURE(BM_DirectoryStringSetValueC, utf8, kUTF8Name, 12);

} // namespace
