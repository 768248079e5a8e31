// The iconv descriptors that each thread keeps between conversions: opened once per pair of code
// sets, found again by the code set's name when the thread's locale changes, never shared
// between threads. Expected octets are those of ISO-8859-1 (é is E9) and of UTF-8 (C3 A9).
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "kelmz_internal.h"
#include "test_locale.h"

namespace {

using kelmz_detail::iconv_descriptors_opened;
using kelmz_detail::Route;

const char kLatin1[] = "ISO-8859-1";
const char kAscii[] = "ANSI_X3.4-1968";

std::string to_local(const std::string& utf8, const char* codeset) {
    const kelmz_detail::OwnedText text =
        kelmz_detail::utf8_to_local(utf8.data(), utf8.size(), codeset, Route::Iconv);
    return std::string(text.chars(), text.length());
}

std::string to_utf8(const std::string& local, const char* codeset) {
    const kelmz_detail::OwnedText text =
        kelmz_detail::local_to_utf8(local.data(), local.size(), codeset, Route::Iconv);
    return std::string(text.chars(), text.length());
}

} // namespace

TEST(IconvDescriptors, AreOpenedOncePerDirectionAndCodeSetAndThread) {
    std::thread([] {
        const unsigned long before = iconv_descriptors_opened();
        EXPECT_EQ(to_local("caf\xC3\xA9", kLatin1), "caf\xE9");
        EXPECT_EQ(to_utf8("caf\xE9", kLatin1), "caf\xC3\xA9");
        EXPECT_EQ(iconv_descriptors_opened(), before + 2);
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(to_local("\xC3\xA9t\xC3\xA9", kLatin1), "\xE9t\xE9");
            EXPECT_EQ(to_utf8("\xE9t\xE9", kLatin1), "\xC3\xA9t\xC3\xA9");
        }
        EXPECT_EQ(iconv_descriptors_opened(), before + 2);
    }).join();
}

TEST(IconvDescriptors, FollowTheCodeSetWhenItChanges) {
    std::thread([] {
        const unsigned long before = iconv_descriptors_opened();
        EXPECT_EQ(to_local("\xC3\xA9", kLatin1), "\xE9");
        EXPECT_EQ(to_local("\xC3\xA9", kAscii), "?"); // é has no form in ASCII
        EXPECT_EQ(to_local("\xC3\xA9", kLatin1), "\xE9");
        EXPECT_EQ(to_local("\xC3\xA9", kAscii), "?");
        EXPECT_EQ(iconv_descriptors_opened(), before + 2);
    }).join();
}

TEST(IconvDescriptors, FollowTheThreadsLocaleWhenItChanges) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    std::thread([] {
        for (int round = 0; round < 3; ++round) {
            {
                kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
                ASSERT_TRUE(latin1.active()) << latin1.problem();
                const ZLCString_7_0_0 local(ZUTF8ConstString_7_0_0("\xC3\xA9", 2));
                EXPECT_EQ(std::string(local.getChars()), "\xE9");
            }
            {
                kelm_test::ScopedThreadLocale utf8(kelm_test::kUtf8Locale);
                ASSERT_TRUE(utf8.active()) << utf8.problem();
                const ZLCString_7_0_0 local(ZUTF8ConstString_7_0_0("\xC3\xA9", 2));
                EXPECT_EQ(std::string(local.getChars()), "\xC3\xA9");
            }
            {
                kelm_test::ScopedThreadLocale posix(kelm_test::kPosixLocale);
                ASSERT_TRUE(posix.active()) << posix.problem();
                const ZLCString_7_0_0 local(ZUTF8ConstString_7_0_0("\xC3\xA9", 2));
                EXPECT_EQ(std::string(local.getChars()), "?");
            }
        }
    }).join();
}

// A conversion cut short leaves nothing behind: a stateful code set starts the next conversion in
// its initial shift state. ISO-2022-JP enters a shift state for kanji (ESC $ B) and returns to
// ASCII at the end (ESC ( B); the next conversion starts in ASCII again.
TEST(IconvDescriptors, StartEveryConversionInTheInitialShiftState) {
    std::thread([] {
        const std::string kanji = "\xE4\xB8\xAD"; // U+4E2D
        const std::string first = to_local(kanji + "a", "ISO-2022-JP");
        const std::string second = to_local("a", "ISO-2022-JP");
        EXPECT_EQ(second, "a");
        EXPECT_EQ(first.substr(0, 3), "\x1B$B");
        EXPECT_EQ(to_local(kanji + "a", "ISO-2022-JP"), first);
    }).join();
}

TEST(IconvDescriptors, AreNotSharedBetweenThreads) {
    unsigned long opened_here = 0, opened_there = 0;
    std::thread first([&] {
        to_local("\xC3\xA9", kLatin1);
        opened_here = iconv_descriptors_opened();
    });
    first.join();
    std::thread second([&] {
        to_local("\xC3\xA9", kLatin1);
        opened_there = iconv_descriptors_opened();
    });
    second.join();
    EXPECT_EQ(opened_here, 1u);
    EXPECT_EQ(opened_there, 1u);
}
