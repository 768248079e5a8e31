// An independent reader agrees: the DER body that the library writes for every record type's
// example (examples/json/<record>.json, encoded by the kelmasn tool) is one element that
// `openssl asn1parse` reads to its end.
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "record_registry.h"

namespace {

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string temp_path(const std::string& name) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir ? dir : "/tmp") + "/kelmasn_openssl_test_" + std::to_string(getpid()) +
           "_" + name;
}

// Runs `command` with its standard output and error in `output`; returns the exit code.
int run(const std::string& command, std::string& output) {
    const std::string out_path = temp_path("output");
    const int status = std::system((command + " >'" + out_path + "' 2>&1").c_str());
    output = read_file(out_path);
    std::remove(out_path.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The number after `key` in `line` ("hl=2 l=  33"), or -1.
long number_after(const std::string& line, const std::string& key) {
    const size_t at = line.find(key);
    if (at == std::string::npos)
        return -1;
    return std::strtol(line.c_str() + at + key.size(), nullptr, 10);
}

} // namespace

TEST(IndependentParse, OpensslReadsTheWholeBodyOfEveryRecordTypesExample) {
    std::string output;
    if (run("openssl version", output) != 0)
        GTEST_SKIP() << "openssl is not installed: " << output;
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    ASSERT_GT(count, 0u);
    for (unsigned int i = 0; i < count; ++i) {
        const std::string record = types[i]->record_name;
        SCOPED_TRACE(record);
        const std::string buffer = temp_path(record + ".buffer");
        const std::string body = temp_path(record + ".der");
        ASSERT_EQ(run(std::string("ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}exitcode=86 '") +
                          KELMASN_TOOL + "' encode " + record + " '" + KELMASN_EXAMPLES + "/json/" +
                          record + ".json' -o '" + buffer + "'",
                      output),
                  0)
            << output;
        const std::string bytes = read_file(buffer);
        ASSERT_GT(bytes.size(), 4u);
        EXPECT_EQ(bytes.substr(0, 4), std::string("\x04\x02\xAC\xDC", 4));
        std::ofstream(body, std::ios::binary) << bytes.substr(4);
        EXPECT_EQ(run("openssl asn1parse -inform DER -in '" + body + "'", output), 0) << output;
        EXPECT_EQ(output.find("rror"), std::string::npos) << output;
        // The first line is the outer SEQUENCE: its header and contents span the whole body.
        const std::string first = output.substr(0, output.find('\n'));
        EXPECT_NE(first.find("cons: SEQUENCE"), std::string::npos) << first;
        EXPECT_EQ(number_after(first, "hl=") + number_after(first, " l="),
                  static_cast<long>(bytes.size() - 4))
            << first;
        std::remove(buffer.c_str());
        std::remove(body.c_str());
    }
}
