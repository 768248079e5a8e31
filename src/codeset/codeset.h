/// \file
/// Code-set converters: free functions that turn a character string held as octets in one code
/// set into another code set, and the two exported tables of the local code set.
///
/// Ownership: a converter reads its source without taking it over and appends to a destination
/// buffer that the caller owns; nothing is allocated except through the destination's hooks (and,
/// for T612IA5, a temporary buffer with the destination's hooks and security setting).
///
/// Octet forms of the code sets:
///
///     IA5         1 octet per character; 0x80..0xFF are carried as Latin-1 U+0080..U+00FF where a
///                 converter accepts them
///     T.61        1 octet, or 2 for an accented letter: a non-spacing accent 0xC1..0xCF written
///                 before the base letter
///     BMP         2 octets, UCS-2 with the most significant octet first
///     Universal   4 octets, UCS-4 with the most significant octet first
///     UTF-8       1 to 6 octets (the six-octet form of RFC 2279)
///     Printable, Visible   1 octet, subsets of IA5 checked by table
///
/// Common rules:
/// - The source is the `remaining` octets from `cursor` of the given cursor; `start` and `length`
///   are not looked at and the cursor is not moved. A kelm_buffer_t passed as the source therefore
///   gives exactly the octets written to it. The source must not be the destination itself.
/// - A converter appends to `dst`; only IA52P and IA52V replace its content instead.
/// - Every converter returns 0 on success or KELM_ASN_UNREPRESENTABLE when a character has no form
///   in the target code set. An empty source returns 0 and appends nothing.
/// - No octet past the source is ever read. Where a converter needs an octet beyond the end to
///   complete the last character (an odd BMP length, a UCS-4 group of fewer than four octets, a
///   UTF-8 sequence cut short), it takes KELM_CODESET_FILLER_OCTET in its place.
/// - Exhausted memory while appending throws kelm_asn_memexception, as every append does.
#ifndef KELM_CODESET_H
#define KELM_CODESET_H

#include "asn_buffer.h"
#include "asn_status.h"

/// The octet a converter reads in place of each octet missing from a short last character.
inline constexpr unsigned char KELM_CODESET_FILLER_OCTET = 0x00;

/// An entry of the two local code-set tables that means "no mapping".
inline constexpr unsigned int KELM_CODESET_NO_MAPPING = 0xFFFFFFFFu;

/// IA5 octet i to the local code set: i for 0..127, KELM_CODESET_NO_MAPPING for 128..255.
/// Writable, so that a port to another local code set can replace the contents. With
/// Local2IA5_table it is the one shared state that callers may write: the character strings'
/// get_value_C reads it, so a program that replaces its contents does so before it starts
/// threads that convert, and leaves it unchanged afterwards (writing it while another thread
/// converts is a data race).
extern KELM_API unsigned int IA52Local_table[256];

/// Local code set to IA5, indexed by the local octet taken as a signed value plus 128: indices
/// 128..255 (local octets 0..127) give index - 128; indices 0..127 (local octets 0x80..0xFF) give
/// KELM_CODESET_NO_MAPPING. Writable for the same reason, and under the same rule for threads:
/// set_value_C of the character strings reads it.
extern KELM_API unsigned int Local2IA5_table[256];

// --- T.61 ---------------------------------------------------------------------------------------

/// Latin-1 to T.61. Accented Latin-1 letters become an accent octet followed by the base letter;
/// 0x23 becomes A6 and 0x24 becomes A4. Fails at the first octet without a T.61 form (other
/// control octets, 0x7F..0xA0, A6, A8, A9, AA, AC..AF, B4, B8, B9), and then leaves `dst` as it
/// was on entry. Kept deliberately for compatibility with existing buffers: F0 (eth) becomes F2,
/// not F3.
KELM_API unsigned int IA52T61(const kelm_r_buffer_t& src, kelm_buffer_t& dst);

/// T.61 to BMP. An accent applies to the one octet after it, which must be a base letter listed
/// for that accent; C8 and C9 both mean diaeresis; C0 is refused; CC takes no letter; an accent
/// at the very end of the source is dropped. The octets 08, 0A, 0C, 0D, 1A and 24 are written
/// (24 as U+00A4) and silently drop a pending accent. Unknown octets and an accent without a
/// valid base letter fail, and then `dst` is left as it was on entry.
/// Kept deliberately for compatibility with existing buffers: capital A has no macron, breve or
/// ogonek form; caron with small n writes U+0048; E0, F0 and F3 give U+03A9, U+039A and U+03B4.
KELM_API unsigned int T612BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst);

/// T.61 to IA5: T612BMP into a temporary buffer, then BMP2IA5 into `dst`. On failure `dst` is
/// left as it was on entry.
KELM_API unsigned int T612IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst);

// --- IA5, BMP and Universal ----------------------------------------------------------------------

/// \name Widening
/// Each character gets zero octets in front (b -> 00 b, 00 00 00 b; h l -> 00 00 h l). No check
/// is made and nothing fails.
///@{

/// IA5 to BMP: each octet b becomes 00 b.
KELM_API unsigned int IA52BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
/// IA5 to Universal: each octet b becomes 00 00 00 b.
KELM_API unsigned int IA52U(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
/// BMP to Universal: each unit h l becomes 00 00 h l.
KELM_API unsigned int BMP2U(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
///@}

/// \name Narrowing
/// The leading octets of each 2- or 4-octet unit must be zero (the first of two for BMP2IA5, the
/// first three of four for U2IA5, the first two of four for U2BMP) and the others are appended.
/// The first unit that fails stops the conversion, and `dst` is cut back to its length on entry.
/// The low octet is not checked against 0x7F: U+0080..U+00FF pass into IA5.
///@{

/// BMP to IA5: each unit 00 b becomes b.
KELM_API unsigned int BMP2IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
/// Universal to IA5: each unit 00 00 00 b becomes b.
KELM_API unsigned int U2IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
/// Universal to BMP: each unit 00 00 h l becomes h l.
KELM_API unsigned int U2BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
///@}

// --- UTF-8 --------------------------------------------------------------------------------------

/// UTF-8 to IA5 (at most U+00FF) and to BMP (at most U+FFFF). The lead octet decides the length
/// (C0..DF two, E0..EF three, F0..F7 four, F8..FB five, FC..FD six); 80..BF, FE and FF fail.
/// Continuation octets are not checked for the form 10xxxxxx and over-long forms are accepted
/// (C0 80 gives U+0000), except that a two-octet sequence fails when lead * 64 + second octet is
/// below 0x3080. Surrogates are not rejected. On failure these two keep what they had appended.
///
/// This one: UTF-8 to IA5.
KELM_API unsigned int UTF82IA5(kelm_r_buffer_t src, kelm_buffer_t& dst);
/// UTF-8 to BMP (at most U+FFFF), with the rules of UTF82IA5.
KELM_API unsigned int UTF82BMP(kelm_r_buffer_t src, kelm_buffer_t& dst);

/// IA5, BMP and Universal to UTF-8; nothing fails. IA5 octets from 0x80 become two octets.
/// BMP2UTF8 writes surrogate code units like any other value, three octets each. U2UTF8 skips
/// values from 0x80000000 up without output and writes up to six octets; kept deliberately for
/// compatibility with existing buffers, the lead octet of its four-octet form is
/// 0xF0 | ((c >> 18) & 0x3), so bit 20 of U+100000..U+1FFFFF is not carried into it.
///
/// This one: IA5 to UTF-8.
KELM_API unsigned int IA52UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst);
/// BMP to UTF-8, with the rules of IA52UTF8.
KELM_API unsigned int BMP2UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst);
/// Universal to UTF-8, with the rules of IA52UTF8.
KELM_API unsigned int U2UTF8(kelm_r_buffer_t src, kelm_buffer_t& dst);

// --- Printable and Visible ----------------------------------------------------------------------

/// Checks every octet against the PrintableString (IA52P) or VisibleString (IA52V) table. At the
/// first octet outside it the converter fails without touching `dst`; otherwise `dst` is cleared
/// and the whole source copied into it (an empty source therefore leaves `dst` empty). Both
/// tables hold the same 73 characters: space ' ( ) + , - . / 0-9 : ? A-Z a-z. Kept deliberately
/// for compatibility with existing buffers: the equals sign is in neither, and the Visible table
/// is no wider than the Printable one.
///
/// This one: IA5 to PrintableString.
KELM_API unsigned int IA52P(const kelm_r_buffer_t& src, kelm_buffer_t& dst);
/// IA5 to VisibleString, with the rules of IA52P.
KELM_API unsigned int IA52V(const kelm_r_buffer_t& src, kelm_buffer_t& dst);

#endif
