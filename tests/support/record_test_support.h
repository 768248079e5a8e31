// What the tests of records share: headers and buffers over test bytes, encoding and exact-size
// decoding through the typed entry points, the exact exception line, one loop that fails every
// allocation of a call in turn, runs on a thread with a small stack, and small builders of the
// records that many families nest.
//
// Ownership: the buffers made here point into the test's own vectors and are never released
// with kelm_asn_buffer_free; records built here are malloc'ed throughout, as a caller's are, and
// are released with kelmAsnFreeObj (kelm_record_holder does it on scope exit).
#ifndef KELMASN_TEST_RECORD_TEST_SUPPORT_H
#define KELMASN_TEST_RECORD_TEST_SUPPORT_H

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "asn_record.h"
#include "kelm/kelm_record_holder.h"
#include "kelm/kelmasn.h"

namespace kelm_test {

using Bytes = std::vector<unsigned char>;
using RecordBytes = Bytes;

// --- buffers -----------------------------------------------------------------------------------

// The four-byte header 04 v AC DC in front of `body` (version 2 unless given).
inline Bytes with_header(const Bytes& body, unsigned char version = 0x02) {
    Bytes out = {0x04, version, 0xAC, 0xDC};
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// A buffer record over the test's own bytes (not to be released with kelm_asn_buffer_free).
inline kelm_asn_buffer_t buffer_over(Bytes& bytes) {
    return kelm_asn_buffer_t{bytes.size(), bytes.empty() ? nullptr : bytes.data()};
}

inline Bytes bytes_of(const kelm_asn_buffer_t& buffer) {
    return Bytes(buffer.data, buffer.data + buffer.length);
}

// --- the typed entry points --------------------------------------------------------------------

// Encodes `record` with kelmAsnEncodeObj; `status` receives the result. The buffer is released.
template <class Record> Bytes encode_record(Record& record, unsigned int& status) {
    kelm_asn_buffer_t out{0, nullptr};
    status = kelmAsnEncodeObj(out, record);
    Bytes bytes = out.data != nullptr ? bytes_of(out) : Bytes();
    kelm_asn_buffer_free(out);
    return bytes;
}

// Encodes `record` with the plain typed entry point and returns the bytes (none on failure, which
// the expectation reports).
template <class Record> Bytes encoded(Record& record) {
    unsigned int status = 0;
    Bytes bytes = encode_record(record, status);
    EXPECT_EQ(status, 0u);
    return bytes;
}

// Decodes `bytes` with kelmAsnDecodeObj, from a copy in a block of exactly their size, so that
// the sanitizers catch any read past the end.
template <class Record> unsigned int decode_record(const Bytes& bytes, Record& record) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_asn_buffer_t in{bytes.size(), bytes.empty() ? nullptr : exact.get()};
    return kelmAsnDecodeObj(in, record);
}

// --- the exception line ------------------------------------------------------------------------

// The exact line an entry point writes for an exception of the runtime's family.
inline std::string exception_line(const std::string& message, unsigned int status,
                                  const std::string& file, int line) {
    char code[9];
    std::snprintf(code, sizeof code, "%8.8x", status);
    return "Exception: " + message + " [" + code + "] in " + file + " at line " +
           std::to_string(line) + "\n";
}

// The line of an exhausted-memory exception thrown at `file`:`line`.
inline std::string memory_exception_line(const std::string& message, const std::string& file,
                                         int line) {
    return exception_line(message, 0x10652065u, file, line);
}

// The line of a memory exception that the record mechanism throws for record type `type`, at the
// site the type declares (each type's site is checked against its literal in record_sites_test).
inline std::string memory_error_line(const kelm_record_type& type, const char* message) {
    return memory_exception_line(message, type.source, type.source_line);
}

// --- every allocation failed in turn -----------------------------------------------------------

// Runs `operation` with its nth allocation failing, for n = 1, 2, ... until a run completes
// without a failure; `check(status, stderr text, failed)` judges each run. Returns the number of
// allocations of a complete run. The standard error is captured outside the failing window, so
// that the capture's own allocations are never the failing ones.
template <class Operation, class Check>
unsigned long each_allocation_failure(Operation operation, Check check) {
    for (unsigned long n = 1;; ++n) {
        SCOPED_TRACE(::testing::Message() << "allocation " << n << " fails");
        ::testing::internal::CaptureStderr();
        unsigned int status;
        bool failed;
        {
            ScopedAllocationFailure failure(n);
            status = operation();
            failed = failure_delivered();
        }
        const std::string err = ::testing::internal::GetCapturedStderr();
        check(status, err, failed);
        if (!failed)
            return n - 1;
    }
}

// As each_allocation_failure, for a call that must return the out-of-memory status 0x10652065
// (or, when `may_succeed` is true, succeed silently) and write at most one line whenever an
// allocation fails, and succeed silently when none does. `after(status, failed)` runs after each
// run, outside the failing window (to check and free what the run left). The distinct non-empty
// stderr texts of the failed runs are returned.
inline std::set<std::string>
failure_lines(const std::function<unsigned int()>& operation,
              const std::function<void(unsigned int status, bool failed)>& after,
              bool may_succeed = false) {
    std::set<std::string> lines;
    each_allocation_failure(operation,
                            [&](unsigned int status, const std::string& err, bool failed) {
                                after(status, failed);
                                if (!failed) {
                                    EXPECT_EQ(status, 0u);
                                    EXPECT_EQ(err, "");
                                    return;
                                }
                                if (!(may_succeed && status == 0 && err.empty())) {
                                    EXPECT_EQ(status, 0x10652065u) << err;
                                }
                                EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
                                if (!err.empty())
                                    lines.insert(err);
                            });
    return lines;
}

// failure_lines with an `after()` that takes nothing.
template <class Operation, class After>
std::set<std::string> lines_of_each_failure(Operation operation, After after) {
    return failure_lines(operation, [&](unsigned int, bool) { after(); });
}

// --- runs on a small stack ---------------------------------------------------------------------

// Runs `job` on a new thread whose stack is 256 KiB, and waits for it.
inline void run_on_small_stack(const std::function<void()>& job) {
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstacksize(&attr, 256 * 1024);
    pthread_t thread;
    auto* copy = new std::function<void()>(job);
    const int created = pthread_create(
        &thread, &attr,
        [](void* arg) -> void* {
            std::unique_ptr<std::function<void()>> run(static_cast<std::function<void()>*>(arg));
            (*run)();
            return nullptr;
        },
        copy);
    EXPECT_EQ(created, 0);
    if (created == 0)
        pthread_join(thread, nullptr);
    else
        delete copy;
    pthread_attr_destroy(&attr);
}

// --- records -----------------------------------------------------------------------------------

// A malloc'ed copy of `text`, as a caller's record holds it.
inline char* dup_text(const std::string& text) {
    char* copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

inline std::string random_text(std::mt19937& rng, size_t max_length) {
    static const char letters[] =
        "abcdefghijklmnopqrstuvwxyz ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789=@.";
    std::string text(rng() % (max_length + 1), ' ');
    for (char& c : text)
        c = letters[rng() % (sizeof letters - 1)];
    return text;
}

// Deep equality of texts: null and "" are different.
inline bool same_text(const char* a, const char* b) {
    if (a == nullptr || b == nullptr)
        return a == b;
    return std::strcmp(a, b) == 0;
}

inline bool same_bytes(const unsigned char* a, unsigned int na, const unsigned char* b,
                       unsigned int nb) {
    return na == nb && (na == 0 || std::memcmp(a, b, na) == 0);
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
