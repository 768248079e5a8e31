// The three reference workloads through the typed entry points (the direct codec) and through the
// message classes (the object path), beside a hand-written encoder and decoder of the first one:
// the floor that every figure is read against, as a multiple of it in the same run.
//   W1  attrlist_s_t: 10 attributes of 3 values, names and texts of 12 characters (about 1.3 KB)
//   W2  acl_ext_s_t: 50 entries of 4 permissions (small masks and full 32-bit words), identity
//       names of 20 characters, 2 attributes of 2 values (about 4.4 KB)
//   W3  namevalue_s_t: a tree of depth 4 (the root and 3 levels), fan-out 3, 2 values per node
// Also: cost per element from 1e3 to 1e6 elements, and W1 on one and on two threads.
#include <cstdlib>
#include <cstring>
#include <string>

#include <benchmark/benchmark.h>

#include "aclidl_asn.h"
#include "alloc_failure.h"
#include "asn_record.h"
#include "attrlist_asn.h"
#include "kelm/kelmasn.h"
#include "namevalue_asn.h"
#include "workloads.h"

namespace {

using namespace kelm_bench;

// --- the floor: W1 written and read by hand -----------------------------------------------------

size_t length_octets(size_t n) {
    return n < 128 ? 1 : n <= 0xFF ? 2 : n <= 0xFFFF ? 3 : n <= 0xFFFFFF ? 4 : 5;
}
size_t tlv(size_t n) {
    return 1 + length_octets(n) + n;
}
size_t integer_length(uint32_t bits) {
    const int32_t v = static_cast<int32_t>(bits);
    size_t n = 1;
    while (n < 4 && (v >> (8 * n - 1)) != 0 && (v >> (8 * n - 1)) != -1)
        ++n;
    return n;
}
size_t text_length(const char* s) {
    return s != nullptr ? std::strlen(s) : 0;
}

size_t value_contents(const value_s_t& v) {
    return tlv(integer_length(v.value_type)) + tlv(text_length(v.str_value)) +
           tlv(v.bin_value != nullptr ? v.bin_length : 0);
}
size_t values_contents(const attr_s_t& a) {
    size_t n = 0;
    for (unsigned int i = 0; i < a.value_count; ++i)
        n += tlv(value_contents(a.values[i]));
    return n;
}
size_t attr_contents(const attr_s_t& a) {
    return tlv(text_length(a.name)) + tlv(values_contents(a));
}
size_t list_contents(const attrlist_s_t& l) {
    size_t n = 0;
    for (unsigned int i = 0; i < l.attr_count; ++i)
        n += tlv(attr_contents(l.attrs[i]));
    return n;
}

unsigned char* put_header(unsigned char* w, unsigned char tag, size_t n) {
    *w++ = tag;
    if (n < 128) {
        *w++ = static_cast<unsigned char>(n);
        return w;
    }
    const size_t octets = length_octets(n) - 1;
    *w++ = static_cast<unsigned char>(0x80 | octets);
    for (size_t i = octets; i-- > 0;)
        *w++ = static_cast<unsigned char>(n >> (8 * i));
    return w;
}
unsigned char* put_integer(unsigned char* w, uint32_t bits) {
    const size_t n = integer_length(bits);
    w = put_header(w, 0x02, n);
    for (size_t i = n; i-- > 0;)
        *w++ = static_cast<unsigned char>(bits >> (8 * i));
    return w;
}
unsigned char* put_octets(unsigned char* w, unsigned char tag, const void* data, size_t n) {
    w = put_header(w, tag, n);
    if (n != 0)
        std::memcpy(w, data, n);
    return w + n;
}

kelm_asn_buffer_t floor_encode(const attrlist_s_t& list) {
    const size_t contents = list_contents(list);
    const size_t total = 4 + tlv(tlv(contents));
    auto* out = static_cast<unsigned char*>(std::malloc(total));
    unsigned char* w = out;
    *w++ = 0x04;
    *w++ = 0x02;
    *w++ = 0xAC;
    *w++ = 0xDC;
    w = put_header(w, 0x30, tlv(contents));
    w = put_header(w, 0x30, contents);
    for (unsigned int i = 0; i < list.attr_count; ++i) {
        const attr_s_t& a = list.attrs[i];
        w = put_header(w, 0x30, attr_contents(a));
        w = put_octets(w, 0x0C, a.name, text_length(a.name));
        w = put_header(w, 0x30, values_contents(a));
        for (unsigned int k = 0; k < a.value_count; ++k) {
            const value_s_t& v = a.values[k];
            w = put_header(w, 0x30, value_contents(v));
            w = put_integer(w, v.value_type);
            w = put_octets(w, 0x0C, v.str_value, text_length(v.str_value));
            w = put_octets(w, 0x04, v.bin_value, v.bin_value != nullptr ? v.bin_length : 0);
        }
    }
    return kelm_asn_buffer_t{static_cast<unsigned long>(w - out), out};
}

struct Reader {
    const unsigned char* p;
    const unsigned char* end;
    bool ok = true;

    // The contents of the next element of tag `tag`.
    Reader element(unsigned char tag) {
        if (!ok || end - p < 2 || *p != tag) {
            ok = false;
            return Reader{end, end, false};
        }
        ++p;
        size_t n = *p++;
        if (n & 0x80) {
            const size_t octets = n & 0x7F;
            n = 0;
            for (size_t i = 0; i < octets && p < end; ++i)
                n = (n << 8) | *p++;
        }
        if (static_cast<size_t>(end - p) < n) {
            ok = false;
            return Reader{end, end, false};
        }
        Reader inner{p, p + n};
        p += n;
        return inner;
    }
    unsigned int count(unsigned char tag) const {
        Reader scan = *this;
        unsigned int n = 0;
        while (scan.ok && scan.p < scan.end) {
            scan.element(tag);
            ++n;
        }
        return n;
    }
    char* text() {
        Reader c = element(0x0C);
        const size_t n = static_cast<size_t>(c.end - c.p);
        char* s = static_cast<char*>(std::malloc(n + 1));
        std::memcpy(s, c.p, n);
        s[n] = '\0';
        return s;
    }
    uint32_t integer() {
        Reader c = element(0x02);
        uint32_t v = c.p < c.end && (*c.p & 0x80) ? 0xFFFFFFFFu : 0;
        for (; c.p < c.end; ++c.p)
            v = (v << 8) | *c.p;
        return v;
    }
};

bool floor_decode(const kelm_asn_buffer_t& in, attrlist_s_t& list) {
    if (in.length < 5 || in.data[2] != 0xAC || in.data[3] != 0xDC)
        return false;
    Reader all{in.data + in.data[0], in.data + in.length};
    Reader record = all.element(0x30);
    Reader attrs = record.element(0x30);
    list.attr_count = attrs.count(0x30);
    list.attrs = list.attr_count != 0
                     ? static_cast<attr_s_t*>(std::calloc(list.attr_count, sizeof(attr_s_t)))
                     : nullptr;
    for (unsigned int i = 0; i < list.attr_count; ++i) {
        attr_s_t& a = list.attrs[i];
        Reader attr = attrs.element(0x30);
        a.name = attr.text();
        Reader values = attr.element(0x30);
        a.value_count = values.count(0x30);
        a.values = a.value_count != 0
                       ? static_cast<value_s_t*>(std::calloc(a.value_count, sizeof(value_s_t)))
                       : nullptr;
        for (unsigned int k = 0; k < a.value_count; ++k) {
            value_s_t& v = a.values[k];
            Reader value = values.element(0x30);
            v.value_type = value.integer();
            v.str_value = value.text();
            Reader bin = value.element(0x04);
            v.bin_length = static_cast<uint32_t>(bin.end - bin.p);
            if (v.bin_length != 0) {
                v.bin_value = static_cast<unsigned char*>(std::malloc(v.bin_length));
                std::memcpy(v.bin_value, bin.p, v.bin_length);
            }
        }
    }
    return all.ok;
}

// --- the runs ------------------------------------------------------------------------------------

// The number of elements (tag-length-value triplets, nested ones included) in `n` octets of DER.
size_t der_elements(const unsigned char* der, size_t n) {
    size_t count = 0, at = 0;
    while (at + 2 <= n) {
        const bool constructed = (der[at] & 0x20) != 0;
        size_t length = der[at + 1], header = 2;
        if (length & 0x80) {
            const size_t octets = length & 0x7F;
            length = 0;
            for (size_t k = 0; k < octets; ++k)
                length = (length << 8) | der[at + 2 + k];
            header += octets;
        }
        ++count;
        if (constructed)
            count += der_elements(der + at + header, length);
        at += header + length;
    }
    return count;
}

// Per record: its allocations, the size of its encoding and the elements in it (so that figures
// per element can be read beside those per byte: a workload of small INTEGERs has more elements
// to a byte than one of texts).
void report(benchmark::State& state, unsigned long allocations, const kelm_asn_buffer_t& encoded) {
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()));
    state.counters["allocs_per_record"] = benchmark::Counter(
        static_cast<double>(allocations) / static_cast<double>(state.iterations()));
    state.counters["encoded_bytes"] = static_cast<double>(encoded.length);
    state.counters["elements"] =
        static_cast<double>(der_elements(encoded.data + 4, encoded.length - 4));
}

// Encodes `record` per iteration through `encode(out, record)`.
template <class Record, class Encode>
void run_encode(benchmark::State& state, Record& record, Encode encode) {
    kelm_asn_buffer_t sample{0, nullptr};
    encode(sample, record);
    kelm_test::reset_allocation_count();
    for (auto _ : state) {
        kelm_asn_buffer_t out{0, nullptr};
        encode(out, record);
        benchmark::DoNotOptimize(out.data);
        kelm_asn_buffer_free(out);
    }
    report(state, kelm_test::allocation_count(), sample);
    kelm_asn_buffer_free(sample);
}

// Decodes the encoding of `record` per iteration through `decode(in, back)`, and frees it.
template <class Record, class Decode>
void run_decode(benchmark::State& state, Record& record, Decode decode) {
    kelm_asn_buffer_t wire{0, nullptr};
    kelmAsnEncodeObj(wire, record);
    kelm_test::reset_allocation_count();
    unsigned long allocations = 0;
    for (auto _ : state) {
        Record back{};
        decode(wire, back);
        benchmark::DoNotOptimize(&back);
        allocations += kelm_test::allocation_count();
        kelmAsnFreeObj(back);
        kelm_test::reset_allocation_count();
    }
    report(state, allocations, wire);
    kelm_asn_buffer_free(wire);
}

template <class Record> auto typed_encode() {
    return [](kelm_asn_buffer_t& out, Record& r) { kelmAsnEncodeObj(out, r); };
}
template <class Record> auto typed_decode() {
    return [](kelm_asn_buffer_t& in, Record& r) { kelmAsnDecodeObj(in, r); };
}
template <class Record> auto object_encode(const kelm_record_type& type) {
    return [&type](kelm_asn_buffer_t& out, Record& r) {
        kelm_asn_record::encode(type, &r, out, 2, KELM_SECURITY_PLAIN);
    };
}
template <class Record> auto object_decode(const kelm_record_type& type) {
    return [&type](kelm_asn_buffer_t& in, Record& r) {
        kelm_asn_record::decode(type, &r, in, 2, KELM_SECURITY_PLAIN);
    };
}

// The records live for the whole program: the thread benchmarks share them read-only.
attrlist_s_t& w1() {
    static attrlist_s_t record = make_w1();
    return record;
}
acl_ext_s_t& w2() {
    static acl_ext_s_t record = make_w2();
    return record;
}
namevalue_s_t& w3() {
    static namevalue_s_t record = make_w3();
    return record;
}

void BM_W1FloorEncode(benchmark::State& state) {
    run_encode(state, w1(), [](kelm_asn_buffer_t& out, attrlist_s_t& r) { out = floor_encode(r); });
}
void BM_W1FloorDecode(benchmark::State& state) {
    run_decode(state, w1(), [](kelm_asn_buffer_t& in, attrlist_s_t& r) { floor_decode(in, r); });
}
void BM_W1Encode(benchmark::State& state) {
    run_encode(state, w1(), typed_encode<attrlist_s_t>());
}
void BM_W1Decode(benchmark::State& state) {
    run_decode(state, w1(), typed_decode<attrlist_s_t>());
}
void BM_W1EncodeObjectPath(benchmark::State& state) {
    run_encode(state, w1(), object_encode<attrlist_s_t>(kelm_attrlist_type));
}
void BM_W1DecodeObjectPath(benchmark::State& state) {
    run_decode(state, w1(), object_decode<attrlist_s_t>(kelm_attrlist_type));
}
void BM_W2Encode(benchmark::State& state) {
    run_encode(state, w2(), typed_encode<acl_ext_s_t>());
}
void BM_W2Decode(benchmark::State& state) {
    run_decode(state, w2(), typed_decode<acl_ext_s_t>());
}
void BM_W2EncodeObjectPath(benchmark::State& state) {
    run_encode(state, w2(), object_encode<acl_ext_s_t>(kelm_acl_ext_type));
}
void BM_W2DecodeObjectPath(benchmark::State& state) {
    run_decode(state, w2(), object_decode<acl_ext_s_t>(kelm_acl_ext_type));
}
void BM_W3Encode(benchmark::State& state) {
    run_encode(state, w3(), typed_encode<namevalue_s_t>());
}
void BM_W3Decode(benchmark::State& state) {
    run_decode(state, w3(), typed_decode<namevalue_s_t>());
}
void BM_W3EncodeObjectPath(benchmark::State& state) {
    run_encode(state, w3(), object_encode<namevalue_s_t>(kelm_namevalue_type));
}
void BM_W3DecodeObjectPath(benchmark::State& state) {
    run_decode(state, w3(), object_decode<namevalue_s_t>(kelm_namevalue_type));
}

BENCHMARK(BM_W1FloorEncode);
BENCHMARK(BM_W1FloorDecode);
BENCHMARK(BM_W1Encode);
BENCHMARK(BM_W1Decode);
BENCHMARK(BM_W1EncodeObjectPath);
BENCHMARK(BM_W1DecodeObjectPath);
BENCHMARK(BM_W2Encode);
BENCHMARK(BM_W2Decode);
BENCHMARK(BM_W2EncodeObjectPath);
BENCHMARK(BM_W2DecodeObjectPath);
BENCHMARK(BM_W3Encode);
BENCHMARK(BM_W3Decode);
BENCHMARK(BM_W3EncodeObjectPath);
BENCHMARK(BM_W3DecodeObjectPath);

// Cost per element: a permission set of 1e3, 1e5 and 1e6 INTEGER elements.
void BM_ElementsEncode(benchmark::State& state) {
    acl_permset_s_t set = make_permissions(static_cast<unsigned int>(state.range(0)));
    run_encode(state, set, typed_encode<acl_permset_s_t>());
    state.counters["ns_per_element"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    kelmAsnFreeObj(set);
}
void BM_ElementsDecode(benchmark::State& state) {
    acl_permset_s_t set = make_permissions(static_cast<unsigned int>(state.range(0)));
    run_decode(state, set, typed_decode<acl_permset_s_t>());
    state.counters["ns_per_element"] =
        benchmark::Counter(static_cast<double>(state.iterations() * state.range(0)),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    kelmAsnFreeObj(set);
}
BENCHMARK(BM_ElementsEncode)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_ElementsDecode)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);

// W1 from one and from two threads at once: items per second of real time, all threads together.
void BM_W1EncodeThreads(benchmark::State& state) {
    run_encode(state, w1(), typed_encode<attrlist_s_t>());
}
void BM_W1DecodeThreads(benchmark::State& state) {
    run_decode(state, w1(), typed_decode<attrlist_s_t>());
}
BENCHMARK(BM_W1EncodeThreads)->Threads(1)->Threads(2)->UseRealTime();
BENCHMARK(BM_W1DecodeThreads)->Threads(1)->Threads(2)->UseRealTime();

} // namespace
