// The five typed entry points of every registered record type.
#include "entry_points_internal.h"
#include "kelm/kelmasn.h"
#include "record_types.h"

KELM_FOR_EACH_RECORD_TYPE(KELM_DEFINE_ENTRY_POINTS)
