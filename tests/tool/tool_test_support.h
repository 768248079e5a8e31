// Running the kelmasn tool from a test: its exit status, standard output and standard error, and
// files in and out.
#ifndef KELMASN_TOOL_TEST_SUPPORT_H
#define KELMASN_TOOL_TEST_SUPPORT_H

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace kelm_tool_test {

struct ToolRun {
    int exit_code; // -1 when the tool did not exit normally (a crash)
    std::string out;
    std::string err;
};

inline std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A path of its own for this test process under TMPDIR (or /tmp).
inline std::string temp_path(const std::string& name) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir ? dir : "/tmp") + "/kelmasn_tool_test_" + std::to_string(getpid()) +
           "_" + name;
}

inline void write_file(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

inline void write_file(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

// Runs the tool with `args` (already quoted for the shell), after `environment` (assignments
// such as "LC_ALL=C "), with standard input from `input` when given.
inline ToolRun run_tool(const std::string& args, const std::string& environment = "",
                        const std::string& input = "") {
    const std::string out_path = temp_path("stdout");
    const std::string err_path = temp_path("stderr");
    // A sanitizer report must not pass for the tool's own exit status 1.
    const std::string command = environment +
                                "ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}exitcode=86 "
                                "UBSAN_OPTIONS=${UBSAN_OPTIONS:+$UBSAN_OPTIONS:}exitcode=86 '" +
                                KELMASN_TOOL + "' " + args +
                                (input.empty() ? "" : " <'" + input + "'") + " >'" + out_path +
                                "' 2>'" + err_path + "'";
    const int status = std::system(command.c_str());
    ToolRun run;
    run.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.out = read_file(out_path);
    run.err = read_file(err_path);
    std::remove(out_path.c_str());
    std::remove(err_path.c_str());
    return run;
}

// The number of lines of a text.
inline size_t line_count(const std::string& text) {
    size_t n = 0;
    for (char c : text)
        n += c == '\n';
    return n;
}

} // namespace kelm_tool_test

#endif
