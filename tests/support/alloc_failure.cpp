// Allocation counting and failure injection: wrapped C allocator entry points and replaced
// global operator new/delete.
#include "alloc_failure.h"

#include <cstdlib>
#include <new>

extern "C" void* __real_malloc(size_t size);
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __real_realloc(void* block, size_t size);

namespace {

thread_local unsigned long counted = 0;
thread_local unsigned long countdown = 0; // 0: disarmed
thread_local bool delivered = false;

// Counts one allocation; true when this one must fail.
bool next_allocation_fails() {
    ++counted;
    if (countdown == 0)
        return false;
    if (--countdown != 0)
        return false;
    delivered = true;
    return true;
}

void* allocate(size_t size) {
    if (next_allocation_fails())
        return nullptr;
    return __real_malloc(size == 0 ? 1 : size);
}

// One zero octet past the size asked for, so that a test reading a copied text that the library
// deliberately leaves without its NUL (an OCTET STRING text stored without one) stops there, the
// same way on every run and under the sanitizers, rather than reading what follows the block.
void* terminated(void* block, size_t size) {
    if (block != nullptr)
        static_cast<unsigned char*>(block)[size] = 0;
    return block;
}

} // namespace

extern "C" void* __wrap_malloc(size_t size) {
    return next_allocation_fails() ? nullptr : terminated(__real_malloc(size + 1), size);
}

extern "C" void* __wrap_calloc(size_t count, size_t size) {
    if (next_allocation_fails())
        return nullptr;
    if (size != 0 && count > (static_cast<size_t>(-1) - 1) / size)
        return nullptr; // as calloc refuses a product that overflows
    return __real_calloc(1, count * size + 1);
}

extern "C" void* __wrap_realloc(void* block, size_t size) {
    return next_allocation_fails() ? nullptr : terminated(__real_realloc(block, size + 1), size);
}

void* operator new(size_t size) {
    void* block = allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new[](size_t size) {
    void* block = allocate(size);
    if (block == nullptr)
        throw std::bad_alloc();
    return block;
}

void* operator new(size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

namespace kelm_test {

unsigned long allocation_count() {
    return counted;
}
void reset_allocation_count() {
    counted = 0;
}

void fail_nth_allocation(unsigned long n) {
    countdown = n;
    delivered = false;
}

bool failure_delivered() {
    return delivered;
}

unsigned long for_each_allocation_failure(const std::function<void()>& operation,
                                          const std::function<void(unsigned long)>& on_failed_run) {
    for (unsigned long n = 1;; ++n) {
        bool failed;
        {
            ScopedAllocationFailure failure(n);
            operation();
            failed = failure_delivered();
        }
        if (!failed)
            return n - 1;
        on_failed_run(n);
    }
}

} // namespace kelm_test
