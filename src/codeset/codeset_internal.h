// Helpers shared by the code-set converters; not part of the library's interface.
//
// The converters write their output in chunks: each loop fills a local block and hands it to
// the destination with one append, so the inner loop stores through a local index instead of
// re-reading the destination's fields after every octet.
#ifndef KELM_CODESET_INTERNAL_H
#define KELM_CODESET_INTERNAL_H

#include "asn_buffer.h"
#include "codeset.h"

namespace kelm_codeset {

// Size of the local block a converter fills before appending it to the destination.
inline constexpr unsigned int kChunkOctets = 1024;

// Makes room for `n` more octets in one growth when the output size (or a close upper bound)
// is known, instead of the buffer's step-by-step growth of about a kilobyte per append. A size
// that would not fit a 32-bit capacity is left to the appends, which report it.
inline void reserve(kelm_buffer_t& dst, unsigned long n) {
    const unsigned long room = static_cast<unsigned long>(dst.capacity) - dst.used();
    if (n <= room || dst.used() + n > 0xFFFFFFFFUL)
        return;
    dst.extend(static_cast<unsigned int>(n - room));
}

// Octet i of a character that starts `available` octets before the end of the source, or the
// filler octet when i lies past the end.
inline unsigned char octet_or_filler(const unsigned char* p, unsigned int available,
                                     unsigned int i) {
    return i < available ? p[i] : KELM_CODESET_FILLER_OCTET;
}

// The failure of a converter that leaves the destination as it was on entry: cuts it back to
// the length it had then and reports the character without a form.
inline unsigned int cut_back_and_refuse(kelm_buffer_t& dst, unsigned int entry_length) {
    dst.truncate(entry_length);
    return KELM_ASN_UNREPRESENTABLE;
}

// The source taken in units of `Size` octets. A last unit cut short by the end of the source is
// completed with the filler octet in a copy, so no octet past the source is read.
template <unsigned Size> class Units {
  public:
    explicit Units(const kelm_r_buffer_t& src)
        : data_(src.cursor), size_(src.remaining), count_((size_ + Size - 1) / Size),
          whole_(size_ / Size) {
        if (count_ == whole_)
            return;
        const unsigned char* last = data_ + whole_ * Size;
        for (unsigned k = 0; k < Size; ++k)
            tail_[k] = octet_or_filler(last, static_cast<unsigned int>(size_ % Size), k);
    }

    unsigned long count() const { return count_; }

    const unsigned char* operator[](unsigned long u) const {
        return u < whole_ ? data_ + u * Size : tail_;
    }

  private:
    const unsigned char* data_;
    unsigned long size_;
    unsigned long count_;
    unsigned long whole_;
    unsigned char tail_[Size] = {};
};

} // namespace kelm_codeset

#endif
