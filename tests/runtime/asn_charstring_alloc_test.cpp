// Character strings when memory runs out: every allocation of a set, convert and encode and of a
// decode and read fails in turn; each failure surfaces as the memory exception, nothing leaks
// (the sanitizer build checks), and a failed setter or conversion leaves the value as it was.
#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_test_util.h"
#include "charstring_test_util.h"

using charstring_test::Bytes;
using charstring_test::c_text;
using charstring_test::stored;

namespace {

// Long enough that every buffer on the way grows more than once; the equals sign sends it to
// T.61.
std::string long_text() {
    std::string text;
    for (int i = 0; i < 300; ++i)
        text += "cn=user" + std::to_string(i) + ",";
    return text;
}

// Runs `operation`, counting the runs that ended in an exception of exhausted memory.
unsigned long count_failures(const std::function<void()>& operation) {
    unsigned long failures = 0;
    const unsigned long total = kelm_test::for_each_allocation_failure(
        [&] {
            try {
                operation();
            } catch (const kelm_asn_memexception& e) {
                ++failures;
                EXPECT_EQ(e.status, 0x10652065u);
                EXPECT_STREQ(e.message, "Out of memory in buffer_t::extend");
            } catch (const std::bad_alloc&) {
                ++failures; // an allocation of the test's own helpers
            }
        },
        [](unsigned long) {});
    EXPECT_EQ(failures, total) << "every injected failure surfaces as an exception";
    return total;
}

} // namespace

TEST(CharStringAllocationFailure, EveryAllocationOfASetConvertAndEncodeFailsCleanly) {
    std::vector<char> text = c_text(long_text());
    const unsigned long total = count_failures([&] {
        kelm_asn_directoryString value;
        ASSERT_EQ(value.set_value_C(text.data()), 0u);
        ASSERT_EQ(value.get_codeset(), 20u);
        const Bytes t61 = kelm_test::encode(value);
        ASSERT_EQ(t61.size(), 4 + text.size() - 1);
        ASSERT_EQ(value.convert2BMP(), 0u);
        const Bytes bmp = kelm_test::encode(value);
        ASSERT_EQ(bmp.size(), 4 + 2 * (text.size() - 1));
        kelm_buffer_t local;
        ASSERT_EQ(value.get_value_C(local, '?'), 0u);
        ASSERT_EQ(local.used(), text.size() - 1);
    });
    EXPECT_GT(total, 8u);
}

TEST(CharStringAllocationFailure, EveryAllocationOfADecodeAndReadFailsCleanly) {
    Bytes ucs2;
    for (char c : long_text()) {
        ucs2.push_back(0);
        ucs2.push_back(static_cast<unsigned char>(c));
    }
    const Bytes wire = kelm_test::tlv(0x1E, ucs2);
    const unsigned long total = count_failures([&] {
        kelm_asn_directoryString value;
        ASSERT_EQ(kelm_test::decode(value, wire), 0u);
        ASSERT_EQ(value.get_codeset(), 30u);
        kelm_buffer_t utf8, t61;
        ASSERT_EQ(value.get_value_UTF8(utf8), 0u);
        ASSERT_EQ(utf8.used(), ucs2.size() / 2);
        ASSERT_EQ(value.get_value_T61(t61), 0u);
        ASSERT_EQ(kelm_test::encode(value), wire);
    });
    EXPECT_GT(total, 4u);
}

TEST(CharStringAllocationFailure, AFailedSetOrConversionLeavesTheValueAsItWas) {
    std::vector<char> text = c_text(long_text());
    const std::function<unsigned int(kelm_asn_directoryString&)> operations[] = {
        [&](kelm_asn_directoryString& v) { return v.set_value_C(text.data()); },
        [&](kelm_asn_directoryString& v) { return v.set_value_IA5(text.data(), 1); },
        [&](kelm_asn_directoryString& v) { return v.set_value_UTF8(text.data()); },
        [](kelm_asn_directoryString& v) { return v.convert2Univ(); },
    };
    for (size_t op = 0; op < 4; ++op) {
        for (unsigned long n = 1;; ++n) {
            SCOPED_TRACE(::testing::Message() << "operation " << op << ", allocation " << n);
            kelm_asn_directoryString value;
            char keep[] = "keep";
            ASSERT_EQ(value.set_value_C(keep), 0u);
            bool threw = false, delivered = false;
            unsigned int status = 0;
            {
                kelm_test::ScopedAllocationFailure failure(n);
                try {
                    status = operations[op](value);
                } catch (const kelm_asn_memexception&) {
                    threw = true;
                }
                delivered = kelm_test::failure_delivered();
            }
            if (!delivered) {
                EXPECT_EQ(status, 0u);
                EXPECT_GT(n, 1u) << "the operation allocates";
                break;
            }
            EXPECT_TRUE(threw);
            EXPECT_EQ(value.get_codeset(), 19u);
            EXPECT_EQ(value.is_present(), 1);
            EXPECT_EQ(stored(value), (Bytes{'k', 'e', 'e', 'p'}));
            EXPECT_EQ(kelm_test::encode(value), (Bytes{0x13, 0x04, 'k', 'e', 'e', 'p'}));
        }
    }
}
