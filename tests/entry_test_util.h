// Helpers for the tests of record families through their entry points: headers, buffers over
// test bytes, the exception line, and every allocation of a call failed in turn.
#ifndef KELMASN_TEST_ENTRY_TEST_UTIL_H
#define KELMASN_TEST_ENTRY_TEST_UTIL_H

#include <cstdio>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "alloc_failure.h"
#include "kelm/kelmasn.h"

namespace kelm_test {

// The four-byte header 04 v AC DC in front of `body`.
inline std::vector<unsigned char> with_header(const std::vector<unsigned char>& body,
                                              unsigned char version = 0x02) {
    std::vector<unsigned char> out = {0x04, version, 0xAC, 0xDC};
    out.insert(out.end(), body.begin(), body.end());
    return out;
}

// A buffer record over the test's own bytes (not to be released with kelm_asn_buffer_free).
inline kelm_asn_buffer_t buffer_over(std::vector<unsigned char>& bytes) {
    return kelm_asn_buffer_t{bytes.size(), bytes.empty() ? nullptr : bytes.data()};
}

// The exact line an entry point writes for an exception of the runtime's family.
inline std::string exception_line(const std::string& message, unsigned int status,
                                  const std::string& file, int line) {
    char code[9];
    std::snprintf(code, sizeof code, "%8.8x", status);
    return "Exception: " + message + " [" + code + "] in " + file + " at line " +
           std::to_string(line) + "\n";
}

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

} // namespace kelm_test

#endif
