// Helpers shared by the tests of the record families: buffers with the typed header, the exact
// standard-error line of a memory exception, runs with each allocation failing in turn, and
// small builders of the records that many families nest.
#ifndef KELMASN_TEST_RECORD_FAMILY_TEST_UTIL_H
#define KELMASN_TEST_RECORD_FAMILY_TEST_UTIL_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_record.h"
#include "kelm/kelmasn.h"
#include "record_test_util.h"

namespace kelm_test {

using Bytes = std::vector<unsigned char>;

// The four header bytes of the typed entry points (version 2), then `body`.
inline Bytes with_header(const Bytes& body) {
    Bytes out = {0x04, 0x02, 0xAC, 0xDC};
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// A buffer record over `bytes`, which stay owned by the vector.
inline kelm_asn_buffer_t buffer_over(Bytes& bytes) {
    return kelm_asn_buffer_t{bytes.size(), bytes.data()};
}

// Encodes `record` with the plain typed entry point and returns the bytes (none on failure, which
// the expectation reports).
template <class Record> Bytes encoded(Record& record) {
    kelm_asn_buffer_t out{0, nullptr};
    EXPECT_EQ(kelmAsnEncodeObj(out, record), 0u);
    Bytes bytes = out.data != nullptr ? bytes_of(out) : Bytes();
    kelm_asn_buffer_free(out);
    return bytes;
}

// Decodes `bytes` into `record` with the plain typed entry point; the status of the call.
template <class Record> unsigned int decode_bytes(Bytes bytes, Record& record) {
    kelm_asn_buffer_t in = buffer_over(bytes);
    return kelmAsnDecodeObj(in, record);
}

// The line that the entry points write for a memory exception thrown by the mechanism on behalf
// of record type `type`.
inline std::string memory_error_line(const kelm_record_type& type, const char* message) {
    char status[16];
    std::snprintf(status, sizeof status, "%8.8x", 0x10652065u);
    return std::string("Exception: ") + message + " [" + status + "] in " + type.source +
           " at line " + std::to_string(type.source_line) + "\n";
}

// Runs `operation` with its nth allocation failing, for n = 1, 2, ... until a run completes
// without a failure. Every failed run must return 0x10652065 and write at most one line; the
// distinct lines are returned. `after` is called after every run (failed or not) to release what
// the run left. The standard error is captured outside the failing window.
template <class Operation, class After>
std::set<std::string> lines_of_each_failure(Operation operation, After after) {
    std::set<std::string> lines;
    for (unsigned long n = 1;; ++n) {
        SCOPED_TRACE(::testing::Message() << "allocation " << n);
        ::testing::internal::CaptureStderr();
        unsigned int status;
        bool failed;
        {
            ScopedAllocationFailure failure(n);
            status = operation();
            failed = failure_delivered();
        }
        const std::string err = ::testing::internal::GetCapturedStderr();
        after();
        if (!failed) {
            EXPECT_EQ(status, 0u);
            EXPECT_EQ(err, "");
            return lines;
        }
        EXPECT_EQ(status, 0x10652065u) << err;
        EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
        if (!err.empty())
            lines.insert(err);
    }
}

// A malloc'ed array of malloc'ed copies of `texts`, as a caller's record holds a name list.
inline char** text_array(const std::vector<std::string>& texts) {
    if (texts.empty())
        return nullptr;
    char** array = static_cast<char**>(std::calloc(texts.size(), sizeof(char*)));
    for (size_t i = 0; i < texts.size(); ++i)
        array[i] = dup_text(texts[i]);
    return array;
}

// An attribute list of one attribute `name` with one text value `text`, malloc'ed throughout.
inline attrlist_s_t one_attribute(const std::string& name, const std::string& text) {
    attrlist_s_t list{};
    list.attr_count = 1;
    list.attrs = static_cast<attr_s_t*>(std::calloc(1, sizeof(attr_s_t)));
    list.attrs[0].name = dup_text(name);
    list.attrs[0].value_count = 1;
    list.attrs[0].values = static_cast<value_s_t*>(std::calloc(1, sizeof(value_s_t)));
    list.attrs[0].values[0].value_type = 1;
    list.attrs[0].values[0].str_value = dup_text(text);
    return list;
}

} // namespace kelm_test

#endif
