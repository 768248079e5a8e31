// The entry points by type code and their dispatcher: the three known codes, unknown codes,
// the operations, the version byte of the header, and every exception turned into a status.
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "record_test_support.h"
#include "type_code_direct_internal.h"
#include "type_code_guard_internal.h"

using kelm_test::bytes_of;
using kelm_test::dup_text;
using kelm_test::with_header;
using Bytes = std::vector<unsigned char>;

namespace {

unsigned int decode(Bytes wire, unsigned int type, void* record, int version = 2) {
    kelm_asn_buffer_t in = kelm_test::buffer_over(wire);
    return kelmasn_decode_obj(version, in, type, record);
}

} // namespace

// --- type codes ------------------------------------------------------------------------------

TEST(TypeCodes, UnknownCodesReturnMinusOneAndTouchNothing) {
    for (unsigned int type : {0u, 1u, 0x102u, 0x105u, 0x107u, 0x203u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(::testing::Message() << "type code 0x" << std::hex << type);
        unsigned char record[32];
        std::memset(record, 0xEE, sizeof record);
        unsigned char sentinel = 0;
        kelm_asn_buffer_t out{77, &sentinel};
        ::testing::internal::CaptureStderr();
        EXPECT_EQ(kelmasn_encode_obj(2, record, type, out), 0xFFFFFFFFu);
        EXPECT_EQ(out.length, 77u);
        EXPECT_EQ(out.data, &sentinel);
        Bytes wire = with_header({0x02, 0x01, 0x01});
        EXPECT_EQ(decode(wire, type, record), 0xFFFFFFFFu);
        EXPECT_EQ(kelmasn_obj_free(2, type, record), 0xFFFFFFFFu);
        kelm_asn_buffer_t none{0, nullptr};
        for (int operation : {0, 1, 2, 5})
            EXPECT_EQ(main_func(operation, 2, record, type, none), 0xFFFFFFFFu);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
        for (unsigned char byte : record)
            EXPECT_EQ(byte, 0xEE);
    }
    EXPECT_EQ(static_cast<int>(kelmasn_obj_free(2, 0x105, nullptr)), -1);
}

TEST(TypeCodes, ABareIntegerIsWrittenAfterTheHeaderWithTheVersionsLowByte) {
    for (int version : {0, 1, 2, 3, 255, 256, 258, -1}) {
        SCOPED_TRACE(::testing::Message() << "version " << version);
        int value = 1;
        kelm_asn_buffer_t out{0, nullptr};
        ASSERT_EQ(kelmasn_encode_obj(version, &value, KELMASN_TYPE_INTEGER, out), 0u);
        EXPECT_EQ(bytes_of(out),
                  (Bytes{0x04, static_cast<unsigned char>(version), 0xAC, 0xDC, 0x02, 0x01, 0x01}));
        int back = 0;
        EXPECT_EQ(kelmasn_decode_obj(version, out, KELMASN_TYPE_INTEGER, &back), 0u);
        EXPECT_EQ(back, 1);
        kelm_asn_buffer_free(out);
    }
}

TEST(TypeCodes, BareIntegersRoundTripTheirExtremes) {
    for (int value : {0, -1, 127, 128, -129, 0x7FFFFFFF, static_cast<int>(0x80000000)}) {
        SCOPED_TRACE(value);
        kelm_asn_buffer_t out{0, nullptr};
        ASSERT_EQ(kelmasn_encode_obj(2, &value, KELMASN_TYPE_INTEGER, out), 0u);
        int back = 12345;
        EXPECT_EQ(kelmasn_decode_obj(2, out, KELMASN_TYPE_INTEGER, &back), 0u);
        EXPECT_EQ(back, value);
        kelm_asn_buffer_free(out);
    }
}

TEST(TypeCodes, AnIntegerThatDoesNotFitIsStoredAsZeroWithTheReadsStatus) {
    int back = 55;
    EXPECT_EQ(decode(with_header({0x02, 0x05, 0x01, 0x00, 0x00, 0x00, 0x00}), KELMASN_TYPE_INTEGER,
                     &back),
              0x10652199u);
    EXPECT_EQ(back, 0) << "the int receives what was read also when the read fails";
}

TEST(TypeCodes, AnInputThatIsNotAnIntegerLeavesTheIntUntouched) {
    int back = 55;
    EXPECT_EQ(decode(with_header({0x04, 0x01, 0x00}), KELMASN_TYPE_INTEGER, &back), 0x106521a4u);
    EXPECT_EQ(back, 55);
    EXPECT_EQ(decode(with_header({0x02, 0x01}), KELMASN_TYPE_INTEGER, &back), 0x10652198u);
    EXPECT_EQ(back, 55);
}

TEST(TypeCodes, FreeingABareIntegerDoesNothing) {
    int value = 42;
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_INTEGER, &value), 0u);
    EXPECT_EQ(value, 42);
}

TEST(TypeCodes, OperationTwoFreesZeroEncodesAndAnyOtherDecodes) {
    int value = 9;
    kelm_asn_buffer_t buffer{0, nullptr};
    ASSERT_EQ(main_func(0, 2, &value, KELMASN_TYPE_INTEGER, buffer), 0u);
    EXPECT_EQ(bytes_of(buffer), with_header({0x02, 0x01, 0x09}));
    for (int operation : {1, 3, 7, -1, 1000}) {
        SCOPED_TRACE(operation);
        int back = 0;
        EXPECT_EQ(main_func(operation, 2, &back, KELMASN_TYPE_INTEGER, buffer), 0u);
        EXPECT_EQ(back, 9);
    }
    cert_request_in request{dup_text("a"), nullptr, 0, nullptr};
    kelm_asn_buffer_t none{0, nullptr};
    EXPECT_EQ(main_func(2, 2, &request, KELMASN_TYPE_CERT_REQUEST, none), 0u);
    kelm_asn_buffer_free(buffer);
}

// --- versions --------------------------------------------------------------------------------

TEST(TypeCodeVersions, EachVersionIsWrittenReadBackAndRejectedByTypedDecodesUnlessTwo) {
    cert_request_in request{dup_text("one"), dup_text("two"), 0, nullptr};
    ekobj_update_list_s_t list{
        1, static_cast<ekobj_update_s_t*>(std::calloc(1, sizeof(ekobj_update_s_t)))};
    list.updates[0] = ekobj_update_s_t{3, dup_text("text"), 4};
    int number = 17;
    struct Row {
        unsigned int type;
        void* record;
    } rows[] = {
        {KELMASN_TYPE_CERT_REQUEST, &request},
        {KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list},
        {KELMASN_TYPE_INTEGER, &number},
    };
    for (const Row& row : rows) {
        for (int version : {0, 1, 2, 3, 255}) {
            SCOPED_TRACE(::testing::Message() << "type 0x" << std::hex << row.type << std::dec
                                              << ", version " << version);
            kelm_asn_buffer_t out{0, nullptr};
            ASSERT_EQ(kelmasn_encode_obj(version, row.record, row.type, out), 0u);
            ASSERT_GT(out.length, 4u);
            EXPECT_EQ(out.data[1], static_cast<unsigned char>(version));

            // Read back with the same version.
            alignas(8) unsigned char back[sizeof(cert_request_in)] = {};
            ASSERT_EQ(kelmasn_decode_obj(version, out, row.type, back), 0u);
            kelm_asn_buffer_t again{0, nullptr};
            ASSERT_EQ(kelmasn_encode_obj(version, back, row.type, again), 0u);
            EXPECT_EQ(bytes_of(again), bytes_of(out));
            kelm_asn_buffer_free(again);
            EXPECT_EQ(kelmasn_obj_free(version, row.type, back), 0u);

            // Another version is refused before anything is read.
            alignas(8) unsigned char untouched[sizeof(cert_request_in)];
            std::memset(untouched, 0xEE, sizeof untouched);
            EXPECT_EQ(kelmasn_decode_obj(version + 1, out, row.type, untouched), 0x10652196u);
            for (unsigned char byte : untouched)
                ASSERT_EQ(byte, 0xEE);

            // The typed entry points ask for version 2: any other is refused by the header check.
            attrlist_s_t typed{};
            const unsigned int status = kelmAsnDecodeObj(out, typed);
            if (version == 2)
                EXPECT_NE(status, 0x10652196u) << "the header fits; the body is another type's";
            else
                EXPECT_EQ(status, 0x10652196u);
            kelmAsnFreeObj(typed);

            // The version query reports a usable header for every version but 0.
            unsigned int flag = 9;
            EXPECT_EQ(kelmasn_version(out, flag), version == 0 ? 0x10652196u : 0u);
            EXPECT_EQ(flag, version == 0 ? 1u : 0u);
            kelm_asn_buffer_free(out);
        }
    }
    kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &request);
    kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list);
}

TEST(TypeCodeVersions, AVersionThreeBufferIsRefusedByATypedDecodeThatWouldReadIt) {
    // An empty attribute list, written by a typed encode, then given version 3.
    attrlist_s_t empty{};
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObj(out, empty), 0u);
    attrlist_s_t back{};
    EXPECT_EQ(kelmAsnDecodeObj(out, back), 0u);
    out.data[1] = 3;
    EXPECT_EQ(kelmAsnDecodeObj(out, back), 0x10652196u);
    kelm_asn_buffer_free(out);
}

// --- headers ---------------------------------------------------------------------------------

TEST(TypeCodeHeaders, TheHeaderIsCheckedAsForTheTypedEntryPoints) {
    struct Row {
        const char* what;
        Bytes bytes;
        unsigned int status;
    } rows[] = {
        {"exactly four bytes", {0x04, 0x02, 0xAC, 0xDC}, 0x10652196},
        {"wrong first magic", {0x04, 0x02, 0xAD, 0xDC, 0x02, 0x01, 0x01}, 0x10652196},
        {"wrong second magic", {0x04, 0x02, 0xAC, 0xDD, 0x02, 0x01, 0x01}, 0x10652196},
        {"header length 0", {0x00, 0x02, 0xAC, 0xDC, 0x02, 0x01, 0x01}, 0x10652196},
        {"header length 6 skips two bytes",
         {0x06, 0x02, 0xAC, 0xDC, 0xEE, 0xEE, 0x02, 0x01, 0x01},
         0},
        {"nothing after the header", {0x40, 0x02, 0xAC, 0xDC, 0x02}, 0x10652198},
    };
    for (Row& row : rows) {
        SCOPED_TRACE(row.what);
        int value = 55;
        EXPECT_EQ(decode(row.bytes, KELMASN_TYPE_INTEGER, &value), row.status);
        EXPECT_EQ(value, row.status == 0 ? 1 : 55);
        cert_request_in request{nullptr, nullptr, 0, nullptr};
        const unsigned int status = decode(row.bytes, KELMASN_TYPE_CERT_REQUEST, &request);
        EXPECT_NE(status, 0u);
        if (row.status == 0x10652196u) {
            EXPECT_EQ(status, 0x10652196u);
            EXPECT_EQ(request.string1, nullptr) << "the record is not touched";
        }
        kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &request);
    }
}

// --- a caller already inside a decode ---------------------------------------------------------

// The nesting limit counts the levels the calling thread is inside, the caller's own included. A
// call made 62 levels deep is served by the message classes, which read a certificate request
// (its SEQUENCE is level 63) and refuse a list of updates (its updates would be level 65), and
// write exactly what they write at the top.
TEST(TypeCodeNesting, ACallDeepInsideADecodeIsServedByTheMessageClassesWithinTheLimit) {
    cert_request_in request{dup_text("first"), dup_text("second"), 0, nullptr};
    ekobj_update_list_s_t list{
        1, static_cast<ekobj_update_s_t*>(std::calloc(1, sizeof(ekobj_update_s_t)))};
    list.updates[0].text = dup_text("t");
    kelm_asn_buffer_t request_wire{0, nullptr}, list_wire{0, nullptr};
    ASSERT_EQ(kelmasn_encode_obj(2, &request, KELMASN_TYPE_CERT_REQUEST, request_wire), 0u);
    ASSERT_EQ(kelmasn_encode_obj(2, &list, KELMASN_TYPE_EKOBJ_UPDATE_LIST, list_wire), 0u);

    std::vector<std::unique_ptr<kelm_asn_nesting_guard>> levels;
    for (int i = 0; i < 62; ++i)
        levels.push_back(std::make_unique<kelm_asn_nesting_guard>());
    ASSERT_EQ(kelm_asn_nesting_guard::depth(), 62u);

    cert_request_in untouched{nullptr, nullptr, 0, nullptr};
    unsigned int status = 0;
    EXPECT_FALSE(
        kelm_type_code_direct(1, 2, &untouched, KELMASN_TYPE_CERT_REQUEST, request_wire, status))
        << "the direct codec leaves a call this deep to the message classes";
    EXPECT_EQ(untouched.string1, nullptr);

    cert_request_in back{nullptr, nullptr, 0, nullptr};
    EXPECT_EQ(kelmasn_decode_obj(2, request_wire, KELMASN_TYPE_CERT_REQUEST, &back), 0u);
    EXPECT_STREQ(back.string1, "first");
    EXPECT_STREQ(back.string2, "second");
    EXPECT_EQ(back.body_length, 0u);
    ekobj_update_list_s_t list_back{0, nullptr};
    EXPECT_EQ(kelmasn_decode_obj(2, list_wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_back),
              0x1065219Bu);
    kelm_asn_buffer_t again{0, nullptr};
    EXPECT_EQ(kelmasn_encode_obj(2, &request, KELMASN_TYPE_CERT_REQUEST, again), 0u);
    EXPECT_EQ(bytes_of(again), bytes_of(request_wire));

    levels.clear();
    EXPECT_EQ(kelm_asn_nesting_guard::depth(), 0u);
    EXPECT_EQ(kelmasn_decode_obj(2, list_wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_back), 0u)
        << "the same list at the top";
    kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_back);
    kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &back);
    kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &request);
    kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list);
    kelm_asn_buffer_free(again);
    kelm_asn_buffer_free(request_wire);
    kelm_asn_buffer_free(list_wire);
}

// --- exceptions ------------------------------------------------------------------------------

TEST(TypeCodeExceptions, EveryExceptionBecomesAStatus) {
    struct Row {
        const char* what;
        unsigned int (*call)();
        unsigned int status;
        std::string line;
    } rows[] = {
        {"memory exception",
         []() -> unsigned int {
             throw kelm_asn_memexception("src/somewhere.cpp", 12, "Out of memory somewhere");
         },
         0x10652065,
         "Exception: Out of memory somewhere [10652065] in src/somewhere.cpp at line 12\n"},
        {"refused operation",
         []() -> unsigned int { throw kelm_asn_unsupportederror("x.cpp", 3, "refused"); },
         0x10652197, "Exception: refused [10652197] in x.cpp at line 3\n"},
        {"runtime exception with its own status",
         []() -> unsigned int { throw kelm_asn_exception("y.cpp", 4, "other", 0x1065219b); },
         0x1065219b, "Exception: other [1065219b] in y.cpp at line 4\n"},
        {"standard exception", []() -> unsigned int { throw std::runtime_error("not ours"); },
         0x10652065, ""},
        {"bad_alloc", []() -> unsigned int { throw std::bad_alloc(); }, 0x10652065, ""},
        {"plain text",
         []() -> unsigned int { throw "get_child_count() invoked on non-composite object"; },
         0x10652065, ""},
        {"an int", []() -> unsigned int { throw 7; }, 0x10652065, ""},
        {"no exception", []() -> unsigned int { return 0x106521a4; }, 0x106521a4, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        ::testing::internal::CaptureStderr();
        const unsigned int status = kelm_type_code_guarded(row.call);
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), row.line);
        EXPECT_EQ(status, row.status);
    }
}
