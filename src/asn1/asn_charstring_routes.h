// How the character-string classes move text between code sets: the read-conversion routes
// (stored code set to the code set a getter asks for) and the conversions of IA5 text into each
// code set. Internal to the library.
#ifndef KELM_ASN_CHARSTRING_ROUTES_H
#define KELM_ASN_CHARSTRING_ROUTES_H

#include "asn_buffer.h"
#include "asn_status.h"

namespace kelm_charstring {

// Appends `source`, held in code set `stored`, converted to code set `target`. On failure
// (KELM_ASN_UNREPRESENTABLE, also for a code-set number outside the seven) `output` is left as
// it was. Intermediate text is held in buffers with `output`'s hooks, wiped on release when
// `security` or `output` is secure.
unsigned int read_as(const kelm_r_buffer_t& source, unsigned int stored, unsigned int target,
                     kelm_buffer_t& output, security_t security);

// Appends IA5 text converted to code set `target` (IA5 itself is copied). On failure `output`
// is left as it was.
unsigned int ia5_to(const kelm_r_buffer_t& ia5, unsigned int target, kelm_buffer_t& output);

// The order in which IA5 text is offered to the code sets of a class: first each code set of
// `preferred` that the class prefers, then each of `accepted` that it accepts.
struct TextPasses {
    const unsigned int* preferred;
    unsigned int preferred_count;
    const unsigned int* accepted;
    unsigned int accepted_count;
};

// Text set from the local code set (set_value_C).
const TextPasses& local_text_passes();
// IA5 text set with conversion (set_value_IA5 with a non-zero argument).
const TextPasses& ia5_text_passes();

} // namespace kelm_charstring

#endif
