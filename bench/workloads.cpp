// The records that the benchmarks measure.
#include "workloads.h"

#include <cstdlib>
#include <cstring>

namespace kelm_bench {

char* text(const std::string& s) {
    char* copy = static_cast<char*>(std::malloc(s.size() + 1));
    std::memcpy(copy, s.c_str(), s.size() + 1);
    return copy;
}

attr_s_t make_attribute(const std::string& name, unsigned int values) {
    attr_s_t attr{};
    attr.name = text(name);
    attr.value_count = values;
    attr.values = static_cast<value_s_t*>(std::calloc(values, sizeof(value_s_t)));
    for (unsigned int v = 0; v < values; ++v) {
        value_s_t& value = attr.values[v];
        value.value_type = v;
        value.str_value = text("value-text-" + std::to_string(v % 10));
        value.bin_length = 16;
        value.bin_value = static_cast<unsigned char*>(std::malloc(16));
        std::memset(value.bin_value, 0x40 + v, 16);
    }
    return attr;
}

attrlist_s_t make_w1() {
    attrlist_s_t list{10, static_cast<attr_s_t*>(std::calloc(10, sizeof(attr_s_t)))};
    for (unsigned int a = 0; a < 10; ++a)
        list.attrs[a] = make_attribute("attribute-" + std::to_string(a) + "x", 3);
    return list;
}

acl_ext_s_t make_w2() {
    acl_ext_s_t acl{};
    acl.name = text("default-webseal-acl");
    acl.entry_count = 50;
    acl.entries = static_cast<acl_entry_s_t*>(std::calloc(50, sizeof(acl_entry_s_t)));
    for (unsigned int e = 0; e < 50; ++e) {
        acl_entry_s_t& entry = acl.entries[e];
        entry.permset.perm_count = 4;
        entry.permset.perms = static_cast<uint32_t*>(std::calloc(4, sizeof(uint32_t)));
        for (unsigned int p = 0; p < 4; ++p)
            entry.permset.perms[p] = p % 2 == 0 ? 0x1Fu + p : 0xF00D0000u + e * 0x101u + p;
        entry.entry_type = e % 3;
        entry.id.uuid.time_low = e;
        entry.id.name = text("uid=user" + std::to_string(1000 + e) + ",o=acme1"); // 20 characters
    }
    acl.attrs = attrlist_s_t{2, static_cast<attr_s_t*>(std::calloc(2, sizeof(attr_s_t)))};
    for (unsigned int a = 0; a < 2; ++a)
        acl.attrs.attrs[a] = make_attribute("acl-attribute" + std::to_string(a), 2);
    return acl;
}

namevalue_s_t make_node(unsigned int depth) {
    namevalue_s_t node{};
    node.name = text("entry-" + std::to_string(depth));
    node.value_count = 2;
    node.values = static_cast<char**>(std::calloc(2, sizeof(char*)));
    node.values[0] = text("first value");
    node.values[1] = text("second value");
    if (depth < 4) {
        node.nested_count = 3;
        node.nested = static_cast<namevalue_s_t**>(std::calloc(3, sizeof(namevalue_s_t*)));
        for (unsigned int i = 0; i < 3; ++i) {
            node.nested[i] = static_cast<namevalue_s_t*>(std::malloc(sizeof(namevalue_s_t)));
            *node.nested[i] = make_node(depth + 1);
        }
    }
    return node;
}

namevalue_s_t make_w3() {
    return make_node(1);
}

acl_permset_s_t make_permissions(unsigned int n) {
    acl_permset_s_t set{n, static_cast<uint32_t*>(std::calloc(n, sizeof(uint32_t)))};
    for (unsigned int i = 0; i < n; ++i)
        set.perms[i] = i % 2 == 0 ? i % 0x80 : 0xF0000000u | i;
    return set;
}

unsigned char* bytes(unsigned int n, unsigned char fill) {
    unsigned char* b = static_cast<unsigned char*>(std::malloc(n));
    std::memset(b, fill, n);
    return b;
}

zuauditevent_s_t make_event() {
    zuauditevent_s_t event{};
    event.event_number1 = 42;
    event.event_text = text("authorization decision");
    event.element_count = 20;
    event.elements = static_cast<zuauditelement_s_t*>(std::calloc(20, sizeof(zuauditelement_s_t)));
    for (unsigned int e = 0; e < 20; ++e) {
        zuauditelement_s_t& element = event.elements[e];
        element.name = text("element-" + std::to_string(e));
        element.value_length = 16;
        element.value = bytes(16, static_cast<unsigned char>(e));
        element.attr_count = 5;
        element.attrs =
            static_cast<zuauditattribute_s_t*>(std::calloc(5, sizeof(zuauditattribute_s_t)));
        for (unsigned int a = 0; a < 5; ++a) {
            element.attrs[a].name = text("attribute-" + std::to_string(a));
            element.attrs[a].value_length = 8;
            element.attrs[a].value = bytes(8, static_cast<unsigned char>(a));
        }
    }
    return event;
}

} // namespace kelm_bench
