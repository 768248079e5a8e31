// diff: the records of two buffers compared field by field.
#include <algorithm>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "color.h"
#include "input.h"
#include "messages.h"
#include "subcommands.h"
#include "tool_types.h"

namespace kelmasn_tool {

namespace {

// The differences between two JSON values by path: changed values, list entries added and
// removed.
void json_differences(const nlohmann::ordered_json& a, const nlohmann::ordered_json& b,
                      const std::string& path, std::vector<std::string>& out) {
    if (a.is_object() && b.is_object()) {
        for (auto it = a.begin(); it != a.end(); ++it) {
            const std::string at = path.empty() ? it.key() : path + "." + it.key();
            if (b.contains(it.key()))
                json_differences(it.value(), b[it.key()], at, out);
            else
                out.push_back(at + ": removed");
        }
        for (auto it = b.begin(); it != b.end(); ++it)
            if (!a.contains(it.key()))
                out.push_back((path.empty() ? it.key() : path + "." + it.key()) + ": added");
        return;
    }
    if (a.is_array() && b.is_array()) {
        const size_t common = std::min(a.size(), b.size());
        for (size_t i = 0; i < common; ++i)
            json_differences(a[i], b[i], path + "[" + std::to_string(i) + "]", out);
        for (size_t i = common; i < a.size(); ++i)
            out.push_back(path + "[" + std::to_string(i) + "]: removed " + a[i].dump());
        for (size_t i = common; i < b.size(); ++i)
            out.push_back(path + "[" + std::to_string(i) + "]: added " + b[i].dump());
        return;
    }
    if (a != b)
        out.push_back(path + ": " +
                      a.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + " -> " +
                      b.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

// diff: the two buffers' records compared field by field; exit 0 when they are equal.
int run_diff(const std::string& first, const std::string& second, const std::string& type_name) {
    nlohmann::ordered_json records[2];
    const std::string paths[2] = {first, second};
    for (int i = 0; i < 2; ++i) {
        std::vector<unsigned char> bytes;
        std::string error;
        if (!read_buffer(paths[i], bytes, error))
            return complain(error);
        ToolType found{nullptr, 0};
        const ToolType* type = type_for(type_name, bytes, paths[i], found);
        if (type == nullptr)
            return 1;
        RecordStorage record(*type);
        if (record.bytes == nullptr)
            return complain("out of memory");
        kelm_asn_buffer_t in{bytes.size(), bytes.data()};
        const unsigned int status =
            decode_record(*type, record.bytes, in, bytes.size() >= 2 ? bytes[1] : 2, false);
        if (status != 0)
            return complain(paths[i] + ": cannot decode " + type->type->record_name + ": " +
                            status_line(status) + mismatch_of(*type, bytes));
        records[i] = decoded_json(*type, record.bytes, bytes);
    }
    std::vector<std::string> differences;
    json_differences(records[0], records[1], "", differences);
    for (const std::string& difference : differences)
        std::cout << paint_finding(difference, stdout) << "\n";
    return differences.empty() ? 0 : 1;
}

} // namespace

Subcommand add_diff(CLI::App& tool) {
    struct Arguments {
        std::string first, second, type_name;
    };
    auto a = std::make_shared<Arguments>();
    CLI::App* diff = tool.add_subcommand("diff", "Compare the records of two buffers field by "
                                                 "field; exit 0 when equal");
    diff->add_option("A", a->first, "the first buffer")->required();
    diff->add_option("B", a->second, "the second buffer")->required();
    diff->add_option("--type", a->type_name, "the record type (default: the first that decodes)");
    add_in_format_option(*diff);
    return {diff, [a] { return run_diff(a->first, a->second, a->type_name); }};
}

} // namespace kelmasn_tool
