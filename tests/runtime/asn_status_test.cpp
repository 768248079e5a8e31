// The descriptions of the status codes.
#include <string>

#include <gtest/gtest.h>

#include "asn_status.h"

namespace {

struct Described {
    unsigned int status;
    const char* text;
};

} // namespace

// Each code's description is the meaning the code stands for.
TEST(StatusText, EachCodeIsDescribedByItsMeaning) {
    const Described rows[] = {
        {0x10652065u, "out of memory"},
        {0x10652197u, "unsupported operation"},
        {0x10652198u, "input ends too early"},
        {0x10652199u, "integer out of range"},
        {0x1065219Bu, "bad encoding"},
        {0x1065219Cu, "index out of range"},
        {0x1065219Du, "indefinite length not permitted"},
        {0x1065219Eu, "constructed encoding not permitted"},
        {0x1065219Fu, "primitive encoding not permitted"},
        {0x106521A0u, "value missing"},
        {0x106521A2u, "bad BIT STRING contents"},
        {0x106521A3u, "bad BIT STRING contents"},
        {0x106521A4u, "unexpected tag"},
        {0x106521A5u, "unconsumed contents in a SEQUENCE"},
        {0x106521A7u, "choice alternative number out of range"},
        {0x106521A8u, "choice with nothing selected"},
        {0x106521A9u, "ANY without a value"},
        {0x106521ABu, "character not representable in the target code set"},
        {0x106521ACu, "code set not accepted"},
    };
    for (const Described& row : rows) {
        SCOPED_TRACE(::testing::Message() << "status 0x" << std::hex << row.status);
        EXPECT_STREQ(kelm_asn_status_text(row.status), row.text);
    }
}

// Every code the library returns has a description of its own; any other value is unknown.
TEST(StatusText, EveryCodeOfTheLibraryIsDescribedAndNoOtherValue) {
    const unsigned int known[] = {0,           0x10652065u, 0x10652196u, 0x10652197u, 0x10652198u,
                                  0x10652199u, 0x1065219Au, 0x1065219Bu, 0x1065219Cu, 0x1065219Du,
                                  0x1065219Eu, 0x1065219Fu, 0x106521A0u, 0x106521A2u, 0x106521A3u,
                                  0x106521A4u, 0x106521A5u, 0x106521A7u, 0x106521A8u, 0x106521A9u,
                                  0x106521ABu, 0x106521ACu, 0xFFFFFFFFu};
    for (unsigned int status : known) {
        SCOPED_TRACE(::testing::Message() << "status 0x" << std::hex << status);
        const char* text = kelm_asn_status_text(status);
        ASSERT_NE(text, nullptr);
        EXPECT_STRNE(text, "");
        EXPECT_STRNE(text, "unknown status");
    }
    for (unsigned int status : {0x10652064u, 0x10652066u, 0x10652195u, 0x106521A1u, 0x106521A6u,
                                0x106521AAu, 0x106521ADu, 0x00000001u, 0xFFFFFFFEu}) {
        SCOPED_TRACE(::testing::Message() << "status 0x" << std::hex << status);
        EXPECT_STREQ(kelm_asn_status_text(status), "unknown status");
    }
}
