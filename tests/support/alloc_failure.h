// Allocation counting and failure injection for tests and benchmarks.
//
// Every allocation the calling thread makes through malloc, calloc, realloc or operator new is
// counted; an armed countdown makes the Nth of them fail (malloc and friends return null, plain
// operator new throws std::bad_alloc, nothrow operator new returns null). The library's own calls
// to the C allocator are redirected here when a program links this support library (the link
// wraps malloc, calloc and realloc), so every path of the runtime that allocates can be driven
// through its failure.
#ifndef KELMASN_TEST_ALLOC_FAILURE_H
#define KELMASN_TEST_ALLOC_FAILURE_H

#include <functional>

namespace kelm_test {

// Allocations made by the calling thread since the last reset.
unsigned long allocation_count();
void reset_allocation_count();

// Makes the nth allocation of the calling thread from now on fail (n >= 1); 0 disarms.
void fail_nth_allocation(unsigned long n);
// True when an armed failure has been delivered since it was armed.
bool failure_delivered();

// Disarms any pending failure when it goes out of scope.
class ScopedAllocationFailure {
  public:
    explicit ScopedAllocationFailure(unsigned long n) { fail_nth_allocation(n); }
    ~ScopedAllocationFailure() { fail_nth_allocation(0); }
    ScopedAllocationFailure(const ScopedAllocationFailure&) = delete;
    ScopedAllocationFailure& operator=(const ScopedAllocationFailure&) = delete;
};

// Runs `operation` once for each allocation it makes, with that allocation failing, until a run
// completes without a failure being delivered. `on_failed_run(n)` is called after the run in which
// allocation n failed, so the caller can check what it left behind. Returns the number of
// allocations of a complete run.
unsigned long for_each_allocation_failure(const std::function<void()>& operation,
                                          const std::function<void(unsigned long)>& on_failed_run);

} // namespace kelm_test

#endif
