// Typical records of the larger families through the typed entry points: an ACL, a name/value
// tree and an audit event. Time and allocations per record, MB/s of encoded output.
#include <cstdlib>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "alloc_failure.h"
#include "kelm/kelmasn.h"

namespace {

char* text(const std::string& s) {
    char* copy = static_cast<char*>(std::malloc(s.size() + 1));
    std::memcpy(copy, s.c_str(), s.size() + 1);
    return copy;
}

unsigned char* bytes(unsigned int n, unsigned char fill) {
    unsigned char* b = static_cast<unsigned char*>(std::malloc(n));
    std::memset(b, fill, n);
    return b;
}

attrlist_s_t attributes(unsigned int count) {
    attrlist_s_t list{count, static_cast<attr_s_t*>(std::calloc(count, sizeof(attr_s_t)))};
    for (unsigned int a = 0; a < count; ++a) {
        list.attrs[a].name = text("attribute-" + std::to_string(a));
        list.attrs[a].value_count = 1;
        list.attrs[a].values = static_cast<value_s_t*>(std::calloc(1, sizeof(value_s_t)));
        list.attrs[a].values[0].str_value = text("value");
    }
    return list;
}

// 50 entries of 4 permissions, each naming an identity of about 20 characters; 2 attributes.
acl_ext_s_t make_acl() {
    acl_ext_s_t acl{};
    acl.name = text("default-webseal-acl");
    acl.entry_count = 50;
    acl.entries = static_cast<acl_entry_s_t*>(std::calloc(50, sizeof(acl_entry_s_t)));
    for (unsigned int e = 0; e < 50; ++e) {
        acl_entry_s_t& entry = acl.entries[e];
        entry.permset.perm_count = 4;
        entry.permset.perms = static_cast<uint32_t*>(std::calloc(4, sizeof(uint32_t)));
        for (unsigned int p = 0; p < 4; ++p)
            entry.permset.perms[p] = 0x100u * e + p;
        entry.entry_type = e % 3;
        entry.id.uuid.time_low = e;
        entry.id.name = text("cn=user" + std::to_string(1000 + e) + ",o=example");
    }
    acl.attrs = attributes(2);
    return acl;
}

// An entry with 2 values and, below depth 4, 3 nested entries.
namevalue_s_t* make_entry(unsigned int depth) {
    namevalue_s_t* entry = static_cast<namevalue_s_t*>(std::calloc(1, sizeof(namevalue_s_t)));
    entry->name = text("entry-" + std::to_string(depth));
    entry->value_count = 2;
    entry->values = static_cast<char**>(std::calloc(2, sizeof(char*)));
    entry->values[0] = text("first value");
    entry->values[1] = text("second value");
    if (depth < 4) {
        entry->nested_count = 3;
        entry->nested = static_cast<namevalue_s_t**>(std::calloc(3, sizeof(namevalue_s_t*)));
        for (unsigned int i = 0; i < 3; ++i)
            entry->nested[i] = make_entry(depth + 1);
    }
    return entry;
}

namevalueList_s_t make_tree() {
    namevalueList_s_t list{};
    list.entry_count = 3;
    list.entries = static_cast<namevalue_s_t**>(std::calloc(3, sizeof(namevalue_s_t*)));
    for (unsigned int i = 0; i < 3; ++i)
        list.entries[i] = make_entry(1);
    return list;
}

// 20 elements of 5 attributes each.
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

template <class Record> void encode_bench(benchmark::State& state, Record record) {
    kelm_asn_buffer_t sample{0, nullptr};
    kelmAsnEncodeObj(sample, record);
    const size_t size = sample.length;
    kelm_asn_buffer_free(sample);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_buffer_t out{0, nullptr};
        kelmAsnEncodeObj(out, record);
        benchmark::DoNotOptimize(out.data);
        kelm_asn_buffer_free(out);
        ++records;
    }
    state.SetItemsProcessed(static_cast<int64_t>(records));
    state.SetBytesProcessed(static_cast<int64_t>(records * size));
    state.counters["allocs_per_record"] =
        static_cast<double>(kelm_test::allocation_count()) / static_cast<double>(records);
    state.counters["encoded_bytes"] = static_cast<double>(size);
    kelmAsnFreeObj(record);
}

template <class Record> void decode_bench(benchmark::State& state, Record record) {
    kelm_asn_buffer_t wire{0, nullptr};
    kelmAsnEncodeObj(wire, record);
    unsigned long records = 0;
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        Record back{};
        kelmAsnDecodeObj(wire, back);
        benchmark::DoNotOptimize(&back);
        kelmAsnFreeObj(back);
        ++records;
    }
    state.SetItemsProcessed(static_cast<int64_t>(records));
    state.SetBytesProcessed(static_cast<int64_t>(records * wire.length));
    state.counters["allocs_per_record"] =
        static_cast<double>(kelm_test::allocation_count()) / static_cast<double>(records);
    kelm_asn_buffer_free(wire);
    kelmAsnFreeObj(record);
}

void BM_AclEncode(benchmark::State& state) {
    encode_bench(state, make_acl());
}
void BM_AclDecode(benchmark::State& state) {
    decode_bench(state, make_acl());
}
void BM_NameValueTreeEncode(benchmark::State& state) {
    encode_bench(state, make_tree());
}
void BM_NameValueTreeDecode(benchmark::State& state) {
    decode_bench(state, make_tree());
}
void BM_AuditEventEncode(benchmark::State& state) {
    encode_bench(state, make_event());
}
void BM_AuditEventDecode(benchmark::State& state) {
    decode_bench(state, make_event());
}
BENCHMARK(BM_AclEncode);
BENCHMARK(BM_AclDecode);
BENCHMARK(BM_NameValueTreeEncode);
BENCHMARK(BM_NameValueTreeDecode);
BENCHMARK(BM_AuditEventEncode);
BENCHMARK(BM_AuditEventDecode);

} // namespace
