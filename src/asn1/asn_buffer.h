// The read cursor, the growable output buffer and the allocation hooks.
//
// Ownership: kelm_r_buffer_t never owns the bytes it points at. kelm_buffer_t owns its storage,
// allocated through its kelm_memory_funcs_t, until detach() hands the block to the caller, who
// then releases it through the same hooks.
#ifndef KELM_ASN_BUFFER_H
#define KELM_ASN_BUFFER_H

#include <cstddef>

#include "asn_status.h"

// Replaceable allocation hooks, copied by value into every buffer. If plain_hooks_set is
// non-zero the plain hooks are used; otherwise, if ctx_hooks_set is non-zero, the context hooks
// with ctx as first argument; otherwise the system allocator.
struct KELM_API kelm_memory_funcs_t {
    int plain_hooks_set;
    void* (*plain_malloc)(unsigned long size);
    void (*plain_free)(void* block);
    void* (*plain_realloc)(void* block, unsigned long size);
    void* (*plain_calloc)(unsigned long count, unsigned long size);
    int ctx_hooks_set;
    void* (*ctx_malloc)(void* ctx, unsigned long size);
    void (*ctx_free)(void* ctx, void* block);
    void* (*ctx_realloc)(void* ctx, void* block, unsigned long size);
    void* (*ctx_calloc)(void* ctx, unsigned long count, unsigned long size);
    void* ctx;

    void* malloc(unsigned long size) const;
    void free(void* block) const;
    void* realloc(void* block, unsigned long size) const;
    void* calloc(unsigned long count, unsigned long size) const;
};

static_assert(offsetof(kelm_memory_funcs_t, plain_malloc) == 8, "selector held in a 64-bit slot");
static_assert(offsetof(kelm_memory_funcs_t, ctx_hooks_set) == 40, "hook record layout");
static_assert(offsetof(kelm_memory_funcs_t, ctx_malloc) == 48, "selector held in a 64-bit slot");
static_assert(offsetof(kelm_memory_funcs_t, ctx) == 80, "hook record layout");
static_assert(sizeof(kelm_memory_funcs_t) == 88, "hook record layout");

// A read cursor over bytes it does not own. `remaining` counts the bytes from `cursor` to the end
// of the span; decoders advance `cursor` and decrease `remaining` together.
class KELM_API kelm_r_buffer_t {
  public:
    unsigned char* start;
    unsigned int length;
    unsigned char* cursor;
    unsigned int remaining;

    kelm_r_buffer_t() : start(nullptr), length(0), cursor(nullptr), remaining(0) {}
    kelm_r_buffer_t(unsigned char* data, unsigned int len)
        : start(data), length(len), cursor(data), remaining(len) {}
    kelm_r_buffer_t(const kelm_r_buffer_t&) = default;
    kelm_r_buffer_t& operator=(const kelm_r_buffer_t& other);

    virtual void set(unsigned char* data, unsigned int len);
    virtual unsigned int reset();

    // Equal when both have the same remaining count and the same remaining bytes; two cursors
    // with nothing remaining are equal whatever they point at. Returns 1 or 0.
    int operator==(const kelm_r_buffer_t& other) const;

    // Deliberately not virtual: a cursor is never deleted through a base pointer, and the
    // record keeps the layout of a class whose only virtual operations are set and reset.
    ~kelm_r_buffer_t() = default;
};

// 1 if at least two bytes remain in `reader` and both are 0x00 (an end-of-contents marker is
// next), else 0. The caller's reader does not move.
KELM_API int check_EOC(kelm_r_buffer_t reader);

// A growable output buffer. What has been written is exposed through the inherited cursor:
// `cursor` is the storage and `remaining` the number of bytes written (the used count).
class KELM_API kelm_buffer_t : public kelm_r_buffer_t {
  public:
    unsigned char* storage;
    kelm_memory_funcs_t hooks;
    unsigned int capacity;
    security_t security;

    explicit kelm_buffer_t(security_t sec = KELM_SECURITY_PLAIN);
    explicit kelm_buffer_t(kelm_memory_funcs_t funcs);
    kelm_buffer_t(kelm_memory_funcs_t funcs, security_t sec);
    kelm_buffer_t(unsigned int size, security_t sec);
    kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs);
    kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs, security_t sec);
    kelm_buffer_t(const kelm_buffer_t&) = delete;
    kelm_buffer_t& operator=(const kelm_buffer_t&) = delete;
    virtual ~kelm_buffer_t();

    // Bytes written so far.
    unsigned int used() const { return remaining; }

    // Grows so that at least n more bytes fit; throws kelm_asn_memexception when the hooks
    // cannot supply the block (the buffer is then unchanged).
    int extend(unsigned int n);

    int append(const kelm_r_buffer_t& src);
    int append(const unsigned char* data, unsigned int n);
    int append(const char* text);
    int append_int(int value);

    // The hot path of every encoder: one capacity test and one store.
    int append(unsigned char byte) {
        if (capacity <= remaining)
            extend(64);
        storage[remaining++] = byte;
        return 0;
    }

    // Forgets the written bytes but keeps the storage (wiped first when secure).
    int clear();

    // Cuts the written content back to `n` bytes (n not above the used count).
    void truncate(unsigned int n) { remaining = n; }

    // Hands the storage to the caller, who releases it through `hooks`; the buffer is left
    // empty and usable. Nothing is wiped.
    int detach(unsigned char*& data, unsigned int& len);
};

#endif
