// The suites that fail the allocations of a typed or type-code entry point in turn and look for
// the lines of particular sites of the message classes (an element object that cannot be added, a
// child array that cannot grow) test the object path: the direct codec has no such sites (its
// allocations are the output block or the record's own, and tests/records/direct_codec_test.cpp
// checks each of them against the object path). Those suites, the ones whose name ends in
// "Failure", run with the object path forced, so that the reference keeps its own checks in every
// run; every other test runs the entry points as callers do.
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "asn_record_direct.h"

namespace {

bool drives_object_path_sites(const std::string& suite) {
    const std::string suffix = "Failure";
    return suite.size() >= suffix.size() &&
           suite.compare(suite.size() - suffix.size(), suffix.size(), suffix) == 0;
}

class ObjectPathSuites : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo& test) override {
        if (drives_object_path_sites(test.test_suite_name())) {
            forced_before_ = kelm_object_path_forced();
            kelm_force_object_path(true);
            forcing_ = true;
        }
    }
    void OnTestEnd(const ::testing::TestInfo&) override {
        if (forcing_)
            kelm_force_object_path(forced_before_);
        forcing_ = false;
    }

    bool forcing_ = false;
    bool forced_before_ = false;
};

const bool kInstalled = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new ObjectPathSuites);
    return true;
}();

} // namespace

TEST(ObjectPathSitesFailure, RunWithTheObjectPathForced) {
    EXPECT_TRUE(kInstalled);
    EXPECT_TRUE(kelm_object_path_forced());
}

TEST(ObjectPathSites, OtherSuitesRunTheEntryPointsAsCallersDo) {
    EXPECT_TRUE(kInstalled);
    EXPECT_EQ(kelm_object_path_forced(),
              std::getenv("KELMASN_FORCE_OBJECT_PATH") != nullptr &&
                  std::string(std::getenv("KELMASN_FORCE_OBJECT_PATH")) != "0" &&
                  std::string(std::getenv("KELMASN_FORCE_OBJECT_PATH")) != "");
}
