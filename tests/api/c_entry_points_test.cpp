// The C entry points of kelmasn_c.h against the C++ entry points they stand for, which stay the
// reference: for every record type and every input, the same status, the same bytes, the same
// stderr text and the same number of allocations, also when an allocation fails.
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kelm/kelmasn_c.h"
#include "record_registry.h"
#include "record_test_support.h"
#include "record_types.h"

namespace {

using kelm_test::Bytes;

Bytes example_buffer(const std::string& record) {
    std::ifstream in(std::string(KELMASN_EXAMPLES) + "/der/" + record + ".der", std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// What one call left: its status, its stderr text, its allocations and, for a decode that
// succeeded, the record encoded again by the plain C++ entry point.
struct Outcome {
    unsigned int status = 0;
    std::string err;
    unsigned long allocations = 0;
    bool failure_delivered = false;
    Bytes bytes;
};

void expect_same(const Outcome& reference, const Outcome& c) {
    EXPECT_EQ(c.status, reference.status);
    EXPECT_EQ(c.err, reference.err);
    EXPECT_EQ(c.allocations, reference.allocations);
    EXPECT_EQ(c.failure_delivered, reference.failure_delivered);
    EXPECT_EQ(c.bytes, reference.bytes);
}

// Runs `call` with its nth allocation failing (none for 0), counting its allocations and
// capturing its stderr.
template <class Call> Outcome run(unsigned long fail_at, Call call) {
    Outcome outcome;
    ::testing::internal::CaptureStderr();
    {
        kelm_test::ScopedAllocationFailure failure(fail_at);
        kelm_test::reset_allocation_count();
        outcome.status = call();
        outcome.allocations = kelm_test::allocation_count();
        outcome.failure_delivered = fail_at != 0 && kelm_test::failure_delivered();
    }
    outcome.err = ::testing::internal::GetCapturedStderr();
    return outcome;
}

// Decodes `bytes` (from a block of exactly their size) with the C++ entry point or the C one, in
// the plain or the local-code-set mode, then encodes the record again and releases it.
template <class Record>
Outcome decode(const Bytes& bytes, bool through_c, bool lcs, kelm_record_type_id id,
               unsigned long fail_at = 0) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size() + 1]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_asn_buffer_t in{bytes.size(), exact.get()};
    Record record{};
    Outcome outcome = run(fail_at, [&] {
        if (through_c)
            return lcs ? kelmasn_c_decode_lcs(id, &in, &record)
                       : kelmasn_c_decode(id, &in, &record);
        return lcs ? kelmAsnDecodeObjLCS(in, record) : kelmAsnDecodeObj(in, record);
    });
    if (outcome.status == 0) {
        unsigned int status = 0;
        outcome.bytes = kelm_test::encode_record(record, status);
        EXPECT_EQ(status, 0u);
    }
    if (through_c)
        EXPECT_EQ(kelmasn_c_free(id, &record), 0u);
    else
        kelmAsnFreeObj(record);
    return outcome;
}

// Encodes `record` with the C++ entry point or the C one; the outcome's bytes are the encoding.
template <class Record>
Outcome encode(Record& record, bool through_c, bool lcs, kelm_record_type_id id,
               unsigned long fail_at = 0) {
    kelm_asn_buffer_t out{0, nullptr};
    Outcome outcome = run(fail_at, [&] {
        if (through_c)
            return lcs ? kelmasn_c_encode_lcs(id, &out, &record)
                       : kelmasn_c_encode(id, &out, &record);
        return lcs ? kelmAsnEncodeObjLCS(out, record) : kelmAsnEncodeObj(out, record);
    });
    if (out.data != nullptr) {
        outcome.bytes = kelm_test::bytes_of(out);
        kelm_asn_buffer_free(out);
    }
    return outcome;
}

// Every way the two can be compared on one record type, from its example buffer: every prefix of
// the buffer decoded, plain and LCS; the decoded record encoded, plain and LCS; and both
// directions with each of their allocations failing in turn.
template <class Record> void expect_same_as_typed(kelm_record_type_id id, const char* name) {
    SCOPED_TRACE(name);
    const Bytes example = example_buffer(name);
    ASSERT_GT(example.size(), 4u) << "no example buffer for " << name;
    EXPECT_STREQ(kelmasn_c_record_type_name(id), name);

    for (bool lcs : {false, true}) {
        SCOPED_TRACE(lcs ? "local code set" : "plain");
        for (size_t cut = 0; cut <= example.size(); ++cut) {
            SCOPED_TRACE(::testing::Message() << "the first " << cut << " bytes");
            const Bytes prefix(example.begin(), example.begin() + cut);
            const Outcome reference = decode<Record>(prefix, false, lcs, id);
            expect_same(reference, decode<Record>(prefix, true, lcs, id));
            if (cut == example.size()) {
                EXPECT_EQ(reference.status, 0u);
                if (!lcs) {
                    EXPECT_EQ(reference.bytes, example);
                }
            }
        }

        Record record{};
        ASSERT_EQ(kelm_test::decode_record(example, record), 0u);
        const Outcome reference = encode(record, false, lcs, id);
        EXPECT_EQ(reference.status, 0u);
        expect_same(reference, encode(record, true, lcs, id));

        // Each allocation of a complete run fails once; the run past the last fails none.
        EXPECT_GT(reference.allocations, 0u);
        unsigned long failed_runs = 0;
        for (unsigned long n = 1; n <= reference.allocations + 1; ++n) {
            SCOPED_TRACE(::testing::Message() << "allocation " << n << " of the encode fails");
            const Outcome failed = encode(record, false, lcs, id, n);
            expect_same(failed, encode(record, true, lcs, id, n));
            failed_runs += failed.failure_delivered;
        }
        EXPECT_EQ(failed_runs, reference.allocations);
        // A decode allocates exactly what the record owns: nothing at all for a record of inline
        // fields only (uuid_t, ip_addr_s_t, ...).
        const Outcome decoded = decode<Record>(example, false, lcs, id);
        failed_runs = 0;
        for (unsigned long n = 1; n <= decoded.allocations + 1; ++n) {
            SCOPED_TRACE(::testing::Message() << "allocation " << n << " of the decode fails");
            const Outcome failed = decode<Record>(example, false, lcs, id, n);
            expect_same(failed, decode<Record>(example, true, lcs, id, n));
            failed_runs += failed.failure_delivered;
        }
        EXPECT_GE(failed_runs, decoded.allocations > 0 ? 1u : 0u);
        kelmAsnFreeObj(record);
    }
}

} // namespace

TEST(CEntryPoints, EveryRecordTypeBehavesAsItsTypedEntryPoints) {
#define KELM_EXPECT_SAME_AS_TYPED(type, record)                                                    \
    expect_same_as_typed<record>(KELM_RECORD_##record, #record);
    KELM_FOR_EACH_RECORD_TYPE(KELM_EXPECT_SAME_AS_TYPED)
#undef KELM_EXPECT_SAME_AS_TYPED
}

TEST(CEntryPoints, TheRecordTypeListIsTheRegistrys) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    ASSERT_EQ(kelmasn_c_record_type_count(), count);
    ASSERT_EQ(static_cast<unsigned int>(KELM_RECORD_TYPE_COUNT), count);
    for (unsigned int id = 0; id < count; ++id) {
        SCOPED_TRACE(types[id]->record_name);
        const auto type = static_cast<kelm_record_type_id>(id);
        EXPECT_STREQ(kelmasn_c_record_type_name(type), types[id]->record_name);
        for (const char* name : {types[id]->record_name, types[id]->class_name}) {
            kelm_record_type_id found = KELM_RECORD_TYPE_COUNT;
            EXPECT_EQ(kelmasn_c_record_type_named(name, &found), 0u) << name;
            EXPECT_EQ(found, type) << name;
        }
    }
}

// The identifiers are part of the ABI: each keeps the position its type had in 1.0.0's list of
// the 65 record types, family by family.
TEST(CEntryPoints, RecordTypeIdentifiersKeepTheirValues) {
    const char* const kReleasedOrder[] = {
        "uuid_t",
        "attrlist_s_t",
        "attr_s_t",
        "value_s_t",
        "ip_addr_s_t",
        "ekobj_t",
        "ekobj_name_list_s_t",
        "ekobj_list_s_t",
        "ekobj_db_header_s_t",
        "aznadmsvc_s_t",
        "aznlocal_svr_s_t",
        "pobjspace_s_t",
        "azn_internal_pobj_s_t",
        "pobj_s_t",
        "ekprincipal_chain_s_t",
        "ekprincipal_s_t",
        "sec_id_pa_t",
        "sec_id_t",
        "dbr_get_db_in_s_t",
        "dbr_get_db_out_s_t",
        "aznadmin_gettasklist_in_s_t",
        "aznadmin_gettasklist_out_s_t",
        "aznadmin_performtask_in_s_t",
        "aznadmin_performtask_out_s_t",
        "aznadmin_getobjectlist_in_s_t",
        "aznadmin_getobjectlist_out_s_t",
        "aznadmin_getobject_in_s_t",
        "aznadmin_getobject_out_s_t",
        "aznserver_init_s_t",
        "azn_util_password_in_s_t",
        "azn_util_password_out_s_t",
        "azn_id_get_creds_in_s_t",
        "azn_id_get_creds_out_s_t",
        "azn_decision_ext_in_s_t",
        "azn_decision_ext_out_s_t",
        "acl_permset_s_t",
        "map_pobj_to_acl_s_t",
        "acl_ext_s_t",
        "acl_entry_s_t",
        "map_acl_to_pobj_s_t",
        "ekaction_groups_s_t",
        "ekaction_group_s_t",
        "ekaction_s_t",
        "ektod_range_s_t",
        "ekaccess_times_s_t",
        "ekpop_ipauth_s_t",
        "ekmap_pop_to_pobj_s_t",
        "ekpop_s_t",
        "ekpop_ipauth2_list_s_t",
        "ekpop_ipauth2_s_t",
        "ekmap_pobj_to_pop_s_t",
        "ekauthzn_db_s_t",
        "ekextern_auth_s_t",
        "ekextattr_s_t",
        "ekattr_s_t",
        "azn_creds_mod_in_s_t",
        "azn_creds_mod_out_s_t",
        "namevalueList_s_t",
        "namevalue_s_t",
        "remote_log_request",
        "azn_get_entitlements_in_s_t",
        "azn_get_entitlements_out_s_t",
        "zuauditevent_s_t",
        "zuauditelement_s_t",
        "zuauditattribute_s_t",
    };
    ASSERT_GE(kelmasn_c_record_type_count(), std::size(kReleasedOrder));
    for (unsigned int id = 0; id < std::size(kReleasedOrder); ++id)
        EXPECT_STREQ(kelmasn_c_record_type_name(static_cast<kelm_record_type_id>(id)),
                     kReleasedOrder[id])
            << "identifier " << id;
    EXPECT_EQ(KELM_RECORD_uuid_t, 0u);
    EXPECT_EQ(KELM_RECORD_remote_log_request, 59u);
    EXPECT_EQ(KELM_RECORD_zuauditattribute_s_t, 64u);
}

// The type-code entry points: the example of each code decoded and encoded again both ways,
// every prefix of it decoded, with the same outcome.
TEST(CEntryPoints, TypeCodeEntryPointsBehaveAsTheCxxOnes) {
    struct Case {
        unsigned int code;
        const char* example;
    };
    for (const Case& each : {Case{KELMASN_TYPE_CERT_REQUEST, "cert_request_in"},
                             Case{KELMASN_TYPE_EKOBJ_UPDATE_LIST, "ekobj_update_list_s_t"},
                             Case{KELMASN_TYPE_INTEGER, "int"}, Case{0x105, "int"}}) {
        SCOPED_TRACE(each.example);
        Bytes example = example_buffer(each.example);
        ASSERT_GT(example.size(), 4u);
        const int version = example[1];
        for (size_t cut = 0; cut <= example.size(); ++cut) {
            SCOPED_TRACE(::testing::Message() << "the first " << cut << " bytes");
            Bytes prefix(example.begin(), example.begin() + cut);
            Outcome outcomes[2];
            for (bool through_c : {false, true}) {
                alignas(8) unsigned char record[64] = {};
                kelm_asn_buffer_t in{prefix.size(), prefix.data()};
                Outcome& outcome = outcomes[through_c];
                outcome = run(0, [&] {
                    return through_c ? kelmasn_c_decode_obj(version, &in, each.code, record)
                                     : kelmasn_decode_obj(version, in, each.code, record);
                });
                if (outcome.status == 0) {
                    kelm_asn_buffer_t out{0, nullptr};
                    const Outcome encoded = run(0, [&] {
                        return through_c ? kelmasn_c_encode_obj(version, record, each.code, &out)
                                         : kelmasn_encode_obj(version, record, each.code, out);
                    });
                    EXPECT_EQ(encoded.status, 0u);
                    outcome.bytes = kelm_test::bytes_of(out);
                    kelm_asn_buffer_free(out);
                }
                const unsigned int freed = through_c
                                               ? kelmasn_c_obj_free(version, each.code, record)
                                               : kelmasn_obj_free(version, each.code, record);
                EXPECT_EQ(freed, each.code == 0x105 ? 0xFFFFFFFFu : 0u);
            }
            expect_same(outcomes[0], outcomes[1]);
            if (cut == example.size() && each.code != 0x105) {
                EXPECT_EQ(outcomes[0].bytes, example);
            }
        }
    }
}

TEST(CEntryPoints, HeaderQueryAndBufferUtilitiesBehaveAsTheCxxOnes) {
    for (const char* record : {"attrlist_s_t", "int", "uuid_t"}) {
        const Bytes example = example_buffer(record);
        ASSERT_GT(example.size(), 4u);
        for (size_t cut = 0; cut <= example.size(); ++cut)
            for (unsigned char version : {0, 1, 2, 255}) {
                Bytes bytes(example.begin(), example.begin() + cut);
                if (bytes.size() > 1)
                    bytes[1] = version;
                const kelm_asn_buffer_t buffer{bytes.size(), bytes.data()};
                unsigned int flag_cxx = 7, flag_c = 7;
                EXPECT_EQ(kelmasn_c_version(&buffer, &flag_c), kelmasn_version(buffer, flag_cxx));
                EXPECT_EQ(flag_c, flag_cxx);

                kelm_asn_buffer_t copy_cxx{9, nullptr}, copy_c{9, nullptr};
                unsigned int status_cxx = 9, status_c = 9;
                kelm_asn_buffer_copy(buffer, copy_cxx, status_cxx);
                kelmasn_c_buffer_copy(&buffer, &copy_c, &status_c);
                EXPECT_EQ(status_c, status_cxx);
                EXPECT_EQ(copy_c.length, copy_cxx.length);
                EXPECT_EQ(kelm_test::bytes_of(copy_c), kelm_test::bytes_of(copy_cxx));
                kelm_asn_buffer_free(copy_cxx);
                kelmasn_c_buffer_free(&copy_c);
            }
    }
    EXPECT_STREQ(kelmasn_c_library_version(), kelmasn_library_version());
    for (unsigned int status : {0u, 0x10652065u, 0x10652196u, 0x106521a4u, 0xFFFFFFFFu, 42u})
        EXPECT_STREQ(kelmasn_c_status_text(status), kelm_asn_status_text(status));
}

// The DER inspection functions, at every offset of every example buffer and with every size up to
// one past their limit: the same status, outputs, cursor, remaining count and input bytes (the
// BIT STRING reader writes into its input).
TEST(CEntryPoints, DerInspectionFunctionsBehaveAsTheCxxOnes) {
    struct Side {
        Bytes input;
        unsigned char* cursor[2] = {nullptr, nullptr};
        unsigned int remaining = 0;
        unsigned int outputs[3] = {0, 0, 0};
        int64_t value = 0;
        unsigned char* bytes = nullptr;
        char* text = nullptr;
        unsigned int status = 0;

        Side(const Bytes& from, size_t offset) : input(from) {
            cursor[0] = input.data() + offset;
            remaining = static_cast<unsigned int>(input.size() - offset);
        }
        ~Side() {
            std::free(bytes);
            std::free(text);
        }
        bool operator==(const Side& other) const {
            const size_t count = bytes != nullptr ? outputs[0] : 0;
            return status == other.status && input == other.input &&
                   cursor[0] - input.data() == other.cursor[0] - other.input.data() &&
                   (cursor[1] == nullptr) == (other.cursor[1] == nullptr) &&
                   (cursor[1] == nullptr ||
                    cursor[1] - input.data() == other.cursor[1] - other.input.data()) &&
                   remaining == other.remaining &&
                   std::memcmp(outputs, other.outputs, sizeof outputs) == 0 &&
                   value == other.value && (bytes == nullptr) == (other.bytes == nullptr) &&
                   (count == 0 || std::memcmp(bytes, other.bytes, count) == 0) &&
                   (text == nullptr) == (other.text == nullptr) &&
                   (text == nullptr || std::strcmp(text, other.text) == 0);
        }
    };
    using Call = void (*)(Side&, unsigned int size, bool through_c);
    const std::pair<const char*, Call> kCalls[] = {
        {"type",
         [](Side& s, unsigned int, bool c) {
             s.status = c ? kelmasn_c_get_type(s.cursor, &s.remaining, &s.outputs[0], &s.outputs[1],
                                               &s.outputs[2])
                          : kelmAsnGetType(s.cursor, &s.remaining, &s.outputs[0], &s.outputs[1],
                                           &s.outputs[2]);
         }},
        {"length",
         [](Side& s, unsigned int, bool c) {
             s.status =
                 c ? kelmasn_c_get_length(s.cursor, &s.remaining, &s.outputs[1], &s.outputs[2])
                   : kelmAsnGetLength(s.cursor, &s.remaining, &s.outputs[1], &s.outputs[2]);
         }},
        {"integer",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_integer_value(s.cursor, &s.remaining, size, &s.value)
                          : kelmAsnGetIntegerValue(s.cursor, &s.remaining, size, &s.value);
         }},
        {"integer bytes",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_integer_bytes(s.cursor, &s.remaining, size, &s.bytes,
                                                        &s.outputs[0], 1)
                          : kelmAsnGetIntegerValue(s.cursor, &s.remaining, size, &s.bytes,
                                                   &s.outputs[0], 1);
         }},
        {"little endian",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_long_integer_value_little_endian(
                                s.cursor, &s.remaining, size, &s.bytes, &s.outputs[0])
                          : kelmAsnGetLongIntegerValueLittleEndian(s.cursor, &s.remaining, size,
                                                                   &s.bytes, &s.outputs[0]);
         }},
        {"big endian",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_long_integer_value_big_endian(
                                s.cursor, &s.remaining, size, &s.bytes, &s.outputs[0])
                          : kelmAsnGetLongIntegerValueBigEndian(s.cursor, &s.remaining, size,
                                                                &s.bytes, &s.outputs[0]);
         }},
        {"null",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_null_value(s.cursor, &s.remaining, size)
                          : kelmAsnGetNullValue(s.cursor, &s.remaining, size);
         }},
        {"bit string",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_bitstring_value(s.cursor, &s.remaining, size, &s.bytes,
                                                          &s.outputs[1])
                          : kelmAsnGetBitstringValue(s.cursor, &s.remaining, size, &s.bytes,
                                                     &s.outputs[1]);
         }},
        {"character string",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_charstring_value(s.cursor, &s.remaining, size, &s.text)
                          : kelmAsnGetCharstringValue(s.cursor, &s.remaining, size, &s.text);
         }},
        {"octet string",
         [](Side& s, unsigned int size, bool c) {
             s.status = c ? kelmasn_c_get_octetstring_value(s.cursor, &s.remaining, size, &s.bytes,
                                                            &s.outputs[0])
                          : kelmAsnGetOctetstringValue(s.cursor, &s.remaining, size, &s.bytes,
                                                       &s.outputs[0]);
         }},
        {"object identifier",
         [](Side& s, unsigned int size, bool c) {
             if (c) {
                 s.status =
                     kelmasn_c_get_oid_value(s.cursor, &s.remaining, size, &s.outputs[0], &s.bytes);
                 return;
             }
             kelm_asn_oid_t oid{s.outputs[0], s.bytes};
             s.status = kelmAsnGetOIDValue(s.cursor, &s.remaining, size, &oid);
             s.outputs[0] = oid.count;
             s.bytes = oid.bytes;
         }},
    };
    std::map<std::string, unsigned int> succeeded;
    for (const char* record : {"attr_s_t", "ekobj_t", "int", "cert_request_in"}) {
        const Bytes example = example_buffer(record);
        ASSERT_GT(example.size(), 4u);
        for (size_t offset = 0; offset <= example.size(); ++offset)
            for (const auto& [name, call] : kCalls)
                for (unsigned int size = 0; size <= 9; ++size) {
                    Side reference(example, offset), c(example, offset);
                    call(reference, size, false);
                    call(c, size, true);
                    EXPECT_TRUE(reference == c)
                        << record << ": " << name << " at offset " << offset << ", size " << size;
                    succeeded[name] += reference.status == 0;
                }
    }
    // Every function was compared where it succeeds, not only where it refuses its input.
    for (const auto& [name, call] : kCalls)
        EXPECT_GT(succeeded[name], 10u) << name;
    unsigned char byte = 0x06;
    unsigned char* cursor = &byte;
    unsigned int remaining = 1;
    EXPECT_EQ(kelmasn_c_get_oid_value(&cursor, &remaining, 1, nullptr, nullptr),
              kelmAsnGetOIDValue(&cursor, &remaining, 1, nullptr));
}
