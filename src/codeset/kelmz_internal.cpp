// Local code set <-> UTF-8 conversion: the UTF-8 well-formedness table, the fast paths for the
// UTF-8 and ASCII code sets, the iconv path for every other code set, and the string classes.
#include "kelmz_internal.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iconv.h>
#include <langinfo.h>

#include "asn_status.h"

namespace {

const char kUtf8[] = "UTF-8";
// glibc's name for the code set of the "C" and "POSIX" locales.
const char kAscii[] = "ANSI_X3.4-1968";
const char kReplacement = '?';
const char kOutOfMemory[] = "Out of memory converting text between the local code set and UTF-8";

// The fixed positions that this file's memory exceptions report (see kelmz_internal.h).
using kelmz_detail::kIconvOpenSite;
using kelmz_detail::kTextGrowthSite;
using kelmz_detail::kTextTooLongSite;

// Results are handed to the runtime, whose value lengths are 32-bit; the terminator needs a byte.
constexpr size_t kMaxCapacity = UINT_MAX;
// Room asked for before each iconv call: more than any one character takes in any code set, so
// that an E2BIG always makes progress after one growth.
constexpr size_t kCharacterRoom = 16;

// The growing malloc block a conversion writes into. Frees the block unless finish() hands it
// over, so a throw at any point leaks nothing. One byte beyond room() is kept for the NUL.
class TextBuilder {
  public:
    explicit TextBuilder(size_t expected) { make_room(expected); }
    ~TextBuilder() { std::free(chars_); }
    TextBuilder(const TextBuilder&) = delete;
    TextBuilder& operator=(const TextBuilder&) = delete;

    // Bytes that can be written at end() without growing.
    size_t room() const { return capacity_ == 0 ? 0 : capacity_ - 1 - length_; }
    char* end() { return chars_ + length_; }
    // Counts `n` bytes written at end().
    void advance(size_t n) { length_ += n; }

    void append(char c) {
        make_room(1);
        chars_[length_++] = c;
    }

    // Ensures room() >= n; grows by half again at least, so that many small growths stay linear.
    void make_room(size_t n) {
        if (capacity_ != 0 && room() >= n)
            return;
        if (n > kMaxCapacity - 1 - length_)
            throw kelm_asn_memexception(kTextTooLongSite.file, kTextTooLongSite.line,
                                        "Converted text would not fit in 32 bits");
        size_t wanted = length_ + n + 1;
        const size_t geometric = capacity_ + capacity_ / 2;
        if (geometric > wanted)
            wanted = geometric < kMaxCapacity ? geometric : kMaxCapacity;
        // On failure the old block stays ours and the destructor frees it.
        char* grown = static_cast<char*>(std::realloc(chars_, wanted));
        if (grown == nullptr)
            throw kelm_asn_memexception(kTextGrowthSite.file, kTextGrowthSite.line, kOutOfMemory);
        chars_ = grown;
        capacity_ = wanted;
    }

    // Terminates the text and hands the block to the result.
    kelmz_detail::OwnedText finish() noexcept {
        chars_[length_] = '\0';
        kelmz_detail::OwnedText text(chars_, length_);
        chars_ = nullptr;
        capacity_ = length_ = 0;
        return text;
    }

  private:
    char* chars_ = nullptr;
    size_t capacity_ = 0;
    size_t length_ = 0;
};

// The iconv descriptors of the calling thread, one per pair of code sets, opened on first use
// and closed when the thread ends, so that a conversion does not open and close a descriptor.
// Keyed by the code sets' names: a thread whose locale changes finds (or opens) the descriptor
// of its new code set, and threads never share one. A pair iconv cannot open is remembered as
// such, so that it falls back to ASCII without asking iconv again; only exhausted memory throws
// (and is not remembered).
class DescriptorCache {
  public:
    DescriptorCache() = default;
    ~DescriptorCache() {
        for (Entry& entry : entries_)
            if (entry.used && opened(entry.cd))
                iconv_close(entry.cd);
    }
    DescriptorCache(const DescriptorCache&) = delete;
    DescriptorCache& operator=(const DescriptorCache&) = delete;

    static bool opened(iconv_t cd) { return cd != reinterpret_cast<iconv_t>(-1); }

    // The descriptor from `from` to `to`, in its initial shift state; unopened when iconv
    // cannot convert between them. `cached` tells whether it stays open for later conversions
    // (else the caller closes it).
    iconv_t get(const char* to, const char* from, bool& cached) {
        cached = fits(to) && fits(from);
        if (cached) {
            for (Entry& entry : entries_) {
                if (entry.used && same(entry.to, to) && same(entry.from, from)) {
                    if (opened(entry.cd))
                        iconv(entry.cd, nullptr, nullptr, nullptr, nullptr);
                    return entry.cd;
                }
            }
        }
        const iconv_t cd = iconv_open(to, from);
        ++opens_;
        if (!opened(cd) && errno == ENOMEM)
            throw kelm_asn_memexception(kIconvOpenSite.file, kIconvOpenSite.line, kOutOfMemory);
        if (!cached)
            return cd;
        Entry& slot = entries_[next_];
        next_ = (next_ + 1) % kEntries;
        if (slot.used && opened(slot.cd))
            iconv_close(slot.cd);
        slot.used = true;
        slot.cd = cd;
        std::strcpy(slot.to, to);
        std::strcpy(slot.from, from);
        return cd;
    }

    unsigned long opens() const { return opens_; }

  private:
    static constexpr unsigned int kEntries = 4;
    static constexpr size_t kNameRoom = 48;

    struct Entry {
        bool used = false;
        iconv_t cd = reinterpret_cast<iconv_t>(-1);
        char to[kNameRoom] = {};
        char from[kNameRoom] = {};
    };

    static bool fits(const char* name) { return std::strlen(name) < kNameRoom; }
    static bool same(const char* a, const char* b) { return std::strcmp(a, b) == 0; }

    Entry entries_[kEntries];
    unsigned int next_ = 0;
    unsigned long opens_ = 0;
};

thread_local DescriptorCache descriptors;

// The calling thread's descriptor for one conversion. A descriptor whose names are too long to be
// kept is opened for this conversion only and closed with it.
class IconvDescriptor {
  public:
    IconvDescriptor(const char* to, const char* from) : cd_(descriptors.get(to, from, cached_)) {}
    ~IconvDescriptor() {
        if (!cached_ && opened())
            iconv_close(cd_);
    }
    IconvDescriptor(const IconvDescriptor&) = delete;
    IconvDescriptor& operator=(const IconvDescriptor&) = delete;

    bool opened() const { return DescriptorCache::opened(cd_); }
    iconv_t get() const { return cd_; }

  private:
    bool cached_ = false;
    iconv_t cd_;
};

bool is_continuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

// Length of the prefix of `bytes` made of well-formed UTF-8 characters other than U+0000.
size_t well_formed_run(const unsigned char* bytes, size_t n) {
    size_t i = 0;
    while (i < n) {
        if (bytes[i] != 0 && bytes[i] < 0x80) {
            ++i;
            continue;
        }
        const unsigned int k =
            bytes[i] == 0 ? 0 : kelmz_detail::well_formed_utf8_length(bytes + i, n - i);
        if (k == 0)
            break;
        i += k;
    }
    return i;
}

// UTF-8 to UTF-8: well-formed characters other than U+0000 are copied, every other byte becomes
// one '?'. The output has exactly the input's length.
void copy_well_formed_utf8(const unsigned char* in, size_t n, TextBuilder& out) {
    out.make_room(n);
    char* target = out.end();
    size_t i = 0;
    while (i < n) {
        const unsigned char byte = in[i];
        if (byte != 0 && byte < 0x80) {
            target[i++] = static_cast<char>(byte);
            continue;
        }
        const unsigned int k = byte == 0 ? 0 : kelmz_detail::well_formed_utf8_length(in + i, n - i);
        if (k == 0) {
            target[i++] = kReplacement;
            continue;
        }
        std::memcpy(target + i, in + i, k);
        i += k;
    }
    out.advance(n);
}

// ASCII to UTF-8: 00..7F unchanged, every other byte is not ASCII and becomes one '?'.
void ascii_to_utf8(const unsigned char* in, size_t n, TextBuilder& out) {
    out.make_room(n);
    char* target = out.end();
    for (size_t i = 0; i < n; ++i)
        target[i] = in[i] < 0x80 ? static_cast<char>(in[i]) : kReplacement;
    out.advance(n);
}

// UTF-8 to ASCII: 01..7F unchanged; U+0000, each other well-formed character and each ill-formed
// byte become one '?'.
void utf8_to_ascii(const unsigned char* in, size_t n, TextBuilder& out) {
    out.make_room(n);
    char* target = out.end();
    size_t written = 0;
    size_t i = 0;
    while (i < n) {
        const unsigned char byte = in[i];
        if (byte != 0 && byte < 0x80) {
            target[written++] = static_cast<char>(byte);
            ++i;
            continue;
        }
        const unsigned int k = byte == 0 ? 0 : kelmz_detail::well_formed_utf8_length(in + i, n - i);
        target[written++] = kReplacement;
        i += k == 0 ? 1 : k;
    }
    out.advance(written);
}

// How many input bytes to step over, after writing one '?', when iconv stops at `in`.
using SkipRule = size_t (*)(const unsigned char* in, size_t left);

// In local input iconv stops only at a byte that begins no character of the code set.
size_t skip_one_byte(const unsigned char*, size_t) {
    return 1;
}

// UTF-8 input has been checked, so iconv stops only at a character the target lacks.
size_t skip_one_character(const unsigned char* in, size_t left) {
    const unsigned int k = kelmz_detail::well_formed_utf8_length(in, left);
    return k == 0 ? 1 : k;
}

// Converts all `left` bytes at `in` with iconv, writing one '?' wherever iconv stops and stepping
// over what `skip` says.
void convert_run(iconv_t cd, const unsigned char*& in, size_t& left, SkipRule skip,
                 TextBuilder& out) {
    while (left > 0) {
        out.make_room(kCharacterRoom);
        char* source = const_cast<char*>(reinterpret_cast<const char*>(in));
        char* target = out.end();
        const size_t room = out.room();
        size_t target_left = room;
        const size_t result = iconv(cd, &source, &left, &target, &target_left);
        const int error = errno;
        in = reinterpret_cast<const unsigned char*>(source);
        out.advance(room - target_left);
        if (result != static_cast<size_t>(-1))
            return;
        if (error == E2BIG)
            continue; // make_room grows: room was below kCharacterRoom or one character short
        if (left == 0)
            return; // an error other than those below: nothing is left to convert anyway
        // EILSEQ, or EINVAL for a sequence cut short by the end of the input.
        const size_t step = skip(in, left);
        out.append(kReplacement);
        in += step;
        left -= step;
    }
}

// Writes what a stateful code set needs to return to its initial state.
void finish_shift_state(iconv_t cd, TextBuilder& out) {
    for (;;) {
        out.make_room(kCharacterRoom);
        char* target = out.end();
        const size_t room = out.room();
        size_t target_left = room;
        const size_t result = iconv(cd, nullptr, nullptr, &target, &target_left);
        out.advance(room - target_left);
        if (result != static_cast<size_t>(-1) || errno != E2BIG)
            return;
    }
}

void local_to_utf8_with_iconv(iconv_t cd, const unsigned char* in, size_t n, TextBuilder& out) {
    convert_run(cd, in, n, skip_one_byte, out);
    finish_shift_state(cd, out);
}

// Only well-formed runs reach iconv; each ill-formed byte between them becomes '?' here, so
// iconv's view of UTF-8 (which is wider than the table) never decides anything.
void utf8_to_local_with_iconv(iconv_t cd, const unsigned char* in, size_t n, TextBuilder& out) {
    while (n > 0) {
        size_t run = well_formed_run(in, n);
        if (run == 0) {
            out.append(kReplacement);
            ++in;
            --n;
            continue;
        }
        n -= run;
        convert_run(cd, in, run, skip_one_character, out);
    }
    finish_shift_state(cd, out);
}

bool same_name(const char* a, const char* b) {
    return std::strcmp(a, b) == 0;
}

} // namespace

namespace kelmz_detail {

OwnedText::~OwnedText() {
    std::free(chars_);
}

OwnedText::OwnedText(OwnedText&& other) noexcept : chars_(other.chars_), length_(other.length_) {
    other.chars_ = nullptr;
    other.length_ = 0;
}

OwnedText& OwnedText::operator=(OwnedText&& other) noexcept {
    if (this != &other) {
        std::free(chars_);
        chars_ = other.chars_;
        length_ = other.length_;
        other.chars_ = nullptr;
        other.length_ = 0;
    }
    return *this;
}

// RFC 3629 section 4 (Unicode's table 3-7): the second byte's range depends on the first byte,
// which rules out overlong forms, surrogates and values above U+10FFFF.
unsigned int well_formed_utf8_length(const unsigned char* bytes, size_t available) noexcept {
    if (available == 0)
        return 0;
    const unsigned char lead = bytes[0];
    if (lead < 0x80)
        return 1;
    unsigned int length;
    unsigned char second_low = 0x80;
    unsigned char second_high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            second_low = 0xA0; // E0 80..9F would be overlong
        else if (lead == 0xED)
            second_high = 0x9F; // ED A0..BF would be a surrogate
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            second_low = 0x90; // F0 80..8F would be overlong
        else if (lead == 0xF4)
            second_high = 0x8F; // F4 90..BF would pass U+10FFFF
    } else {
        return 0; // 80..C1 (continuation bytes, overlong two-byte leads) and F5..FF
    }
    if (available < length)
        return 0;
    if (bytes[1] < second_low || bytes[1] > second_high)
        return 0;
    for (unsigned int i = 2; i < length; ++i)
        if (!is_continuation(bytes[i]))
            return 0;
    return length;
}

unsigned long iconv_descriptors_opened() noexcept {
    return descriptors.opens();
}

const char* current_codeset() noexcept {
    const char* codeset = nl_langinfo(CODESET);
    return codeset != nullptr && *codeset != '\0' ? codeset : kAscii;
}

OwnedText local_to_utf8(const char* local, size_t length, const char* codeset, Route route) {
    const unsigned char* in = reinterpret_cast<const unsigned char*>(local);
    if (same_name(codeset, kUtf8)) {
        TextBuilder out(length);
        copy_well_formed_utf8(in, length, out);
        return out.finish();
    }
    if (route == Route::Fastest && same_name(codeset, kAscii)) {
        TextBuilder out(length);
        ascii_to_utf8(in, length, out);
        return out.finish();
    }
    // Single-byte code sets take up to three UTF-8 bytes a character; most text is mostly ASCII,
    // so start near the input's size and grow when iconv asks.
    TextBuilder out(length + length / 8 + kCharacterRoom);
    IconvDescriptor cd(kUtf8, codeset);
    if (cd.opened())
        local_to_utf8_with_iconv(cd.get(), in, length, out);
    else
        ascii_to_utf8(in, length, out);
    return out.finish();
}

OwnedText utf8_to_local(const char* utf8, size_t length, const char* codeset, Route route) {
    const unsigned char* in = reinterpret_cast<const unsigned char*>(utf8);
    TextBuilder out(length);
    if (same_name(codeset, kUtf8)) {
        copy_well_formed_utf8(in, length, out);
        return out.finish();
    }
    if (route == Route::Fastest && same_name(codeset, kAscii)) {
        utf8_to_ascii(in, length, out);
        return out.finish();
    }
    IconvDescriptor cd(codeset, kUtf8);
    if (cd.opened())
        utf8_to_local_with_iconv(cd.get(), in, length, out);
    else
        utf8_to_ascii(in, length, out);
    return out.finish();
}

} // namespace kelmz_detail

ZLCConstString_7_0_0::ZLCConstString_7_0_0(const char* chars) noexcept
    : chars_(chars != nullptr ? chars : ""), length_(std::strlen(chars_)) {}

ZUTF8ConstString_7_0_0::ZUTF8ConstString_7_0_0(const char* bytes, unsigned int length) noexcept
    : bytes_(bytes != nullptr ? bytes : ""), length_(bytes != nullptr ? length : 0) {}

ZUTF8String_7_0_0::ZUTF8String_7_0_0(const ZLCConstString_7_0_0& local)
    : ZAbstractMutableString_7_0_0(kelmz_detail::local_to_utf8(local.getChars(), local.getLength(),
                                                               kelmz_detail::current_codeset(),
                                                               kelmz_detail::Route::Fastest)) {}

ZLCString_7_0_0::ZLCString_7_0_0(const ZUTF8ConstString_7_0_0& utf8)
    : ZAbstractMutableString_7_0_0(kelmz_detail::utf8_to_local(utf8.getChars(), utf8.getLength(),
                                                               kelmz_detail::current_codeset(),
                                                               kelmz_detail::Route::Fastest)) {}
