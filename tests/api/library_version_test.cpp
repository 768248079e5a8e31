// The library's version is written once, as the project's version: the version header's macros
// and kelmasn_library_version() are the version the build was configured with.
#include <dlfcn.h>

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kelm/kelmasn.h"

namespace {

// "MAJOR.MINOR.PATCH" from the three numeric macros.
std::string version_of_the_macros() {
    return std::to_string(KELMASN_VERSION_MAJOR) + "." + std::to_string(KELMASN_VERSION_MINOR) +
           "." + std::to_string(KELMASN_VERSION_PATCH);
}

// The dot-separated numbers of the version the build was configured with.
std::vector<std::string> configured_components() {
    std::vector<std::string> parts;
    std::istringstream text(KELMASN_CONFIGURED_VERSION);
    for (std::string part; std::getline(text, part, '.');)
        parts.push_back(part);
    return parts;
}

} // namespace

TEST(LibraryVersion, IsTheStringOfTheThreeVersionMacros) {
    const char* version = kelmasn_library_version();
    ASSERT_NE(version, nullptr);
    EXPECT_EQ(std::string(version), version_of_the_macros());
    EXPECT_EQ(std::string(KELMASN_VERSION_STRING), version_of_the_macros());
}

TEST(LibraryVersion, MacrosAreTheVersionTheBuildWasConfiguredWith) {
    const std::vector<std::string> parts = configured_components();
    ASSERT_EQ(parts.size(), 3u) << KELMASN_CONFIGURED_VERSION;
    EXPECT_EQ(std::to_string(KELMASN_VERSION_MAJOR), parts[0]);
    EXPECT_EQ(std::to_string(KELMASN_VERSION_MINOR), parts[1]);
    EXPECT_EQ(std::to_string(KELMASN_VERSION_PATCH), parts[2]);
    EXPECT_STREQ(KELMASN_VERSION_STRING, KELMASN_CONFIGURED_VERSION);
}

// The shared library that callers load answers with the same version, through its exported
// symbol.
TEST(LibraryVersion, TheSharedLibraryExportsTheSameVersion) {
    void* library = dlopen(KELMASN_SHARED_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    using version_function = const char* (*)();
    const auto function =
        reinterpret_cast<version_function>(dlsym(library, "_Z23kelmasn_library_versionv"));
    ASSERT_NE(function, nullptr) << "kelmasn_library_version() is not exported";
    EXPECT_STREQ(function(), KELMASN_CONFIGURED_VERSION);
    dlclose(library);
}
