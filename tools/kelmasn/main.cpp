// kelmasn: a command-line view of the library's encodings.
//
//   kelmasn der FILE     print the BER/DER element tree of FILE ("-" reads standard input)
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "der_dump.h"

namespace {

// Reads a whole file, or standard input for "-". Returns false with a message on failure.
bool read_input(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    if (path == "-") {
        bytes.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
        return true;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open " + path;
        return false;
    }
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in.bad()) {
        error = "cannot read " + path;
        return false;
    }
    return true;
}

int run_der(const std::string& path) {
    std::vector<unsigned char> bytes;
    std::string error;
    if (!read_input(path, bytes, error)) {
        std::fprintf(stderr, "kelmasn: %s\n", error.c_str());
        return 1;
    }
    std::string out;
    kelmasn_tool::DumpError failure{0, ""};
    const bool ok = kelmasn_tool::dump_der(std::move(bytes), out, failure);
    std::fwrite(out.data(), 1, out.size(), stdout);
    std::fflush(stdout);
    if (!ok) {
        std::fprintf(stderr, "kelmasn: %s: offset %zu: %s\n", path.c_str(), failure.offset,
                     failure.reason.c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"kelmasn: inspect the library's ASN.1 encodings"};
    app.require_subcommand(1);

    std::string der_path;
    CLI::App* der = app.add_subcommand("der", "Print the BER/DER element tree of a file");
    der->add_option("FILE", der_path, "the bytes to walk; - reads standard input")->required();

    CLI11_PARSE(app, argc, argv);
    if (der->parsed())
        return run_der(der_path);
    return 2;
}
