// The child registry of constructed values, and SEQUENCE.
#include <climits>
#include <cstdlib>
#include <cstring>

#include "asn_constructed.h"
#include "asn_source_site.h"
#include "asn_type_name_internal.h"

namespace {

// The positions that the memory exceptions of this file report. Existing callers match these
// values in the exception line: they must never change, whatever becomes of this file's layout.
// A failed allocation of the child slots asked for at construction.
constexpr kelm_source_site kCompositeInitialChildrenSite = {"src/asn1/asn_composite.cpp", 39};
// A growth of the child array whose slot count would pass 32 bits.
constexpr kelm_source_site kCompositeChildCountOverflowSite = {"src/asn1/asn_composite.cpp", 52};
// A failed reallocation of the child array.
constexpr kelm_source_site kCompositeChildGrowthSite = {"src/asn1/asn_composite.cpp", 57};

// Slots added when a full child array grows: 32 for the first array, 512 up to 4096 children,
// then (children / 4096) * 512 up to 69631 children, and 512 again beyond.
unsigned int growth_step(unsigned int capacity, unsigned int count) {
    if (capacity == 0)
        return 32;
    const unsigned int k = count / 4096;
    return k >= 1 && k <= 16 ? k * 512 : 512;
}

} // namespace

kelm_asn_composite::kelm_asn_composite(security_t sec)
    : kelm_asn_object(sec), empty_permitted(1), child_count(0), child_capacity(0),
      children(nullptr) {
    constructed = 1;
    generate_constructed = 1;
    primitive_permitted = 0;
    constructed_permitted = 1;
    indefinite_permitted = 1;
}

kelm_asn_composite::kelm_asn_composite(unsigned int capacity, security_t sec)
    : kelm_asn_object(sec), empty_permitted(1), child_count(0), child_capacity(0),
      children(nullptr) {
    primitive_permitted = 0;
    constructed_permitted = 1;
    if (capacity != 0) {
        children = static_cast<kelm_asn_object**>(std::calloc(capacity, sizeof *children));
        if (children == nullptr)
            throw kelm_asn_memexception(kCompositeInitialChildrenSite.file,
                                        kCompositeInitialChildrenSite.line,
                                        "Out of memory in asn_composite::asn_composite");
        child_capacity = capacity;
    }
}

kelm_asn_composite::~kelm_asn_composite() {
    std::free(children);
    children = nullptr;
}

void kelm_asn_composite::grow_children(unsigned int step) {
    if (child_count > UINT_MAX - step)
        throw kelm_asn_memexception(kCompositeChildCountOverflowSite.file,
                                    kCompositeChildCountOverflowSite.line,
                                    "Out of memory in asn_composite::register_child");
    const unsigned int capacity = child_count + step;
    void* grown = std::realloc(children, static_cast<size_t>(capacity) * sizeof *children);
    if (grown == nullptr)
        throw kelm_asn_memexception(kCompositeChildGrowthSite.file, kCompositeChildGrowthSite.line,
                                    "Out of memory in asn_composite::register_child");
    children = static_cast<kelm_asn_object**>(grown);
    for (unsigned int i = child_capacity; i < capacity; ++i)
        children[i] = nullptr;
    child_capacity = capacity;
}

void kelm_asn_composite::adopt(kelm_asn_object* child) {
    child->set_parent(this);
    if (security != KELM_SECURITY_PLAIN)
        child->set_secure(security);
}

int kelm_asn_composite::register_child(kelm_asn_object* child) {
    if (child_count >= child_capacity)
        grow_children(growth_step(child_capacity, child_count));
    children[child_count++] = child;
    adopt(child);
    check_valid(0);
    return 0;
}

int kelm_asn_composite::register_child_before(kelm_asn_object* child) {
    if (child_count != 0 && child_count < child_capacity) {
        std::memmove(children + 1, children, child_count * sizeof *children);
    } else {
        // Kept for compatibility: on a full (or empty) array the pointers are not moved.
        grow_children(child_capacity - child_count + 512);
    }
    children[0] = child;
    ++child_count;
    adopt(child);
    return 0;
}

int kelm_asn_composite::get_empty_permitted() const {
    return empty_permitted;
}

kelm_asn_object* kelm_asn_composite::get_child(unsigned int index) const {
    return index < child_count ? children[index] : nullptr;
}

unsigned int kelm_asn_composite::get_child_count() const {
    return child_count;
}

int kelm_asn_composite::check_valid(int deep) {
    if (child_count == 0 && !get_empty_permitted()) {
        invalidate_value(KELM_INVALIDATE_CONTAINER);
        return 0;
    }
    unsigned int counted = 0;
    for (unsigned int i = 0; i < child_count; ++i) {
        const kelm_asn_object* child = children[i];
        if (!child->is_valid(deep)) {
            if (is_present())
                invalidate_value(KELM_INVALIDATE_CONTAINER);
            return 0;
        }
        if (child->is_present() || child->is_defaultable())
            ++counted;
    }
    if (counted == 0 && !empty_permitted) {
        invalidate_value(KELM_INVALIDATE_CONTAINER);
        return 0;
    }
    if (is_present() && (parent == nullptr || parent->is_present()))
        return 0;
    set_value_valid();
    return 0;
}

int kelm_asn_composite::is_valid(int deep) const {
    if (deep) {
        for (unsigned int i = 0; i < child_count; ++i)
            children[i]->check_valid(deep);
        const_cast<kelm_asn_composite*>(this)->check_valid(0);
    }
    return kelm_asn_object::is_valid(deep);
}

void kelm_asn_composite::invalidate_value(invalidate_t mode) {
    if (mode != KELM_INVALIDATE_CONTAINER)
        for (unsigned int i = 0; i < child_count; ++i)
            children[i]->invalidate_value(KELM_INVALIDATE_LOCAL);
    kelm_asn_object::invalidate_value(KELM_INVALIDATE_CONTAINER);
}

int kelm_asn_composite::set_empty_permitted(int value) {
    empty_permitted = value;
    check_valid(0);
    return 0;
}

int kelm_asn_composite::emptyi() {
    for (unsigned int i = 0; i < child_count; ++i) {
        const int status = children[i]->empty();
        if (status != 0)
            return status;
    }
    return 0;
}

int kelm_asn_composite::normalize() {
    for (unsigned int i = 0; i < child_count; ++i) {
        const int status = children[i]->normalize();
        if (status != 0)
            return status;
    }
    return 0;
}

int kelm_asn_composite::check_encode_flags(int expected) const {
    return kelm_asn_object::check_encode_flags(expected);
}

int kelm_asn_composite::check_encode_flags() const {
    if (!is_encoding_valid())
        return 1;
    for (unsigned int i = 0; i < child_count; ++i) {
        const kelm_asn_object* child = children[i];
        if (child->is_optional() && !child->is_present())
            continue;
        const int flags = child->check_encode_flags(1);
        if (flags == 0)
            return 0;
    }
    return 1;
}

unsigned int kelm_asn_composite::display(kelm_buffer_t& output) const {
    output.append("COMPOSITE-OBJECT(tag=");
    output.append_int(static_cast<int>(tag));
    output.append(", class=");
    output.append_int(tag_class);
    output.append(") {");
    for (unsigned int i = 0; i < child_count; ++i) {
        const unsigned int status = children[i]->display(output);
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

unsigned int kelm_asn_composite::display_state_flags(kelm_buffer_t& output, int indent) const {
    kelm_asn_object::display_state_flags(output, indent);
    for (unsigned int i = 0; i < child_count; ++i)
        children[i]->display_state_flags(output, indent + 2);
    return KELM_ASN_OK;
}

kelm_asn_sequence::kelm_asn_sequence(security_t sec) : kelm_asn_composite(sec) {
    kelm_store_type_name(type_name, "SEQUENCE");
    set_tag(16);
    set_class(0);
}

kelm_asn_sequence::~kelm_asn_sequence() = default;

unsigned int kelm_asn_sequence::encode_value(kelm_buffer_t& output) const {
    for (unsigned int i = 0; i < child_count; ++i) {
        const unsigned int status = children[i]->asnwrite(output);
        if (status != KELM_ASN_OK)
            return status;
    }
    return KELM_ASN_OK;
}

// The children read in order from the contents; an optional or defaultable child whose tag does
// not match reads nothing and the next child is tried on the same octets. Unknown or surplus
// elements are an error, not skipped.
unsigned int kelm_asn_sequence::decode_value(kelm_r_buffer_t& input, unsigned int length) {
    kelm_r_buffer_t contents = input;
    if (!indefinite)
        contents.remaining = length;
    for (unsigned int i = 0; i < child_count; ++i) {
        const unsigned int status = children[i]->asnread(contents);
        if (status != KELM_ASN_OK)
            return status;
    }
    if (indefinite) {
        input.remaining = contents.remaining;
    } else {
        if (contents.remaining != 0)
            return KELM_ASN_SURPLUS_CONTENTS;
        input.remaining -= length;
    }
    input.cursor = contents.cursor;
    return KELM_ASN_OK;
}
