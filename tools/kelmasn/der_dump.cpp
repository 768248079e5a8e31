// Walks BER/DER bytes with the library's inspection functions and prints one line per element.
#include "der_dump.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "kelm/kelmasn.h"

namespace kelmasn_tool {
namespace {

// Longest value rendering before it is cut with "...".
constexpr size_t kMaxShownBytes = 32;

const char* universal_name(unsigned int tag) {
    switch (tag) {
    case 0:
        return "END-OF-CONTENTS";
    case 1:
        return "BOOLEAN";
    case 2:
        return "INTEGER";
    case 3:
        return "BIT STRING";
    case 4:
        return "OCTET STRING";
    case 5:
        return "NULL";
    case 6:
        return "OBJECT IDENTIFIER";
    case 10:
        return "ENUMERATED";
    case 12:
        return "UTF8String";
    case 16:
        return "SEQUENCE";
    case 17:
        return "SET";
    case 18:
        return "NumericString";
    case 19:
        return "PrintableString";
    case 20:
        return "TeletexString";
    case 22:
        return "IA5String";
    case 23:
        return "UTCTime";
    case 24:
        return "GeneralizedTime";
    case 26:
        return "VisibleString";
    case 27:
        return "GeneralString";
    case 28:
        return "UniversalString";
    case 30:
        return "BMPString";
    default:
        return nullptr;
    }
}

bool is_text_tag(unsigned int tag) {
    switch (tag) {
    case 12:
    case 18:
    case 19:
    case 20:
    case 22:
    case 23:
    case 24:
    case 26:
    case 27:
        return true;
    default:
        return false;
    }
}

std::string hex(const unsigned char* p, size_t n) {
    std::string s;
    char two[4];
    for (size_t i = 0; i < n && i < kMaxShownBytes; ++i) {
        std::snprintf(two, sizeof two, i ? " %02X" : "%02X", p[i]);
        s += two;
    }
    if (n > kMaxShownBytes)
        s += " ...";
    return s;
}

bool printable(const unsigned char* p, size_t n) {
    for (size_t i = 0; i < n; ++i)
        if (p[i] < 0x20 || p[i] > 0x7E)
            return false;
    return n > 0;
}

std::string quoted(const unsigned char* p, size_t n) {
    std::string s = "\"";
    for (size_t i = 0; i < n && i < kMaxShownBytes; ++i) {
        if (p[i] == '"' || p[i] == '\\')
            s += '\\';
        s += static_cast<char>(p[i]);
    }
    s += n > kMaxShownBytes ? "\"..." : "\"";
    return s;
}

std::string bytes_or_text(const unsigned char* p, size_t n) {
    return printable(p, n) ? quoted(p, n) : hex(p, n);
}

// True when `text` is well-formed UTF-8 (RFC 3629: no overlong forms, no surrogates, nothing past
// U+10FFFF) without control characters, so that it can be shown as it is.
bool showable_utf8(const std::string& text) {
    size_t i = 0;
    while (i < text.size()) {
        const unsigned char b = static_cast<unsigned char>(text[i]);
        if (b < 0x80) {
            if (b < 0x20 || b == 0x7F)
                return false;
            ++i;
            continue;
        }
        const size_t n = b >= 0xF0 ? 4 : b >= 0xE0 ? 3 : b >= 0xC2 ? 2 : 0;
        if (n == 0 || b > 0xF4 || i + n > text.size())
            return false;
        unsigned long code = b & (0x7F >> n);
        for (size_t k = 1; k < n; ++k) {
            const unsigned char c = static_cast<unsigned char>(text[i + k]);
            if ((c & 0xC0) != 0x80)
                return false;
            code = code << 6 | (c & 0x3F);
        }
        const unsigned long least[] = {0, 0, 0x80, 0x800, 0x10000};
        if (code < least[n] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF) ||
            (code >= 0x80 && code < 0xA0))
            return false;
        i += n;
    }
    return true;
}

// The text of a UTF8String (12), TeletexString (20, T.61), UniversalString (28, UCS-4) or
// BMPString (30, UCS-2), converted to UTF-8 by the library's converters; false when the octets
// are not text of that code set.
bool text_as_utf8(unsigned int tag, unsigned char* p, unsigned int n, std::string& utf8) {
    if ((tag == 30 && n % 2 != 0) || (tag == 28 && n % 4 != 0))
        return false;
    kelm_r_buffer_t source(p, n);
    kelm_buffer_t out(KELM_SECURITY_PLAIN);
    unsigned int status = 0;
    if (tag == 12) {
        utf8.assign(reinterpret_cast<const char*>(p), n);
        return showable_utf8(utf8);
    }
    if (tag == 30) {
        status = BMP2UTF8(source, out);
    } else if (tag == 28) {
        status = U2UTF8(source, out);
    } else {
        kelm_buffer_t bmp(KELM_SECURITY_PLAIN);
        status = T612BMP(source, bmp);
        if (status == 0)
            status = BMP2UTF8(kelm_r_buffer_t(bmp.cursor, bmp.remaining), out);
    }
    if (status != 0)
        return false;
    utf8.assign(reinterpret_cast<const char*>(out.cursor), out.remaining);
    return showable_utf8(utf8);
}

// Shows a text as text (UTF-8, cut after kMaxShownBytes characters); octets that are not text
// of their code set in hex.
std::string text_value(unsigned int tag, unsigned char* p, unsigned int n) {
    std::string utf8;
    if (!text_as_utf8(tag, p, n, utf8))
        return hex(p, n);
    std::string shown = "\"";
    size_t characters = 0;
    for (const char c : utf8) {
        const bool starts_character = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
        if (starts_character && ++characters > kMaxShownBytes)
            return shown + "\"...";
        if (c == '"' || c == '\\')
            shown += '\\';
        shown += c;
    }
    return shown + "\"";
}

// The dotted form of OBJECT IDENTIFIER contents (X.690 8.19); empty when malformed.
std::string dotted_oid(const unsigned char* p, unsigned int n) {
    std::string s;
    unsigned long long arc = 0;
    bool first = true;
    for (unsigned int i = 0; i < n; ++i) {
        if (arc > (~0ULL >> 7))
            return "";
        arc = (arc << 7) | (p[i] & 0x7F);
        if (p[i] & 0x80)
            continue;
        if (first) {
            const unsigned long long top = arc < 80 ? arc / 40 : 2;
            s = std::to_string(top) + "." + std::to_string(arc - top * 40);
            first = false;
        } else {
            s += "." + std::to_string(arc);
        }
        arc = 0;
    }
    return (n > 0 && (p[n - 1] & 0x80) == 0) ? s : "";
}

// A short rendering of a primitive universal value, through the inspection functions where they
// apply; empty when the tag has none.
std::string render_value(unsigned int tag, unsigned char* p, unsigned int n) {
    unsigned char* cursor = p;
    unsigned int left = n;
    switch (tag) {
    case 1:
        return n == 1 ? (p[0] ? "TRUE" : "FALSE") : hex(p, n);
    case 2:
    case 10: {
        int64_t value = 0;
        if (n >= 1 && n <= 8 && kelmAsnGetIntegerValue(&cursor, &left, n, &value) == 0)
            return std::to_string(value);
        return hex(p, n);
    }
    case 5:
        return n == 0 ? "" : hex(p, n);
    case 3: {
        if (n == 0)
            return "(empty)";
        if (n <= 8) {
            // The inspection function clears unused bits in its input: give it a copy.
            unsigned char copy[8];
            for (unsigned int i = 0; i < n; ++i)
                copy[i] = p[i];
            cursor = copy;
            unsigned char* bits_out = nullptr;
            unsigned int bits = 0;
            if (kelmAsnGetBitstringValue(&cursor, &left, n, &bits_out, &bits) == 0) {
                std::string s = std::to_string(bits) + " bits";
                if (n > 1)
                    s += ": " + hex(bits_out, n - 1);
                std::free(bits_out);
                return s;
            }
        }
        return "unused " + std::to_string(p[0]) + ": " + hex(p + 1, n - 1);
    }
    case 4:
        return n == 0 ? "(empty)" : bytes_or_text(p, n);
    case 6: {
        kelm_asn_oid_t oid{0, nullptr};
        if (kelmAsnGetOIDValue(&cursor, &left, n, &oid) != 0)
            return "(empty)";
        std::string s = dotted_oid(oid.bytes, oid.count);
        if (s.empty())
            s = hex(oid.bytes, oid.count);
        std::free(oid.bytes);
        return s;
    }
    case 12:
    case 20:
    case 28:
    case 30:
        return n == 0 ? "\"\"" : text_value(tag, p, n);
    default:
        if (is_text_tag(tag))
            return n == 0 ? "\"\"" : bytes_or_text(p, n);
        return "";
    }
}

const char* class_name(unsigned int c) {
    static const char* const names[] = {"UNIVERSAL", "APPLICATION", "CONTEXT", "PRIVATE"};
    return names[c & 3];
}

class Walker {
  public:
    Walker(std::vector<unsigned char>& bytes, std::string& out, DumpError& error)
        : bytes_(bytes), out_(out), error_(error) {}

    // The offset just past the element at `offset`, its children walked; nothing is kept of what
    // it prints.
    bool extent(size_t offset, size_t& next) { return element(offset, bytes_.size(), 0, next); }

    // Prints every element; first the header when `header_allowed` and the bytes start with one.
    bool run(bool header_allowed) {
        size_t offset = 0;
        const size_t end = bytes_.size();
        if (end == 0)
            return fail(0, "empty input");
        if (header_allowed && end >= 4 && bytes_[0] == 0x04 && bytes_[2] == 0xAC &&
            bytes_[3] == 0xDC) {
            char line[96];
            std::snprintf(line, sizeof line, "%6u  header: length %u, version %u, magic AC DC\n",
                          0u, bytes_[0], bytes_[1]);
            out_ += line;
            offset = bytes_[0];
            if (offset >= end)
                return fail(offset, "header is not followed by an element");
        }
        while (offset < end)
            if (!element(offset, end, 0, offset))
                return false;
        return true;
    }

  private:
    bool fail(size_t offset, const std::string& reason) {
        error_.offset = offset;
        error_.reason = reason;
        return false;
    }

    // Reads the element at `offset` (which must end by `end`), prints it and its children, and
    // sets `next` to the offset after it. `depth` is the element's nesting level (0 at the top):
    // it indents the printed line, and an element nested deeper than KELM_ASN_MAX_NESTING fails.
    bool element(size_t offset, size_t end, unsigned int depth, size_t& next) {
        if (depth > KELM_ASN_MAX_NESTING)
            return fail(offset,
                        "nesting deeper than " + std::to_string(KELM_ASN_MAX_NESTING) + " levels");
        unsigned char* base = bytes_.data() + offset;
        unsigned int left = static_cast<unsigned int>(end - offset);
        // The identifier reader hands a high-tag position back through the second slot.
        unsigned char* slots[2] = {base, nullptr};
        unsigned int tag = 0, constructed = 0, tag_class = 0;
        if (kelmAsnGetType(&slots[0], &left, &tag, &constructed, &tag_class) != 0)
            return fail(offset, "identifier octets run past the end of the input");
        unsigned char* cursor = slots[0];
        if ((base[0] & 0x1F) == 0x1F) {
            // High tag number: read it by X.690 8.1.2.4 from the octets the function delimited.
            cursor = slots[1] + 1;
            tag = 0;
            for (unsigned char* p = base + 1; p < cursor; ++p) {
                // Five subsequent octets carry 35 bits: test the value, not the octet count.
                if (tag > (0xFFFFFFFFu >> 7))
                    return fail(offset, "tag number does not fit in 32 bits");
                tag = tag * 128 + (*p & 0x7F);
            }
        }
        const size_t length_offset = static_cast<size_t>(cursor - bytes_.data());
        const unsigned int length_octets = (left > 0 && (*cursor & 0x80)) ? (*cursor & 0x7F) : 0;
        unsigned int definite = 0, length = 0;
        if (kelmAsnGetLength(&cursor, &left, &definite, &length) != 0)
            return fail(length_offset, "length octets run past the end of the input");
        if (length_octets > 4) {
            for (unsigned int i = 1; i + 4 <= length_octets; ++i)
                if (bytes_[length_offset + i] != 0)
                    return fail(length_offset, "length does not fit in 32 bits");
        }
        const size_t contents = static_cast<size_t>(cursor - bytes_.data());
        if (definite && length > end - contents)
            return fail(offset, "length " + std::to_string(length) +
                                    " runs past the end of the input (" +
                                    std::to_string(end - contents) + " bytes left)");
        if (!definite && !constructed)
            return fail(offset, "indefinite length on a primitive element");
        print_line(offset, depth, tag_class, tag, constructed, definite, length,
                   bytes_.data() + contents);
        if (!constructed) {
            next = contents + length;
            return true;
        }
        if (definite) {
            size_t child = contents;
            const size_t child_end = contents + length;
            while (child < child_end)
                if (!element(child, child_end, depth + 1, child))
                    return false;
            next = child_end;
            return true;
        }
        size_t child = contents;
        for (;;) {
            kelm_r_buffer_t reader(bytes_.data() + child, static_cast<unsigned int>(end - child));
            if (check_EOC(reader)) {
                next = child + 2;
                return true;
            }
            if (child >= end)
                return fail(offset, "end-of-contents missing for the indefinite length");
            if (!element(child, end, depth + 1, child))
                return false;
        }
    }

    void print_line(size_t offset, unsigned int depth, unsigned int tag_class, unsigned int tag,
                    unsigned int constructed, unsigned int definite, unsigned int length,
                    unsigned char* contents) {
        std::string line(std::to_string(offset));
        line.insert(0, line.size() < 6 ? 6 - line.size() : 0, ' ');
        line += "  ";
        line.append(2 * depth, ' ');
        const char* name = tag_class == 0 ? universal_name(tag) : nullptr;
        if (name) {
            line += name;
            line += ' ';
        }
        line += "[" + std::string(class_name(tag_class)) + " " + std::to_string(tag) + "] ";
        line += constructed ? "constructed" : "primitive";
        line += definite ? ", length " + std::to_string(length) : ", length indefinite";
        if (!constructed) {
            const std::string value = tag_class == 0 ? render_value(tag, contents, length)
                                      : length > 0   ? bytes_or_text(contents, length)
                                                     : "";
            if (!value.empty())
                line += ": " + value;
        }
        out_ += line + "\n";
    }

    std::vector<unsigned char>& bytes_;
    std::string& out_;
    DumpError& error_;
};

} // namespace

bool dump_der(std::vector<unsigned char> bytes, std::string& out, DumpError& error) {
    Walker walker(bytes, out, error);
    return walker.run(true);
}

bool dump_elements(std::vector<unsigned char> bytes, std::string& out, DumpError& error) {
    Walker walker(bytes, out, error);
    return walker.run(false);
}

bool element_end(std::vector<unsigned char> bytes, size_t offset, size_t& end, DumpError& error) {
    std::string discarded;
    Walker walker(bytes, discarded, error);
    return walker.extent(offset, end);
}

} // namespace kelmasn_tool
