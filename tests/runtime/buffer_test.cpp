// The read cursor, the output buffer's growth rule, secure wiping and the allocation hooks.
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include <gtest/gtest.h>

#include "asnbase.h"

namespace {

// Context hooks that record every block and check, when a block is released, whether all its
// bytes were zero at that moment.
struct HookLog {
    std::map<void*, unsigned long> sizes;
    int mallocs = 0, reallocs = 0, frees = 0, callocs = 0;
    int released_zeroed = 0, released_dirty = 0;
    bool fail_next = false;
};

bool all_zero(const void* block, unsigned long n) {
    const unsigned char* p = static_cast<const unsigned char*>(block);
    for (unsigned long i = 0; i < n; ++i)
        if (p[i] != 0)
            return false;
    return true;
}

void* log_malloc(void* ctx, unsigned long size) {
    HookLog* log = static_cast<HookLog*>(ctx);
    ++log->mallocs;
    if (log->fail_next)
        return nullptr;
    void* block = std::malloc(size);
    log->sizes[block] = size;
    return block;
}

void log_free(void* ctx, void* block) {
    HookLog* log = static_cast<HookLog*>(ctx);
    ++log->frees;
    auto it = log->sizes.find(block);
    ASSERT_NE(it, log->sizes.end()) << "released a block the hooks did not hand out";
    (all_zero(block, it->second) ? log->released_zeroed : log->released_dirty)++;
    log->sizes.erase(it);
    std::free(block);
}

void* log_realloc(void* ctx, void* block, unsigned long size) {
    HookLog* log = static_cast<HookLog*>(ctx);
    ++log->reallocs;
    if (log->fail_next)
        return nullptr;
    if (block != nullptr)
        log->sizes.erase(block);
    void* grown = std::realloc(block, size);
    log->sizes[grown] = size;
    return grown;
}

void* log_calloc(void* ctx, unsigned long count, unsigned long size) {
    HookLog* log = static_cast<HookLog*>(ctx);
    ++log->callocs;
    void* block = std::calloc(count, size);
    log->sizes[block] = count * size;
    return block;
}

kelm_memory_funcs_t context_hooks(HookLog& log) {
    kelm_memory_funcs_t funcs{};
    funcs.ctx_hooks_set = 1;
    funcs.ctx_malloc = log_malloc;
    funcs.ctx_free = log_free;
    funcs.ctx_realloc = log_realloc;
    funcs.ctx_calloc = log_calloc;
    funcs.ctx = &log;
    return funcs;
}

int plain_calls = 0;
void* counting_malloc(unsigned long size) {
    ++plain_calls;
    return std::malloc(size);
}
void counting_free(void* block) {
    ++plain_calls;
    std::free(block);
}
void* counting_realloc(void* block, unsigned long size) {
    ++plain_calls;
    return std::realloc(block, size);
}
void* counting_calloc(unsigned long count, unsigned long size) {
    ++plain_calls;
    return std::calloc(count, size);
}

void fill(kelm_buffer_t& buffer, unsigned int n, unsigned char byte) {
    for (unsigned int i = 0; i < n; ++i)
        buffer.append(byte);
}

} // namespace

TEST(ReadCursor, DefaultConstructorZeroesEveryField) {
    kelm_r_buffer_t r;
    EXPECT_EQ(r.start, nullptr);
    EXPECT_EQ(r.cursor, nullptr);
    EXPECT_EQ(r.length, 0u);
    EXPECT_EQ(r.remaining, 0u);
}

TEST(ReadCursor, SetAndResetRestoreTheWholeSpan) {
    unsigned char data[5] = {1, 2, 3, 4, 5};
    kelm_r_buffer_t r;
    r.set(data, 5);
    EXPECT_EQ(r.start, data);
    EXPECT_EQ(r.cursor, data);
    EXPECT_EQ(r.length, 5u);
    EXPECT_EQ(r.remaining, 5u);
    r.cursor += 3;
    r.remaining -= 3;
    EXPECT_EQ(r.reset(), 5u);
    EXPECT_EQ(r.cursor, data);
}

TEST(ReadCursor, AssignmentCopiesAllFourFields) {
    unsigned char data[4] = {9, 8, 7, 6};
    kelm_r_buffer_t a(data, 4);
    a.cursor += 1;
    a.remaining = 3;
    kelm_r_buffer_t b;
    b = a;
    EXPECT_EQ(b.start, data);
    EXPECT_EQ(b.length, 4u);
    EXPECT_EQ(b.cursor, data + 1);
    EXPECT_EQ(b.remaining, 3u);
}

TEST(ReadCursor, EqualityComparesOnlyTheRemainingBytes) {
    unsigned char x[4] = {0, 1, 2, 3};
    unsigned char y[3] = {1, 2, 3};
    kelm_r_buffer_t a(x, 4), b(y, 3);
    EXPECT_EQ(a == b, 0);
    a.cursor += 1;
    a.remaining -= 1;
    EXPECT_EQ(a == b, 1);
    y[2] = 4;
    EXPECT_EQ(a == b, 0);
}

TEST(ReadCursor, TwoCursorsWithNothingRemainingAreEqual) {
    unsigned char x[2] = {1, 2};
    kelm_r_buffer_t a(x, 0);
    kelm_r_buffer_t b;
    EXPECT_EQ(a == b, 1);
}

TEST(BufferGrowth, ExtendZeroOnAFreshBufferGives64) {
    kelm_buffer_t b;
    b.extend(0);
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(b.length, 64u);
    EXPECT_EQ(b.start, b.storage);
}

TEST(BufferGrowth, ExtendFollowsTheStatedSteps) {
    struct Row {
        unsigned int initial_extend;
        unsigned int then_extend;
        unsigned int expected;
    } rows[] = {{1, 0, 64},       {63, 0, 64},     {64, 0, 128},  {65, 0, 1024},
                {100, 0, 1024},   {100, 10, 1984}, {1, 64, 1088}, {0, 1, 1024},
                {1000, 30, 2880}, {2000, 1, 3904}, {0, 0, 64}};
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << "extend(" << row.initial_extend << ") then extend("
                                          << row.then_extend << ")");
        kelm_buffer_t b;
        b.extend(row.initial_extend);
        if (row.then_extend != 0)
            b.extend(row.then_extend);
        EXPECT_EQ(b.capacity, row.expected);
        EXPECT_GT(b.capacity, row.initial_extend);
    }
}

TEST(BufferGrowth, CapacityAfterEachOneByteGrowth) {
    kelm_buffer_t b;
    std::vector<unsigned int> capacities;
    for (unsigned int i = 0; i < 5000; ++i) {
        const unsigned int before = b.capacity;
        b.append(static_cast<unsigned char>(i));
        if (b.capacity != before)
            capacities.push_back(b.capacity);
    }
    // Each growth is extend(64): 0+64 -> 128; 128+64 -> 1152; then 1024 more per growth.
    const std::vector<unsigned int> expected = {128, 1152, 2176, 3200, 4224, 5248};
    EXPECT_EQ(capacities, expected);
    EXPECT_EQ(b.used(), 5000u);
    for (unsigned int i = 0; i < 5000; ++i)
        ASSERT_EQ(b.storage[i], static_cast<unsigned char>(i)) << "byte " << i;
}

TEST(BufferGrowth, BlockAppendExtendsByTheAppendedCount) {
    kelm_buffer_t b;
    std::vector<unsigned char> bytes(65, 0xAB);
    b.append(bytes.data(), 65);
    EXPECT_EQ(b.capacity, 1024u);
    b.append(bytes.data(), 10);
    EXPECT_EQ(b.capacity, 1024u);
    EXPECT_EQ(b.used(), 75u);
}

TEST(BufferGrowth, AppendingNothingToAFullBufferDoesNotGrow) {
    kelm_buffer_t b;
    b.extend(0);
    fill(b, 64, 1);
    ASSERT_EQ(b.capacity, 64u);
    unsigned char none = 0;
    b.append(&none, 0);
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(b.used(), 64u);
}

TEST(BufferGrowth, OneByteAppendToAFullBufferGrowsByExtend64) {
    kelm_buffer_t b;
    b.extend(0);
    fill(b, 64, 2);
    ASSERT_EQ(b.capacity, 64u);
    b.append(static_cast<unsigned char>(3));
    EXPECT_EQ(b.capacity, 1088u); // extend(64): target 128, rounded, plus 960
    EXPECT_EQ(b.used(), 65u);
}

TEST(BufferGrowth, SizeConstructorsExtendAtOnce) {
    kelm_buffer_t a(0u, KELM_SECURITY_PLAIN);
    EXPECT_EQ(a.capacity, 64u);
    kelm_buffer_t b(8u, KELM_SECURITY_SECURE);
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(b.security, KELM_SECURITY_SECURE);
    kelm_buffer_t c(9u, kelm_memory_funcs_t{});
    EXPECT_EQ(c.capacity, 64u);
    EXPECT_EQ(c.security, KELM_SECURITY_PLAIN);
    kelm_buffer_t d(200u, kelm_memory_funcs_t{}, KELM_SECURITY_SECURE);
    EXPECT_EQ(d.capacity, 1152u);
}

TEST(BufferGrowth, CursorKeepsItsDistanceFromTheBlockAcrossGrowth) {
    kelm_buffer_t b;
    fill(b, 10, 7);
    b.cursor += 4; // a reader advanced through the written bytes
    b.extend(5000);
    EXPECT_EQ(b.cursor, b.storage + 4);
    EXPECT_EQ(b.used(), 10u);
}

TEST(BufferGrowth, ARequestBeyondFourGigabytesThrowsInsteadOfWrapping) {
    kelm_buffer_t b;
    fill(b, 100, 1);
    try {
        b.extend(0xFFFFFF00u);
        FAIL() << "no exception";
    } catch (const kelm_asn_memexception& e) {
        EXPECT_EQ(e.status, KELM_ASN_OUT_OF_MEMORY);
    }
    EXPECT_EQ(b.capacity, 128u);
    EXPECT_EQ(b.used(), 100u);
}

TEST(BufferAppend, TextIntAndCursorAppends) {
    kelm_buffer_t b;
    b.append("abc");
    b.append_int(-42);
    b.append_int(0);
    b.append_int(2147483647);
    kelm_buffer_t c;
    c.append("xy");
    b.append(c);
    const char expected[] = "abc-4202147483647xy";
    ASSERT_EQ(b.used(), sizeof expected - 1);
    EXPECT_EQ(std::memcmp(b.storage, expected, b.used()), 0);
}

TEST(BufferAppend, AppendOfAReadCursorTakesItsRemainingBytes) {
    unsigned char data[6] = {1, 2, 3, 4, 5, 6};
    kelm_r_buffer_t r(data, 6);
    r.cursor += 4;
    r.remaining = 2;
    kelm_buffer_t b;
    b.append(r);
    ASSERT_EQ(b.used(), 2u);
    EXPECT_EQ(b.storage[0], 5);
    EXPECT_EQ(b.storage[1], 6);
}

TEST(BufferAppend, AWrittenBufferPresentsExactlyItsBytesToReaders) {
    kelm_buffer_t b;
    b.append("hello");
    const kelm_r_buffer_t& r = b;
    EXPECT_EQ(r.cursor, b.storage);
    EXPECT_EQ(r.remaining, 5u);
}

TEST(BufferClear, ClearKeepsStorageAndEmptiesContent) {
    kelm_buffer_t b;
    b.append("data");
    unsigned char* block = b.storage;
    b.clear();
    EXPECT_EQ(b.used(), 0u);
    EXPECT_EQ(b.storage, block);
    EXPECT_EQ(b.cursor, block);
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(block[0], 'd'); // a plain buffer is not wiped
}

TEST(BufferClear, SecureClearZeroesTheWholeCapacity) {
    kelm_buffer_t b(KELM_SECURITY_SECURE);
    std::vector<unsigned char> bytes(300, 0x5A);
    b.append(bytes.data(), 300);
    ASSERT_EQ(b.capacity, 1216u);
    std::memset(b.storage + 300, 0x77, b.capacity - 300); // dirt beyond the used bytes
    b.clear();
    EXPECT_TRUE(all_zero(b.storage, b.capacity));
}

TEST(BufferSecurity, DestructorWipesSecureStorageBeforeReleasing) {
    HookLog log;
    {
        kelm_buffer_t b(context_hooks(log), KELM_SECURITY_SECURE);
        b.append("secret");
    }
    EXPECT_EQ(log.frees, 1);
    EXPECT_EQ(log.released_zeroed, 1);
    EXPECT_EQ(log.released_dirty, 0);
}

TEST(BufferSecurity, PlainDestructorReleasesWithoutWiping) {
    HookLog log;
    {
        kelm_buffer_t b(context_hooks(log));
        b.append("visible");
    }
    EXPECT_EQ(log.frees, 1);
    EXPECT_EQ(log.released_dirty, 1);
}

TEST(BufferSecurity, SecureGrowthCopiesThenWipesTheOldBlock) {
    HookLog log;
    kelm_buffer_t b(context_hooks(log), KELM_SECURITY_SECURE);
    b.extend(0);
    fill(b, 64, 0xEE);
    EXPECT_EQ(log.mallocs, 1);
    b.append(static_cast<unsigned char>(0xEF));
    EXPECT_EQ(log.mallocs, 2);
    EXPECT_EQ(log.reallocs, 0);
    EXPECT_EQ(log.released_zeroed, 1);
    EXPECT_EQ(log.released_dirty, 0);
    for (unsigned int i = 0; i < 64; ++i)
        ASSERT_EQ(b.storage[i], 0xEE);
    EXPECT_EQ(b.storage[64], 0xEF);
}

TEST(BufferSecurity, PlainGrowthUsesRealloc) {
    HookLog log;
    kelm_buffer_t b(context_hooks(log));
    fill(b, 129, 1);
    EXPECT_EQ(log.reallocs, 2);
    EXPECT_EQ(log.mallocs, 0);
}

TEST(BufferFailure, FailedPlainGrowthThrowsAndLeavesTheBufferUnchanged) {
    HookLog log;
    kelm_buffer_t b(context_hooks(log));
    b.extend(0);
    fill(b, 64, 3);
    unsigned char* block = b.storage;
    log.fail_next = true;
    try {
        b.append(static_cast<unsigned char>(4));
        FAIL() << "no exception";
    } catch (const kelm_asn_memexception& e) {
        EXPECT_EQ(e.status, 0x10652065u);
        EXPECT_STREQ(e.message, "Out of memory in buffer_t::extend");
        EXPECT_STREQ(e.file, "src/asn1/asn_buffer.cpp");
    }
    log.fail_next = false;
    EXPECT_EQ(b.storage, block);
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(b.used(), 64u);
    EXPECT_EQ(b.storage[63], 3);
}

TEST(BufferFailure, FailedSecureGrowthLeavesTheOldBlockUnwiped) {
    HookLog log;
    kelm_buffer_t b(context_hooks(log), KELM_SECURITY_SECURE);
    b.extend(0);
    fill(b, 64, 9);
    log.fail_next = true;
    int secure_line = 0;
    try {
        b.append(static_cast<unsigned char>(1));
    } catch (const kelm_asn_memexception& e) {
        secure_line = e.line;
    }
    log.fail_next = false;
    EXPECT_EQ(b.capacity, 64u);
    EXPECT_EQ(b.storage[0], 9);
    EXPECT_EQ(log.frees, 0);

    HookLog plain_log;
    kelm_buffer_t p(context_hooks(plain_log));
    plain_log.fail_next = true;
    int plain_line = 0;
    try {
        p.extend(1);
    } catch (const kelm_asn_memexception& e) {
        plain_line = e.line;
    }
    plain_log.fail_next = false;
    EXPECT_NE(secure_line, 0);
    EXPECT_NE(plain_line, 0);
    EXPECT_NE(secure_line, plain_line) << "each growth path reports its own line";
}

TEST(BufferFailure, AMemoryExceptionIsAKelmAsnException) {
    HookLog log;
    kelm_buffer_t b(context_hooks(log));
    log.fail_next = true;
    EXPECT_THROW(b.extend(1), kelm_asn_exception);
    log.fail_next = false;
}

TEST(BufferDetach, DetachHandsOverTheStorageAndLeavesAnEmptyBuffer) {
    kelm_buffer_t b;
    b.append("abcdef");
    unsigned char* data = nullptr;
    unsigned int len = 0;
    b.detach(data, len);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(len, 6u);
    EXPECT_EQ(std::memcmp(data, "abcdef", 6), 0);
    EXPECT_EQ(b.storage, nullptr);
    EXPECT_EQ(b.capacity, 0u);
    EXPECT_EQ(b.used(), 0u);
    std::free(data);
    b.append("again"); // the next append allocates afresh
    EXPECT_EQ(b.used(), 5u);
    EXPECT_EQ(b.capacity, 64u);
}

TEST(BufferDetach, DetachOfABufferThatNeverAllocatedGivesNullAndZero) {
    kelm_buffer_t b;
    unsigned char* data = reinterpret_cast<unsigned char*>(&b);
    unsigned int len = 99;
    b.detach(data, len);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(len, 0u);
}

TEST(BufferDetach, DetachOfASecureBufferDoesNotWipe) {
    HookLog log;
    unsigned char* data = nullptr;
    unsigned int len = 0;
    {
        kelm_buffer_t b(context_hooks(log), KELM_SECURITY_SECURE);
        b.append("keep");
        b.detach(data, len);
    }
    EXPECT_EQ(log.frees, 0);
    EXPECT_EQ(std::memcmp(data, "keep", 4), 0);
    context_hooks(log).free(data);
}

TEST(MemoryHooks, ZeroedHooksUseTheSystemAllocator) {
    kelm_memory_funcs_t funcs{};
    void* p = funcs.malloc(16);
    ASSERT_NE(p, nullptr);
    p = funcs.realloc(p, 32);
    ASSERT_NE(p, nullptr);
    funcs.free(p);
    void* q = funcs.calloc(4, 4);
    ASSERT_NE(q, nullptr);
    EXPECT_TRUE(all_zero(q, 16));
    funcs.free(q);
}

TEST(MemoryHooks, ContextHooksReceiveTheContext) {
    HookLog log;
    kelm_memory_funcs_t funcs = context_hooks(log);
    void* p = funcs.malloc(8);
    p = funcs.realloc(p, 16);
    void* q = funcs.calloc(2, 8);
    funcs.free(p);
    funcs.free(q);
    EXPECT_EQ(log.mallocs, 1);
    EXPECT_EQ(log.reallocs, 1);
    EXPECT_EQ(log.callocs, 1);
    EXPECT_EQ(log.frees, 2);
}

TEST(MemoryHooks, ThePlainSelectorWinsOverTheContextHooks) {
    HookLog log;
    kelm_memory_funcs_t funcs = context_hooks(log);
    funcs.plain_hooks_set = 1;
    funcs.plain_malloc = counting_malloc;
    funcs.plain_free = counting_free;
    funcs.plain_realloc = counting_realloc;
    funcs.plain_calloc = counting_calloc;
    plain_calls = 0;
    {
        kelm_buffer_t b(funcs);
        fill(b, 200, 1);
        void* q = funcs.calloc(1, 1);
        funcs.free(q);
    }
    // two growths, one calloc, one free of it, one release by the destructor
    EXPECT_EQ(plain_calls, 5);
    EXPECT_EQ(log.mallocs + log.reallocs + log.frees + log.callocs, 0);
}

TEST(MemoryHooks, HookRecordLayoutMatchesTheCallersRecord) {
    EXPECT_EQ(sizeof(kelm_memory_funcs_t), 88u);
    EXPECT_EQ(offsetof(kelm_memory_funcs_t, ctx_hooks_set), 40u);
}

TEST(Exceptions, ReportLineHasTheStatedFormat) {
    const kelm_asn_memexception e("src/asn1/asn_buffer.cpp", 77,
                                  "Out of memory in buffer_t::extend");
    ::testing::internal::CaptureStderr();
    kelm_asn_report_exception(e);
    const std::string line = ::testing::internal::GetCapturedStderr();
    EXPECT_EQ(line, "Exception: Out of memory in buffer_t::extend [10652065] in "
                    "src/asn1/asn_buffer.cpp at line 77\n");
}

TEST(Exceptions, UnsupportedErrorCarriesItsStatus) {
    const kelm_asn_unsupportederror e("f", 1, "Can't copy asn_objects");
    EXPECT_EQ(e.status, 0x10652197u);
    EXPECT_STREQ(kelm_asn_status_text(e.status), "unsupported operation");
    EXPECT_STREQ(kelm_asn_status_text(0x12345678u), "unknown status");
}
