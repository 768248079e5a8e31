#include "input.h"

#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>

extern "C" { // libb64's C header declares its functions without C linkage
#include <b64/cdecode.h>
}

#include "messages.h"

namespace kelmasn_tool {

namespace {

// How buffers are given: raw bytes, hex digits or base64 (--in-format).
std::string g_in_format = "raw";

} // namespace

bool read_input(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    const bool standard_input = path == "-";
    const std::string name = standard_input ? std::string("standard input") : path;
    struct stat status;
    const int found = standard_input ? fstat(0, &status) : stat(path.c_str(), &status);
    if (found != 0) {
        error = "cannot open " + name + ": " + std::strerror(errno);
        return false;
    }
    if (S_ISDIR(status.st_mode)) {
        error = "cannot read " + name + ": it is a directory";
        return false;
    }
    try {
        if (standard_input) {
            bytes.assign(std::istreambuf_iterator<char>(std::cin),
                         std::istreambuf_iterator<char>());
            if (std::cin.bad()) {
                error = "cannot read standard input";
                return false;
            }
            return true;
        }
        std::ifstream in(path, std::ios::binary);
        if (!in) {
            error = "cannot open " + path + ": " + std::strerror(errno);
            return false;
        }
        bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        if (in.bad()) {
            error = "cannot read " + path;
            return false;
        }
    } catch (const std::exception& e) {
        error = "cannot read " + name + ": " + e.what();
        return false;
    }
    return true;
}

bool from_hex(const std::string& text, std::string& bytes) {
    std::string digits;
    for (const char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            digits += c;
    if (digits.size() % 2 != 0)
        return false;
    bytes.clear();
    for (size_t i = 0; i < digits.size(); i += 2) {
        const std::string pair = digits.substr(i, 2);
        if (!std::isxdigit(static_cast<unsigned char>(pair[0])) ||
            !std::isxdigit(static_cast<unsigned char>(pair[1])))
            return false;
        bytes += static_cast<char>(std::stoi(pair, nullptr, 16));
    }
    return true;
}

bool read_buffer(const std::string& path, std::vector<unsigned char>& bytes, std::string& error) {
    if (!read_input(path, bytes, error))
        return false;
    if (g_in_format == "raw")
        return true;
    std::string text(bytes.begin(), bytes.end());
    std::string compact;
    for (const char c : text)
        if (!std::isspace(static_cast<unsigned char>(c)))
            compact += c;
    if (g_in_format == "hex") {
        std::string decoded;
        if (!from_hex(compact, decoded)) {
            error = path + ": not hex digits (--in-format hex)";
            return false;
        }
        bytes.assign(decoded.begin(), decoded.end());
        return true;
    }
    // base64 (RFC 4648, section 4), with libb64.
    const bool alphabet = std::all_of(compact.begin(), compact.end(), [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '/' || c == '=';
    });
    if (!alphabet || compact.size() % 4 != 0) {
        error = path + ": not base64 (--in-format base64)";
        return false;
    }
    std::vector<char> plain(compact.size() / 4 * 3 + 3);
    base64_decodestate state;
    base64_init_decodestate(&state);
    const int n =
        base64_decode_block(compact.data(), static_cast<int>(compact.size()), plain.data(), &state);
    bytes.assign(plain.begin(), plain.begin() + n);
    return true;
}

void add_in_format_option(CLI::App& subcommand) {
    subcommand
        .add_option("--in-format", g_in_format,
                    "how the buffer is given: raw bytes (default), hex digits or base64")
        ->check(CLI::IsMember({"raw", "hex", "base64"}));
}

std::string to_hex(const std::string& bytes) {
    std::string out;
    char two[4];
    for (size_t i = 0; i < bytes.size(); ++i) {
        std::snprintf(two, sizeof two, i ? " %02X" : "%02X", static_cast<unsigned char>(bytes[i]));
        out += two;
    }
    return out;
}

bool parse_json(const std::string& path, const std::vector<unsigned char>& bytes,
                const char* record_name, nlohmann::ordered_json& document) {
    if (std::all_of(bytes.begin(), bytes.end(), [](unsigned char c) { return std::isspace(c); })) {
        complain(path + ": empty, expected a JSON object for " + record_name);
        return false;
    }
    try {
        document = nlohmann::ordered_json::parse(bytes.begin(), bytes.end());
    } catch (const nlohmann::json::exception& e) {
        // The parser's message without its "[json.exception...] " prefix.
        std::string what = e.what();
        const size_t bracket = what.find("] ");
        if (what.rfind("[json.exception", 0) == 0 && bracket != std::string::npos)
            what.erase(0, bracket + 2);
        // The parser quotes what it last read as it was, which need not be text: octets outside
        // printable ASCII are shown as \xNN, so that the line stays one line of text.
        std::string shown;
        for (const char c : what) {
            const unsigned char u = static_cast<unsigned char>(c);
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\x%02X", u);
            shown += u >= 0x20 && u < 0x7F ? std::string(1, c) : std::string(escaped);
        }
        complain(path + ": not JSON: " + shown);
        return false;
    }
    return true;
}

} // namespace kelmasn_tool
