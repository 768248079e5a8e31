// IA5, BMP (UCS-2) and Universal (UCS-4): the widening converters IA52BMP, IA52U and BMP2U, and
// the narrowing converters BMP2IA5, U2IA5 and U2BMP. All characters are big-endian.
#include "codeset.h"
#include "codeset_internal.h"

using kelm_codeset::cut_back_and_refuse;
using kelm_codeset::kChunkOctets;
using kelm_codeset::reserve;
using kelm_codeset::Units;

namespace {

// Writes each unit of `In` octets as `Out` octets: zeros in front, then the unit.
template <unsigned In, unsigned Out>
unsigned int widen(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    static_assert(In < Out && kChunkOctets % Out == 0, "units must fit the chunk exactly");
    const Units<In> units(src);
    reserve(dst, units.count() * Out);
    unsigned char out[kChunkOctets];
    unsigned long u = 0;
    while (u < units.count()) {
        unsigned int n = 0;
        for (; u < units.count() && n < kChunkOctets; ++u) {
            const unsigned char* unit = units[u];
            for (unsigned k = 0; k < Out - In; ++k)
                out[n++] = 0;
            for (unsigned k = 0; k < In; ++k)
                out[n++] = unit[k];
        }
        dst.append(out, n);
    }
    return KELM_ASN_OK;
}

// Writes the last `Out` octets of each unit of `In` octets, whose leading octets must be zero.
// The first unit that fails stops the conversion and cuts the destination back to its length
// on entry.
template <unsigned In, unsigned Out>
unsigned int narrow(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    static_assert(Out < In && kChunkOctets % Out == 0, "units must fit the chunk exactly");
    const unsigned int entry_length = dst.used();
    const Units<In> units(src);
    reserve(dst, units.count() * Out);
    unsigned char out[kChunkOctets];
    unsigned long u = 0;
    while (u < units.count()) {
        unsigned int n = 0;
        for (; u < units.count() && n < kChunkOctets; ++u) {
            const unsigned char* unit = units[u];
            unsigned char leading = 0;
            for (unsigned k = 0; k < In - Out; ++k)
                leading |= unit[k];
            if (leading != 0)
                return cut_back_and_refuse(dst, entry_length);
            for (unsigned k = In - Out; k < In; ++k)
                out[n++] = unit[k];
        }
        dst.append(out, n);
    }
    return KELM_ASN_OK;
}

} // namespace

unsigned int IA52BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return widen<1, 2>(src, dst);
}

unsigned int IA52U(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return widen<1, 4>(src, dst);
}

unsigned int BMP2U(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return widen<2, 4>(src, dst);
}

unsigned int BMP2IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return narrow<2, 1>(src, dst);
}

unsigned int U2IA5(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return narrow<4, 1>(src, dst);
}

unsigned int U2BMP(const kelm_r_buffer_t& src, kelm_buffer_t& dst) {
    return narrow<4, 2>(src, dst);
}
