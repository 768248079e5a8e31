// The library's code-set converters, chained where no converter goes directly.
#include "code_sets.h"

#include <algorithm>
#include <map>
#include <utility>

#include "kelm/kelmasn.h"

namespace kelmasn_tool {
namespace {

using Converter = unsigned int (*)(const std::string& in, std::string& out);

// One converter of the library, from octets to octets.
template <unsigned int (*Convert)(const kelm_r_buffer_t&, kelm_buffer_t&)>
unsigned int by_reference(const std::string& in, std::string& out) {
    std::string copy = in;
    kelm_r_buffer_t source(reinterpret_cast<unsigned char*>(&copy[0]),
                           static_cast<unsigned int>(copy.size()));
    kelm_buffer_t target(KELM_SECURITY_PLAIN);
    const unsigned int status = Convert(source, target);
    out.assign(reinterpret_cast<const char*>(target.cursor), target.remaining);
    return status;
}

template <unsigned int (*Convert)(kelm_r_buffer_t, kelm_buffer_t&)>
unsigned int by_value(const std::string& in, std::string& out) {
    std::string copy = in;
    kelm_r_buffer_t source(reinterpret_cast<unsigned char*>(&copy[0]),
                           static_cast<unsigned int>(copy.size()));
    kelm_buffer_t target(KELM_SECURITY_PLAIN);
    const unsigned int status = Convert(source, target);
    out.assign(reinterpret_cast<const char*>(target.cursor), target.remaining);
    return status;
}

// The direct converters, from -> to.
const std::map<std::pair<std::string, std::string>, Converter>& converters() {
    static const std::map<std::pair<std::string, std::string>, Converter> table = {
        {{"ia5", "t61"}, by_reference<IA52T61>},   {{"t61", "bmp"}, by_reference<T612BMP>},
        {{"t61", "ia5"}, by_reference<T612IA5>},   {{"bmp", "ia5"}, by_reference<BMP2IA5>},
        {{"ia5", "ucs4"}, by_reference<IA52U>},    {{"ia5", "bmp"}, by_reference<IA52BMP>},
        {{"bmp", "ucs4"}, by_reference<BMP2U>},    {{"ucs4", "ia5"}, by_reference<U2IA5>},
        {{"ucs4", "bmp"}, by_reference<U2BMP>},    {{"utf8", "ia5"}, by_value<UTF82IA5>},
        {{"utf8", "bmp"}, by_value<UTF82BMP>},     {{"ia5", "utf8"}, by_value<IA52UTF8>},
        {{"bmp", "utf8"}, by_value<BMP2UTF8>},     {{"ucs4", "utf8"}, by_value<U2UTF8>},
        {{"ia5", "visible"}, by_reference<IA52V>}, {{"ia5", "printable"}, by_reference<IA52P>},
    };
    return table;
}

} // namespace

const std::vector<std::string>& code_set_names() {
    static const std::vector<std::string> names = {"ia5",  "t61",       "bmp",    "ucs4",
                                                   "utf8", "printable", "visible"};
    return names;
}

unsigned int convert_text(const std::string& from, const std::string& to, const std::string& in,
                          std::string& out, std::string& error) {
    const auto& names = code_set_names();
    for (const std::string& name : {from, to})
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            error = "no code set named '" + name + "'";
            return KELM_ASN_BAD_ENCODING;
        }
    // PrintableString and VisibleString are subsets of IA5: read them as IA5.
    const std::string source = from == "printable" || from == "visible" ? "ia5" : from;
    if (source == to) {
        out = in;
        return KELM_ASN_OK;
    }
    // The shortest chain of converters from `source` to `to` (the graph is small).
    std::map<std::string, std::string> previous = {{source, ""}};
    std::vector<std::string> frontier = {source};
    while (!frontier.empty() && previous.count(to) == 0) {
        std::vector<std::string> next;
        for (const std::string& at : frontier)
            for (const auto& entry : converters())
                if (entry.first.first == at && previous.count(entry.first.second) == 0) {
                    previous[entry.first.second] = at;
                    next.push_back(entry.first.second);
                }
        frontier = next;
    }
    std::vector<std::string> chain = {to};
    while (chain.back() != source)
        chain.push_back(previous.at(chain.back()));
    std::reverse(chain.begin(), chain.end());
    std::string text = in;
    for (size_t i = 0; i + 1 < chain.size(); ++i) {
        std::string converted;
        const unsigned int status = converters().at({chain[i], chain[i + 1]})(text, converted);
        if (status != KELM_ASN_OK)
            return status;
        text = converted;
    }
    out = text;
    return KELM_ASN_OK;
}

} // namespace kelmasn_tool
