// A text kept in an OCTET STRING together with its NUL, in a record type of its own: among the
// registered types only the records reached by type code hold one, and those take the type-code
// codec, so this type declared here is what takes the record codec's octet-text path. Both paths
// must write the element as its definition says and read it back alike.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "asn_record.h"
#include "asn_record_declare.h"
#include "asn_record_direct.h"
#include "direct_codec_properties.h"

// At namespace scope, so that the record type's traits have the linkage of the library's own.
struct noted_s_t {
    char* note;     // OCTET STRING: the text and its NUL
    int32_t number; // INTEGER
    char* label;    // UTF8String
};

KELM_MESSAGE_CLASS(asn_noted_t, noted_s_t, kelm_noted_type);
KELM_DEFINE_RECORD_TYPE(kelm_noted_type, asn_noted_t, noted_s_t,
                        kelm_site("tests/records/direct_codec_octet_text_test.cpp", 1),
                        kelm_no_quirks, KELM_OCTET_TEXT(note), KELM_FIELD(number),
                        KELM_FIELD(label));

namespace {

using Bytes = std::vector<unsigned char>;

struct Encoding {
    bool direct = false;
    unsigned int status = 0;
    Bytes bytes;
};

Encoding encode(const noted_s_t& record, bool direct) {
    Encoding result;
    kelm_asn_buffer_t out{0, nullptr};
    if (direct)
        result.direct = kelm_direct_encode(kelm_noted_type, &record, out, 2, KELM_SECURITY_PLAIN,
                                           result.status);
    else
        result.status =
            kelm_asn_record::encode(kelm_noted_type, &record, out, 2, KELM_SECURITY_PLAIN);
    if (out.data != nullptr)
        result.bytes.assign(out.data, out.data + out.length);
    std::free(out.data);
    return result;
}

// A record decoded from `bytes` one way; released when it goes.
struct Decoding {
    Decoding(const Bytes& bytes, bool direct) {
        std::memset(&record, 0, sizeof record);
        Bytes copy = bytes;
        const kelm_asn_buffer_t in{copy.size(), copy.empty() ? nullptr : copy.data()};
        ::testing::internal::CaptureStderr();
        if (direct)
            taken =
                kelm_direct_decode(kelm_noted_type, &record, in, 2, KELM_SECURITY_PLAIN, status);
        if (!taken)
            status = kelm_asn_record::decode(kelm_noted_type, &record, in, 2, KELM_SECURITY_PLAIN);
        err = ::testing::internal::GetCapturedStderr();
    }
    ~Decoding() { kelm_asn_record::free_record(kelm_noted_type, &record); }
    Decoding(const Decoding&) = delete;
    Decoding& operator=(const Decoding&) = delete;

    noted_s_t record;
    bool taken = false;
    unsigned int status = 0;
    std::string err;
};

const unsigned char* raw(const noted_s_t& record) {
    return reinterpret_cast<const unsigned char*>(&record);
}

} // namespace

TEST(DirectCodecOctetText, ATextIsWrittenWithItsNulInAnOctetStringAndANullOneAsTheNulAlone) {
    char note[] = "ab", label[] = "x";
    const noted_s_t filled{note, 5, label};
    const noted_s_t null_note{nullptr, 5, label};
    // 30 0B { 04 03 'a' 'b' 00, 02 01 05, 0C 01 'x' } and 30 09 { 04 01 00, 02 01 05, 0C 01 'x' }.
    const Bytes expected_filled = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0B, 0x04, 0x03, 0x61,
                                   0x62, 0x00, 0x02, 0x01, 0x05, 0x0C, 0x01, 0x78};
    const Bytes expected_null = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x09, 0x04, 0x01,
                                 0x00, 0x02, 0x01, 0x05, 0x0C, 0x01, 0x78};
    for (const bool direct : {false, true}) {
        SCOPED_TRACE(direct ? "direct codec" : "object path");
        const Encoding a = encode(filled, direct);
        EXPECT_EQ(a.direct, direct);
        EXPECT_EQ(a.status, 0u);
        EXPECT_EQ(a.bytes, expected_filled);
        const Encoding b = encode(null_note, direct);
        EXPECT_EQ(b.direct, direct);
        EXPECT_EQ(b.status, 0u);
        EXPECT_EQ(b.bytes, expected_null);
    }
}

TEST(DirectCodecOctetText, TheTextIsReadBackWithItsNulByBothPaths) {
    char note[] = "note text", label[] = "label";
    const noted_s_t record{note, -7, label};
    const Bytes wire = encode(record, false).bytes;
    const Decoding reference(wire, false), direct(wire, true);
    EXPECT_TRUE(direct.taken);
    ASSERT_EQ(reference.status, 0u);
    ASSERT_EQ(direct.status, 0u);
    ASSERT_NE(direct.record.note, nullptr);
    EXPECT_STREQ(direct.record.note, "note text");
    EXPECT_EQ(direct.record.number, -7);
    EXPECT_STREQ(direct.record.label, "label");
    EXPECT_EQ(kelmasn_fuzz::decoded_records_differ(kelm_noted_type, raw(reference.record),
                                                   raw(direct.record)),
              "");
}

// Every prefix of an encoding, an OCTET STRING without its NUL, an empty one, and one in
// constructed form: the same status, stderr text and record on both paths.
TEST(DirectCodecOctetText, EveryTruncationAndUnusualOctetStringDecodesAsTheObjectPathDoes) {
    char note[] = "kept", label[] = "l";
    const Bytes wire = encode(noted_s_t{note, 300, label}, false).bytes;
    std::vector<Bytes> inputs;
    for (size_t n = 0; n <= wire.size(); ++n)
        inputs.emplace_back(wire.begin(), wire.begin() + static_cast<long>(n));
    const Bytes header = {0x04, 0x02, 0xAC, 0xDC};
    const std::vector<Bytes> bodies = {
        {0x30, 0x0A, 0x04, 0x02, 0x61, 0x62, 0x02, 0x01, 0x05, 0x0C, 0x01, 0x78},
        {0x30, 0x08, 0x04, 0x00, 0x02, 0x01, 0x05, 0x0C, 0x01, 0x78},
        {0x30, 0x0E, 0x24, 0x06, 0x04, 0x01, 0x61, 0x04, 0x01, 0x00, 0x02, 0x01, 0x05, 0x0C, 0x01,
         0x78}};
    for (const Bytes& body : bodies) {
        Bytes input = header;
        input.insert(input.end(), body.begin(), body.end());
        inputs.push_back(input);
    }
    for (const Bytes& input : inputs) {
        SCOPED_TRACE(::testing::Message() << input.size() << " bytes");
        const Decoding reference(input, false), direct(input, true);
        EXPECT_EQ(direct.status, reference.status);
        EXPECT_EQ(direct.err, reference.err);
        EXPECT_EQ(kelmasn_fuzz::decoded_records_differ(kelm_noted_type, raw(reference.record),
                                                       raw(direct.record)),
                  "");
    }
}
