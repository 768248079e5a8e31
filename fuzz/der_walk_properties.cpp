// Properties of the kelmasn tool's element walk over arbitrary bytes (see the header).
#include "der_walk_properties.h"

#include <vector>

#include "der_dump.h"

namespace kelmasn_fuzz {
namespace {

// An element's identifier and length as X.690 (08/2015) 8.1.2 and 8.1.3 define them, read here
// without the library, with room for tag numbers and lengths past 32 bits.
struct Header {
    unsigned int tag_class = 0;
    bool constructed = false;
    uint64_t tag = 0;
    bool definite = true;
    uint64_t length = 0;
};

// False when the octets run out or a number passes 64 bits.
bool read_header(const std::vector<unsigned char>& bytes, size_t offset, Header& header) {
    size_t i = offset;
    if (i >= bytes.size())
        return false;
    const unsigned char first = bytes[i++];
    header.tag_class = first >> 6;
    header.constructed = (first & 0x20) != 0;
    header.tag = first & 0x1F;
    if (header.tag == 0x1F) { // 8.1.2.4: base-128 subsequent octets, bit 8 set on all but the last
        header.tag = 0;
        unsigned char octet = 0x80;
        while (octet & 0x80) {
            if (i >= bytes.size() || header.tag >> 57 != 0)
                return false;
            octet = bytes[i++];
            header.tag = header.tag << 7 | (octet & 0x7F);
        }
    }
    if (i >= bytes.size())
        return false;
    const unsigned char length = bytes[i++];
    header.definite = length != 0x80;
    header.length = length & 0x7F;
    if (length > 0x80) { // 8.1.3.5: long form, big-endian octets
        header.length = 0;
        for (unsigned int n = length & 0x7F; n > 0; --n) {
            if (i >= bytes.size() || header.length >> 56 != 0)
                return false;
            header.length = header.length << 8 | bytes[i++];
        }
    }
    return true;
}

// What a line of the walk must say about the element at its offset.
std::string expected_description(const Header& header) {
    static const char* const kClassNames[] = {"UNIVERSAL", "APPLICATION", "CONTEXT", "PRIVATE"};
    return "[" + std::string(kClassNames[header.tag_class]) + " " + std::to_string(header.tag) +
           "] " + (header.constructed ? "constructed" : "primitive") +
           (header.definite ? ", length " + std::to_string(header.length) : ", length indefinite");
}

bool has_header_line(const std::vector<unsigned char>& bytes) {
    return bytes.size() >= 4 && bytes[0] == 0x04 && bytes[2] == 0xAC && bytes[3] == 0xDC;
}

// The offset at the start of a printed line ("   123  ..."); false when there is none.
bool leading_offset(const std::string& line, size_t& offset) {
    size_t i = line.find_first_not_of(' ');
    if (i == std::string::npos || line[i] < '0' || line[i] > '9')
        return false;
    offset = 0;
    for (; i < line.size() && line[i] >= '0' && line[i] <= '9'; ++i)
        offset = offset * 10 + static_cast<size_t>(line[i] - '0');
    return line.compare(i, 2, "  ") == 0;
}

std::string check_lines(const std::string& text, const std::vector<unsigned char>& bytes) {
    const size_t size = bytes.size();
    if (!text.empty() && text.back() != '\n')
        return "the text does not end with a whole line";
    size_t start = 0;
    size_t line_number = 0;
    bool first = true;
    size_t previous = 0;
    while (start < text.size()) {
        const size_t end = text.find('\n', start);
        const std::string line = text.substr(start, end - start);
        ++line_number;
        size_t offset = 0;
        if (!leading_offset(line, offset))
            return "line " + std::to_string(line_number) +
                   " does not start with an offset: " + line;
        if (offset >= size)
            return "line " + std::to_string(line_number) + " shows offset " +
                   std::to_string(offset) + " of a " + std::to_string(size) + "-byte input";
        if (!first && offset <= previous)
            return "line " + std::to_string(line_number) + " shows offset " +
                   std::to_string(offset) + " after offset " + std::to_string(previous);
        const bool header_line = first && offset == 0 && has_header_line(bytes);
        Header header;
        if (!header_line && !read_header(bytes, offset, header))
            return "line " + std::to_string(line_number) + " shows an element at offset " +
                   std::to_string(offset) + " whose identifier or length cannot be read";
        if (!header_line && line.find(expected_description(header)) == std::string::npos)
            return "line " + std::to_string(line_number) + " should show " +
                   expected_description(header) + ": " + line;
        first = false;
        previous = offset;
        start = end + 1;
    }
    return "";
}

} // namespace

std::string check_der_walk(const uint8_t* data, size_t size) {
    const std::vector<unsigned char> bytes(data, data + size);
    std::string text;
    kelmasn_tool::DumpError error{0, ""};
    const bool ok = kelmasn_tool::dump_der(bytes, text, error);

    std::string again;
    kelmasn_tool::DumpError error_again{0, ""};
    const bool ok_again = kelmasn_tool::dump_der(bytes, again, error_again);
    if (ok != ok_again || text != again)
        return "walking the same bytes twice gave different results";
    if (!ok && (error.offset != error_again.offset || error.reason != error_again.reason))
        return "walking the same bytes twice gave different errors";

    if (ok && text.empty())
        return "an accepted input printed nothing";
    if (!ok && error.reason.empty())
        return "a rejection gives no reason";
    if (!ok && error.offset > size)
        return "a rejection names offset " + std::to_string(error.offset) + " of a " +
               std::to_string(size) + "-byte input";
    return check_lines(text, bytes);
}

} // namespace kelmasn_fuzz
