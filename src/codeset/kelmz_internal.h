// Conversion of text between the calling thread's local code set and UTF-8, for the text adapter
// that stores strings as UTF8String when a message class is built with the local-code-set
// security setting. Internal to the library: nothing here is exported or installed.
//
// Ownership: the two "Const" classes are views; they neither copy nor free what they are given,
// and the caller keeps it alive while they are used. The two mutable classes own their converted
// text (one malloc block, released by their destructor) and cannot be copied.
//
// The local code set is that of the calling thread's current locale, nl_langinfo(CODESET), which
// honours uselocale(); the library never calls setlocale. It is read when a conversion is
// constructed, so each thread converts with its own locale.
//
// Bad text never makes a conversion fail or throw. The rule, the same in both directions and in
// every code set:
//   - a character that the target code set cannot represent becomes one '?' (0x3F), however many
//     bytes it took in the source (U+20AC, E2 82 AC, becomes one '?' in ISO-8859-1);
//   - every byte of the source that does not begin a well-formed character of the source code set
//     becomes one '?', and conversion resumes at the next byte. For UTF-8 "well-formed" is the
//     table of RFC 3629 (Unicode's table 3-7): overlong forms (C0 80), surrogates (ED A0 80),
//     values above U+10FFFF (F4 90 80 80), five- and six-byte forms, stray continuation bytes
//     (80) and sequences cut short (E2 82 at the end, or E2 82 41) are ill-formed, so C0 80
//     gives "??" and E2 82 41 gives "??A";
//   - U+0000 inside UTF-8 input becomes '?' in the local string, since a NUL-terminated string
//     cannot carry it; getChars() therefore always holds exactly getLength() bytes before its
//     terminator, and a value cannot be cut short by an embedded NUL.
// So every character and every rejected byte of the source gives exactly one character of the
// result, and lengths stay predictable.
//
// iconv reports an unconvertible character and an ill-formed input byte alike, as EILSEQ, and a
// sequence cut short at the end of the input as EINVAL. UTF-8 input is therefore checked against
// the table above before iconv sees it, so iconv only ever meets well-formed UTF-8 and its EILSEQ
// then means "unconvertible"; for input in the local code set, EILSEQ and EINVAL both mean an
// ill-formed byte.
//
// Fast paths: when the local code set is UTF-8, both directions check and copy the text without
// iconv (glibc's UTF-8 to UTF-8 conversion passes values above U+10FFFF and five-byte forms, so
// it could not give this rule anyway). When it is ANSI_X3.4-1968 (the "C" and "POSIX" locales),
// bytes 01..7F pass unchanged and everything else follows the rule above without iconv; the
// result equals that of the iconv path, which the tests check. Every other code set goes through
// an iconv descriptor that each thread opens once per pair of code sets and keeps until it ends
// (a few pairs at a time, keyed by the code sets' names, so a change of the thread's locale
// takes the descriptor of the new code set); each conversion starts from the initial shift
// state, and threads never share a descriptor. bench/bench_kelmz.cpp measures each path and the
// descriptor's opening and closing.
//
// A code set that iconv cannot open is treated as ASCII, as in the "C" locale.
//
// Allocation: the result is allocated with malloc and grown with realloc. Running out of memory,
// or a result that would not fit in 32 bits (the runtime's value lengths), throws
// kelm_asn_memexception and leaks nothing.
#ifndef KELM_KELMZ_INTERNAL_H
#define KELM_KELMZ_INTERNAL_H

#include <cstddef>
#include <utility>

#include "asn_source_site.h"

namespace kelmz_detail {

// The positions that the memory exceptions of the conversions (kelmz_internal.cpp) report.
// Existing callers match these values in the exception line: they must never change, whatever
// becomes of the layout of that file.
// A converted text that would not fit in 32 bits.
inline constexpr kelm_source_site kTextTooLongSite = {"src/asn1/kelmz_internal.cpp", 53};
// A failed growth of the block a conversion writes into.
inline constexpr kelm_source_site kTextGrowthSite = {"src/asn1/kelmz_internal.cpp", 62};
// An iconv descriptor that could not be opened for want of memory.
inline constexpr kelm_source_site kIconvOpenSite = {"src/asn1/kelmz_internal.cpp", 88};

// A malloc block holding `length` bytes and a terminating NUL; the owner frees it. Moving hands
// the block over and leaves an empty text behind.
class OwnedText {
  public:
    OwnedText() noexcept = default;
    // Takes ownership of `chars`, which must come from malloc and hold `length` bytes and a NUL.
    OwnedText(char* chars, size_t length) noexcept : chars_(chars), length_(length) {}
    ~OwnedText();
    OwnedText(OwnedText&& other) noexcept;
    OwnedText& operator=(OwnedText&& other) noexcept;
    OwnedText(const OwnedText&) = delete;
    OwnedText& operator=(const OwnedText&) = delete;

    // The text, NUL-terminated; "" when empty. Valid while this object lives.
    const char* chars() const noexcept { return chars_ != nullptr ? chars_ : ""; }
    size_t length() const noexcept { return length_; }

  private:
    char* chars_ = nullptr;
    size_t length_ = 0;
};

// Which implementation converts to or from the ASCII code set: the fast path or iconv. The
// choice exists so that the tests can compare the two; the UTF-8 code set never uses iconv.
enum class Route { Fastest, Iconv };

// Converts `length` bytes of text in `codeset` to UTF-8. The caller frees nothing: the result
// owns its storage. Throws kelm_asn_memexception when memory runs out. The text comes from a
// NUL-terminated string and so holds no NUL itself.
OwnedText local_to_utf8(const char* local, size_t length, const char* codeset, Route route);

// Converts `length` bytes of UTF-8 to `codeset`; ownership and failures as local_to_utf8.
OwnedText utf8_to_local(const char* utf8, size_t length, const char* codeset, Route route);

// The number of bytes (1 to 4) of the well-formed UTF-8 character that starts at `bytes`, or 0
// when the first byte does not begin one within `available` bytes. U+0000 counts as well-formed.
unsigned int well_formed_utf8_length(const unsigned char* bytes, size_t available) noexcept;

// The number of iconv descriptors the calling thread has opened so far.
unsigned long iconv_descriptors_opened() noexcept;

// The calling thread's local code set: nl_langinfo(CODESET) of its current locale.
const char* current_codeset() noexcept;

} // namespace kelmz_detail

// A NUL-terminated string in the local code set, not owned. A null pointer reads as "".
class ZLCConstString_7_0_0 {
  public:
    explicit ZLCConstString_7_0_0(const char* chars) noexcept;

    const char* getChars() const noexcept { return chars_; }
    size_t getLength() const noexcept { return length_; }

  private:
    const char* chars_;
    size_t length_;
};

// `length` bytes of UTF-8, not owned and not necessarily NUL-terminated. A null pointer reads as
// the empty string whatever the length.
class ZUTF8ConstString_7_0_0 {
  public:
    ZUTF8ConstString_7_0_0(const char* bytes, unsigned int length) noexcept;

    const char* getChars() const noexcept { return bytes_; }
    unsigned int getLength() const noexcept { return length_; }

  private:
    const char* bytes_;
    unsigned int length_;
};

// The result of a conversion: owned, NUL-terminated text. Not copyable; the storage is freed
// when the derived object is destroyed.
class ZAbstractMutableString_7_0_0 {
  public:
    ZAbstractMutableString_7_0_0(const ZAbstractMutableString_7_0_0&) = delete;
    ZAbstractMutableString_7_0_0& operator=(const ZAbstractMutableString_7_0_0&) = delete;

    // Bytes of the text, without the terminator; fits in 32 bits by construction.
    unsigned int getLength() const noexcept { return static_cast<unsigned int>(text_.length()); }
    // The text followed by a NUL; never null. Valid while this object lives.
    const char* getChars() const noexcept { return text_.chars(); }

  protected:
    explicit ZAbstractMutableString_7_0_0(kelmz_detail::OwnedText text) noexcept
        : text_(std::move(text)) {}
    // Not virtual: these strings are never destroyed through a base pointer.
    ~ZAbstractMutableString_7_0_0() = default;

  private:
    kelmz_detail::OwnedText text_;
};

// The UTF-8 form of a local string, converted with the calling thread's locale.
class ZUTF8String_7_0_0 : public ZAbstractMutableString_7_0_0 {
  public:
    explicit ZUTF8String_7_0_0(const ZLCConstString_7_0_0& local);
};

// The local form of UTF-8 text, converted with the calling thread's locale.
class ZLCString_7_0_0 : public ZAbstractMutableString_7_0_0 {
  public:
    explicit ZLCString_7_0_0(const ZUTF8ConstString_7_0_0& utf8);
};

#endif
