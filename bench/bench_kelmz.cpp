// Cost of one text conversion between the local code set and UTF-8, per locale and direction:
// a typical name of a record (about 30 bytes) and a 1 KiB text. The ISO-8859-1 locale goes
// through iconv, the POSIX and UTF-8 locales through the fast paths.
#include <iconv.h>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "kelmz_internal.h"
#include "test_locale.h"

namespace {

enum LocaleArg { kPosix = 0, kUtf8 = 1, kLatin1 = 2 };

// Text in the locale's own code set: accented letters where the code set has them.
std::string local_text(int locale, size_t size) {
    const char* unit = locale == kLatin1 ? "cn=Ren\xE9 M\xFCller,o=example;"
                       : locale == kUtf8 ? "cn=Ren\xC3\xA9 M\xC3\xBCller,o=example;"
                                         : "cn=Rene Mueller,o=example;";
    std::string text;
    while (text.size() < size)
        text += unit;
    return text;
}

// Switches the benchmark's thread to the locale of argument 0; false (and the run skipped) when
// it cannot be loaded.
std::unique_ptr<kelm_test::ScopedThreadLocale> use_locale(benchmark::State& state) {
    const int locale = static_cast<int>(state.range(0));
    const std::string name = locale == kLatin1 ? kelm_test::latin1_locale_name()
                             : locale == kUtf8 ? std::string(kelm_test::kUtf8Locale)
                                               : std::string(kelm_test::kPosixLocale);
    if (name.empty()) {
        state.SkipWithError(kelm_test::latin1_locale_problem().c_str());
        return nullptr;
    }
    auto scoped = std::make_unique<kelm_test::ScopedThreadLocale>(name);
    if (!scoped->active()) {
        state.SkipWithError(scoped->problem().c_str());
        return nullptr;
    }
    return scoped;
}

void BM_LocalToUtf8(benchmark::State& state) {
    const auto locale = use_locale(state);
    if (!locale)
        return;
    const std::string text =
        local_text(static_cast<int>(state.range(0)), static_cast<size_t>(state.range(1)));
    for (auto _ : state) {
        const ZUTF8String_7_0_0 utf8{ZLCConstString_7_0_0(text.c_str())};
        benchmark::DoNotOptimize(utf8.getChars());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void BM_Utf8ToLocal(benchmark::State& state) {
    const auto locale = use_locale(state);
    if (!locale)
        return;
    const ZUTF8String_7_0_0 utf8{ZLCConstString_7_0_0(
        local_text(static_cast<int>(state.range(0)), static_cast<size_t>(state.range(1))).c_str())};
    for (auto _ : state) {
        const ZLCString_7_0_0 local{ZUTF8ConstString_7_0_0(utf8.getChars(), utf8.getLength())};
        benchmark::DoNotOptimize(local.getChars());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * utf8.getLength()));
}

// Arguments: locale (0 POSIX, 1 UTF-8, 2 ISO-8859-1) and text size in bytes.
void locales_and_sizes(benchmark::internal::Benchmark* b) {
    b->ArgNames({"locale", "bytes"});
    for (int locale : {kPosix, kUtf8, kLatin1})
        for (int size : {30, 1024})
            b->Args({locale, size});
}
BENCHMARK(BM_LocalToUtf8)->Apply(locales_and_sizes);
BENCHMARK(BM_Utf8ToLocal)->Apply(locales_and_sizes);

// The fixed part of each iconv conversion: opening and closing the descriptor.
void BM_IconvOpenClose(benchmark::State& state) {
    for (auto _ : state) {
        iconv_t cd = iconv_open("UTF-8", "ISO-8859-1");
        benchmark::DoNotOptimize(cd);
        iconv_close(cd);
    }
}
BENCHMARK(BM_IconvOpenClose);

} // namespace
