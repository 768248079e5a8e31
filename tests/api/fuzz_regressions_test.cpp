// Replays the fuzz targets' seed corpus and every regression input under fuzz/regressions through
// the properties the targets check, so that what fuzzing found once stays fixed.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ber_tree_properties.h"
#include "check_inspect_properties.h"
#include "der_inspect_properties.h"
#include "der_walk_properties.h"
#include "record_properties.h"
#include "runtime_object_properties.h"

namespace {

namespace fs = std::filesystem;

using PropertyCheck = std::string (*)(const uint8_t*, size_t);

std::vector<fs::path> files_in(const fs::path& dir) {
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<uint8_t> read_bytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in),
                                std::istreambuf_iterator<char>());
}

// Every file of `dir` through `check`; the folder must hold at least one input.
void replay(const fs::path& dir, PropertyCheck check) {
    const std::vector<fs::path> files = files_in(dir);
    ASSERT_FALSE(files.empty()) << "no inputs in " << dir;
    for (const fs::path& file : files) {
        SCOPED_TRACE(file.filename().string());
        const std::vector<uint8_t> bytes = read_bytes(file);
        EXPECT_EQ(check(bytes.data(), bytes.size()), "");
    }
}

const fs::path kFuzzDir(KELMASN_FUZZ_DIR);

} // namespace

TEST(FuzzRegressions, EveryRegressionInputKeepsTheInspectionProperties) {
    replay(kFuzzDir / "regressions", kelmasn_fuzz::check_der_inspection);
}

TEST(FuzzRegressions, EveryRegressionInputKeepsTheWalkProperties) {
    replay(kFuzzDir / "regressions", kelmasn_fuzz::check_der_walk);
}

TEST(FuzzCorpus, EverySeedKeepsTheInspectionProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_der_inspect", kelmasn_fuzz::check_der_inspection);
}

TEST(FuzzCorpus, EverySeedKeepsTheWalkProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_der_walk", kelmasn_fuzz::check_der_walk);
}

TEST(FuzzCorpus, EverySeedKeepsTheRecordProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_records", kelmasn_fuzz::check_record_decoding);
}

TEST(FuzzRegressions, EveryRegressionInputKeepsTheBerTreeProperties) {
    replay(kFuzzDir / "regressions", kelmasn_fuzz::check_ber_tree);
}

TEST(FuzzCorpus, EverySeedKeepsTheBerTreeProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_ber_tree", kelmasn_fuzz::check_ber_tree);
}

TEST(FuzzRegressions, EveryRegressionInputKeepsTheRuntimeObjectProperties) {
    replay(kFuzzDir / "regressions", kelmasn_fuzz::check_runtime_objects);
}

TEST(FuzzCorpus, EverySeedKeepsTheRuntimeObjectProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_runtime_objects", kelmasn_fuzz::check_runtime_objects);
}

TEST(FuzzRegressions, EveryRegressionInputKeepsTheCheckAndInspectProperties) {
    replay(kFuzzDir / "regressions", kelmasn_fuzz::check_check_and_inspect);
}

TEST(FuzzCorpus, EverySeedKeepsTheCheckAndInspectProperties) {
    replay(kFuzzDir / "corpus" / "fuzz_check_inspect", kelmasn_fuzz::check_check_and_inspect);
}
