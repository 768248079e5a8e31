// Thread locales for tests, and the ISO-8859-1 locale built with localedef.
#include "test_locale.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <langinfo.h>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

// glibc's newlocale leaks the search path it builds from LOCPATH (one small block per call, made
// by argz_create_sep and grown by argz_add_sep), so every test that loads the ISO-8859-1 locale
// would fail under LeakSanitizer for a leak that is not ours. Nothing of this project uses argz.
// LeakSanitizer reads this hook at start-up; without a sanitizer it is never called.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:__argz_add_sep\nleak:__argz_create_sep\n";
}

namespace kelm_test {

ScopedThreadLocale::ScopedThreadLocale(const std::string& name) {
    locale_ = newlocale(LC_ALL_MASK, name.c_str(), locale_t(0));
    if (locale_ == locale_t(0)) {
        problem_ = "newlocale(\"" + name + "\") failed: " + std::strerror(errno);
        return;
    }
    previous_ = uselocale(locale_);
}

ScopedThreadLocale::~ScopedThreadLocale() {
    if (!active())
        return;
    uselocale(previous_);
    freelocale(locale_);
}

namespace {

const char kLatin1LocaleName[] = "en_US.ISO-8859-1";

// The built locale and the directory that holds it; the directory goes when the process exits.
struct Latin1Locale {
    std::string name;
    std::string problem;
    std::string directory;

    ~Latin1Locale() {
        if (directory.empty())
            return;
        std::error_code ignored;
        std::filesystem::remove_all(directory, ignored);
    }
};

// Runs a program found on PATH and waits for it. Returns its exit status, or -1 with `problem`
// set when it could not be started or did not exit normally.
int run_program(const std::vector<std::string>& arguments, std::string& problem) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    pid_t child;
    const int spawn_error = posix_spawnp(&child, argv[0], nullptr, nullptr, argv.data(), environ);
    if (spawn_error != 0) {
        problem = arguments[0] + " could not be started: " + std::strerror(spawn_error);
        return -1;
    }
    int status;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            problem = std::string("waiting for ") + arguments[0] + ": " + std::strerror(errno);
            return -1;
        }
    }
    if (!WIFEXITED(status)) {
        problem = arguments[0] + " did not exit normally";
        return -1;
    }
    return WEXITSTATUS(status);
}

// Puts `directory` first on LOCPATH, keeping what was there. newlocale reads LOCPATH at each
// call and still searches the system's locale directory after it.
void prepend_to_locpath(const std::string& directory) {
    const char* old = std::getenv("LOCPATH");
    const std::string value = old != nullptr && *old != '\0' ? directory + ":" + old : directory;
    setenv("LOCPATH", value.c_str(), 1);
}

// The codeset the named locale reports, or "" when it does not load.
std::string codeset_of(const char* name) {
    const locale_t locale = newlocale(LC_ALL_MASK, name, locale_t(0));
    if (locale == locale_t(0))
        return "";
    const std::string codeset = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return codeset;
}

Latin1Locale build_latin1_locale() {
    Latin1Locale built;
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern =
        std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") + "/kelmasn-test-locale-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        built.problem = "cannot make a temporary directory for the ISO-8859-1 locale: " +
                        std::string(std::strerror(errno));
        return built;
    }
    built.directory = pattern;

    std::string problem;
    const int status = run_program(
        {"localedef", "-i", "en_US", "-f", "ISO-8859-1", built.directory + "/" + kLatin1LocaleName},
        problem);
    if (status == -1) {
        built.problem = problem + " (localedef comes with Debian's libc-bin; the ISO-8859-1 "
                                  "tests need it)";
        return built;
    }
    // Status 1 means warnings with the locale written; the load below decides.
    if (status > 1) {
        built.problem = "localedef -i en_US -f ISO-8859-1 failed with status " +
                        std::to_string(status) +
                        " (the en_US source and the ISO-8859-1 charmap come with Debian's "
                        "locales package)";
        return built;
    }
    prepend_to_locpath(built.directory);
    const std::string codeset = codeset_of(kLatin1LocaleName);
    if (codeset != "ISO-8859-1") {
        built.problem = std::string("the locale built by localedef does not load as ") +
                        kLatin1LocaleName + " (codeset \"" + codeset + "\")";
        return built;
    }
    built.name = kLatin1LocaleName;
    return built;
}

const Latin1Locale& latin1_locale() {
    static const Latin1Locale built = build_latin1_locale();
    return built;
}

} // namespace

const std::string& latin1_locale_name() {
    return latin1_locale().name;
}

const std::string& latin1_locale_problem() {
    return latin1_locale().problem;
}

} // namespace kelm_test
