// The same battery for every record type, driven by the type's field table: the empty record,
// random records (extreme integers, long and non-ASCII texts) round-tripped and compared field
// by field, every truncation of a valid buffer, every allocation failed in turn, and garbage.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_record_kinds.h"
#include "kelm/kelmasn.h"
#include "random_records.h"
#include "record_registry.h"
#include "record_walks.h"

namespace {

using Bytes = std::vector<unsigned char>;
using kelm_test::difference;
using kelm_test::RandomRecords;

// --- encode and decode -----------------------------------------------------------------------

// A record of a type, freed with the type's own free function.
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

unsigned int encode(const kelm_record_type& type, const void* record, Bytes& out) {
    kelm_asn_buffer_t buffer{0, nullptr};
    const unsigned int status =
        kelm_asn_record::encode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
    out.assign(buffer.data, buffer.data + buffer.length);
    std::free(buffer.data);
    return status;
}

unsigned int decode(const kelm_record_type& type, const Bytes& in, void* record) {
    // An exact-size copy, so that the sanitizers catch any read past the input.
    std::unique_ptr<unsigned char[]> exact(new unsigned char[in.size() + 1]);
    std::copy(in.begin(), in.end(), exact.get());
    kelm_asn_buffer_t buffer{in.size(), exact.get()};
    return kelm_asn_record::decode(type, record, buffer, 2, KELM_SECURITY_PLAIN);
}

std::vector<const kelm_record_type*> all_types() {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    return std::vector<const kelm_record_type*>(types, types + count);
}

class RecordBattery : public ::testing::TestWithParam<const kelm_record_type*> {};

std::string type_label(const ::testing::TestParamInfo<const kelm_record_type*>& info) {
    return info.param->record_name;
}

} // namespace

TEST_P(RecordBattery, TheEmptyRecordRoundTrips) {
    const kelm_record_type& type = *GetParam();
    Record empty(type);
    Bytes wire;
    ASSERT_EQ(encode(type, empty.bytes, wire), 0u);
    ASSERT_GT(wire.size(), 4u);
    Record back(type);
    ASSERT_EQ(decode(type, wire, back.bytes), 0u);
    EXPECT_EQ(difference(type, empty.bytes, back.bytes, type.record_name), "");
}

TEST_P(RecordBattery, RandomRecordsRoundTripFieldByField) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(1234);
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        Record original(type);
        generator.fill(type, original.bytes, 0);
        Bytes wire;
        ASSERT_EQ(encode(type, original.bytes, wire), 0u);
        Record back(type);
        ASSERT_EQ(decode(type, wire, back.bytes), 0u);
        EXPECT_EQ(difference(type, original.bytes, back.bytes, type.record_name), "");
        Bytes again;
        ASSERT_EQ(encode(type, back.bytes, again), 0u);
        EXPECT_EQ(again, wire) << "decoding then encoding gives the same bytes";
    }
}

TEST_P(RecordBattery, EveryTruncationGivesAStatusAndFreesCleanly) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(99);
    Record original(type);
    generator.fill(type, original.bytes, 1);
    Bytes wire;
    ASSERT_EQ(encode(type, original.bytes, wire), 0u);
    const size_t step = wire.size() > 4000 ? wire.size() / 1000 : 1;
    for (size_t n = 0; n < wire.size(); n += step) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " of " << wire.size());
        Record back(type);
        EXPECT_NE(decode(type, Bytes(wire.begin(), wire.begin() + n), back.bytes), 0u);
    }
}

TEST_P(RecordBattery, EveryAllocationOfAnEncodeAndADecodeFailsCleanly) {
    const kelm_record_type& type = *GetParam();
    RandomRecords generator(7);
    Record original(type);
    generator.fill(type, original.bytes, 2);
    Bytes wire;
    ASSERT_EQ(encode(type, original.bytes, wire), 0u);
    std::unique_ptr<unsigned char[]> exact(new unsigned char[wire.size()]);
    std::copy(wire.begin(), wire.end(), exact.get());
    const kelm_asn_buffer_t input{wire.size(), exact.get()};
    for (int direction = 0; direction < 2; ++direction) {
        for (unsigned long n = 1;; ++n) {
            SCOPED_TRACE(::testing::Message()
                         << (direction ? "decode" : "encode") << ", allocation " << n);
            Record back(type);
            kelm_asn_buffer_t out{0, nullptr};
            unsigned int status;
            bool failed;
            ::testing::internal::CaptureStderr();
            {
                kelm_test::ScopedAllocationFailure failure(n);
                status = direction ? kelm_asn_record::decode(type, back.bytes, input, 2,
                                                             KELM_SECURITY_PLAIN)
                                   : kelm_asn_record::encode(type, original.bytes, out, 2,
                                                             KELM_SECURITY_PLAIN);
                failed = kelm_test::failure_delivered();
            }
            const std::string err = ::testing::internal::GetCapturedStderr();
            std::free(out.data);
            if (!failed) {
                EXPECT_EQ(status, 0u);
                break;
            }
            // A type that ignores its elements' statuses decodes on past a text it cannot
            // allocate, silently.
            const bool ignored = direction == 1 && status == 0 && err.empty() &&
                                 (type.flags & KELM_RECORD_IGNORES_ELEMENT_STATUS);
            if (!ignored) {
                EXPECT_EQ(status, 0x10652065u) << err;
            }
            EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
        }
    }
}

TEST_P(RecordBattery, GarbageAfterAValidHeaderNeverCrashes) {
    const kelm_record_type& type = *GetParam();
    std::mt19937 rng(55);
    for (int round = 0; round < 200; ++round) {
        Bytes wire = {0x04, 0x02, 0xAC, 0xDC, 0x30};
        const unsigned int n = rng() % 60;
        wire.push_back(static_cast<unsigned char>(rng() % 2 ? n : 0x80));
        for (unsigned int i = 0; i < n; ++i)
            wire.push_back(static_cast<unsigned char>(rng() % 3 == 0 ? 0x30 : rng()));
        Record back(type);
        decode(type, wire, back.bytes); // any status; the record must free cleanly
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, RecordBattery, ::testing::ValuesIn(all_types()), type_label);

// --- the records reached by type code --------------------------------------------------------

namespace {

class TypeCodeBattery : public ::testing::TestWithParam<kelm_type_code_type> {};

std::vector<kelm_type_code_type> all_type_code_types() {
    unsigned int count = 0;
    const kelm_type_code_type* types = kelm_type_code_types(count);
    return std::vector<kelm_type_code_type>(types, types + count);
}

std::string code_label(const ::testing::TestParamInfo<kelm_type_code_type>& info) {
    return std::string("code_") + std::to_string(info.param.code);
}

// A record reached by type code, released with kelmasn_obj_free.
struct TypeCodeRecord {
    explicit TypeCodeRecord(const kelm_type_code_type& t)
        : code(t.code), bytes(std::calloc(1, t.type->record_size)) {}
    ~TypeCodeRecord() {
        kelmasn_obj_free(2, code, bytes);
        std::free(bytes);
    }
    TypeCodeRecord(const TypeCodeRecord&) = delete;
    TypeCodeRecord& operator=(const TypeCodeRecord&) = delete;
    unsigned int code;
    void* bytes;
};

} // namespace

TEST_P(TypeCodeBattery, RandomRecordsRoundTripFieldByFieldThroughTheTypeCode) {
    const kelm_type_code_type& entry = GetParam();
    const kelm_record_type& type = *entry.type;
    RandomRecords generator(4321);
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        TypeCodeRecord original(entry);
        generator.fill(type, original.bytes, 0);
        kelm_asn_buffer_t wire{0, nullptr};
        ASSERT_EQ(kelmasn_encode_obj(2, original.bytes, entry.code, wire), 0u);
        const Bytes bytes(wire.data, wire.data + wire.length);
        kelm_asn_buffer_free(wire);
        TypeCodeRecord back(entry);
        Bytes input = bytes;
        kelm_asn_buffer_t in{input.size(), input.data()};
        ASSERT_EQ(kelmasn_decode_obj(2, in, entry.code, back.bytes), 0u);
        EXPECT_EQ(difference(type, original.bytes, back.bytes, type.record_name), "");
    }
}

// The declared shape of the encoding: after the header, a SEQUENCE whose first element is the
// version INTEGER 1 (02 01 01), or for a bare element the element itself.
TEST_P(TypeCodeBattery, EncodingStartsAsItsDescriptionDeclares) {
    const kelm_type_code_type& entry = GetParam();
    TypeCodeRecord empty(entry);
    kelm_asn_buffer_t wire{0, nullptr};
    ASSERT_EQ(kelmasn_encode_obj(2, empty.bytes, entry.code, wire), 0u);
    const Bytes bytes(wire.data, wire.data + wire.length);
    kelm_asn_buffer_free(wire);
    ASSERT_GE(bytes.size(), 7u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{0x04, 0x02, 0xAC, 0xDC}));
    if (entry.type->flags & KELM_RECORD_VERSION_ELEMENT) {
        ASSERT_GE(bytes.size(), 9u);
        EXPECT_EQ(bytes[4], 0x30);
        EXPECT_EQ(Bytes(bytes.begin() + 6, bytes.begin() + 9), (Bytes{0x02, 0x01, 0x01}));
    } else {
        EXPECT_TRUE(entry.type->flags & KELM_RECORD_BARE_ELEMENT);
        EXPECT_EQ(bytes[4], 0x02);
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypeCodes, TypeCodeBattery, ::testing::ValuesIn(all_type_code_types()),
                         code_label);
