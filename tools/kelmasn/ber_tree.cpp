// BER elements as a tree (X.690 (08/2015) 8.1), written back in DER (X.690 10.1 and 10.2) or in
// chosen BER forms.
#include "ber_tree.h"

namespace kelmasn_tool {
namespace {

// The universal types whose values may be cut into a constructed form (X.690 8.6.3, 8.7.3 and
// 8.23.6): OCTET STRING and the character strings.
bool is_string_type(const BerNode& node) {
    if (node.tag_class != 0)
        return false;
    switch (node.tag) {
    case 4:
    case 12:
    case 18:
    case 19:
    case 20:
    case 21:
    case 22:
    case 25:
    case 26:
    case 27:
    case 28:
    case 30:
        return true;
    default:
        return false;
    }
}

bool fail(std::string& error, size_t offset, const std::string& reason) {
    error = "offset " + std::to_string(offset) + ": " + reason;
    return false;
}

void append_length(size_t length, bool long_form, std::vector<unsigned char>& out) {
    if (!long_form && length < 0x80) {
        out.push_back(static_cast<unsigned char>(length));
        return;
    }
    unsigned int octets = 4;
    if (!long_form)
        for (octets = 1; octets < sizeof(size_t) && (length >> (8 * octets)) != 0; ++octets) {
        }
    out.push_back(static_cast<unsigned char>(0x80 | octets));
    for (unsigned int i = octets; i-- > 0;)
        out.push_back(static_cast<unsigned char>(length >> (8 * i)));
}

// The contents of a string element, its constructed pieces joined.
void string_contents(const std::vector<unsigned char>& bytes, const BerNode& node,
                     std::vector<unsigned char>& out) {
    if (!node.constructed) {
        out.insert(out.end(), bytes.begin() + static_cast<long>(node.contents),
                   bytes.begin() + static_cast<long>(node.contents + node.contents_length));
        return;
    }
    for (const BerNode& piece : node.children)
        string_contents(bytes, piece, out);
}

} // namespace

bool parse_ber(const std::vector<unsigned char>& bytes, size_t offset, unsigned int max_depth,
               BerNode& node, std::string& error) {
    node = BerNode();
    node.offset = offset;
    if (offset >= bytes.size())
        return fail(error, offset, "an element was expected, the input ends");
    const unsigned char first = bytes[offset];
    node.tag_class = first >> 6;
    node.constructed = (first & 0x20) != 0;
    size_t at = offset + 1;
    node.tag = first & 0x1F;
    if (node.tag == 0x1F) {
        node.tag = 0;
        for (;;) {
            if (at >= bytes.size())
                return fail(error, offset, "identifier octets run past the end");
            if (node.tag > (0xFFFFFFFFul >> 7))
                return fail(error, offset, "tag number does not fit in 32 bits");
            node.tag = node.tag * 128 + (bytes[at] & 0x7F);
            if ((bytes[at++] & 0x80) == 0)
                break;
        }
    }
    node.identifier.assign(bytes.begin() + static_cast<long>(offset),
                           bytes.begin() + static_cast<long>(at));
    // X.690 8.1.5: the octets 00 00 end the contents of an indefinite length and stand nowhere
    // else; read as an element, [UNIVERSAL 0] would end an indefinite form written around it.
    if (node.tag_class == 0 && node.tag == 0)
        return fail(error, offset, "end-of-contents octets outside an indefinite length");
    if (at >= bytes.size())
        return fail(error, at, "length octets run past the end");
    const unsigned char length_first = bytes[at++];
    node.length_octets = 1;
    size_t length = 0;
    if (length_first == 0x80) {
        node.indefinite = true;
        if (!node.constructed)
            return fail(error, offset, "indefinite length on a primitive element");
    } else if (length_first & 0x80) {
        const size_t octets = length_first & 0x7F;
        if (octets == 0x7F)
            return fail(error, at - 1, "reserved length octet FF");
        node.length_octets += octets;
        for (size_t i = 0; i < octets; ++i, ++at) {
            if (at >= bytes.size())
                return fail(error, at, "length octets run past the end");
            if (length > (static_cast<size_t>(-1) >> 8))
                return fail(error, offset, "length does not fit");
            length = length * 256 + bytes[at];
        }
        // X.690 10.1: the fewest octets, and the short form below 128.
        size_t needed = 0;
        for (size_t rest = length; rest != 0; rest >>= 8)
            ++needed;
        node.minimal_length = length >= 0x80 && octets == needed;
    } else {
        length = length_first;
    }
    node.contents = at;
    if (!node.indefinite) {
        if (length > bytes.size() - at)
            return fail(error, offset,
                        "length " + std::to_string(length) + " runs past the end of the input");
        node.contents_length = length;
        node.end = at + length;
        if (node.constructed) {
            if (max_depth == 0)
                return fail(error, offset, "nesting too deep");
            for (size_t child = at; child < node.end;) {
                BerNode piece;
                if (!parse_ber(bytes, child, max_depth - 1, piece, error))
                    return false;
                if (piece.end > node.end)
                    return fail(error, child, "a nested element runs past its parent's end");
                child = piece.end;
                node.children.push_back(std::move(piece));
            }
        }
        return true;
    }
    if (max_depth == 0)
        return fail(error, offset, "nesting too deep");
    for (size_t child = at;;) {
        if (child + 1 < bytes.size() && bytes[child] == 0 && bytes[child + 1] == 0) {
            node.contents_length = child - at;
            node.end = child + 2;
            return true;
        }
        if (child >= bytes.size())
            return fail(error, offset, "end-of-contents missing for the indefinite length");
        BerNode piece;
        if (!parse_ber(bytes, child, max_depth - 1, piece, error))
            return false;
        child = piece.end;
        node.children.push_back(std::move(piece));
    }
}

void write_ber(const std::vector<unsigned char>& bytes, const BerNode& node, const BerForm& form,
               std::vector<unsigned char>& out) {
    if (is_string_type(node)) {
        std::vector<unsigned char> value;
        string_contents(bytes, node, value);
        std::vector<unsigned char> identifier = node.identifier;
        const size_t piece = form.constructed_strings;
        if (piece == 0 || value.size() <= piece) {
            identifier[0] &= static_cast<unsigned char>(~0x20);
            out.insert(out.end(), identifier.begin(), identifier.end());
            append_length(value.size(), form.long_lengths, out);
            out.insert(out.end(), value.begin(), value.end());
            return;
        }
        std::vector<unsigned char> pieces;
        for (size_t at = 0; at < value.size(); at += piece) {
            const size_t n = std::min(piece, value.size() - at);
            pieces.push_back(static_cast<unsigned char>(node.tag));
            append_length(n, form.long_lengths, pieces);
            pieces.insert(pieces.end(), value.begin() + static_cast<long>(at),
                          value.begin() + static_cast<long>(at + n));
        }
        identifier[0] |= 0x20;
        out.insert(out.end(), identifier.begin(), identifier.end());
        if (form.indefinite) {
            out.push_back(0x80);
            out.insert(out.end(), pieces.begin(), pieces.end());
            out.push_back(0);
            out.push_back(0);
        } else {
            append_length(pieces.size(), form.long_lengths, out);
            out.insert(out.end(), pieces.begin(), pieces.end());
        }
        return;
    }
    out.insert(out.end(), node.identifier.begin(), node.identifier.end());
    if (!node.constructed) {
        append_length(node.contents_length, form.long_lengths, out);
        out.insert(out.end(), bytes.begin() + static_cast<long>(node.contents),
                   bytes.begin() + static_cast<long>(node.contents + node.contents_length));
        return;
    }
    std::vector<unsigned char> inner;
    for (const BerNode& child : node.children)
        write_ber(bytes, child, form, inner);
    if (form.indefinite) {
        out.push_back(0x80);
        out.insert(out.end(), inner.begin(), inner.end());
        out.push_back(0);
        out.push_back(0);
        return;
    }
    append_length(inner.size(), form.long_lengths, out);
    out.insert(out.end(), inner.begin(), inner.end());
}

void find_ber_only(const BerNode& node, std::vector<BerOnlyForm>& findings) {
    if (node.indefinite)
        findings.push_back({&node, "indefinite length"});
    else if (!node.minimal_length)
        findings.push_back({&node, "length " + std::to_string(node.contents_length) + " in " +
                                       std::to_string(node.length_octets) +
                                       " octets, not in the fewest octets"});
    if (node.constructed && is_string_type(node)) {
        findings.push_back({&node, "string in constructed form"});
        return; // its pieces are part of that finding
    }
    for (const BerNode& child : node.children)
        find_ber_only(child, findings);
}

void find_ber_only(const BerNode& node, std::vector<std::string>& findings) {
    std::vector<BerOnlyForm> forms;
    find_ber_only(node, forms);
    for (const BerOnlyForm& form : forms)
        findings.push_back("offset " + std::to_string(form.node->offset) + ": " + form.what);
}

} // namespace kelmasn_tool
