// Element trees labelled with field paths, through the record kinds' writer walk: the walk over
// the decoded record meets its values in the order the elements stand on the wire.
#include "inspect.h"

#include <cstdio>
#include <cstdlib>

#include "asn_record_kinds.h"
#include "der_dump.h"

namespace kelmasn_tool {
namespace {

const char* universal_type_name(unsigned long tag) {
    switch (tag) {
    case 1:
        return "BOOLEAN";
    case 2:
        return "INTEGER";
    case 4:
        return "OCTET STRING";
    case 5:
        return "NULL";
    case 12:
        return "UTF8String";
    case 16:
        return "SEQUENCE";
    case 19:
        return "PrintableString";
    case 20:
        return "TeletexString";
    case 22:
        return "IA5String";
    case 26:
        return "VisibleString";
    case 28:
        return "UniversalString";
    case 30:
        return "BMPString";
    default:
        return nullptr;
    }
}

std::string offset_column(size_t offset) {
    char column[16];
    std::snprintf(column, sizeof column, "%6zu", offset);
    return column;
}

// A primitive element's value as the der subcommand shows it: the end of the element's one line.
std::string value_of(const std::vector<unsigned char>& bytes, const BerNode& node) {
    if (node.constructed)
        return "";
    std::vector<unsigned char> element(bytes.begin() + static_cast<long>(node.offset),
                                       bytes.begin() + static_cast<long>(node.end));
    std::string lines;
    DumpError error{0, ""};
    if (!dump_elements(element, lines, error))
        return "";
    const std::string line = lines.substr(0, lines.find('\n'));
    const size_t colon = line.find(": ", line.find("length"));
    return colon == std::string::npos ? "" : line.substr(colon + 2);
}

void untyped(const std::vector<unsigned char>& bytes, const BerNode& node, unsigned int depth,
             std::string& out) {
    const std::string value = value_of(bytes, node);
    out += offset_column(node.offset) + "  " + std::string(2 * depth, ' ') + describe(node) +
           (value.empty() ? "" : ": " + value) + "\n";
    for (const BerNode& child : node.children)
        untyped(bytes, child, depth + 1, out);
}

// The kinds' writer walk, consuming the elements of the tree as the values come.
class Labeller {
  public:
    Labeller(const std::vector<unsigned char>& bytes, const BerNode& tree,
             const kelm_record_type& type, std::string& out)
        : bytes_(bytes), out_(out), root_(tree), root_name_(type.record_name),
          bare_(type.flags & KELM_RECORD_BARE_ELEMENT),
          version_(type.flags & KELM_RECORD_VERSION_ELEMENT) {}

    bool ok() const { return error_.empty(); }
    const std::string& error() const { return error_; }

    void begin_record(const kelm_record_type& type) {
        if (bare_ && frames_.empty()) {
            frames_.push_back(Frame{&root_, 0, false, root_name_, true});
            return;
        }
        const BerNode* node = next_element(type.record_name);
        if (node == nullptr)
            return;
        if (!(node->tag_class == 0 && node->tag == 16 && node->constructed))
            return mismatch(*node, "a SEQUENCE was expected");
        line(*node, "");
        // The fields of the outermost record are named without a prefix.
        frames_.push_back(Frame{node, 0, false, frames_.empty() ? "" : path_, false});
        // The version element INTEGER 1 leads the SEQUENCE of these records, and of each of
        // their entries.
        if (version_ && node->children.size() > 0) {
            const BerNode& version = node->children[0];
            line(version, value_of(bytes_, version),
                 (frames_.back().path.empty() ? "" : frames_.back().path + ".") + "(version)");
            frames_.back().next = 1;
        }
    }
    void end_record() {
        if (!frames_.empty())
            frames_.pop_back();
    }
    void field(const char* name) {
        if (frames_.empty())
            return;
        const Frame& frame = frames_.back();
        key_ = frame.bare ? frame.path : frame.path.empty() ? name : frame.path + "." + name;
    }
    void begin_list(size_t) {
        const BerNode* node = next_element("a list");
        if (node == nullptr)
            return;
        if (!(node->tag_class == 0 && node->tag == 16 && node->constructed))
            return mismatch(*node, "a SEQUENCE OF was expected");
        line(*node, "");
        frames_.push_back(Frame{node, 0, true, path_, false});
    }
    void end_list() {
        if (!frames_.empty())
            frames_.pop_back();
    }
    void integer(int64_t) { primitive("an INTEGER"); }
    void text(const char*) { primitive("a text"); }
    void octet_text(const char*) {
        const BerNode* node = primitive("an OCTET STRING");
        if (node != nullptr)
            octet_text_lengths_.push_back(node->contents_length);
    }
    const std::vector<size_t>& octet_text_lengths() const { return octet_text_lengths_; }
    void bytes(const unsigned char*, size_t n) {
        // An empty byte array that the SEQUENCE leaves out at its end is an absent OPTIONAL OCTET
        // STRING (the body of a certificate request).
        if (n == 0 && ok() && !frames_.empty() && !frames_.back().list && !frames_.back().bare &&
            frames_.back().next >= frames_.back().node->children.size()) {
            out_ +=
                "     -  " + std::string(2 * frames_.size(), ' ') + key_ + ": absent (OPTIONAL)\n";
            return;
        }
        primitive("an OCTET STRING");
    }
    void absent() {
        if (!ok() || frames_.empty())
            return;
        if (frames_.back().list) { // an empty slot: NULL on the wire
            primitive("a NULL");
            return;
        }
        out_ += "     -  " + std::string(2 * frames_.size(), ' ') + key_ + ": absent (OPTIONAL)\n";
    }

  private:
    struct Frame {
        const BerNode* node;
        size_t next;
        bool list;
        std::string path;
        bool bare;
    };

    // The next element of the open record or list, with the path of the value it carries.
    const BerNode* next_element(const char* what) {
        if (!ok())
            return nullptr;
        if (frames_.empty()) {
            path_ = root_name_;
            return &root_;
        }
        Frame& frame = frames_.back();
        if (frame.bare)
            return (path_ = frame.path, frame.node);
        if (frame.next >= frame.node->children.size()) {
            error_ = "offset " + std::to_string(frame.node->end) + ": " + what +
                     " was expected for " + (frame.list ? frame.path : key_) + ", the element ends";
            return nullptr;
        }
        path_ = frame.list ? frame.path + "[" + std::to_string(frame.next) + "]" : key_;
        return &frame.node->children[frame.next++];
    }

    const BerNode* primitive(const char* what) {
        const BerNode* node = next_element(what);
        if (node != nullptr)
            line(*node, value_of(bytes_, *node));
        return node;
    }

    void line(const BerNode& node, const std::string& value, const std::string& label = "") {
        out_ += offset_column(node.offset) + "  " + std::string(2 * frames_.size(), ' ') +
                (label.empty() ? path_ : label) + "  " + describe(node) +
                (value.empty() ? "" : ": " + value) + "\n";
    }

    void mismatch(const BerNode& node, const std::string& expectation) {
        error_ = "offset " + std::to_string(node.offset) + ": " + path_ + ": " + expectation +
                 ", the buffer has " + describe(node);
    }

    const std::vector<unsigned char>& bytes_;
    std::string& out_;
    const BerNode& root_;
    std::string root_name_;
    bool bare_;
    bool version_;
    std::vector<Frame> frames_;
    std::vector<size_t> octet_text_lengths_;
    std::string key_;
    std::string path_;
    std::string error_;
};

// The kinds' reader walk over the element tree instead of a document: each value the walk asks
// for must be the next element, of the form its kind is written in. The first element that is
// not ends the walk with a Mismatch.
class ShapeReader {
  public:
    struct Mismatch {
        std::string what;
    };

    ShapeReader(const BerNode& tree, const kelm_record_type& type, ShapeLabels& labels)
        : root_(tree), root_name_(type.record_name), bare_(type.flags & KELM_RECORD_BARE_ELEMENT),
          version_(type.flags & KELM_RECORD_VERSION_ELEMENT), labels_(labels) {}

    void begin_record(const kelm_record_type&) {
        if (bare_ && frames_.empty()) {
            frames_.push_back(Frame{&root_, 0, false, false, "", true});
            return;
        }
        const BerNode& node = next("a SEQUENCE");
        expect(node, node.tag_class == 0 && node.tag == 16 && node.constructed, "a SEQUENCE");
        label(node);
        frames_.push_back(Frame{&node, 0, false, false, frames_.empty() ? "" : key_, false});
        if (version_) {
            key_ = joined("(version)");
            const BerNode& version = next("the version INTEGER");
            expect(version, is_primitive(version, 2), "the version INTEGER");
            label(version);
        }
    }
    void end_record() {
        const Frame& frame = frames_.back();
        if (!frame.bare && frame.next < frame.node->children.size())
            throw Mismatch{"offset " + std::to_string(frame.node->children[frame.next].offset) +
                           ": " + (frame.path.empty() ? std::string("the record") : frame.path) +
                           ": an element after the last field"};
        frames_.pop_back();
    }
    bool enter_field(const char* name) {
        key_ = frames_.back().bare ? frames_.back().path : joined(name);
        in_entry_ = false;
        return true;
    }
    void enter_entry(size_t k) {
        key_ = frames_.back().path + "[" + std::to_string(k) + "]";
        in_entry_ = true;
    }
    void leave() {}

    int64_t integer(int64_t, int64_t) {
        const BerNode& node = next("an INTEGER");
        expect(node, is_primitive(node, 2), "an INTEGER");
        label(node);
        return 0;
    }
    char* text() {
        const BerNode& node = next("a text");
        expect(node,
               node.tag_class == 0 &&
                   (node.tag == 4 || node.tag == 12 || node.tag == 19 || node.tag == 20 ||
                    node.tag == 22 || node.tag == 26 || node.tag == 28 || node.tag == 30),
               "a text");
        label(node);
        return static_cast<char*>(std::calloc(1, 1));
    }
    std::string bytes() {
        Frame& frame = frames_.back();
        if (version_ && !frame.list && frame.next >= frame.node->children.size()) {
            // the OPTIONAL body that a certificate request leaves out at its end
            labels_.absent.push_back({frame.node, frame.next, key_});
            return "";
        }
        const BerNode& node = next("an OCTET STRING");
        expect(node, node.tag_class == 0 && node.tag == 4, "an OCTET STRING");
        label(node);
        return "";
    }
    std::string fixed_bytes(size_t size) {
        const BerNode& node = next("an OCTET STRING");
        expect(node, node.tag_class == 0 && node.tag == 4, "an OCTET STRING");
        label(node);
        return std::string(size, '\0');
    }
    bool present() {
        const Frame& frame = frames_.back();
        const bool more = frame.next < frame.node->children.size();
        const BerNode* node = more ? &frame.node->children[frame.next] : nullptr;
        if (in_entry_ && frame.slots) {
            if (node != nullptr && is_primitive(*node, 5)) { // NULL: an empty slot
                label(*node);
                ++frames_.back().next;
                return false;
            }
            return true;
        }
        if (in_entry_)
            return true;
        // An optional record is there when a SEQUENCE comes next.
        const bool there = node != nullptr && node->tag_class == 0 && node->tag == 16;
        if (!there)
            labels_.absent.push_back({frame.node, frame.next, key_});
        return there;
    }
    size_t begin_list(uint64_t max, const char*) { return open_list(max, false); }
    size_t begin_slots(size_t size) { return open_list(size, true); }
    void end_list() { frames_.pop_back(); }
    [[noreturn]] void out_of_memory() { throw Mismatch{"out of memory"}; }

  private:
    struct Frame {
        const BerNode* node;
        size_t next;
        bool list;
        bool slots;
        std::string path;
        bool bare;
    };

    static bool is_primitive(const BerNode& node, unsigned long tag) {
        return node.tag_class == 0 && node.tag == tag && !node.constructed;
    }

    std::string joined(const std::string& name) const {
        const std::string& path = frames_.back().path;
        return path.empty() ? name : path + "." + name;
    }

    size_t open_list(uint64_t max, bool slots) {
        const BerNode& node = next("a SEQUENCE OF");
        expect(node, node.tag_class == 0 && node.tag == 16 && node.constructed, "a SEQUENCE OF");
        label(node);
        frames_.push_back(Frame{&node, 0, true, slots, key_, false});
        return node.children.size() < max ? node.children.size() : static_cast<size_t>(max);
    }

    const BerNode& next(const char* what) {
        if (frames_.empty())
            return root_;
        Frame& frame = frames_.back();
        if (frame.bare)
            return *frame.node;
        if (frame.next >= frame.node->children.size())
            throw Mismatch{"offset " + std::to_string(frame.node->end) + ": " + key_ + ": " + what +
                           " was expected, the element ends"};
        return frame.node->children[frame.next++];
    }

    void expect(const BerNode& node, bool fits, const char* what) const {
        if (!fits)
            throw Mismatch{"offset " + std::to_string(node.offset) + ": " +
                           (key_.empty() ? std::string("the record") : key_) + ": " + what +
                           " was expected, the buffer has " + describe(node)};
    }

    // The element fits the value the walk reads into the field at key_ (the record itself for
    // the outermost).
    void label(const BerNode& node) { labels_.paths[&node] = key_.empty() ? root_name_ : key_; }

    const BerNode& root_;
    std::string root_name_;
    bool bare_;
    bool version_;
    std::vector<Frame> frames_;
    ShapeLabels& labels_;
    std::string key_;
    bool in_entry_ = false;
};

// The lines of the tree: the elements with a label under it, the others as they are, and the
// absent optional parts that the labels name at their places.
void labelled(const std::vector<unsigned char>& bytes, const BerNode& node, unsigned int depth,
              const ShapeLabels& labels, std::string& out) {
    const std::string value = value_of(bytes, node);
    const auto label = labels.paths.find(&node);
    out += offset_column(node.offset) + "  " + std::string(2 * depth, ' ') +
           (label == labels.paths.end() ? "" : label->second + "  ") + describe(node) +
           (value.empty() ? "" : ": " + value) + "\n";
    const auto absent_before = [&](size_t child) {
        for (const ShapeLabels::Absent& absent : labels.absent)
            if (absent.parent == &node && absent.before == child)
                out += "     -  " + std::string(2 * (depth + 1), ' ') + absent.path +
                       ": absent (OPTIONAL)\n";
    };
    for (size_t i = 0; i < node.children.size(); ++i) {
        absent_before(i);
        labelled(bytes, node.children[i], depth + 1, labels, out);
    }
    absent_before(node.children.size());
}

} // namespace

std::string describe(const BerNode& node) {
    static const char* const classes[] = {"UNIVERSAL", "APPLICATION", "CONTEXT", "PRIVATE"};
    const char* name = node.tag_class == 0 ? universal_type_name(node.tag) : nullptr;
    std::string text = name != nullptr ? std::string(name)
                                       : "[" + std::string(classes[node.tag_class]) + " " +
                                             std::to_string(node.tag) + "]";
    if (node.constructed && !(node.tag_class == 0 && node.tag == 16))
        text += " constructed";
    text += node.indefinite ? ", length indefinite"
                            : ", length " + std::to_string(node.contents_length);
    return text;
}

bool inspect_record(const std::vector<unsigned char>& bytes, const BerNode& tree,
                    const kelm_record_type& type, const void* record, std::string& out,
                    std::string& error) {
    Labeller labeller(bytes, tree, type, out);
    kelm_record_kinds::write_record(labeller, type, record);
    error = labeller.error();
    return labeller.ok();
}

bool octet_text_lengths(const std::vector<unsigned char>& bytes, const BerNode& tree,
                        const kelm_record_type& type, const void* record,
                        std::vector<size_t>& lengths) {
    std::string discarded;
    Labeller labeller(bytes, tree, type, discarded);
    kelm_record_kinds::write_record(labeller, type, record);
    lengths = labeller.octet_text_lengths();
    return labeller.ok();
}

ShapeLabels label_by_shape(const BerNode& tree, const kelm_record_type& type) {
    ShapeLabels labels;
    void* scratch = std::calloc(1, type.record_size);
    if (scratch == nullptr)
        return labels;
    try {
        ShapeReader reader(tree, type, labels);
        kelm_record_kinds::read_record(reader, type, scratch);
    } catch (const ShapeReader::Mismatch& m) {
        labels.mismatch = m.what;
    }
    kelm_asn_record::free_record(type, scratch);
    std::free(scratch);
    return labels;
}

std::string first_mismatch(const std::vector<unsigned char>&, const BerNode& tree,
                           const kelm_record_type& type) {
    return label_by_shape(tree, type).mismatch;
}

void inspect_by_shape(const std::vector<unsigned char>& bytes, const BerNode& tree,
                      const ShapeLabels& labels, std::string& out) {
    labelled(bytes, tree, 0, labels, out);
}

void inspect_untyped(const std::vector<unsigned char>& bytes, const BerNode& tree,
                     std::string& out) {
    untyped(bytes, tree, 0, out);
}

} // namespace kelmasn_tool
