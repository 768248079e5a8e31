// The read cursor, the growable output buffer and the allocation hooks.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "asn_buffer.h"
#include "asn_source_site.h"

namespace {

// The positions that the memory exceptions of this file report. Existing callers match these
// values in the exception line: they must never change, whatever becomes of this file's layout.
// A growth whose capacity would pass 32 bits.
constexpr kelm_source_site kBufferCapacityOverflowSite = {"src/asn1/asn_buffer.cpp", 136};
// A failed allocation of the new block of a secure buffer's growth.
constexpr kelm_source_site kBufferSecureExtendSite = {"src/asn1/asn_buffer.cpp", 142};
// A failed reallocation of a plain buffer's growth.
constexpr kelm_source_site kBufferExtendSite = {"src/asn1/asn_buffer.cpp", 151};

// Overwrites a block in a way the compiler may not drop as a dead store.
void wipe(unsigned char* block, unsigned int n) {
    if (block != nullptr && n != 0)
        explicit_bzero(block, n);
}

// The capacity that extend() chooses for a target size: small buffers grow in 64-byte steps,
// larger ones to the next multiple of 64 plus 960 bytes.
unsigned long grown_capacity(unsigned long target) {
    const unsigned long rounded = target & ~63UL;
    return target > 64 ? rounded + 960 : rounded + 64;
}

// Every constructor starts from an empty buffer without storage.
void init(kelm_buffer_t& b, const kelm_memory_funcs_t& funcs, security_t sec) {
    b.storage = nullptr;
    b.capacity = 0;
    b.start = b.cursor = nullptr;
    b.length = b.remaining = 0;
    b.hooks = funcs;
    b.security = sec;
}

} // namespace

void* kelm_memory_funcs_t::malloc(unsigned long size) const {
    if (plain_hooks_set)
        return plain_malloc(size);
    if (ctx_hooks_set)
        return ctx_malloc(ctx, size);
    return ::malloc(size);
}

void kelm_memory_funcs_t::free(void* block) const {
    if (plain_hooks_set)
        plain_free(block);
    else if (ctx_hooks_set)
        ctx_free(ctx, block);
    else
        ::free(block);
}

void* kelm_memory_funcs_t::realloc(void* block, unsigned long size) const {
    if (plain_hooks_set)
        return plain_realloc(block, size);
    if (ctx_hooks_set)
        return ctx_realloc(ctx, block, size);
    return ::realloc(block, size);
}

void* kelm_memory_funcs_t::calloc(unsigned long count, unsigned long size) const {
    if (plain_hooks_set)
        return plain_calloc(count, size);
    if (ctx_hooks_set)
        return ctx_calloc(ctx, count, size);
    return ::calloc(count, size);
}

kelm_r_buffer_t& kelm_r_buffer_t::operator=(const kelm_r_buffer_t& other) {
    start = other.start;
    length = other.length;
    cursor = other.cursor;
    remaining = other.remaining;
    return *this;
}

void kelm_r_buffer_t::set(unsigned char* data, unsigned int len) {
    start = cursor = data;
    length = remaining = len;
}

unsigned int kelm_r_buffer_t::reset() {
    cursor = start;
    remaining = length;
    return remaining;
}

int kelm_r_buffer_t::operator==(const kelm_r_buffer_t& other) const {
    if (remaining != other.remaining)
        return 0;
    if (remaining == 0)
        return 1;
    return std::memcmp(cursor, other.cursor, remaining) == 0 ? 1 : 0;
}

kelm_buffer_t::kelm_buffer_t(security_t sec) {
    init(*this, kelm_memory_funcs_t{}, sec);
}

kelm_buffer_t::kelm_buffer_t(kelm_memory_funcs_t funcs) {
    init(*this, funcs, KELM_SECURITY_PLAIN);
}

kelm_buffer_t::kelm_buffer_t(kelm_memory_funcs_t funcs, security_t sec) {
    init(*this, funcs, sec);
}

kelm_buffer_t::kelm_buffer_t(unsigned int size, security_t sec) {
    init(*this, kelm_memory_funcs_t{}, sec);
    extend(size);
}

kelm_buffer_t::kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs) {
    init(*this, funcs, KELM_SECURITY_PLAIN);
    extend(size);
}

kelm_buffer_t::kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs, security_t sec) {
    init(*this, funcs, sec);
    extend(size);
}

kelm_buffer_t::~kelm_buffer_t() {
    if (storage == nullptr)
        return;
    if (security == KELM_SECURITY_SECURE)
        wipe(storage, capacity);
    hooks.free(storage);
    storage = nullptr;
}

int kelm_buffer_t::extend(unsigned int n) {
    // The target is computed in 64 bits: a request that would wrap a 32-bit capacity cannot be
    // met and is reported as exhausted memory instead of growing to a smaller block.
    const unsigned long new_capacity = grown_capacity(static_cast<unsigned long>(n) + capacity);
    if (new_capacity > 0xffffffffUL)
        throw kelm_asn_memexception(kBufferCapacityOverflowSite.file,
                                    kBufferCapacityOverflowSite.line,
                                    "Out of memory in buffer_t::extend");
    const ptrdiff_t cursor_offset = cursor - storage;
    unsigned char* block;
    if (security == KELM_SECURITY_SECURE) {
        block = static_cast<unsigned char*>(hooks.malloc(new_capacity));
        if (block == nullptr)
            throw kelm_asn_memexception(kBufferSecureExtendSite.file, kBufferSecureExtendSite.line,
                                        "Out of memory in buffer_t::extend");
        if (storage != nullptr) {
            std::memcpy(block, storage, capacity);
            wipe(storage, capacity);
            hooks.free(storage);
        }
    } else {
        block = static_cast<unsigned char*>(hooks.realloc(storage, new_capacity));
        if (block == nullptr)
            throw kelm_asn_memexception(kBufferExtendSite.file, kBufferExtendSite.line,
                                        "Out of memory in buffer_t::extend");
    }
    storage = start = block;
    capacity = length = static_cast<unsigned int>(new_capacity);
    cursor = block + cursor_offset;
    return 0;
}

int kelm_buffer_t::append(const unsigned char* data, unsigned int n) {
    if (static_cast<unsigned long>(remaining) + n > capacity)
        extend(n);
    if (n != 0)
        std::memcpy(storage + remaining, data, n);
    remaining += n;
    return 0;
}

int kelm_buffer_t::append(const kelm_r_buffer_t& src) {
    return append(src.cursor, src.remaining);
}

int kelm_buffer_t::append(const char* text) {
    return append(reinterpret_cast<const unsigned char*>(text),
                  static_cast<unsigned int>(std::strlen(text)));
}

int kelm_buffer_t::append_int(int value) {
    char text[24];
    const int n = std::snprintf(text, sizeof text, "%ld", static_cast<long>(value));
    return append(reinterpret_cast<const unsigned char*>(text), static_cast<unsigned int>(n));
}

int kelm_buffer_t::clear() {
    remaining = 0;
    cursor = storage;
    if (security == KELM_SECURITY_SECURE)
        wipe(storage, capacity);
    return 0;
}

int kelm_buffer_t::detach(unsigned char*& data, unsigned int& len) {
    data = storage;
    len = remaining;
    storage = nullptr;
    capacity = 0;
    clear();
    start = nullptr;
    length = 0;
    return 0;
}

int check_EOC(kelm_r_buffer_t reader) {
    return reader.remaining >= 2 && reader.cursor[0] == 0x00 && reader.cursor[1] == 0x00 ? 1 : 0;
}
