// The source position that each exception of the runtime reports. Callers match the whole
// exception line, "in <file> at line <n>" included, so every throw site keeps its file and line
// whatever becomes of the layout of the sources: each is provoked here and its report compared
// with the line callers see, written out in full.
#include <climits>
#include <cstdlib>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_ekobjs.h"
#include "asn_lists.h"
#include "asn_primitives.h"
#include "asnutils.h"
#include "kelmz_internal.h"

namespace {

// The line that reporting `e` writes to the standard error.
std::string report_line(const kelm_asn_exception& e) {
    ::testing::internal::CaptureStderr();
    kelm_asn_report_exception(e);
    return ::testing::internal::GetCapturedStderr();
}

// Runs `operation`, with its `failing_allocation`th allocation failing when that is not 0, and
// returns the report line of the exception it throws ("" and a test failure when none is thrown).
// The failure is disarmed before the report is written.
template <class Operation>
std::string thrown_line(Operation operation, unsigned long failing_allocation = 0) {
    try {
        kelm_test::ScopedAllocationFailure failure(failing_allocation);
        operation();
    } catch (const kelm_asn_exception& e) {
        return report_line(e);
    }
    ADD_FAILURE() << "no exception";
    return "";
}

// The report lines of the exceptions thrown when each allocation of `operation` fails in turn.
template <class Operation> std::set<std::string> lines_of_each_failure(Operation operation) {
    std::set<std::string> lines;
    for (unsigned long n = 1;; ++n) {
        bool failed = false;
        std::string line;
        try {
            kelm_test::ScopedAllocationFailure failure(n);
            operation();
            failed = kelm_test::failure_delivered();
        } catch (const kelm_asn_exception& e) {
            failed = true;
            line = report_line(e);
        }
        if (!failed)
            return lines;
        EXPECT_NE(line, "") << "allocation " << n << " failed without an exception";
        lines.insert(line);
    }
}

// A composite with its child slots allocated at construction, and a hand on its child array.
class PresizedComposite : public kelm_asn_composite {
  public:
    explicit PresizedComposite(unsigned int capacity)
        : kelm_asn_composite(capacity, KELM_SECURITY_PLAIN) {}
    unsigned int decode_value(kelm_r_buffer_t&, unsigned int) override { return KELM_ASN_OK; }
    unsigned int encode_value(kelm_buffer_t&) const override { return KELM_ASN_OK; }

    void grow_by(unsigned int step) { grow_children(step); }
    void set_child_count(unsigned int count) { child_count = count; }
};

// A value object whose copy and assignment go to those of kelm_asn_object.
class CopyableObject : public kelm_asn_object {
  public:
    CopyableObject() : kelm_asn_object(KELM_SECURITY_PLAIN) {}
    CopyableObject(const CopyableObject& other) : kelm_asn_object(other) {}
    CopyableObject& operator=(const CopyableObject& other) {
        kelm_asn_object::operator=(other);
        return *this;
    }
    unsigned int decode_value(kelm_r_buffer_t&, unsigned int) override { return KELM_ASN_OK; }
    unsigned int encode_value(kelm_buffer_t&) const override { return KELM_ASN_OK; }
};

} // namespace

// --- src/asn1/asn_buffer.cpp -----------------------------------------------------------------

TEST(SourceSites, ABufferGrowthPast32BitsReportsLine136) {
    kelm_buffer_t buffer(KELM_SECURITY_PLAIN);
    EXPECT_EQ(thrown_line([&] { buffer.extend(0xffffffffu); }),
              "Exception: Out of memory in buffer_t::extend [10652065] in "
              "src/asn1/asn_buffer.cpp at line 136\n");
}

TEST(SourceSites, AFailedSecureBufferGrowthReportsLine142) {
    kelm_buffer_t buffer(KELM_SECURITY_SECURE);
    EXPECT_EQ(thrown_line([&] { buffer.extend(1); }, 1),
              "Exception: Out of memory in buffer_t::extend [10652065] in "
              "src/asn1/asn_buffer.cpp at line 142\n");
}

TEST(SourceSites, AFailedPlainBufferGrowthReportsLine151) {
    kelm_buffer_t buffer(KELM_SECURITY_PLAIN);
    EXPECT_EQ(thrown_line([&] { buffer.extend(1); }, 1),
              "Exception: Out of memory in buffer_t::extend [10652065] in "
              "src/asn1/asn_buffer.cpp at line 151\n");
}

// --- src/asn1/asn_choice.cpp -----------------------------------------------------------------

TEST(SourceSites, AChoiceAskedToReadItsOwnContentsReportsLine12) {
    kelm_asn_choice choice;
    unsigned char octet = 0;
    kelm_r_buffer_t input(&octet, 1);
    EXPECT_EQ(thrown_line([&] { choice.decode_value(input, 1); }),
              "Exception: Error: asn_choice::decode_value called [10652197] in "
              "src/asn1/asn_choice.cpp at line 12\n");
}

TEST(SourceSites, AChoiceAskedToWriteItsOwnContentsReportsLine16) {
    kelm_asn_choice choice;
    kelm_buffer_t output(KELM_SECURITY_PLAIN);
    EXPECT_EQ(thrown_line([&] { choice.encode_value(output); }),
              "Exception: Error: asn_choice::encode_value called [10652197] in "
              "src/asn1/asn_choice.cpp at line 16\n");
}

// --- src/asn1/asn_composite.cpp --------------------------------------------------------------

TEST(SourceSites, AFailedAllocationOfTheInitialChildSlotsReportsLine39) {
    EXPECT_EQ(thrown_line([] { PresizedComposite composite(8); }, 1),
              "Exception: Out of memory in asn_composite::asn_composite [10652065] in "
              "src/asn1/asn_composite.cpp at line 39\n");
}

TEST(SourceSites, AChildCountPast32BitsReportsLine52) {
    PresizedComposite composite(0);
    composite.set_child_count(UINT_MAX - 100);
    const std::string line = thrown_line([&] { composite.grow_by(512); });
    composite.set_child_count(0);
    EXPECT_EQ(line, "Exception: Out of memory in asn_composite::register_child [10652065] in "
                    "src/asn1/asn_composite.cpp at line 52\n");
}

TEST(SourceSites, AFailedGrowthOfTheChildArrayReportsLine57) {
    kelm_asn_boolean child;
    kelm_asn_sequence sequence;
    EXPECT_EQ(thrown_line([&] { sequence.register_child(&child); }, 1),
              "Exception: Out of memory in asn_composite::register_child [10652065] in "
              "src/asn1/asn_composite.cpp at line 57\n");
    EXPECT_EQ(sequence.get_child_count(), 0u);
}

// --- src/asn1/asn_lists.h --------------------------------------------------------------------

TEST(SourceSites, AFailedAllocationOfAListElementReportsLine41OfTheListHeader) {
    // SEQUENCE OF BOOLEAN holding TRUE.
    unsigned char der[] = {0x30, 0x03, 0x01, 0x01, 0xFF};
    kelm_asn_sequenceof<kelm_asn_boolean> list;
    kelm_r_buffer_t input(der, sizeof der);
    EXPECT_EQ(thrown_line([&] { list.asnread(input); }, 1),
              "Exception: Out of memory in asn_sequenceof:decode_value [10652065] in "
              "src/asn1/asn_lists.h at line 41\n");
}

// --- src/asn1/asn_object.cpp -----------------------------------------------------------------

TEST(SourceSites, CopyingAValueObjectReportsLine42) {
    const CopyableObject original;
    EXPECT_EQ(thrown_line([&] { CopyableObject copy(original); }),
              "Exception: Can't copy asn_objects [10652197] in src/asn1/asn_object.cpp at line "
              "42\n");
}

TEST(SourceSites, AssigningAValueObjectReportsLine46) {
    const CopyableObject source;
    CopyableObject target;
    EXPECT_EQ(thrown_line([&] { target = source; }),
              "Exception: Can't assign asn_objects [10652197] in src/asn1/asn_object.cpp at "
              "line 46\n");
}

// --- src/asn1/asn_value_internal.h -----------------------------------------------------------

TEST(SourceSites, AFailedAllocationOfATypedDefaultReportsLine30OfTheValueHeader) {
    kelm_asn_boolean value;
    EXPECT_EQ(thrown_line([&] { value.set_default_value(1); }, 1),
              "Exception: Out of memory in asn_object::set_default_value [10652065] in "
              "src/asn1/asn_value_internal.h at line 30\n");
}

// --- src/asn1/asnutils.cpp -------------------------------------------------------------------

TEST(SourceSites, AFailedAllocationOfTheMessageBaseDefaultReportsLine44) {
    kelm_asnbase base(KELM_SECURITY_PLAIN);
    EXPECT_EQ(thrown_line([&] { base.set_default_value(); }, 1),
              "Exception: ASN: Out of memory [10652065] in src/asn1/asnutils.cpp at line 44\n");
}

TEST(SourceSites, AFailedCopyOfOctetStringOctetsReportsLine204) {
    kelmasn_octetstring value;
    const unsigned char octets[] = {1, 2, 3};
    ASSERT_EQ(value.set_value(octets, 3), 0u);
    unsigned char* copy = nullptr;
    unsigned int count = 0;
    EXPECT_EQ(thrown_line([&] { value.get_value(copy, count); }, 1),
              "Exception: ASN: Out of memory [10652065] in src/asn1/asnutils.cpp at line 204\n");
    EXPECT_EQ(copy, nullptr);
}

TEST(SourceSites, AFailedCopyOfATextReportsLine36) {
    kelmasn_octetstring value;
    ASSERT_EQ(value.set_value("abc"), 0u);
    char* text = nullptr;
    EXPECT_EQ(thrown_line([&] { kelm_get_strvalue(value, text); }, 1),
              "Exception: Out of memory get_strvalue() [10652065] in src/asn1/asnutils.cpp at "
              "line 36\n");
    EXPECT_EQ(text, nullptr);
}

TEST(SourceSites, AFailedAllocationOfAnEmptyTextReportsLine46) {
    kelmasn_octetstring value;
    ASSERT_EQ(value.set_value(""), 0u);
    char* text = nullptr;
    EXPECT_EQ(thrown_line([&] { kelm_get_strvalue(value, text); }, 1),
              "Exception: Out of memory get_strvalue() [10652065] in src/asn1/asnutils.cpp at "
              "line 46\n");
    EXPECT_EQ(text, nullptr);
}

// --- src/asn1/asn_ekobjs.cpp -----------------------------------------------------------------

TEST(SourceSites, AFailedCopyOfARequestBodyReportsLine88) {
    kelm_asn_cert_request_in request(KELM_SECURITY_PLAIN);
    char first[] = "first";
    char second[] = "second";
    unsigned char body[] = {1, 2, 3, 4};
    cert_request_in record{};
    record.string1 = first;
    record.string2 = second;
    record.body_length = sizeof body;
    record.body = body;
    ASSERT_EQ(request.set_value(record), 0u);
    // Each allocation of the read fails in turn: the two texts, then the body.
    const std::set<std::string> lines = lines_of_each_failure([&] {
        cert_request_in back{};
        try {
            request.get_value(back);
        } catch (...) {
            kelm_asn_cert_request_in::free_obj(back);
            throw;
        }
        kelm_asn_cert_request_in::free_obj(back);
    });
    EXPECT_EQ(lines, (std::set<std::string>{
                         "Exception: Out of memory get_strvalue() [10652065] in "
                         "src/asn1/asnutils.cpp at line 36\n",
                         "Exception: Out of memory get_obj_body() [10652065] in "
                         "src/asn1/asn_ekobjs.cpp at line 88\n",
                     }));
}

// --- src/asn1/kelmz_internal.cpp -------------------------------------------------------------

TEST(SourceSites, AConvertedTextPast32BitsReportsLine53) {
    // The result is sized before any input is read: the length alone makes the conversion fail.
    const char text[] = "a";
    EXPECT_EQ(thrown_line([&] {
                  kelmz_detail::utf8_to_local(text, static_cast<size_t>(UINT_MAX), "UTF-8",
                                              kelmz_detail::Route::Fastest);
              }),
              "Exception: Converted text would not fit in 32 bits [10652065] in "
              "src/asn1/kelmz_internal.cpp at line 53\n");
}

TEST(SourceSites, AFailedGrowthOfAConvertedTextReportsLine62) {
    const char text[] = "abc";
    EXPECT_EQ(
        thrown_line(
            [&] { kelmz_detail::utf8_to_local(text, 3, "UTF-8", kelmz_detail::Route::Fastest); },
            1),
        "Exception: Out of memory converting text between the local code set and UTF-8 "
        "[10652065] in src/asn1/kelmz_internal.cpp at line 62\n");
}

// iconv_open allocates inside the C library, out of reach of the tests' failure injection: the
// position its failure reports is checked on the site itself.
TEST(SourceSites, AnIconvDescriptorOpenedWithoutMemoryReportsLine88) {
    EXPECT_STREQ(kelmz_detail::kIconvOpenSite.file, "src/asn1/kelmz_internal.cpp");
    EXPECT_EQ(kelmz_detail::kIconvOpenSite.line, 88);
}
