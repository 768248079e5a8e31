// Helpers for the tests of record types through their typed entry points: buffers with the
// header, exact-size decoding, the exception line, failure injection with stderr captured
// outside the failing window, and runs on a thread with a small stack.
#ifndef KELMASN_TEST_TYPED_RECORD_TEST_UTIL_H
#define KELMASN_TEST_TYPED_RECORD_TEST_UTIL_H

#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "kelm/kelmasn.h"

namespace kelm_test {

using RecordBytes = std::vector<unsigned char>;

// The four-byte header of version 2 in front of `body`.
inline RecordBytes with_header(const RecordBytes& body) {
    RecordBytes out = {0x04, 0x02, 0xAC, 0xDC};
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// Encodes `record` with kelmAsnEncodeObj; `status` receives the result. The buffer is released.
template <class Record> RecordBytes encode_record(Record& record, unsigned int& status) {
    kelm_asn_buffer_t out{0, nullptr};
    status = kelmAsnEncodeObj(out, record);
    RecordBytes bytes(out.data, out.data + out.length);
    kelm_asn_buffer_free(out);
    return bytes;
}

// Decodes `bytes` (copied into a block of exactly their size, so that the sanitizers catch any
// read past the end) with kelmAsnDecodeObj.
template <class Record> unsigned int decode_record(const RecordBytes& bytes, Record& record) {
    std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    kelm_asn_buffer_t in{bytes.size(), exact.get()};
    return kelmAsnDecodeObj(in, record);
}

// The line that the entry points write for an exhausted-memory exception.
inline std::string memory_exception_line(const char* message, const char* source, int line) {
    char text[256];
    std::snprintf(text, sizeof text, "Exception: %s [10652065] in %s at line %d\n", message, source,
                  line);
    return text;
}

// Runs `operation` with its nth allocation failing, for n = 1, 2, ... until a run completes
// without a failure; `after(status, failed)` runs after each run, outside the failing window
// (to check and free what the run left). Every failed run must return the out-of-memory status
// (or, when `may_succeed` is true, succeed silently) and write at most one line; the distinct
// non-empty stderr texts of the failed runs are returned.
inline std::set<std::string>
failure_lines(const std::function<unsigned int()>& operation,
              const std::function<void(unsigned int status, bool failed)>& after,
              bool may_succeed = false) {
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
        after(status, failed);
        if (!failed) {
            EXPECT_EQ(status, 0u);
            EXPECT_EQ(err, "");
            return lines;
        }
        if (!(may_succeed && status == 0 && err.empty())) {
            EXPECT_EQ(status, 0x10652065u) << err;
        }
        EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
        if (!err.empty())
            lines.insert(err);
    }
}

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

} // namespace kelm_test

#endif
