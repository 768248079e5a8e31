// Text conversion between the thread's local code set and UTF-8: ASCII, ISO-8859-1 and UTF-8
// locales, the '?' rule for unconvertible characters and ill-formed bytes, long text, allocation
// failures, threads with different locales, and the classes staying out of the export table.
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iconv.h>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_status.h"
#include "kelmz_internal.h"
#include "test_locale.h"

namespace {

using kelm_test::ScopedThreadLocale;

static_assert(!std::is_copy_constructible_v<ZUTF8String_7_0_0>, "owners are not copied");
static_assert(!std::is_copy_assignable_v<ZUTF8String_7_0_0>, "owners are not copied");
static_assert(!std::is_copy_constructible_v<ZLCString_7_0_0>, "owners are not copied");
static_assert(!std::is_copy_assignable_v<ZLCString_7_0_0>, "owners are not copied");

const char kAsciiCodeset[] = "ANSI_X3.4-1968";

// Bytes in hex, for failure messages.
std::string hex(const std::string& bytes) {
    std::string text;
    char pair[4];
    for (unsigned char byte : bytes) {
        std::snprintf(pair, sizeof pair, "%02X ", byte);
        text += pair;
    }
    return text.empty() ? "(empty)" : text.substr(0, text.size() - 1);
}

// The result's bytes; also checks that they are NUL-terminated right after getLength() bytes.
std::string text_of(const ZAbstractMutableString_7_0_0& converted) {
    EXPECT_NE(converted.getChars(), nullptr);
    if (converted.getChars() == nullptr)
        return "";
    EXPECT_EQ(std::strlen(converted.getChars()), converted.getLength())
        << "terminator not right after the text";
    return std::string(converted.getChars(), converted.getLength());
}

std::string to_utf8(const std::string& local) {
    const ZUTF8String_7_0_0 utf8{ZLCConstString_7_0_0(local.c_str())};
    return text_of(utf8);
}

std::string to_local(const std::string& utf8) {
    const ZLCString_7_0_0 local{
        ZUTF8ConstString_7_0_0(utf8.data(), static_cast<unsigned int>(utf8.size()))};
    return text_of(local);
}

// The UTF-8 form of a Latin-1 octet, from the code point arithmetic of RFC 3629.
std::string utf8_of_latin1(unsigned char octet) {
    if (octet < 0x80)
        return std::string(1, static_cast<char>(octet));
    return {static_cast<char>(0xC0 | (octet >> 6)), static_cast<char>(0x80 | (octet & 0x3F))};
}

std::string latin1_range() {
    std::string octets;
    for (int octet = 0x01; octet <= 0xFF; ++octet)
        octets += static_cast<char>(octet);
    return octets;
}

// `unit` repeated until the text holds at least `size` bytes.
std::string repeated(const std::string& unit, size_t size) {
    std::string text;
    text.reserve(size + unit.size());
    while (text.size() < size)
        text += unit;
    return text;
}

constexpr size_t kMiB = 1u << 20;

// --- one fixture per locale ------------------------------------------------------------------

enum class Locale { Posix, Utf8, Latin1 };

// How GoogleTest names a Locale in its messages.
void PrintTo(Locale locale, std::ostream* os) {
    const char* names[] = {"POSIX", "UTF-8", "ISO-8859-1"};
    *os << names[static_cast<int>(locale)] << " locale";
}

std::string locale_name(Locale locale) {
    switch (locale) {
    case Locale::Posix:
        return kelm_test::kPosixLocale;
    case Locale::Utf8:
        return kelm_test::kUtf8Locale;
    case Locale::Latin1:
        return kelm_test::latin1_locale_name();
    }
    return "";
}

// Runs the test body with the locale as the thread's current locale.
class InLocale : public ::testing::TestWithParam<Locale> {
  protected:
    void SetUp() override {
        if (GetParam() == Locale::Latin1) {
            KELM_SKIP_UNLESS_LATIN1_LOCALE();
        }
        locale_ = std::make_unique<ScopedThreadLocale>(locale_name(GetParam()));
        ASSERT_TRUE(locale_->active()) << locale_->problem();
    }
    void TearDown() override { locale_.reset(); }

  private:
    std::unique_ptr<ScopedThreadLocale> locale_;
};

std::string printable_locale(const ::testing::TestParamInfo<Locale>& info) {
    switch (info.param) {
    case Locale::Posix:
        return "Posix";
    case Locale::Utf8:
        return "Utf8";
    case Locale::Latin1:
        return "Latin1";
    }
    return "Unknown";
}

INSTANTIATE_TEST_SUITE_P(Locales, InLocale,
                         ::testing::Values(Locale::Posix, Locale::Utf8, Locale::Latin1),
                         printable_locale);

TEST_P(InLocale, ConversionsUseTheThreadsCodeSet) {
    const char* expected[] = {kAsciiCodeset, "UTF-8", "ISO-8859-1"};
    EXPECT_STREQ(kelmz_detail::current_codeset(), expected[static_cast<int>(GetParam())]);
}

TEST_P(InLocale, AsciiTextIsUnchangedInBothDirections) {
    std::string ascii;
    for (int octet = 0x01; octet <= 0x7F; ++octet) {
        const std::string one(1, static_cast<char>(octet));
        SCOPED_TRACE(hex(one));
        EXPECT_EQ(to_utf8(one), one);
        EXPECT_EQ(to_local(one), one);
        ascii += one;
    }
    EXPECT_EQ(to_utf8(ascii), ascii);
    EXPECT_EQ(to_local(ascii), ascii);
}

TEST_P(InLocale, EmptyTextGivesAnEmptyTerminatedString) {
    const ZUTF8String_7_0_0 from_empty{ZLCConstString_7_0_0("")};
    const ZUTF8String_7_0_0 from_null{ZLCConstString_7_0_0(nullptr)};
    const ZLCString_7_0_0 from_no_bytes{ZUTF8ConstString_7_0_0("abc", 0)};
    const ZLCString_7_0_0 from_null_bytes{ZUTF8ConstString_7_0_0(nullptr, 5)};
    const ZAbstractMutableString_7_0_0* results[] = {&from_empty, &from_null, &from_no_bytes,
                                                     &from_null_bytes};
    for (const ZAbstractMutableString_7_0_0* converted : results) {
        EXPECT_EQ(converted->getLength(), 0u);
        ASSERT_NE(converted->getChars(), nullptr);
        EXPECT_EQ(converted->getChars()[0], '\0');
    }
}

// Rows without any well-formed non-ASCII character give the same result in every locale.
TEST_P(InLocale, EachIllFormedUtf8ByteBecomesOneQuestionMark) {
    const struct Row {
        const char* what;
        std::string utf8;
        std::string local;
    } rows[] = {
        {"lone lead byte", "\xC3", "?"},
        {"stray continuation byte", "\x80", "?"},
        {"byte never used", "\xFF", "?"},
        {"overlong NUL", "\xC0\x80", "??"},
        {"overlong slash", "\xE0\x80\xAF", "???"},
        {"truncated at the end", "\xE2\x82", "??"},
        {"truncated before ASCII",
         "\xE2\x82"
         "A",
         "??A"},
        {"surrogate", "\xED\xA0\x80", "???"},
        {"above U+10FFFF", "\xF4\x90\x80\x80", "????"},
        {"five-byte form", "\xF8\x88\x80\x80\x80", "?????"},
        {"amid ASCII",
         "a\xC3"
         "b\x80"
         "c",
         "a?b?c"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.what) + ": " + hex(row.utf8));
        EXPECT_EQ(to_local(row.utf8), row.local);
    }
}

TEST_P(InLocale, NulInsideUtf8BecomesQuestionMark) {
    const ZLCString_7_0_0 local{ZUTF8ConstString_7_0_0("ab\0cd", 5)};
    EXPECT_EQ(local.getLength(), 5u);
    EXPECT_STREQ(local.getChars(), "ab?cd");
}

// Every allocation a conversion makes, failed in turn, throws the memory exception; the
// sanitizer build's LeakSanitizer checks that the failed runs left nothing behind. `convert`
// writes its result into `out`, which the caller reserved beforehand, so that the only
// allocations of a run are the conversion's own.
void expect_each_allocation_failure_throws(const std::function<void()>& convert,
                                           const std::string& out, const std::string& expected,
                                           unsigned long minimum_allocations) {
    bool threw = false;
    unsigned int status = 0;
    const char* message = nullptr;
    const unsigned long allocations = kelm_test::for_each_allocation_failure(
        [&] {
            threw = false;
            try {
                convert();
            } catch (const kelm_asn_memexception& e) {
                threw = true;
                status = e.status;
                message = e.message;
            }
        },
        [&](unsigned long n) {
            SCOPED_TRACE("allocation " + std::to_string(n) + " failed");
            EXPECT_TRUE(threw);
            EXPECT_EQ(status, static_cast<unsigned int>(KELM_ASN_OUT_OF_MEMORY));
            ASSERT_NE(message, nullptr);
            EXPECT_NE(std::strstr(message, "Out of memory"), nullptr) << message;
        });
    EXPECT_GE(allocations, minimum_allocations);
    EXPECT_FALSE(threw);
    EXPECT_EQ(out.size(), expected.size());
    EXPECT_TRUE(out == expected);
}

TEST_P(InLocale, EveryAllocationFailureThrowsAndLeaksNothing) {
    const std::string ascii = repeated("cn=admin,o=example ", 4096);
    std::string out;
    out.reserve(ascii.size() + 1);
    expect_each_allocation_failure_throws(
        [&] {
            const ZUTF8String_7_0_0 utf8{ZLCConstString_7_0_0(ascii.c_str())};
            out.assign(utf8.getChars(), utf8.getLength());
        },
        out, ascii, 1);
    out.clear();
    expect_each_allocation_failure_throws(
        [&] {
            const ZLCString_7_0_0 local{
                ZUTF8ConstString_7_0_0(ascii.data(), static_cast<unsigned int>(ascii.size()))};
            out.assign(local.getChars(), local.getLength());
        },
        out, ascii, 1);
}

// --- ISO-8859-1 ------------------------------------------------------------------------------

class Latin1 : public ::testing::Test {
  protected:
    void SetUp() override {
        KELM_SKIP_UNLESS_LATIN1_LOCALE();
        locale_ = std::make_unique<ScopedThreadLocale>(kelm_test::latin1_locale_name());
        ASSERT_TRUE(locale_->active()) << locale_->problem();
    }
    void TearDown() override { locale_.reset(); }

  private:
    std::unique_ptr<ScopedThreadLocale> locale_;
};

TEST_F(Latin1, EAcuteBecomesC3A9AndComesBack) {
    EXPECT_EQ(to_utf8("\xE9"), "\xC3\xA9");
    EXPECT_EQ(to_local("\xC3\xA9"), "\xE9");
    EXPECT_EQ(to_utf8("caf\xE9"), "caf\xC3\xA9");
}

TEST_F(Latin1, EveryOctetRoundTripsThroughUtf8) {
    for (int octet = 0x01; octet <= 0xFF; ++octet) {
        const std::string local(1, static_cast<char>(octet));
        const std::string utf8 = utf8_of_latin1(static_cast<unsigned char>(octet));
        SCOPED_TRACE(hex(local));
        EXPECT_EQ(hex(to_utf8(local)), hex(utf8));
        EXPECT_EQ(hex(to_local(utf8)), hex(local));
    }
}

TEST_F(Latin1, WholeRangeInOneStringRoundTrips) {
    const std::string local = latin1_range();
    std::string utf8;
    for (unsigned char octet : local)
        utf8 += utf8_of_latin1(octet);
    EXPECT_EQ(utf8.size(), 0x7Fu + 2 * 0x80u);
    EXPECT_TRUE(to_utf8(local) == utf8);
    EXPECT_TRUE(to_local(utf8) == local);
}

TEST_F(Latin1, CharacterOutsideLatin1BecomesOneQuestionMark) {
    const struct Row {
        const char* what;
        std::string utf8;
        std::string local;
    } rows[] = {
        {"euro sign U+20AC", "\xE2\x82\xAC", "?"},
        {"CJK U+4E2D", "\xE4\xB8\xAD", "?"},
        {"U+0100, just past Latin-1", "\xC4\x80", "?"},
        {"emoji U+1F600", "\xF0\x9F\x98\x80", "?"},
        {"mixed with Latin-1 and ASCII",
         "a\xE2\x82\xAC"
         "b\xE4\xB8\xAD"
         "c\xC3\xA9\xF0\x9F\x98\x80"
         "d",
         "a?b?c\xE9?d"},
        {"unconvertible then truncated", "\xE2\x82\xAC\xE2\x82", "???"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.what) + ": " + hex(row.utf8));
        EXPECT_EQ(hex(to_local(row.utf8)), hex(row.local));
    }
}

TEST_F(Latin1, MegabyteOfEveryOctetRoundTrips) {
    const std::string local = repeated(latin1_range(), kMiB);
    std::string utf8;
    utf8.reserve(2 * local.size());
    for (unsigned char octet : local)
        utf8 += utf8_of_latin1(octet);
    const std::string converted = to_utf8(local);
    EXPECT_EQ(converted.size(), utf8.size());
    EXPECT_TRUE(converted == utf8);
    const std::string back = to_local(converted);
    EXPECT_EQ(back.size(), local.size());
    EXPECT_TRUE(back == local);
}

// Latin-1 letters take two UTF-8 bytes, so the result outgrows its first block: the failure of
// each growth is covered as well as the first allocation.
TEST_F(Latin1, AllocationFailureWhileGrowingThrowsAndLeaksNothing) {
    const std::string local = repeated("\xE9\xE8\xFC", 3000);
    std::string utf8;
    for (unsigned char octet : local)
        utf8 += utf8_of_latin1(octet);
    std::string out;
    out.reserve(utf8.size() + 1);
    expect_each_allocation_failure_throws(
        [&] {
            const ZUTF8String_7_0_0 converted{ZLCConstString_7_0_0(local.c_str())};
            out.assign(converted.getChars(), converted.getLength());
        },
        out, utf8, 2);
    out.clear();
    expect_each_allocation_failure_throws(
        [&] {
            const ZLCString_7_0_0 converted{
                ZUTF8ConstString_7_0_0(utf8.data(), static_cast<unsigned int>(utf8.size()))};
            out.assign(converted.getChars(), converted.getLength());
        },
        out, local, 1);
}

// --- UTF-8 -----------------------------------------------------------------------------------

class Utf8 : public ::testing::Test {
  protected:
    ScopedThreadLocale locale_{kelm_test::kUtf8Locale};
    void SetUp() override { ASSERT_TRUE(locale_.active()) << locale_.problem(); }
};

const char kWellFormed[] = "a\xC3\xA9\xE2\x82\xAC\xE4\xB8\xAD\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF";

TEST_F(Utf8, WellFormedTextIsCopiedBothWays) {
    EXPECT_EQ(to_utf8(kWellFormed), kWellFormed);
    EXPECT_EQ(to_local(kWellFormed), kWellFormed);
}

TEST_F(Utf8, EachIllFormedLocalByteBecomesOneQuestionMark) {
    EXPECT_EQ(to_utf8("caf\xE9"), "caf?");                     // Latin-1 text in a UTF-8 locale
    EXPECT_EQ(to_utf8("\xC3("), "?(");                         // lead byte without continuation
    EXPECT_EQ(to_utf8("\xED\xA0\x80\xC3\xA9"), "???\xC3\xA9"); // surrogate, then é
    EXPECT_EQ(to_local("\xC3\xC3\xA9"), "?\xC3\xA9");
}

TEST_F(Utf8, MegabyteRoundTripsAndKeepsItsLength) {
    const std::string text = repeated(kWellFormed, kMiB);
    EXPECT_TRUE(to_utf8(text) == text);
    EXPECT_TRUE(to_local(text) == text);
    std::string damaged = text;
    for (size_t i = 1; i < damaged.size(); i += 4099)
        damaged[i] = '\xFF';
    const std::string repaired = to_local(damaged);
    EXPECT_EQ(repaired.size(), damaged.size());
    EXPECT_EQ(repaired, to_utf8(damaged));
    EXPECT_EQ(repaired.find('\xFF'), std::string::npos);
}

// --- POSIX -----------------------------------------------------------------------------------

class Posix : public ::testing::Test {
  protected:
    ScopedThreadLocale locale_{kelm_test::kPosixLocale};
    void SetUp() override { ASSERT_TRUE(locale_.active()) << locale_.problem(); }
};

TEST_F(Posix, EachNonAsciiLocalByteBecomesOneQuestionMark) {
    EXPECT_EQ(to_utf8("caf\xE9"), "caf?");
    EXPECT_EQ(to_utf8("\x80\xC3\xA9\xFF"), "????");
}

TEST_F(Posix, EachNonAsciiCharacterBecomesOneQuestionMark) {
    EXPECT_EQ(to_local(kWellFormed), "a?????");
    EXPECT_EQ(to_local("caf\xC3\xA9 \xE2\x82"), "caf? ??");
}

TEST_F(Posix, MegabyteOfAsciiIsUnchanged) {
    const std::string text = repeated("uid=operator,ou=people,o=example;", kMiB);
    EXPECT_TRUE(to_utf8(text) == text);
    EXPECT_TRUE(to_local(text) == text);
}

// --- the implementations behind the rule -----------------------------------------------------

std::string converted(kelmz_detail::OwnedText text) {
    return std::string(text.chars(), text.length());
}

// Every 1- and 2-byte string, and every 3-byte string starting E0..EF, through the ASCII fast
// path and through iconv.
TEST(AsciiCodeSet, FastPathGivesWhatIconvGives) {
    using kelmz_detail::Route;
    std::vector<std::string> inputs;
    for (int first = 0x01; first <= 0xFF; ++first) {
        inputs.push_back(std::string(1, static_cast<char>(first)));
        for (int second = 0x00; second <= 0xFF; ++second)
            inputs.push_back({static_cast<char>(first), static_cast<char>(second)});
    }
    for (int first = 0xE0; first <= 0xEF; ++first)
        for (int second = 0x00; second <= 0xFF; second += 3)
            for (int third = 0x00; third <= 0xFF; third += 5)
                inputs.push_back({static_cast<char>(first), static_cast<char>(second),
                                  static_cast<char>(third)});
    unsigned long mismatches = 0;
    for (const std::string& in : inputs) {
        const std::string fast_utf8 = converted(
            kelmz_detail::utf8_to_local(in.data(), in.size(), kAsciiCodeset, Route::Fastest));
        const std::string iconv_utf8 = converted(
            kelmz_detail::utf8_to_local(in.data(), in.size(), kAsciiCodeset, Route::Iconv));
        const std::string fast_local = converted(
            kelmz_detail::local_to_utf8(in.data(), in.size(), kAsciiCodeset, Route::Fastest));
        const std::string iconv_local = converted(
            kelmz_detail::local_to_utf8(in.data(), in.size(), kAsciiCodeset, Route::Iconv));
        if (fast_utf8 != iconv_utf8 || fast_local != iconv_local) {
            ++mismatches;
            ADD_FAILURE() << hex(in) << ": from UTF-8 fast " << hex(fast_utf8) << ", iconv "
                          << hex(iconv_utf8) << "; to UTF-8 fast " << hex(fast_local) << ", iconv "
                          << hex(iconv_local);
        }
        if (mismatches > 10)
            break;
    }
    EXPECT_EQ(mismatches, 0u);
}

// glibc's decoder from UTF-8 to UTF-16 is an independent judge of well-formedness (it rejects
// overlong forms, surrogates and values above U+10FFFF).
bool iconv_accepts_as_utf8(iconv_t to_utf16, const unsigned char* bytes, size_t n) {
    iconv(to_utf16, nullptr, nullptr, nullptr, nullptr);
    char* in = const_cast<char*>(reinterpret_cast<const char*>(bytes));
    size_t in_left = n;
    char out[16];
    char* target = out;
    size_t out_left = sizeof out;
    return iconv(to_utf16, &in, &in_left, &target, &out_left) != static_cast<size_t>(-1) &&
           in_left == 0;
}

// True when the bytes are a sequence of well-formed characters, as the character table says.
bool all_well_formed(const unsigned char* bytes, size_t n) {
    size_t i = 0;
    while (i < n) {
        const unsigned int k = kelmz_detail::well_formed_utf8_length(bytes + i, n - i);
        if (k == 0)
            return false;
        i += k;
    }
    return true;
}

TEST(Utf8WellFormedness, AgreesWithGlibcOnEveryShortSequence) {
    iconv_t to_utf16 = iconv_open("UTF-16LE", "UTF-8");
    ASSERT_NE(to_utf16, reinterpret_cast<iconv_t>(-1));
    const unsigned char tails[] = {0x00, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                   0xA0, 0xBF, 0xC0, 0xC2, 0xE0, 0xF0, 0xFF};
    unsigned long checked = 0;
    unsigned long disagreements = 0;
    auto check = [&](const unsigned char* bytes, size_t n) {
        ++checked;
        const bool ours = all_well_formed(bytes, n);
        if (ours != iconv_accepts_as_utf8(to_utf16, bytes, n) && ++disagreements <= 10)
            ADD_FAILURE() << hex(std::string(reinterpret_cast<const char*>(bytes), n))
                          << ": ours says " << (ours ? "well-formed" : "ill-formed");
    };
    unsigned char bytes[4];
    for (int a = 0x00; a <= 0xFF; ++a) {
        bytes[0] = static_cast<unsigned char>(a);
        check(bytes, 1);
        for (int b = 0x00; b <= 0xFF; ++b) {
            bytes[1] = static_cast<unsigned char>(b);
            check(bytes, 2);
            if (a < 0xC0)
                continue;
            for (unsigned char c : tails) {
                bytes[2] = c;
                check(bytes, 3);
                if (a < 0xF0)
                    continue;
                for (unsigned char d : tails) {
                    bytes[3] = d;
                    check(bytes, 4);
                }
            }
        }
    }
    // Every 3-byte sequence whose lead is E0..EF, with every continuation byte.
    for (int a = 0xE0; a <= 0xEF; ++a)
        for (int b = 0x80; b <= 0xBF; ++b)
            for (int c = 0x80; c <= 0xBF; ++c) {
                const unsigned char three[] = {static_cast<unsigned char>(a),
                                               static_cast<unsigned char>(b),
                                               static_cast<unsigned char>(c)};
                check(three, 3);
            }
    iconv_close(to_utf16);
    EXPECT_GT(checked, 1000000u);
    EXPECT_EQ(disagreements, 0u);
}

TEST(UnknownCodeSet, IsTreatedAsAscii) {
    using kelmz_detail::Route;
    const char unknown[] = "KELMZ-NO-SUCH-CODE-SET";
    const std::string local = "caf\xE9";
    const std::string utf8 = "caf\xC3\xA9 \xE2\x82";
    EXPECT_EQ(
        converted(kelmz_detail::local_to_utf8(local.data(), local.size(), unknown, Route::Fastest)),
        "caf?");
    EXPECT_EQ(
        converted(kelmz_detail::utf8_to_local(utf8.data(), utf8.size(), unknown, Route::Fastest)),
        "caf? ??");
}

// --- threads ---------------------------------------------------------------------------------

// What one thread expects under its locale for the same two inputs: the UTF-8 for é, and the
// local bytes C3 A9 (é in UTF-8, "Ã©" in Latin-1).
struct ThreadCase {
    std::string locale;
    std::string local_of_utf8_e_acute;
    std::string utf8_of_local_c3_a9;
};

TEST(Threads, EachThreadConvertsWithItsOwnLocale) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    const ThreadCase cases[] = {
        {kelm_test::kPosixLocale, "?", "??"},
        {kelm_test::kUtf8Locale, "\xC3\xA9", "\xC3\xA9"},
        {kelm_test::latin1_locale_name(), "\xE9", "\xC3\x83\xC2\xA9"},
    };
    constexpr int kThreadsPerLocale = 2;
    constexpr int kRounds = 2000;
    const int thread_count = kThreadsPerLocale * static_cast<int>(std::size(cases));

    std::mutex mutex;
    std::condition_variable ready;
    int waiting = 0;
    std::atomic<unsigned long> conversions{0};
    std::vector<std::string> problems(thread_count);
    std::vector<std::thread> threads;
    for (int t = 0; t < thread_count; ++t) {
        threads.emplace_back([&, t] {
            const ThreadCase& expected = cases[t % std::size(cases)];
            ScopedThreadLocale locale(expected.locale);
            // All threads start converting together, so that their conversions overlap.
            {
                std::unique_lock<std::mutex> lock(mutex);
                if (++waiting == thread_count)
                    ready.notify_all();
                else
                    ready.wait(lock, [&] { return waiting == thread_count; });
            }
            if (!locale.active()) {
                problems[t] = locale.problem();
                return;
            }
            for (int round = 0; round < kRounds; ++round) {
                const ZLCString_7_0_0 local{ZUTF8ConstString_7_0_0("\xC3\xA9", 2)};
                const ZUTF8String_7_0_0 utf8{ZLCConstString_7_0_0("\xC3\xA9")};
                conversions += 2;
                if (expected.local_of_utf8_e_acute != local.getChars() ||
                    expected.utf8_of_local_c3_a9 != utf8.getChars()) {
                    problems[t] = expected.locale + " round " + std::to_string(round) + ": local " +
                                  hex(local.getChars()) + ", UTF-8 " + hex(utf8.getChars());
                    return;
                }
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < thread_count; ++t)
        EXPECT_EQ(problems[t], "") << "thread " << t;
    EXPECT_EQ(conversions.load(), 2ul * kRounds * thread_count);
}

// --- linkage ---------------------------------------------------------------------------------

// Lines of `nm` run with `options` on the shared library that mention `needle`.
std::vector<std::string> nm_lines(const std::string& options, const std::string& needle) {
    std::vector<std::string> lines;
    const std::string command =
        "nm " + options + " --demangle '" + std::string(KELMASN_SHARED_LIBRARY) + "'";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return lines;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe) != nullptr)
        if (std::strstr(line, needle.c_str()) != nullptr)
            lines.push_back(line);
    pclose(pipe);
    return lines;
}

TEST(Linkage, TheClassesAreInTheSharedLibraryButNotExported) {
    const std::vector<std::string> defined =
        nm_lines("--defined-only", "ZUTF8String_7_0_0::ZUTF8String_7_0_0");
    ASSERT_FALSE(defined.empty()) << "the conversion classes are not in " KELMASN_SHARED_LIBRARY;
    for (const std::string& line : nm_lines("-D --defined-only", "_7_0_0"))
        ADD_FAILURE() << "exported: " << line;
    for (const std::string& line : nm_lines("-D --defined-only", "kelmz_detail"))
        ADD_FAILURE() << "exported: " << line;
}

} // namespace
