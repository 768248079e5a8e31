// Filled records to start from, for `kelmasn sample`.
#ifndef KELMASN_TOOL_SAMPLES_H
#define KELMASN_TOOL_SAMPLES_H

#include "asn_record.h"

namespace kelmasn_tool {

// Fills a zeroed record of `type` with every field given: small distinct integers, texts named
// after their field, a few bytes, one or two entries in each list, optional records present and
// the first slot filled, down to a nesting depth where lists stay empty and optional records
// absent. With `minimal`, the smallest record instead: zeros, empty texts and byte arrays, empty
// lists and slots, optional records absent. Allocates with malloc, so that
// kelm_asn_record::free_record releases it.
void fill_sample(const kelm_record_type& type, void* record, bool minimal = false);

} // namespace kelmasn_tool

#endif
