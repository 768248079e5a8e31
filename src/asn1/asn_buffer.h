/// \file
/// The read cursor, the growable output buffer and the allocation hooks.
///
/// Ownership: kelm_r_buffer_t never owns the bytes it points at. kelm_buffer_t owns its storage,
/// allocated through its kelm_memory_funcs_t, until detach() hands the block to the caller, who
/// then releases it through the same hooks.
#ifndef KELM_ASN_BUFFER_H
#define KELM_ASN_BUFFER_H

#include <cstddef>

#include "asn_status.h"

/// Replaceable allocation hooks, copied by value into every buffer. If plain_hooks_set is
/// non-zero the plain hooks are used; otherwise, if ctx_hooks_set is non-zero, the context hooks
/// with ctx as first argument; otherwise the system allocator.
struct KELM_API kelm_memory_funcs_t {
    /// Non-zero: the plain hooks below are used.
    int plain_hooks_set;
    void* (*plain_malloc)(unsigned long size);                      ///< plain hook for malloc
    void (*plain_free)(void* block);                                ///< plain hook for free
    void* (*plain_realloc)(void* block, unsigned long size);        ///< plain hook for realloc
    void* (*plain_calloc)(unsigned long count, unsigned long size); ///< plain hook for calloc
    /// Non-zero, with plain_hooks_set zero: the context hooks below are used, with `ctx`.
    int ctx_hooks_set;
    void* (*ctx_malloc)(void* ctx, unsigned long size);               ///< context hook for malloc
    void (*ctx_free)(void* ctx, void* block);                         ///< context hook for free
    void* (*ctx_realloc)(void* ctx, void* block, unsigned long size); ///< context hook for realloc
    /// Context hook for calloc.
    void* (*ctx_calloc)(void* ctx, unsigned long count, unsigned long size);
    void* ctx; ///< first argument of every context hook

    /// A block of `size` bytes from the selected allocator; null when it has none.
    void* malloc(unsigned long size) const;
    /// Releases `block` through the selected allocator.
    void free(void* block) const;
    /// Resizes `block` through the selected allocator; null (and `block` kept) on failure.
    void* realloc(void* block, unsigned long size) const;
    /// A zeroed block of `count` times `size` bytes from the selected allocator; null on failure.
    void* calloc(unsigned long count, unsigned long size) const;
};

static_assert(offsetof(kelm_memory_funcs_t, plain_malloc) == 8, "selector held in a 64-bit slot");
static_assert(offsetof(kelm_memory_funcs_t, ctx_hooks_set) == 40, "hook record layout");
static_assert(offsetof(kelm_memory_funcs_t, ctx_malloc) == 48, "selector held in a 64-bit slot");
static_assert(offsetof(kelm_memory_funcs_t, ctx) == 80, "hook record layout");
static_assert(sizeof(kelm_memory_funcs_t) == 88, "hook record layout");

/// A read cursor over bytes it does not own. `remaining` counts the bytes from `cursor` to the end
/// of the span; decoders advance `cursor` and decrease `remaining` together.
class KELM_API kelm_r_buffer_t {
  public:
    unsigned char* start;   ///< the first byte of the span; not owned
    unsigned int length;    ///< the number of bytes of the span
    unsigned char* cursor;  ///< the next byte to read
    unsigned int remaining; ///< the number of bytes from `cursor` to the end of the span

    /// A cursor over nothing.
    kelm_r_buffer_t() : start(nullptr), length(0), cursor(nullptr), remaining(0) {}
    /// A cursor at the first of `len` bytes at `data`, which it does not own.
    kelm_r_buffer_t(unsigned char* data, unsigned int len)
        : start(data), length(len), cursor(data), remaining(len) {}
    /// A second cursor over the same bytes, at the same position.
    kelm_r_buffer_t(const kelm_r_buffer_t&) = default;
    /// Takes the span and the position of `other`.
    kelm_r_buffer_t& operator=(const kelm_r_buffer_t& other);

    /// Points the cursor at the first of `len` bytes at `data`.
    virtual void set(unsigned char* data, unsigned int len);
    /// Moves the cursor back to the start of the span. Returns the new remaining count.
    virtual unsigned int reset();

    /// Equal when both have the same remaining count and the same remaining bytes; two cursors
    /// with nothing remaining are equal whatever they point at. Returns 1 or 0.
    int operator==(const kelm_r_buffer_t& other) const;

    /// Deliberately not virtual: a cursor is never deleted through a base pointer, and the
    /// record keeps the layout of a class whose only virtual operations are set and reset.
    ~kelm_r_buffer_t() = default;
};

/// 1 if at least two bytes remain in `reader` and both are 0x00 (an end-of-contents marker is
/// next), else 0. The caller's reader does not move.
KELM_API int check_EOC(kelm_r_buffer_t reader);

/// A growable output buffer. What has been written is exposed through the inherited cursor:
/// `cursor` is the storage and `remaining` the number of bytes written (the used count).
class KELM_API kelm_buffer_t : public kelm_r_buffer_t {
  public:
    unsigned char* storage;    ///< the block, owned; null until the first growth
    kelm_memory_funcs_t hooks; ///< the allocator of the block
    unsigned int capacity;     ///< the size of the block
    /// KELM_SECURITY_SECURE: the block is wiped before it is released or moved.
    security_t security;

    /// An empty buffer with the system allocator.
    explicit kelm_buffer_t(security_t sec = KELM_SECURITY_PLAIN);
    /// An empty plain buffer with the allocator `funcs`.
    explicit kelm_buffer_t(kelm_memory_funcs_t funcs);
    /// An empty buffer with the allocator `funcs`.
    kelm_buffer_t(kelm_memory_funcs_t funcs, security_t sec);
    /// An empty buffer with the system allocator and room for at least `size` bytes (throws
    /// kelm_asn_memexception when the block cannot be had).
    kelm_buffer_t(unsigned int size, security_t sec);
    /// An empty plain buffer with the allocator `funcs` and room for at least `size` bytes.
    kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs);
    /// An empty buffer with the allocator `funcs` and room for at least `size` bytes.
    kelm_buffer_t(unsigned int size, kelm_memory_funcs_t funcs, security_t sec);
    kelm_buffer_t(const kelm_buffer_t&) = delete;
    kelm_buffer_t& operator=(const kelm_buffer_t&) = delete;
    /// Releases the block through `hooks`, wiped first when secure.
    virtual ~kelm_buffer_t();

    /// Bytes written so far.
    unsigned int used() const { return remaining; }

    /// Grows so that at least n more bytes fit; throws kelm_asn_memexception when the hooks
    /// cannot supply the block (the buffer is then unchanged).
    int extend(unsigned int n);

    /// Appends the `remaining` bytes from the cursor of `src`. Returns 0; exhausted memory
    /// throws kelm_asn_memexception (the buffer is then unchanged).
    int append(const kelm_r_buffer_t& src);
    /// Appends `n` bytes from `data`. Returns 0; exhausted memory throws.
    int append(const unsigned char* data, unsigned int n);
    /// Appends the bytes of `text` before its terminating zero. Returns 0; exhausted memory
    /// throws.
    int append(const char* text);
    /// Appends `value` in decimal, with a minus sign when negative. Returns 0; exhausted memory
    /// throws.
    int append_int(int value);

    /// Appends one byte: the hot path of every encoder, one capacity test and one store.
    /// Returns 0; exhausted memory throws.
    int append(unsigned char byte) {
        if (capacity <= remaining)
            extend(64);
        storage[remaining++] = byte;
        return 0;
    }

    /// Forgets the written bytes but keeps the storage (wiped first when secure).
    int clear();

    /// Cuts the written content back to `n` bytes (n not above the used count).
    void truncate(unsigned int n) { remaining = n; }

    /// Hands the storage to the caller, who releases it through `hooks`; the buffer is left
    /// empty and usable. Nothing is wiped.
    int detach(unsigned char*& data, unsigned int& len);
};

#endif
