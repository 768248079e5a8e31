// Locales for tests and benchmarks: switch the calling thread to a locale for a scope, and an
// ISO-8859-1 locale built at run time (Debian ships none ready-made).
#ifndef KELMASN_TEST_LOCALE_H
#define KELMASN_TEST_LOCALE_H

#include <locale.h>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace kelm_test {

// Names for newlocale that every glibc system has.
inline constexpr const char kPosixLocale[] = "C";
inline constexpr const char kUtf8Locale[] = "C.UTF-8";

// Makes the named locale the calling thread's current locale (uselocale) until destroyed, then
// restores the thread's previous locale and frees this one. The process locale (setlocale) and
// other threads are not touched. When the locale cannot be loaded, nothing changes and
// active() is false; problem() says why.
class ScopedThreadLocale {
  public:
    explicit ScopedThreadLocale(const std::string& name);
    ~ScopedThreadLocale();
    ScopedThreadLocale(const ScopedThreadLocale&) = delete;
    ScopedThreadLocale& operator=(const ScopedThreadLocale&) = delete;

    bool active() const { return locale_ != locale_t(0); }
    const std::string& problem() const { return problem_; }

  private:
    locale_t locale_ = locale_t(0);
    locale_t previous_ = locale_t(0);
    std::string problem_;
};

// The name of an ISO-8859-1 locale (en_US.ISO-8859-1) that newlocale accepts on any thread.
// The first call builds it with `localedef -i en_US -f ISO-8859-1` in a temporary directory
// (removed when the process exits) and adds that directory to LOCPATH; later calls return the
// same name. Returns "" when it cannot be built; latin1_locale_problem() then says why. Make the
// first call before starting threads that read the environment, since it changes LOCPATH.
const std::string& latin1_locale_name();
const std::string& latin1_locale_problem();

} // namespace kelm_test

// In a GoogleTest test body or SetUp: skips the test, with the reason, when the ISO-8859-1
// locale cannot be built on this machine.
#define KELM_SKIP_UNLESS_LATIN1_LOCALE()                                                           \
    if (::kelm_test::latin1_locale_name().empty())                                                 \
    GTEST_SKIP() << ::kelm_test::latin1_locale_problem()

namespace kelm_test {

// A test fixture whose body runs on a thread using the ISO-8859-1 locale; the test is skipped,
// with the reason, where that locale cannot be built.
class Latin1Test : public ::testing::Test {
  protected:
    void SetUp() override {
        KELM_SKIP_UNLESS_LATIN1_LOCALE();
        locale_ = std::make_unique<ScopedThreadLocale>(latin1_locale_name());
        ASSERT_TRUE(locale_->active()) << locale_->problem();
    }
    void TearDown() override { locale_.reset(); }

  private:
    std::unique_ptr<ScopedThreadLocale> locale_;
};

} // namespace kelm_test

#endif
