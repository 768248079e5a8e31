// Reading what the subcommands are given: files or standard input, buffers as raw bytes, hex or
// base64, JSON documents.
#ifndef KELMASN_TOOL_INPUT_H
#define KELMASN_TOOL_INPUT_H

#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace kelmasn_tool {

// Reads a whole file, or standard input for "-". Returns false with a message on failure: a
// missing or unreadable file, a directory, a read error.
bool read_input(const std::string& path, std::vector<unsigned char>& bytes, std::string& error);

// Reads a buffer as read_input does, then decodes it from hex or base64 when --in-format says so.
bool read_buffer(const std::string& path, std::vector<unsigned char>& bytes, std::string& error);

// Adds --in-format (raw, hex or base64) to a subcommand that reads a buffer with read_buffer.
void add_in_format_option(CLI::App& subcommand);

// The octets of `text` written as hex digits, spaces allowed between them.
bool from_hex(const std::string& text, std::string& bytes);

// The octets of `bytes` in hex, "0A 1B".
std::string to_hex(const std::string& bytes);

// Parses a JSON document; false with the message written when it is empty or not JSON.
bool parse_json(const std::string& path, const std::vector<unsigned char>& bytes,
                const char* record_name, nlohmann::ordered_json& document);

} // namespace kelmasn_tool

#endif
