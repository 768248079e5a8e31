// The direct codec against the object path (the message classes), which stays the reference, on
// every registered record type: random records, every truncation of every example, the BER
// variants of every example, the fuzz corpora, every allocation failed in turn, and the
// local-code-set mode. Each call is made both ways from the same starting record and compared:
// bytes, status, the stderr text, the record field by field and byte by byte (pointers aside),
// and a record left untouched stays byte for byte as it came.
#include <dirent.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_record_direct.h"
#include "ber_tree.h"
#include "direct_codec_properties.h"
#include "kelm/kelmasn.h"
#include "record_registry.h"
#include "record_walks.h"
#include "test_locale.h"
#include "type_code_direct_internal.h"

namespace {

using Bytes = std::vector<unsigned char>;
using kelm_record_kinds::at;
using kelm_record_kinds::load;
using kelm_test::RandomRecords;

constexpr unsigned char kPattern = 0xA5;
constexpr unsigned int kOutOfMemory = 0x10652065u;

std::vector<const kelm_record_type*> all_types() {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    return std::vector<const kelm_record_type*>(types, types + count);
}

Bytes read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> files_in(const std::string& folder) {
    std::vector<std::string> paths;
    DIR* dir = opendir(folder.c_str());
    if (dir == nullptr)
        return paths;
    while (const dirent* entry = readdir(dir))
        if (entry->d_name[0] != '.')
            paths.push_back(folder + "/" + entry->d_name);
    closedir(dir);
    return paths;
}

// --- what a record holds, from its table ----------------------------------------------------

// The blocks a record owns: what free_record releases.
unsigned long owned_blocks(const kelm_record_type& type, const void* record) {
    unsigned long n = 0;
    for (unsigned int i = 0; i < type.field_count; ++i) {
        const kelm_record_field& f = type.fields[i];
        switch (f.kind) {
        case kelm_field_kind::integer:
        case kelm_field_kind::unsigned_integer:
        case kelm_field_kind::unsigned16:
        case kelm_field_kind::unsigned8:
        case kelm_field_kind::fixed_bytes:
            break;
        case kelm_field_kind::text:
        case kelm_field_kind::octet_text:
        case kelm_field_kind::bytes:
            n += load<const void*>(record, f.offset) != nullptr;
            break;
        case kelm_field_kind::record:
            n += owned_blocks(*f.type, at(record, f.offset));
            break;
        case kelm_field_kind::optional_record: {
            const void* nested = load<const void*>(record, f.offset);
            if (nested != nullptr)
                n += 1 + owned_blocks(*f.type, nested);
            break;
        }
        case kelm_field_kind::slots:
            for (unsigned int k = 0; k < f.size; ++k) {
                const void* nested = load<const void*>(at(record, f.offset), k * sizeof(void*));
                if (nested != nullptr)
                    n += 1 + owned_blocks(*f.type, nested);
            }
            break;
        default: {
            const unsigned char* array = load<const unsigned char*>(record, f.offset);
            if (array == nullptr)
                break;
            ++n;
            const unsigned int count = f.kind == kelm_field_kind::record_list16
                                           ? load<uint16_t>(record, f.aux)
                                           : load<uint32_t>(record, f.aux);
            for (unsigned int k = 0; k < count; ++k) {
                if (f.kind == kelm_field_kind::record_list ||
                    f.kind == kelm_field_kind::record_list16) {
                    n += owned_blocks(*f.type, array + k * f.type->record_size);
                } else if (f.kind == kelm_field_kind::record_pointer_list) {
                    const void* nested = load<const void*>(array, k * sizeof(void*));
                    if (nested != nullptr)
                        n += 1 + owned_blocks(*f.type, nested);
                } else if (f.kind == kelm_field_kind::text_list) {
                    n += load<const void*>(array, k * sizeof(void*)) != nullptr;
                }
            }
            break;
        }
        }
    }
    return n;
}

// --- one call both ways -----------------------------------------------------------------------

struct Encoded {
    unsigned int status;
    std::string err;
    Bytes bytes;
    bool direct;                   // the direct codec did the call
    unsigned long allocations = 0; // made by the call itself
};

// Encodes through the direct codec (falling back as the entry points do) or the object path.
Encoded encode(const kelm_record_type& type, const void* record, security_t mode, bool direct,
               unsigned long fail_at = 0) {
    Encoded result{0, "", {}, false};
    kelm_asn_buffer_t out{0, nullptr};
    ::testing::internal::CaptureStderr();
    {
        kelm_test::ScopedAllocationFailure failure(fail_at);
        kelm_test::reset_allocation_count();
        if (direct)
            result.direct = kelm_direct_encode(type, record, out, 2, mode, result.status);
        if (!result.direct)
            result.status = kelm_asn_record::encode(type, record, out, 2, mode);
        result.allocations = kelm_test::allocation_count();
    }
    result.err = ::testing::internal::GetCapturedStderr();
    if (out.data != nullptr)
        result.bytes.assign(out.data, out.data + out.length);
    std::free(out.data);
    return result;
}

// A record block filled with the pattern, decoded into.
struct Decoded {
    const kelm_record_type& type;
    std::unique_ptr<unsigned char[]> record;
    unsigned int status = 0;
    std::string err;
    bool direct = false;
    bool untouched = false;
    unsigned long allocations = 0; // made by the call itself

    explicit Decoded(const kelm_record_type& t)
        : type(t), record(new unsigned char[t.record_size]) {
        std::memset(record.get(), kPattern, t.record_size);
    }
    ~Decoded() {
        // A record left as it came holds the pattern, not pointers: nothing to release.
        if (!untouched)
            kelm_asn_record::free_record(type, record.get());
    }
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;
};

void decode(Decoded& d, const Bytes& bytes, security_t mode, bool direct,
            unsigned long fail_at = 0) {
    // An exact-size copy, so that the sanitizers catch any read past the input.
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size() + 1]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    const kelm_asn_buffer_t in{bytes.size(), bytes.empty() ? nullptr : exact.get()};
    ::testing::internal::CaptureStderr();
    {
        kelm_test::ScopedAllocationFailure failure(fail_at);
        kelm_test::reset_allocation_count();
        if (direct)
            d.direct = kelm_direct_decode(d.type, d.record.get(), in, 2, mode, d.status);
        if (!d.direct)
            d.status = kelm_asn_record::decode(d.type, d.record.get(), in, 2, mode);
        d.allocations = kelm_test::allocation_count();
    }
    d.err = ::testing::internal::GetCapturedStderr();
    d.untouched = true;
    for (size_t i = 0; i < d.type.record_size; ++i)
        if (d.record[i] != kPattern)
            d.untouched = false;
}

// The same status, stderr text and record, field by field and byte by byte, pointers aside.
void expect_same_decoding(const Decoded& reference, const Decoded& direct) {
    EXPECT_EQ(direct.status, reference.status);
    EXPECT_EQ(direct.err, reference.err);
    EXPECT_EQ(direct.untouched, reference.untouched);
    if (reference.untouched || direct.untouched)
        return;
    EXPECT_EQ(kelmasn_fuzz::decoded_records_differ(reference.type, reference.record.get(),
                                                   direct.record.get()),
              "");
}

// Decodes `bytes` both ways and compares; returns whether the direct codec did the call.
bool decodes_alike(const kelm_record_type& type, const Bytes& bytes,
                   security_t mode = KELM_SECURITY_PLAIN) {
    Decoded reference(type), direct(type);
    decode(reference, bytes, mode, false);
    decode(direct, bytes, mode, true);
    expect_same_decoding(reference, direct);
    return direct.direct;
}

// Encodes `record` both ways and compares; returns the bytes of the reference.
Bytes encodes_alike(const kelm_record_type& type, const void* record,
                    security_t mode = KELM_SECURITY_PLAIN, bool must_be_direct = true) {
    const Encoded reference = encode(type, record, mode, false);
    const Encoded direct = encode(type, record, mode, true);
    EXPECT_EQ(direct.status, reference.status);
    EXPECT_EQ(direct.err, reference.err);
    EXPECT_EQ(direct.bytes, reference.bytes);
    if (must_be_direct) {
        EXPECT_TRUE(direct.direct) << "the direct codec gave up a record the object path encodes";
    }
    return reference.bytes;
}

// A zeroed record of a type, released with free_record.
struct Record {
    explicit Record(const kelm_record_type& t) : type(t), bytes(std::calloc(1, t.record_size)) {}
    ~Record() {
        kelm_asn_record::free_record(type, bytes);
        std::free(bytes);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    const kelm_record_type& type;
    void* bytes;
};

class DirectCodec : public ::testing::TestWithParam<const kelm_record_type*> {};

std::string type_label(const ::testing::TestParamInfo<const kelm_record_type*>& info) {
    return info.param->record_name;
}

} // namespace

TEST_P(DirectCodec, RandomRecordsEncodeAndDecodeAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(2024);
    for (int round = 0; round < 16; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        Record original(type);
        generator.fill(type, original.bytes, round % 3);
        const Bytes wire = encodes_alike(type, original.bytes);
        ASSERT_FALSE(wire.empty());
        EXPECT_TRUE(decodes_alike(type, wire))
            << "the direct codec gave up a buffer that it wrote itself";
    }
}

TEST_P(DirectCodec, TheEmptyRecordEncodesAndDecodesAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    Record empty(type);
    const Bytes wire = encodes_alike(type, empty.bytes);
    EXPECT_TRUE(decodes_alike(type, wire));
}

TEST_P(DirectCodec, EveryTruncationOfTheExampleDecodesAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    const Bytes example =
        read_file(std::string(KELMASN_EXAMPLES) + "/der/" + type.record_name + ".der");
    ASSERT_GT(example.size(), 4u) << "examples/der/" << type.record_name << ".der";
    EXPECT_TRUE(decodes_alike(type, example));
    for (size_t n = 0; n < example.size(); ++n) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " of " << example.size());
        decodes_alike(type, Bytes(example.begin(), example.begin() + n));
    }
}

TEST_P(DirectCodec, EveryTruncationOfARandomRecordDecodesAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(77);
    Record original(type);
    generator.fill(type, original.bytes, 1);
    const Bytes wire = encodes_alike(type, original.bytes);
    const size_t step = wire.size() > 3000 ? wire.size() / 1000 : 1;
    for (size_t n = 0; n < wire.size(); n += step) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " of " << wire.size());
        decodes_alike(type, Bytes(wire.begin(), wire.begin() + n));
    }
}

// Indefinite lengths, lengths in the long form, strings in constructed pieces, surplus octets
// inside and after the record, another header version and a longer header.
TEST_P(DirectCodec, BerVariantsAndAlteredHeadersDecodeAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    const Bytes example =
        read_file(std::string(KELMASN_EXAMPLES) + "/der/" + type.record_name + ".der");
    ASSERT_GT(example.size(), 4u);
    kelmasn_tool::BerNode tree;
    std::string error;
    ASSERT_TRUE(kelmasn_tool::parse_ber(example, 4, 64, tree, error)) << error;
    const kelmasn_tool::BerForm forms[] = {
        {true, false, 0}, {false, true, 0}, {false, false, 1}, {false, false, 3}, {true, true, 2}};
    for (const kelmasn_tool::BerForm& form : forms) {
        SCOPED_TRACE(::testing::Message()
                     << "indefinite " << form.indefinite << ", long " << form.long_lengths
                     << ", pieces " << form.constructed_strings);
        Bytes variant(example.begin(), example.begin() + 4);
        kelmasn_tool::write_ber(example, tree, form, variant);
        decodes_alike(type, variant);
    }
    Bytes trailing = example;
    trailing.push_back(0x05);
    trailing.push_back(0x00);
    EXPECT_TRUE(decodes_alike(type, trailing)) << "octets after the record are not read";
    Bytes surplus = example;
    surplus.insert(surplus.begin() + static_cast<long>(tree.end), {0x05, 0x00});
    if (surplus[5] < 0x7E) {
        surplus[5] = static_cast<unsigned char>(surplus[5] + 2); // the NULL inside the record
        decodes_alike(type, surplus);
    }
    Bytes version = example;
    version[1] = 3;
    decodes_alike(type, version);
    Bytes longer = example;
    longer[0] = 6;
    longer.insert(longer.begin() + 4, {0xEE, 0xEE});
    EXPECT_TRUE(decodes_alike(type, longer)) << "a longer header is skipped";
    for (size_t at_byte = 4; at_byte < example.size() && at_byte < 40; ++at_byte) {
        Bytes flipped = example;
        flipped[at_byte] ^= 0x20; // constructed bit of identifiers, or a changed value
        decodes_alike(type, flipped);
    }
}

TEST_P(DirectCodec, TheFuzzCorporaDecodeAsTheObjectPathDoes) {
    const kelm_record_type& type = *GetParam();
    std::vector<std::string> inputs = files_in(std::string(KELMASN_FUZZ_DIR) + "/regressions");
    for (const std::string& folder : files_in(std::string(KELMASN_FUZZ_DIR) + "/corpus")) {
        const std::vector<std::string> more = files_in(folder);
        inputs.insert(inputs.end(), more.begin(), more.end());
    }
    ASSERT_GT(inputs.size(), 10u);
    for (const std::string& path : inputs) {
        SCOPED_TRACE(path);
        const Bytes input = read_file(path);
        decodes_alike(type, input);
        if (!input.empty())
            decodes_alike(type, Bytes(input.begin() + 1, input.end()));
    }
}

// The direct decoder allocates exactly what the record owns, in the order in which get_record
// allocates it: its kth allocation failing gives what the object path gives when the kth of its
// record's allocations fails (they come last, after the object tree's).
TEST_P(DirectCodec, EveryFailedAllocationOfADecodeEndsAsInTheObjectPath) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(7);
    Record original(type);
    generator.fill(type, original.bytes, 2);
    const Bytes wire = encodes_alike(type, original.bytes);

    Decoded reference(type), direct(type);
    decode(reference, wire, KELM_SECURITY_PLAIN, false);
    decode(direct, wire, KELM_SECURITY_PLAIN, true);
    const unsigned long object_allocations = reference.allocations;
    const unsigned long direct_allocations = direct.allocations;
    ASSERT_EQ(reference.status, 0u);
    ASSERT_TRUE(direct.direct);
    expect_same_decoding(reference, direct);
    EXPECT_EQ(direct_allocations, owned_blocks(type, direct.record.get()))
        << "one allocation per block the record owns, nothing else";
    ASSERT_LE(direct_allocations, object_allocations);

    for (unsigned long k = 1; k <= direct_allocations; ++k) {
        SCOPED_TRACE(::testing::Message() << "allocation " << k << " of " << direct_allocations);
        Decoded failed_reference(type), failed_direct(type);
        decode(failed_reference, wire, KELM_SECURITY_PLAIN, false,
               object_allocations - direct_allocations + k);
        decode(failed_direct, wire, KELM_SECURITY_PLAIN, true, k);
        EXPECT_TRUE(failed_direct.direct) << "exhausted memory is never handed to the object path";
        expect_same_decoding(failed_reference, failed_direct);
        const bool silent = failed_direct.status == 0 && failed_direct.err.empty() &&
                            (type.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS);
        if (!silent) {
            EXPECT_EQ(failed_direct.status, kOutOfMemory);
        }
    }
}

// The direct encoder's one allocation is the output buffer: when it fails, the call reports the
// output buffer's exhausted memory, one of the lines the object path gives for its own failures.
TEST_P(DirectCodec, TheOneAllocationOfAnEncodeFailsAsTheObjectPathsBuffer) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(8);
    Record original(type);
    generator.fill(type, original.bytes, 1);
    const Encoded whole = encode(type, original.bytes, KELM_SECURITY_PLAIN, true);
    ASSERT_TRUE(whole.direct);
    EXPECT_EQ(whole.allocations, 1u) << "the output, nothing else";
    const Encoded failed = encode(type, original.bytes, KELM_SECURITY_PLAIN, true, 1);
    EXPECT_TRUE(failed.direct);
    EXPECT_EQ(failed.status, kOutOfMemory);
    EXPECT_TRUE(failed.bytes.empty());
    std::vector<std::string> reference_lines;
    for (unsigned long n = 1;; ++n) {
        const Encoded run = encode(type, original.bytes, KELM_SECURITY_PLAIN, false, n);
        if (run.status == 0)
            break;
        reference_lines.push_back(run.err);
    }
    EXPECT_NE(std::find(reference_lines.begin(), reference_lines.end(), failed.err),
              reference_lines.end())
        << failed.err;
}

TEST_P(DirectCodec, TheLocalCodeSetModeEncodesAndDecodesAsTheObjectPathDoes) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    const kelm_record_type& type = *GetParam();
    for (const std::string& locale :
         {std::string(kelm_test::kPosixLocale), std::string(kelm_test::kUtf8Locale),
          kelm_test::latin1_locale_name()}) {
        SCOPED_TRACE(locale);
        kelm_test::ScopedThreadLocale scope(locale);
        ASSERT_TRUE(scope.active()) << scope.problem();
        RandomRecords generator(31);
        for (int round = 0; round < 4; ++round) {
            SCOPED_TRACE(::testing::Message() << "round " << round);
            Record original(type);
            generator.fill(type, original.bytes, 1);
            const Bytes wire = encodes_alike(type, original.bytes, KELM_SECURITY_LOCAL_CODESET);
            EXPECT_TRUE(decodes_alike(type, wire, KELM_SECURITY_LOCAL_CODESET));
        }
    }
}

// As EveryFailedAllocationOfADecodeEndsAsInTheObjectPath, in the local-code-set mode, where each
// text is converted to the thread's code set before its copy is allocated: a conversion that
// runs out of memory, or a copy that cannot be allocated, ends both paths alike, with the
// out-of-memory status (or, for a type that ignores its elements' statuses, silently), and
// leaves a record that releases cleanly.
TEST_P(DirectCodec, EveryFailedAllocationOfALocalCodeSetDecodeEndsAsInTheObjectPath) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(12);
    Record original(type);
    generator.fill(type, original.bytes, 2);
    const Bytes wire = encodes_alike(type, original.bytes, KELM_SECURITY_LOCAL_CODESET);
    for (const std::string& locale :
         {std::string(kelm_test::kUtf8Locale), kelm_test::latin1_locale_name()}) {
        SCOPED_TRACE(locale);
        kelm_test::ScopedThreadLocale scope(locale);
        ASSERT_TRUE(scope.active()) << scope.problem();
        Decoded reference(type), direct(type);
        decode(reference, wire, KELM_SECURITY_LOCAL_CODESET, false);
        decode(direct, wire, KELM_SECURITY_LOCAL_CODESET, true);
        const unsigned long object_allocations = reference.allocations;
        const unsigned long direct_allocations = direct.allocations;
        ASSERT_EQ(reference.status, 0u);
        ASSERT_TRUE(direct.direct);
        expect_same_decoding(reference, direct);
        EXPECT_GE(direct_allocations, owned_blocks(type, direct.record.get()));
        ASSERT_LE(direct_allocations, object_allocations);

        for (unsigned long k = 1; k <= direct_allocations; ++k) {
            SCOPED_TRACE(::testing::Message()
                         << "allocation " << k << " of " << direct_allocations);
            Decoded failed_reference(type), failed_direct(type);
            decode(failed_reference, wire, KELM_SECURITY_LOCAL_CODESET, false,
                   object_allocations - direct_allocations + k);
            decode(failed_direct, wire, KELM_SECURITY_LOCAL_CODESET, true, k);
            EXPECT_TRUE(failed_direct.direct)
                << "exhausted memory is never handed to the object path";
            expect_same_decoding(failed_reference, failed_direct);
            const bool silent = failed_direct.status == 0 && failed_direct.err.empty() &&
                                (type.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS);
            if (!silent) {
                EXPECT_EQ(failed_direct.status, kOutOfMemory);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, DirectCodec, ::testing::ValuesIn(all_types()), type_label);

// --- nesting -----------------------------------------------------------------------------------

namespace {

// A chain of name/value entries `depth` deep, each holding the next as its one nested entry.
namevalue_s_t* chain(unsigned int depth) {
    auto* entry = static_cast<namevalue_s_t*>(std::calloc(1, sizeof(namevalue_s_t)));
    entry->name = static_cast<char*>(std::calloc(2, 1));
    entry->name[0] = 'n';
    if (depth > 1) {
        entry->nested_count = 1;
        entry->nested = static_cast<namevalue_s_t**>(std::calloc(1, sizeof(namevalue_s_t*)));
        entry->nested[0] = chain(depth - 1);
    }
    return entry;
}

} // namespace

// The root is one constructed level and each deeper entry two (its list and itself): 32 entries
// take 63 levels and encode, 33 take 65 and are refused, both ways alike.
TEST(DirectCodecNesting, RecordsAtAndPastTheNestingLimitEncodeAndDecodeAsTheObjectPathDoes) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    const kelm_record_type* type = nullptr;
    for (unsigned int i = 0; i < count; ++i)
        if (std::strcmp(types[i]->record_name, "namevalue_s_t") == 0)
            type = types[i];
    ASSERT_NE(type, nullptr);
    for (unsigned int depth : {31u, 32u, 33u, 40u}) {
        SCOPED_TRACE(::testing::Message() << "depth " << depth);
        namevalue_s_t* root = chain(depth);
        const Encoded reference = encode(*type, root, KELM_SECURITY_PLAIN, false);
        const Encoded direct = encode(*type, root, KELM_SECURITY_PLAIN, true);
        EXPECT_EQ(direct.status, reference.status);
        EXPECT_EQ(direct.bytes, reference.bytes);
        EXPECT_EQ(direct.err, reference.err);
        EXPECT_EQ(reference.status == 0, depth <= 32);
        if (reference.status == 0) {
            EXPECT_TRUE(decodes_alike(*type, reference.bytes));
        }
        kelmAsnFreeObj(*root);
        std::free(root);
    }
}

// --- the differential fuzz target's property --------------------------------------------------

TEST(DirectCodecFuzzProperty, HoldsOnTheSeedCorpusAndTheRegressionInputs) {
    std::vector<std::string> inputs =
        files_in(std::string(KELMASN_FUZZ_DIR) + "/corpus/fuzz_direct_codec");
    ASSERT_GT(inputs.size(), 100u);
    const std::vector<std::string> regressions =
        files_in(std::string(KELMASN_FUZZ_DIR) + "/regressions");
    inputs.insert(inputs.end(), regressions.begin(), regressions.end());
    for (const std::string& path : inputs) {
        const Bytes input = read_file(path);
        EXPECT_EQ(kelmasn_fuzz::check_direct_codec(input.data(), input.size()), "") << path;
    }
}

// --- the records reached by type code ---------------------------------------------------------

namespace {

class TypeCodeDirectCodec : public ::testing::TestWithParam<kelm_type_code_type> {};

std::vector<kelm_type_code_type> all_type_code_types() {
    unsigned int count = 0;
    const kelm_type_code_type* types = kelm_type_code_types(count);
    return std::vector<kelm_type_code_type>(types, types + count);
}

std::string code_label(const ::testing::TestParamInfo<kelm_type_code_type>& info) {
    return std::string("code_") + std::to_string(info.param.code);
}

// Runs `call` with the object path forced (the reference) or not (the direct codec first).
template <class Call> void on_path(bool direct, Call call) {
    const bool before = kelm_object_path_forced();
    kelm_force_object_path(!direct);
    call();
    kelm_force_object_path(before);
}

Encoded encode_by_code(const kelm_type_code_type& t, void* record, bool direct,
                       unsigned long fail_at = 0) {
    Encoded result{0, "", {}, direct};
    kelm_asn_buffer_t out{0, nullptr};
    ::testing::internal::CaptureStderr();
    on_path(direct, [&] {
        kelm_test::ScopedAllocationFailure failure(fail_at);
        result.status = kelmasn_encode_obj(2, record, t.code, out);
    });
    result.err = ::testing::internal::GetCapturedStderr();
    if (out.data != nullptr)
        result.bytes.assign(out.data, out.data + out.length);
    std::free(out.data);
    return result;
}

void decode_by_code(const kelm_type_code_type& t, Decoded& d, const Bytes& bytes, bool direct,
                    unsigned long fail_at = 0) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size() + 1]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_asn_buffer_t in{bytes.size(), bytes.empty() ? nullptr : exact.get()};
    ::testing::internal::CaptureStderr();
    on_path(direct, [&] {
        kelm_test::ScopedAllocationFailure failure(fail_at);
        kelm_test::reset_allocation_count();
        d.status = kelmasn_decode_obj(2, in, t.code, d.record.get());
        d.allocations = kelm_test::allocation_count();
    });
    d.err = ::testing::internal::GetCapturedStderr();
    d.untouched = true;
    for (size_t i = 0; i < d.type.record_size; ++i)
        if (d.record[i] != kPattern)
            d.untouched = false;
}

bool decodes_alike_by_code(const kelm_type_code_type& t, const Bytes& bytes) {
    Decoded reference(*t.type), direct(*t.type);
    decode_by_code(t, reference, bytes, false);
    decode_by_code(t, direct, bytes, true);
    expect_same_decoding(reference, direct);
    // Whether the direct codec takes the buffer, asked of it alone on a record of its own.
    Decoded alone(*t.type);
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size() + 1]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_asn_buffer_t in{bytes.size(), bytes.empty() ? nullptr : exact.get()};
    unsigned int status = 0;
    ::testing::internal::CaptureStderr();
    const bool taken = kelm_type_code_direct(1, 2, alone.record.get(), t.code, in, status);
    ::testing::internal::GetCapturedStderr();
    alone.untouched = !taken || status == KELM_ASN_BAD_VERSION;
    if (!taken) {
        for (size_t i = 0; i < t.type->record_size; ++i)
            EXPECT_EQ(alone.record[i], kPattern)
                << "a buffer given up leaves the record as it came";
    }
    return taken;
}

} // namespace

TEST_P(TypeCodeDirectCodec, RandomRecordsEncodeAndDecodeAsTheObjectPathDoes) {
    const kelm_type_code_type& t = GetParam();
    RandomRecords generator(555);
    for (int round = 0; round < 16; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        Record original(*t.type);
        generator.fill(*t.type, original.bytes, round % 2);
        const Encoded reference = encode_by_code(t, original.bytes, false);
        const Encoded direct = encode_by_code(t, original.bytes, true);
        EXPECT_EQ(direct.status, reference.status);
        EXPECT_EQ(direct.err, reference.err);
        EXPECT_EQ(direct.bytes, reference.bytes);
        kelm_asn_buffer_t scratch{0, nullptr};
        unsigned int status = 0;
        EXPECT_TRUE(kelm_type_code_direct(0, 2, original.bytes, t.code, scratch, status));
        std::free(scratch.data);
        EXPECT_TRUE(decodes_alike_by_code(t, reference.bytes));
        for (size_t n = 0; n < reference.bytes.size(); n += 1 + reference.bytes.size() / 300) {
            SCOPED_TRACE(::testing::Message() << "cut to " << n);
            decodes_alike_by_code(t, Bytes(reference.bytes.begin(), reference.bytes.begin() + n));
        }
    }
}

TEST_P(TypeCodeDirectCodec, TheFuzzCorporaDecodeAsTheObjectPathDoes) {
    const kelm_type_code_type& t = GetParam();
    std::vector<std::string> inputs = files_in(std::string(KELMASN_FUZZ_DIR) + "/regressions");
    for (const std::string& folder : files_in(std::string(KELMASN_FUZZ_DIR) + "/corpus")) {
        const std::vector<std::string> more = files_in(folder);
        inputs.insert(inputs.end(), more.begin(), more.end());
    }
    for (const std::string& path : inputs) {
        SCOPED_TRACE(path);
        const Bytes input = read_file(path);
        decodes_alike_by_code(t, input);
        if (!input.empty())
            decodes_alike_by_code(t, Bytes(input.begin() + 1, input.end()));
    }
}

TEST_P(TypeCodeDirectCodec, EveryFailedAllocationOfADecodeEndsAsInTheObjectPath) {
    const kelm_type_code_type& t = GetParam();
    RandomRecords generator(9);
    Record original(*t.type);
    generator.fill(*t.type, original.bytes, 1);
    const Bytes wire = encode_by_code(t, original.bytes, false).bytes;
    Decoded reference(*t.type), direct(*t.type);
    decode_by_code(t, reference, wire, false);
    decode_by_code(t, direct, wire, true);
    const unsigned long object_allocations = reference.allocations;
    const unsigned long direct_allocations = direct.allocations;
    ASSERT_EQ(reference.status, 0u);
    expect_same_decoding(reference, direct);
    EXPECT_EQ(direct_allocations, owned_blocks(*t.type, direct.record.get()));
    for (unsigned long k = 1; k <= direct_allocations; ++k) {
        SCOPED_TRACE(::testing::Message() << "allocation " << k << " of " << direct_allocations);
        Decoded failed_reference(*t.type), failed_direct(*t.type);
        decode_by_code(t, failed_reference, wire, false,
                       object_allocations - direct_allocations + k);
        decode_by_code(t, failed_direct, wire, true, k);
        expect_same_decoding(failed_reference, failed_direct);
        EXPECT_EQ(failed_direct.status, kOutOfMemory);
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypeCodes, TypeCodeDirectCodec,
                         ::testing::ValuesIn(all_type_code_types()), code_label);

// --- buffers that only the object path reads, and exhausted memory in the local-code-set mode --

namespace {

const kelm_type_code_type& type_code(unsigned int code) {
    unsigned int count = 0;
    const kelm_type_code_type* types = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        if (types[i].code == code)
            return types[i];
    ADD_FAILURE() << "no type code " << code;
    return types[0];
}

// A definite-length element of fewer than 128 contents octets.
Bytes element(unsigned char identifier, const Bytes& contents) {
    Bytes out = {identifier, static_cast<unsigned char>(contents.size())};
    out.insert(out.end(), contents.begin(), contents.end());
    return out;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

Bytes with_version_2_header(const Bytes& body) {
    return joined({{0x04, 0x02, 0xAC, 0xDC}, body});
}

const Bytes kVersionOne = {0x02, 0x01, 0x01};

// A list of object updates holding the one update whose elements after its version are `fields`.
Bytes update_list_of(const Bytes& fields) {
    const Bytes update = element(0x30, joined({kVersionOne, fields}));
    return with_version_2_header(element(0x30, joined({kVersionOne, element(0x30, update)})));
}

} // namespace

// An update is SEQUENCE { version INTEGER, INTEGER, OCTET STRING, INTEGER }. Each update below
// breaks the DER shape the direct codec reads at one of its elements: a long-form length or a
// string in constructed pieces is BER that the object path still reads to the same values, a
// wrong tag, a missing element or a surplus one is refused with the status of that rule. Either
// way the direct codec hands the buffer over with the record as it came.
TEST(TypeCodeDirectCodecInputs, UpdatesOutsideTheDirectShapeDecodeAsTheObjectPathReadsThem) {
    const kelm_type_code_type& t = type_code(KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    const Bytes number1 = {0x02, 0x01, 0x07};
    const Bytes text = {0x04, 0x02, 'a', 0x00};
    const Bytes number2 = {0x02, 0x01, 0x09};
    struct Row {
        const char* what;
        Bytes fields;
        unsigned int status;
    } rows[] = {
        {"first number with a long-form length", joined({{0x02, 0x81, 0x01, 0x07}, text, number2}),
         0},
        {"text in constructed pieces",
         joined({number1, {0x24, 0x06, 0x04, 0x01, 'a', 0x04, 0x01, 0x00}, number2}), 0},
        {"second number with a long-form length", joined({number1, text, {0x02, 0x81, 0x01, 0x09}}),
         0},
        {"an element after the second number", joined({number1, text, number2, {0x05, 0x00}}),
         0x106521A5u},
        {"first number not an INTEGER", joined({{0x04, 0x01, 0x07}, text, number2}), 0x106521A4u},
        {"text not an OCTET STRING", joined({number1, {0x02, 0x01, 0x05}, number2}), 0x106521A4u},
        {"second number missing", joined({number1, text}), 0x10652198u},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const Bytes wire = update_list_of(row.fields);
        EXPECT_FALSE(decodes_alike_by_code(t, wire)) << "the direct codec reads only DER it writes";
        Decoded reference(*t.type);
        decode_by_code(t, reference, wire, false);
        EXPECT_EQ(reference.status, row.status);
        EXPECT_EQ(reference.err, "");
        if (row.status != 0) {
            EXPECT_TRUE(reference.untouched) << "a buffer refused whole fills nothing";
            continue;
        }
        const auto& list = *reinterpret_cast<const ekobj_update_list_s_t*>(reference.record.get());
        ASSERT_EQ(list.count, 1u);
        ASSERT_NE(list.updates, nullptr);
        EXPECT_EQ(list.updates[0].number1, 7);
        EXPECT_STREQ(list.updates[0].text, "a");
        EXPECT_EQ(list.updates[0].number2, 9);
    }
}

// Indefinite lengths (X.690 8.1.3.6) are BER that the direct codec leaves to the object path,
// which reads the list, its updates and their end-of-contents octets.
TEST(TypeCodeDirectCodecInputs, AListOfUpdatesOfIndefiniteLengthIsReadByTheObjectPath) {
    const kelm_type_code_type& t = type_code(KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    const Bytes fields = {0x02, 0x01, 0x07, 0x04, 0x02, 'a', 0x00, 0x02, 0x01, 0x09};
    const Bytes definite_update = element(0x30, joined({kVersionOne, fields}));
    const Bytes indefinite_update = joined({{0x30, 0x80}, kVersionOne, fields, {0x00, 0x00}});
    const Bytes end = {0x00, 0x00};
    struct Row {
        const char* what;
        Bytes body;
    } rows[] = {
        {"the list of updates",
         element(0x30, joined({kVersionOne, {0x30, 0x80}, definite_update, definite_update, end}))},
        {"each update",
         element(0x30, joined({kVersionOne,
                               element(0x30, joined({indefinite_update, indefinite_update}))}))},
        {"every level", joined({{0x30, 0x80},
                                kVersionOne,
                                {0x30, 0x80},
                                indefinite_update,
                                indefinite_update,
                                end,
                                end})},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const Bytes wire = with_version_2_header(row.body);
        EXPECT_FALSE(decodes_alike_by_code(t, wire));
        Decoded reference(*t.type);
        decode_by_code(t, reference, wire, false);
        ASSERT_EQ(reference.status, 0u);
        const auto& list = *reinterpret_cast<const ekobj_update_list_s_t*>(reference.record.get());
        ASSERT_EQ(list.count, 2u);
        ASSERT_NE(list.updates, nullptr);
        for (unsigned int i = 0; i < 2; ++i) {
            EXPECT_EQ(list.updates[i].number1, 7);
            EXPECT_STREQ(list.updates[i].text, "a");
            EXPECT_EQ(list.updates[i].number2, 9);
        }
    }
}

// A body that is present but empty on the wire is no body: a length of 0 and no bytes, on both
// paths.
TEST(TypeCodeDirectCodecInputs, AnEmptyBodyDecodesToNoBodyOnBothPaths) {
    const kelm_type_code_type& t = type_code(KELMASN_TYPE_CERT_REQUEST);
    const Bytes text = {0x04, 0x02, 'x', 0x00};
    const Bytes wire =
        with_version_2_header(element(0x30, joined({kVersionOne, text, text, {0x04, 0x00}})));
    decodes_alike_by_code(t, wire);
    for (bool direct : {false, true}) {
        SCOPED_TRACE(direct ? "direct codec" : "object path");
        Decoded d(*t.type);
        decode_by_code(t, d, wire, direct);
        ASSERT_EQ(d.status, 0u);
        const auto& request = *reinterpret_cast<const cert_request_in*>(d.record.get());
        EXPECT_STREQ(request.string1, "x");
        EXPECT_STREQ(request.string2, "x");
        EXPECT_EQ(request.body_length, 0u);
        EXPECT_EQ(request.body, nullptr);
    }
}

// A buffer whose length passes the header's four octets but whose data pointer is null has no
// header to read: the version status, nothing read and the record untouched, on every entry point
// and on both paths.
TEST(TypeCodeDirectCodecInputs, ANullBufferWithALengthHasNoHeaderOnEitherPath) {
    for (const kelm_type_code_type& t : all_type_code_types()) {
        SCOPED_TRACE(::testing::Message() << "type code 0x" << std::hex << t.code);
        for (bool direct : {false, true}) {
            SCOPED_TRACE(direct ? "direct codec" : "object path");
            Decoded d(*t.type);
            kelm_asn_buffer_t in{16, nullptr};
            ::testing::internal::CaptureStderr();
            on_path(direct, [&] { d.status = kelmasn_decode_obj(2, in, t.code, d.record.get()); });
            EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
            EXPECT_EQ(d.status, 0x10652196u);
            bool untouched = true;
            for (size_t i = 0; i < t.type->record_size; ++i)
                untouched = untouched && d.record[i] == kPattern;
            EXPECT_TRUE(untouched);
            d.untouched = true; // nothing to release
        }
    }
}

TEST(DirectCodecInputs, ANullBufferWithALengthHasNoHeaderOnEitherPath) {
    for (const kelm_record_type* type : all_types()) {
        SCOPED_TRACE(type->record_name);
        for (bool direct : {false, true}) {
            SCOPED_TRACE(direct ? "direct codec" : "object path");
            Decoded d(*type);
            const kelm_asn_buffer_t in{16, nullptr};
            ::testing::internal::CaptureStderr();
            if (direct)
                d.direct =
                    kelm_direct_decode(*type, d.record.get(), in, 2, KELM_SECURITY_PLAIN, d.status);
            if (!d.direct)
                d.status =
                    kelm_asn_record::decode(*type, d.record.get(), in, 2, KELM_SECURITY_PLAIN);
            EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
            EXPECT_EQ(d.status, 0x10652196u);
            bool untouched = true;
            for (size_t i = 0; i < type->record_size; ++i)
                untouched = untouched && d.record[i] == kPattern;
            EXPECT_TRUE(untouched);
            d.untouched = true; // nothing to release
        }
    }
}
