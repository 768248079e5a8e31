// Properties of the DER inspection functions over arbitrary bytes (see the header). Each call is
// checked twice: against the properties every call keeps (motion of the cursor and the count,
// nothing changed by a failure), and against a model of its documented result written here
// from the documented behaviour, not from the implementation.
#include "der_inspect_properties.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "kelm/kelmasn.h"

namespace kelmasn_fuzz {
namespace {

// What an output holds before a call. A failing call must leave it so: no failure allocates.
constexpr unsigned int kUnwritten = 0xA5A5A5A5u;
constexpr int64_t kUnwrittenValue = 0x5A5A5A5A5A5A5A5A;
unsigned char unwritten_target;
unsigned char* const kUnwrittenBlock = &unwritten_target;

std::string hex(unsigned int value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", value);
    return text;
}

uintptr_t address(const void* p) {
    return reinterpret_cast<uintptr_t>(p);
}

// The documented status of the functions whose contents must be 1 to 8 octets long.
unsigned int small_contents_status(unsigned int size, unsigned int left) {
    if (size > 8)
        return KELM_DER_TOO_LONG;
    if (size == 0)
        return KELM_DER_EMPTY;
    if (left < size)
        return KELM_DER_SHORT;
    return KELM_ASN_OK;
}

// The documented status of the functions whose contents may be of any non-zero length.
unsigned int contents_status(unsigned int size, unsigned int left) {
    if (size == 0)
        return KELM_DER_EMPTY;
    if (left < size)
        return KELM_DER_SHORT;
    return KELM_ASN_OK;
}

// The documented status of the value form of kelmAsnGetIntegerValue: size 0 is accepted.
unsigned int integer_value_status(unsigned int size, unsigned int left) {
    if (size > 8)
        return KELM_DER_TOO_LONG;
    if (left < size)
        return KELM_DER_SHORT;
    return KELM_ASN_OK;
}

using ByteFormFunction = unsigned int (*)(unsigned char**, unsigned int*, unsigned int,
                                          unsigned char**, unsigned int*);

unsigned int byte_form_in_wire_order(unsigned char** cursor, unsigned int* remaining,
                                     unsigned int size, unsigned char** bytes,
                                     unsigned int* count) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, bytes, count, 0);
}

unsigned int byte_form_reversed(unsigned char** cursor, unsigned int* remaining, unsigned int size,
                                unsigned char** bytes, unsigned int* count) {
    return kelmAsnGetIntegerValue(cursor, remaining, size, bytes, count, 1);
}

struct ByteForm {
    const char* name;
    ByteFormFunction call;
    bool reversed;
};

const ByteForm kByteForms[] = {
    {"kelmAsnGetIntegerValue (byte form, order 0)", byte_form_in_wire_order, false},
    {"kelmAsnGetIntegerValue (byte form, order 1)", byte_form_reversed, true},
    {"kelmAsnGetLongIntegerValueBigEndian", kelmAsnGetLongIntegerValueBigEndian, false},
    {"kelmAsnGetLongIntegerValueLittleEndian", kelmAsnGetLongIntegerValueLittleEndian, true},
};

class Checker {
  public:
    Checker(unsigned char* begin, size_t size) : begin_(begin), end_(begin + size), at_(begin) {}

    std::string run() {
        unsigned char* pos = begin_;
        for (;;) {
            at_ = pos;
            check_end_of_contents(pos);
            bool constructed = false;
            if (!check_identifier(pos, constructed))
                break;
            bool definite = false;
            unsigned int length = 0;
            if (!check_length(pos, definite, length))
                break;
            if (constructed)
                continue; // the walk steps into the contents, definite or not
            const unsigned int size = definite ? length : 0;
            check_contents(pos, size);
            if (!violation_.empty() || size > left_at(pos))
                break;
            pos += size;
        }
        if (violation_.empty()) {
            // Nothing left at all: every reader must fail or read nothing, never past the end.
            at_ = end_;
            unsigned char* end = end_;
            bool definite = false;
            unsigned int length = 0;
            check_length(end, definite, length);
            check_contents(end_, 0);
            check_contents(end_, 1);
        }
        return violation_;
    }

  private:
    unsigned int left_at(const unsigned char* p) const {
        return static_cast<unsigned int>(end_ - p);
    }

    // Records the first property that does not hold; returns `holds`.
    bool expect(bool holds, const char* function, const char* what) {
        return expect(holds, function, [what] { return std::string(what); });
    }

    // The same with a description that is only composed when the property does not hold, as
    // composing it on every call would cost more than the call under test.
    template <typename Describe> bool expect(bool holds, const char* function, Describe describe) {
        if (!holds && violation_.empty())
            violation_ =
                "offset " + std::to_string(at_ - begin_) + ": " + function + ": " + describe();
        return holds;
    }

    // The properties every call keeps, whatever it reads.
    bool check_motion(const char* function, unsigned int status, const unsigned char* cursor_before,
                      unsigned int remaining_before, const unsigned char* cursor_after,
                      unsigned int remaining_after) {
        if (!expect(address(cursor_after) >= address(cursor_before) &&
                        address(cursor_after) <= address(end_),
                    function, "the cursor left the input"))
            return false;
        if (!expect(remaining_after <= remaining_before, function, [&] {
                return "the remaining count grew from " + std::to_string(remaining_before) +
                       " to " + std::to_string(remaining_after);
            }))
            return false;
        return status == KELM_ASN_OK ||
               expect(cursor_after == cursor_before && remaining_after == remaining_before,
                      function, [&] {
                          return "failing with " + hex(status) +
                                 " it moved the cursor or changed the count";
                      });
    }

    bool expect_status(const char* function, unsigned int status, unsigned int expected) {
        return expect(status == expected, function,
                      [&] { return "status " + hex(status) + ", expected " + hex(expected); });
    }

    bool expect_consumed(const char* function, const unsigned char* pos, unsigned int left,
                         const unsigned char* cursor, unsigned int remaining, unsigned int n) {
        return expect(cursor == pos + n && remaining == left - n, function, [&] {
            return "expected to consume " + std::to_string(n) + " bytes, moved " +
                   std::to_string(cursor - pos) + " and counted " +
                   std::to_string(left - remaining);
        });
    }

    void expect_input_unchanged(const char* function, const unsigned char* pos,
                                const std::vector<unsigned char>& original) {
        expect(std::equal(original.begin(), original.end(), pos), function,
               "changed the input bytes");
    }

    void check_end_of_contents(unsigned char* pos) {
        const unsigned int left = left_at(pos);
        const int model = left >= 2 && pos[0] == 0x00 && pos[1] == 0x00 ? 1 : 0;
        expect(check_EOC(kelm_r_buffer_t(pos, left)) == model, "check_EOC",
               model ? "missed an end-of-contents marker" : "reported a marker that is not there");
    }

    // Identifier octets (X.690 8.1.2 with the documented high-tag departures). On success moves
    // `pos` past them.
    bool check_identifier(unsigned char*& pos, bool& constructed) {
        const char* fn = "kelmAsnGetType";
        const unsigned int left = left_at(pos);
        unsigned char* slots[2] = {pos, kUnwrittenBlock};
        unsigned int remaining = left;
        unsigned int tag = kUnwritten, cons = kUnwritten, tag_class = kUnwritten;
        const unsigned int status = kelmAsnGetType(&slots[0], &remaining, &tag, &cons, &tag_class);
        if (!check_motion(fn, status, pos, left, slots[0], remaining))
            return false;
        if (left == 0) {
            expect_status(fn, status, KELM_DER_SHORT);
            expect(tag == kUnwritten && cons == kUnwritten && tag_class == kUnwritten &&
                       slots[1] == kUnwrittenBlock,
                   fn, "wrote an output for empty input");
            return false;
        }
        const unsigned char b = pos[0];
        expect(cons == ((b >> 5) & 1u) && tag_class == (b >> 6u), fn,
               "constructed flag or class differ from the identifier octet");
        if ((b & 0x1F) != 0x1F) {
            expect_status(fn, status, KELM_ASN_OK);
            expect(tag == (b & 0x1Fu), fn, "misread a low tag number");
            expect_consumed(fn, pos, left, slots[0], remaining, 1);
            expect(slots[1] == kUnwrittenBlock, fn,
                   "a low tag number wrote the slot after the cursor");
            constructed = cons == 1;
            pos += 1;
            return violation_.empty();
        }
        if (left == 1) {
            expect_status(fn, status, KELM_DER_SHORT);
            expect(tag == 0, fn, "a lone high-tag octet must leave the tag 0");
            expect(slots[1] == kUnwrittenBlock, fn, "failing, it wrote the slot after the cursor");
            return false;
        }
        // High tag number: `last` is the octet that ends it (bit 8 clear), `left` if none does.
        // The tag starts from the masked first octet and takes every later octet but the last.
        unsigned int last = 1;
        while (last < left && (pos[last] & 0x80))
            ++last;
        unsigned int model_tag = b & 0x7Fu;
        for (unsigned int i = 1; i < std::min(last, left - 1); ++i)
            model_tag = model_tag * 128 + (pos[i] & 0x7Fu);
        expect(tag == model_tag, fn, [&] {
            return "high tag number " + std::to_string(tag) + ", expected " +
                   std::to_string(model_tag);
        });
        if (last == left) {
            expect_status(fn, status, KELM_DER_SHORT);
            expect(slots[1] == kUnwrittenBlock, fn, "failing, it wrote the slot after the cursor");
            return false;
        }
        if (!expect_status(fn, status, KELM_ASN_OK))
            return false;
        if (!expect(address(slots[1]) > address(pos) && address(slots[1]) < address(end_), fn,
                    "the position handed over after the cursor lies outside the input"))
            return false;
        expect(slots[0] == pos, fn, "a high tag number moved the caller's cursor");
        expect(slots[1] == pos + last, fn, "the slot after the cursor is not the last octet");
        expect(remaining == left - 1 - last, fn, [&] {
            return "the count must drop by the " + std::to_string(last + 1) + " identifier octets";
        });
        constructed = cons == 1;
        pos += last + 1;
        return violation_.empty();
    }

    // Length octets (X.690 8.1.3; any number of long-form octets, folded into 32 bits). On
    // success moves `pos` past them.
    bool check_length(unsigned char*& pos, bool& definite, unsigned int& length) {
        const char* fn = "kelmAsnGetLength";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        unsigned int def = kUnwritten, len = kUnwritten;
        const unsigned int status = kelmAsnGetLength(&cursor, &remaining, &def, &len);
        if (!check_motion(fn, status, pos, left, cursor, remaining))
            return false;
        if (left == 0) {
            expect_status(fn, status, KELM_DER_SHORT);
            expect(def == kUnwritten && len == kUnwritten, fn, "wrote an output for empty input");
            return false;
        }
        const unsigned char b = pos[0];
        unsigned int consumed = 1;
        unsigned int model_length = b;
        if (b == 0x80) {
            model_length = 0;
            expect(def == 0, fn, "the indefinite form must clear the definite flag");
        } else if (b > 0x80) {
            const unsigned int n = b & 0x7Fu;
            const unsigned int available = left - 1;
            model_length = 0;
            for (unsigned int i = 0; i < std::min(n, available); ++i)
                model_length = model_length * 256 + pos[1 + i];
            expect(def == 1, fn, "the long form must set the definite flag");
            expect(len == model_length, fn, [&] {
                return "length " + std::to_string(len) + ", expected " +
                       std::to_string(model_length);
            });
            if (n > available) {
                expect_status(fn, status, KELM_DER_SHORT);
                return false;
            }
            consumed = 1 + n;
        } else {
            expect(def == 1, fn, "the short form must set the definite flag");
        }
        if (!expect_status(fn, status, KELM_ASN_OK))
            return false;
        expect(len == model_length, fn, [&] {
            return "length " + std::to_string(len) + ", expected " + std::to_string(model_length);
        });
        expect_consumed(fn, pos, left, cursor, remaining, consumed);
        definite = def == 1;
        length = len;
        pos += consumed;
        return violation_.empty();
    }

    // Every contents function on `size` bytes at `pos`, each from the same start.
    void check_contents(unsigned char* pos, unsigned int size) {
        const unsigned int left = left_at(pos);
        const std::vector<unsigned char> original(pos, pos + std::min(size, left));
        check_integer_value(pos, size, original);
        for (const ByteForm& form : kByteForms)
            check_integer_bytes(form, pos, size, original);
        check_null(pos, size, original);
        check_charstring(pos, size, original);
        check_octetstring(pos, size, original);
        check_oid(pos, size, original);
        // Last: it clears unused bits in its input.
        check_bitstring(pos, size, original);
    }

    void check_integer_value(unsigned char* pos, unsigned int size,
                             const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetIntegerValue (value form)";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        int64_t value = kUnwrittenValue;
        const unsigned int status = kelmAsnGetIntegerValue(&cursor, &remaining, size, &value);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_input_unchanged(fn, pos, original);
        if (!expect_status(fn, status, integer_value_status(size, left)) || status != KELM_ASN_OK) {
            expect(value == kUnwrittenValue, fn, "failing, it wrote the value");
            return;
        }
        // Two's complement, sign from the byte at the cursor when there is one.
        uint64_t pattern = left > 0 && (pos[0] & 0x80) ? ~0ULL : 0ULL;
        for (unsigned int i = 0; i < size; ++i)
            pattern = (pattern << 8) | pos[i];
        expect(value == static_cast<int64_t>(pattern), fn, [&] {
            return "value " + std::to_string(value) + ", expected " +
                   std::to_string(static_cast<int64_t>(pattern));
        });
        expect_consumed(fn, pos, left, cursor, remaining, size);
    }

    void check_integer_bytes(const ByteForm& form, unsigned char* pos, unsigned int size,
                             const std::vector<unsigned char>& original) {
        const char* fn = form.name;
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        unsigned char* bytes = kUnwrittenBlock;
        unsigned int count = kUnwritten;
        const unsigned int status = form.call(&cursor, &remaining, size, &bytes, &count);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_input_unchanged(fn, pos, original);
        if (!expect_status(fn, status, small_contents_status(size, left)) ||
            status != KELM_ASN_OK) {
            expect(bytes == kUnwrittenBlock && count == kUnwritten, fn,
                   "failing, it wrote an output");
            return;
        }
        std::vector<unsigned char> model(pos, pos + size);
        if (form.reversed)
            std::reverse(model.begin(), model.end());
        expect(count == size && std::equal(model.begin(), model.end(), bytes), fn,
               "the bytes differ from the contents");
        expect_consumed(fn, pos, left, cursor, remaining, size);
        std::free(bytes);
    }

    void check_null(unsigned char* pos, unsigned int size,
                    const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetNullValue";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        const unsigned int status = kelmAsnGetNullValue(&cursor, &remaining, size);
        expect_status(fn, status, KELM_ASN_OK);
        expect(cursor == pos && remaining == left, fn, "moved the cursor or changed the count");
        expect_input_unchanged(fn, pos, original);
    }

    void check_charstring(unsigned char* pos, unsigned int size,
                          const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetCharstringValue";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        char* text = reinterpret_cast<char*>(kUnwrittenBlock);
        const unsigned int status = kelmAsnGetCharstringValue(&cursor, &remaining, size, &text);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_input_unchanged(fn, pos, original);
        if (!expect_status(fn, status, contents_status(size, left)) || status != KELM_ASN_OK) {
            expect(text == reinterpret_cast<char*>(kUnwrittenBlock), fn,
                   "failing, it wrote the text");
            return;
        }
        // The characters up to the first NUL, then NULs up to and including position size.
        const unsigned int kept = static_cast<unsigned int>(std::find(pos, pos + size, 0x00) - pos);
        bool matches = std::equal(pos, pos + kept, reinterpret_cast<unsigned char*>(text));
        for (unsigned int i = kept; i <= size; ++i)
            matches = matches && text[i] == '\0';
        expect(matches, fn, "the text differs from the contents up to the first NUL");
        expect_consumed(fn, pos, left, cursor, remaining, size);
        std::free(text);
    }

    void check_octetstring(unsigned char* pos, unsigned int size,
                           const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetOctetstringValue";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        unsigned char* bytes = kUnwrittenBlock;
        unsigned int count = kUnwritten;
        const unsigned int status =
            kelmAsnGetOctetstringValue(&cursor, &remaining, size, &bytes, &count);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_input_unchanged(fn, pos, original);
        if (!expect_status(fn, status, contents_status(size, left)) || status != KELM_ASN_OK) {
            expect(bytes == kUnwrittenBlock && count == kUnwritten, fn,
                   "failing, it wrote an output");
            return;
        }
        expect(count == size && std::equal(pos, pos + size, bytes), fn,
               "the bytes differ from the contents");
        expect_consumed(fn, pos, left, cursor, remaining, size);
        std::free(bytes);
    }

    void check_oid(unsigned char* pos, unsigned int size,
                   const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetOIDValue";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        // A null record is refused before anything about the input is looked at.
        unsigned int status = kelmAsnGetOIDValue(&cursor, &remaining, size, nullptr);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_status(fn, status, KELM_DER_NULL_OUTPUT);
        kelm_asn_oid_t oid{kUnwritten, kUnwrittenBlock};
        status = kelmAsnGetOIDValue(&cursor, &remaining, size, &oid);
        check_motion(fn, status, pos, left, cursor, remaining);
        expect_input_unchanged(fn, pos, original);
        if (!expect_status(fn, status, contents_status(size, left)) || status != KELM_ASN_OK) {
            expect(oid.bytes == kUnwrittenBlock && oid.count == kUnwritten, fn,
                   "failing, it wrote the record");
            return;
        }
        expect(oid.count == size && std::equal(pos, pos + size, oid.bytes), fn,
               "the record differs from the contents");
        expect_consumed(fn, pos, left, cursor, remaining, size);
        std::free(oid.bytes);
    }

    void check_bitstring(unsigned char* pos, unsigned int size,
                         const std::vector<unsigned char>& original) {
        const char* fn = "kelmAsnGetBitstringValue";
        const unsigned int left = left_at(pos);
        unsigned char* cursor = pos;
        unsigned int remaining = left;
        unsigned char* bytes = kUnwrittenBlock;
        unsigned int bits = kUnwritten;
        const unsigned int status =
            kelmAsnGetBitstringValue(&cursor, &remaining, size, &bytes, &bits);
        check_motion(fn, status, pos, left, cursor, remaining);
        unsigned int expected = small_contents_status(size, left);
        const unsigned int unused = expected == KELM_ASN_OK ? original[0] : 0;
        if (expected == KELM_ASN_OK && (unused > 7 || (size == 1 && unused != 0)))
            expected = KELM_DER_BAD_UNUSED_BITS;
        if (!expect_status(fn, status, expected) || status != KELM_ASN_OK) {
            expect(bytes == kUnwrittenBlock && bits == kUnwritten, fn,
                   "failing, it wrote an output");
            expect_input_unchanged(fn, pos, original);
            return;
        }
        expect(bits == (size - 1) * 8 - unused, fn, [&] {
            return "bit count " + std::to_string(bits) + " for " + std::to_string(size) +
                   " octets with " + std::to_string(unused) + " unused bits";
        });
        // The copy keeps the unused bits; the input loses them, in its last octet only.
        expect(std::equal(original.begin() + 1, original.end(), bytes), fn,
               "the copy differs from the contents after the unused-bits octet");
        std::vector<unsigned char> masked = original;
        masked[size - 1] = static_cast<unsigned char>(masked[size - 1] & (0xFFu << unused));
        expect(std::equal(masked.begin(), masked.end(), pos), fn,
               "the input differs from the contents with the unused bits cleared");
        // The cursor passes all size octets; the count drops by one less.
        expect(cursor == pos + size && remaining == left - (size - 1), fn, [&] {
            return "expected the cursor to move by " + std::to_string(size) +
                   " and the count to drop by " + std::to_string(size - 1);
        });
        std::free(bytes);
    }

    unsigned char* const begin_;
    unsigned char* const end_;
    const unsigned char* at_; // start of the element being checked, for the report
    std::string violation_;
};

} // namespace

std::string check_der_inspection(const uint8_t* data, size_t size) {
    // A copy the functions may write to (BIT STRING masking), of exactly the input's size so
    // that the address sanitizer sees any read past the end.
    std::vector<unsigned char> bytes(data, data + size);
    return Checker(bytes.data(), bytes.size()).run();
}

} // namespace kelmasn_fuzz
