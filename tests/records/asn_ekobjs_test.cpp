// Certificate requests, object updates and lists of them, through the type-code entry points:
// the version element, texts stored with their NUL, the optional body, a free that tests the
// body's length, and a list that returns its statuses.
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asn_ekobjs.h"
#include "asn_record_direct.h"
#include "asn_test_util.h"
#include "record_test_support.h"

using kelm_test::bytes_of;
using kelm_test::dup_text;
using kelm_test::tlv;
using kelm_test::with_header;
using Bytes = std::vector<unsigned char>;

namespace {

const Bytes kVersion = {0x02, 0x01, 0x01};

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

unsigned char* dup_bytes(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size() ? bytes.size() : 1));
    std::copy(bytes.begin(), bytes.end(), copy);
    return copy;
}

// The encoding through kelmasn_encode_obj; the status goes to `status`.
Bytes encode(void* record, unsigned int type, int version = 2, unsigned int* status = nullptr) {
    kelm_asn_buffer_t out{0, nullptr};
    const unsigned int s = kelmasn_encode_obj(version, record, type, out);
    if (status != nullptr)
        *status = s;
    else
        EXPECT_EQ(s, 0u);
    Bytes bytes = bytes_of(out);
    kelm_asn_buffer_free(out);
    return bytes;
}

// Decodes through kelmasn_decode_obj from an exact-size copy of `wire`.
unsigned int decode(const Bytes& wire, unsigned int type, void* record, int version = 2) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[wire.size() + 1]);
    std::copy(wire.begin(), wire.end(), exact.get());
    kelm_asn_buffer_t in{wire.size(), wire.empty() ? nullptr : exact.get()};
    return kelmasn_decode_obj(version, in, type, record);
}

// Records the test owns, released with the type-code free entry point.
struct Request {
    cert_request_in record{};
    ~Request() { EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &record), 0u); }
};

struct UpdateList {
    ekobj_update_list_s_t record{};
    ~UpdateList() { EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &record), 0u); }
};

// A list of `count` updates {i, "update i", -i}.
void fill_updates(ekobj_update_list_s_t& list, unsigned int count) {
    list.count = count;
    list.updates = static_cast<ekobj_update_s_t*>(std::calloc(count, sizeof(ekobj_update_s_t)));
    for (unsigned int i = 0; i < count; ++i) {
        list.updates[i].number1 = static_cast<int32_t>(i);
        list.updates[i].text = dup_text("update " + std::to_string(i));
        list.updates[i].number2 = -static_cast<int32_t>(i);
    }
}

Bytes octets_with_nul(const std::string& text) {
    Bytes value(text.begin(), text.end());
    value.push_back(0x00);
    return tlv(0x04, value);
}

Bytes integer(int value) {
    kelm_asn_integer object;
    object.set_value(value);
    return kelm_test::encode(object);
}

Bytes update_wire(int number1, const std::string& text, int number2,
                  const Bytes& version = kVersion) {
    return tlv(0x30, concat({version, integer(number1), octets_with_nul(text), integer(number2)}));
}

// Runs `call` once through the direct codec and once with the object path forced, the path named
// in a trace.
template <class Call> void on_both_paths(Call call) {
    const bool before = kelm_object_path_forced();
    for (bool forced : {false, true}) {
        SCOPED_TRACE(forced ? "object path" : "direct codec");
        kelm_force_object_path(forced);
        call();
    }
    kelm_force_object_path(before);
}

// The bytes of the heap in use, where the allocator reports them (not under the sanitizers).
size_t heap_in_use() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

// --- certificate requests --------------------------------------------------------------------

TEST(CertRequest, NullStringsAndNoBodyAreTwoNulBytesAndNoThirdOctetString) {
    Request request;
    const Bytes wire = encode(&request.record, KELMASN_TYPE_CERT_REQUEST);
    EXPECT_EQ(wire,
              with_header({0x30, 0x09, 0x02, 0x01, 0x01, 0x04, 0x01, 0x00, 0x04, 0x01, 0x00}));
    Request back;
    back.record.body_length = 7; // cleared by the decode
    ASSERT_EQ(decode(wire, KELMASN_TYPE_CERT_REQUEST, &back.record), 0u);
    ASSERT_NE(back.record.string1, nullptr);
    ASSERT_NE(back.record.string2, nullptr);
    EXPECT_STREQ(back.record.string1, "") << "decoded as a new empty string, never null";
    EXPECT_STREQ(back.record.string2, "");
    EXPECT_EQ(back.record.body_length, 0u);
    EXPECT_EQ(back.record.body, nullptr);
}

TEST(CertRequest, TextsCarryTheirNulAndTheBodyExactlyItsBytes) {
    Request request;
    request.record.string1 = dup_text("abc");
    request.record.string2 = dup_text("");
    request.record.body_length = 3;
    request.record.body = dup_bytes({0xB1, 0x00, 0xB3});
    const Bytes wire = encode(&request.record, KELMASN_TYPE_CERT_REQUEST);
    EXPECT_EQ(wire, with_header({0x30, 0x11, 0x02, 0x01, 0x01, 0x04, 0x04, 0x61, 0x62, 0x63, 0x00,
                                 0x04, 0x01, 0x00, 0x04, 0x03, 0xB1, 0x00, 0xB3}));
    Request back;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_CERT_REQUEST, &back.record), 0u);
    EXPECT_STREQ(back.record.string1, "abc");
    EXPECT_STREQ(back.record.string2, "");
    ASSERT_EQ(back.record.body_length, 3u);
    EXPECT_EQ(Bytes(back.record.body, back.record.body + 3), (Bytes{0xB1, 0x00, 0xB3}));
    EXPECT_EQ(encode(&back.record, KELMASN_TYPE_CERT_REQUEST), wire);
}

TEST(CertRequest, ALongBodyTakesALongFormLength) {
    Request request;
    request.record.body_length = 300;
    request.record.body = dup_bytes(Bytes(300, 0x5A));
    const Bytes wire = encode(&request.record, KELMASN_TYPE_CERT_REQUEST);
    // Header, outer frame (30 82 01 3D), version, two empty texts: the body starts at 17.
    EXPECT_EQ(Bytes(wire.begin() + 17, wire.begin() + 21), (Bytes{0x04, 0x82, 0x01, 0x2C}));
    Request back;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_CERT_REQUEST, &back.record), 0u);
    ASSERT_EQ(back.record.body_length, 300u);
    EXPECT_EQ(Bytes(back.record.body, back.record.body + 300), Bytes(300, 0x5A));
}

TEST(CertRequest, ALengthWithoutBytesWritesNoBody) {
    on_both_paths([] {
        cert_request_in request{nullptr, nullptr, 5, nullptr};
        EXPECT_EQ(encode(&request, KELMASN_TYPE_CERT_REQUEST),
                  with_header({0x30, 0x09, 0x02, 0x01, 0x01, 0x04, 0x01, 0x00, 0x04, 0x01, 0x00}));
    });
}

TEST(CertRequest, AnEmptyBodyOnTheWireDecodesToNoBody) {
    on_both_paths([] {
        Request back;
        back.record.body_length = 7; // cleared by the decode
        ASSERT_EQ(decode(with_header({0x30, 0x0B, 0x02, 0x01, 0x01, 0x04, 0x01, 0x00, 0x04, 0x01,
                                      0x00, 0x04, 0x00}),
                         KELMASN_TYPE_CERT_REQUEST, &back.record),
                  0u);
        EXPECT_EQ(back.record.body_length, 0u);
        EXPECT_EQ(back.record.body, nullptr);
    });
}

TEST(CertRequest, StoredTextsShorterThanTwoBytesReadAsEmptyAndLongerOnesAsTheyAre) {
    // string1 is the single byte 41; string2 the two bytes 41 42 without a NUL.
    Request back;
    ASSERT_EQ(decode(with_header(
                         {0x30, 0x0A, 0x02, 0x01, 0x01, 0x04, 0x01, 0x41, 0x04, 0x02, 0x41, 0x42}),
                     KELMASN_TYPE_CERT_REQUEST, &back.record),
              0u);
    EXPECT_STREQ(back.record.string1, "");
    ASSERT_NE(back.record.string2, nullptr);
    EXPECT_EQ(std::memcmp(back.record.string2, "AB", 2), 0)
        << "copied as it is, without an added NUL";
}

TEST(CertRequest, TheVersionElementIsWrittenAsOneAndNeverRead) {
    for (const Bytes& version : {Bytes{0x02, 0x01, 0x05}, Bytes{0x02, 0x01, 0x00},
                                 Bytes{0x02, 0x02, 0xFF, 0x7F}, Bytes{0x02, 0x01, 0xFF}}) {
        SCOPED_TRACE(::testing::Message() << "version element of " << version.size() << " bytes");
        Request back;
        const Bytes wire =
            with_header(tlv(0x30, concat({version, octets_with_nul("x"), octets_with_nul("y")})));
        ASSERT_EQ(decode(wire, KELMASN_TYPE_CERT_REQUEST, &back.record), 0u);
        EXPECT_STREQ(back.record.string1, "x");
        EXPECT_STREQ(back.record.string2, "y");
    }
    Request missing;
    EXPECT_NE(decode(with_header(tlv(0x30, concat({octets_with_nul("x"), octets_with_nul("y")}))),
                     KELMASN_TYPE_CERT_REQUEST, &missing.record),
              0u)
        << "the version element is required";
}

TEST(CertRequest, FreeTestsTheBodysLengthNotItsPointer) {
    // A body of 64 KiB: large enough to show in the heap's count, small enough not to be mapped
    // on its own.
    const size_t size = 64 * 1024;
    unsigned char* block = static_cast<unsigned char*>(std::malloc(size));
    std::memset(block, 0x11, size);
    cert_request_in record{nullptr, nullptr, 0, block};
    size_t before = heap_in_use();
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &record), 0u);
    if (before != 0) {
        EXPECT_LT(before - heap_in_use(), size) << "a body of length 0 is not released";
    }
    EXPECT_EQ(block[size - 1], 0x11) << "the block is still ours";

    record.body_length = static_cast<uint32_t>(size);
    before = heap_in_use();
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &record), 0u);
    if (before != 0) {
        EXPECT_GE(before - heap_in_use(), size) << "a body with a length is released";
    }

    cert_request_in null_body{nullptr, nullptr, 5, nullptr};
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &null_body), 0u);
}

TEST(CertRequest, FreeDoesNotResetTheFields) {
    cert_request_in record{dup_text("a"), dup_text("b"), 0, nullptr};
    char* const first = record.string1;
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &record), 0u);
    EXPECT_EQ(record.string1, first);
}

TEST(CertRequest, TypeNamesAreThoseOfTheClasses) {
    kelm_asn_cert_request_in request;
    kelm_asn_ekobj_update_t update;
    kelm_asn_ekobj_update_list_t list;
    EXPECT_STREQ(request.get_type_name(), "cert_request_in");
    EXPECT_STREQ(update.get_type_name(), "ekobj_update");
    EXPECT_STREQ(list.get_type_name(), "update_list");
    EXPECT_STREQ(list.get_child(1)->get_type_name(), "SEQUENCEOF");
    EXPECT_EQ(request.get_child_count(), 4u);
    EXPECT_EQ(update.get_child_count(), 4u);
    EXPECT_EQ(list.get_child_count(), 2u);
}

// --- object updates --------------------------------------------------------------------------

TEST(UpdateList, TwoUpdatesEachRepeatTheirOwnVersion) {
    UpdateList list;
    fill_updates(list.record, 2);
    const Bytes wire = encode(&list.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    const Bytes first = {0x30, 0x14, 0x02, 0x01, 0x01, 0x02, 0x01, 0x00, 0x04, 0x09, 'u',
                         'p',  'd',  'a',  't',  'e',  ' ',  '0',  0x00, 0x02, 0x01, 0x00};
    const Bytes second = {0x30, 0x14, 0x02, 0x01, 0x01, 0x02, 0x01, 0x01, 0x04, 0x09, 'u',
                          'p',  'd',  'a',  't',  'e',  ' ',  '1',  0x00, 0x02, 0x01, 0xFF};
    EXPECT_EQ(wire,
              with_header(concat({{0x30, 0x31, 0x02, 0x01, 0x01, 0x30, 0x2C}, first, second})));
    UpdateList back;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record), 0u);
    ASSERT_EQ(back.record.count, 2u);
    EXPECT_EQ(back.record.updates[0].number1, 0);
    EXPECT_STREQ(back.record.updates[0].text, "update 0");
    EXPECT_EQ(back.record.updates[1].number1, 1);
    EXPECT_STREQ(back.record.updates[1].text, "update 1");
    EXPECT_EQ(back.record.updates[1].number2, -1);
}

TEST(UpdateList, AnEmptyListIsAnEmptySequenceOfAndDecodesToNothing) {
    UpdateList list;
    const Bytes wire = encode(&list.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    EXPECT_EQ(wire, with_header({0x30, 0x05, 0x02, 0x01, 0x01, 0x30, 0x00}));
    UpdateList back;
    back.record.count = 9;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record), 0u);
    EXPECT_EQ(back.record.count, 0u);
    EXPECT_EQ(back.record.updates, nullptr);
}

TEST(UpdateList, ACountWithANullArrayWritesAnEmptyList) {
    on_both_paths([] {
        ekobj_update_list_s_t list{3, nullptr};
        EXPECT_EQ(encode(&list, KELMASN_TYPE_EKOBJ_UPDATE_LIST),
                  with_header({0x30, 0x05, 0x02, 0x01, 0x01, 0x30, 0x00}));
    });
}

TEST(UpdateList, ElementsCarryingVersionFiveDecode) {
    const Bytes five = {0x02, 0x01, 0x05};
    const Bytes body = concat({update_wire(7, "a", 8, five), update_wire(-9, "bc", 10, five)});
    const Bytes wire = with_header(tlv(0x30, concat({five, tlv(0x30, body)})));
    UpdateList back;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record), 0u);
    ASSERT_EQ(back.record.count, 2u);
    EXPECT_EQ(back.record.updates[0].number1, 7);
    EXPECT_STREQ(back.record.updates[0].text, "a");
    EXPECT_EQ(back.record.updates[0].number2, 8);
    EXPECT_EQ(back.record.updates[1].number1, -9);
    EXPECT_STREQ(back.record.updates[1].text, "bc");
    // Encoded again, every version is 1.
    const Bytes again = encode(&back.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    EXPECT_EQ(
        again,
        with_header(tlv(0x30, concat({kVersion, tlv(0x30, concat({update_wire(7, "a", 8),
                                                                  update_wire(-9, "bc", 10)}))}))));
}

TEST(UpdateList, ExtremeNumbersRoundTrip) {
    const int values[] = {0, 1, -1, 127, 128, -128, -129, INT_MAX, INT_MIN};
    UpdateList list;
    fill_updates(list.record, sizeof values / sizeof values[0]);
    for (unsigned int i = 0; i < list.record.count; ++i) {
        list.record.updates[i].number1 = values[i];
        list.record.updates[i].number2 = values[list.record.count - 1 - i];
    }
    const Bytes wire = encode(&list.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    UpdateList back;
    ASSERT_EQ(decode(wire, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record), 0u);
    ASSERT_EQ(back.record.count, list.record.count);
    for (unsigned int i = 0; i < list.record.count; ++i) {
        SCOPED_TRACE(::testing::Message() << "update " << i);
        EXPECT_EQ(back.record.updates[i].number1, values[i]);
        EXPECT_EQ(back.record.updates[i].number2, values[list.record.count - 1 - i]);
    }
}

TEST(UpdateList, ANumberWiderThan32BitsReadsAsZeroWithoutAFailure) {
    const Bytes wide = {0x02, 0x05, 0x01, 0x00, 0x00, 0x00, 0x00};
    const Bytes update = tlv(0x30, concat({kVersion, wide, octets_with_nul("t"), integer(4)}));
    UpdateList back;
    ASSERT_EQ(decode(with_header(tlv(0x30, concat({kVersion, tlv(0x30, update)}))),
                     KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record),
              0u);
    ASSERT_EQ(back.record.count, 1u);
    EXPECT_EQ(back.record.updates[0].number1, 0);
    EXPECT_STREQ(back.record.updates[0].text, "t");
    EXPECT_EQ(back.record.updates[0].number2, 4);
}

TEST(UpdateList, FreeOfARecordWithACountAndNoArrayDoesNothing) {
    ekobj_update_list_s_t list{5, nullptr};
    EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list), 0u);
    EXPECT_EQ(list.count, 5u);
}

TEST(UpdateList, TheClassesCopyWithoutTheEntryPoints) {
    ekobj_update_list_s_t list{};
    fill_updates(list, 3);
    kelm_asn_ekobj_update_list_t message;
    ASSERT_EQ(message.set_value(list), 0u);
    EXPECT_EQ(message.get_child(1)->get_child_count(), 3u);
    ekobj_update_list_s_t copy{};
    ASSERT_EQ(message.get_value(copy), 0u);
    ASSERT_EQ(copy.count, 3u);
    EXPECT_STREQ(copy.updates[2].text, "update 2");
    kelm_asn_ekobj_update_list_t::free_obj(copy);
    kelm_asn_ekobj_update_list_t::free_obj(list);
}

// --- failures --------------------------------------------------------------------------------

TEST(EkobjFailure, EveryAllocationOfARequestDecodeFailsWithOneLineAndNoLeak) {
    Request request;
    request.record.string1 = dup_text("first");
    request.record.string2 = dup_text("second");
    request.record.body_length = 4;
    request.record.body = dup_bytes({1, 2, 3, 4});
    const Bytes wire = encode(&request.record, KELMASN_TYPE_CERT_REQUEST);
    kelm_asn_buffer_t in{wire.size(), const_cast<unsigned char*>(wire.data())};
    std::set<std::string> lines;
    cert_request_in back{};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            back = cert_request_in{};
            return kelmasn_decode_obj(2, in, KELMASN_TYPE_CERT_REQUEST, &back);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                lines.insert(err);
            } else {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(err, "");
                EXPECT_STREQ(back.string2, "second");
            }
            EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &back), 0u);
        });
    EXPECT_GT(total, 3u);
    const std::string body_line = kelm_test::exception_line(
        "Out of memory get_obj_body()", 0x10652065, "src/asn1/asn_ekobjs.cpp", 88);
    EXPECT_EQ(lines.count(body_line), 1u) << "expected among the lines: " << body_line;
    bool text_line = false;
    for (const std::string& line : lines)
        text_line = text_line || line.rfind("Exception: Out of memory get_strvalue() [10652065] in "
                                            "src/asn1/asnutils.cpp at line ",
                                            0) == 0;
    EXPECT_TRUE(text_line);
}

TEST(EkobjFailure, EveryAllocationOfAListEncodeFailsOrEncodesTheUpdatesCopiedSoFar) {
    UpdateList list;
    fill_updates(list.record, 3);
    kelm_asn_buffer_t out{0, nullptr};
    unsigned long partial = 0;
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmasn_encode_obj(2, &list.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST, out);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (status == 0) {
                // The list's own failure is a status that the encode path does not consult: the
                // updates copied before it are encoded.
                EXPECT_EQ(err, "");
                UpdateList back;
                ASSERT_EQ(kelmasn_decode_obj(2, out, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back.record),
                          0u);
                EXPECT_LE(back.record.count, 3u);
                for (unsigned int i = 0; i < back.record.count; ++i)
                    EXPECT_EQ(std::string(back.record.updates[i].text),
                              "update " + std::to_string(i));
                if (failed && back.record.count < 3)
                    ++partial;
            } else {
                EXPECT_TRUE(failed);
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                EXPECT_EQ(out.data, nullptr);
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_GT(total, 10u);
    EXPECT_GT(partial, 0u) << "some failure must leave a shorter list encoded with status 0";
}

TEST(EkobjFailure, EveryAllocationOfAListDecodeFailsAndThePartialListFreesCleanly) {
    UpdateList list;
    fill_updates(list.record, 3);
    const Bytes wire = encode(&list.record, KELMASN_TYPE_EKOBJ_UPDATE_LIST);
    kelm_asn_buffer_t in{wire.size(), const_cast<unsigned char*>(wire.data())};
    unsigned long silent = 0, reported = 0;
    ekobj_update_list_s_t back{};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            back = ekobj_update_list_s_t{};
            return kelmasn_decode_obj(2, in, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
                if (err.empty())
                    ++silent; // the list's array: a status, not an exception
                else
                    ++reported;
            } else {
                EXPECT_EQ(status, 0u);
                ASSERT_EQ(back.count, 3u);
                EXPECT_STREQ(back.updates[2].text, "update 2");
            }
            EXPECT_EQ(kelmasn_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &back), 0u);
        });
    EXPECT_GT(total, 10u);
    EXPECT_GT(silent, 0u);
    EXPECT_GT(reported, 0u);
}

TEST(EkobjFailure, EveryAllocationOfARequestEncodeFailsWithOneLine) {
    Request request;
    request.record.string1 = dup_text("first");
    request.record.body_length = 2;
    request.record.body = dup_bytes({1, 2});
    kelm_asn_buffer_t out{0, nullptr};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmasn_encode_obj(2, &request.record, KELMASN_TYPE_CERT_REQUEST, out);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                EXPECT_EQ(out.data, nullptr);
            } else {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(err, "");
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_GT(total, 3u);
}

TEST(EkobjFailure, EveryTruncationGivesAStatusAndFreesCleanly) {
    Request request;
    request.record.string1 = dup_text("first");
    request.record.string2 = dup_text("second");
    request.record.body_length = 2;
    request.record.body = dup_bytes({1, 2});
    UpdateList list;
    fill_updates(list.record, 2);
    int number = -77;
    struct Row {
        unsigned int type;
        void* original;
    } rows[] = {
        {KELMASN_TYPE_CERT_REQUEST, &request.record},
        {KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list.record},
        {KELMASN_TYPE_INTEGER, &number},
    };
    for (const Row& row : rows) {
        const Bytes wire = encode(row.original, row.type);
        for (size_t n = 0; n < wire.size(); ++n) {
            SCOPED_TRACE(::testing::Message() << "type " << row.type << " cut to " << n);
            // Room for the largest of the three records, zeroed.
            alignas(8) unsigned char record[sizeof(cert_request_in)] = {};
            EXPECT_NE(decode(Bytes(wire.begin(), wire.begin() + n), row.type, record), 0u);
            EXPECT_EQ(kelmasn_obj_free(2, row.type, record), 0u);
        }
    }
}
