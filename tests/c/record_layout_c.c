// Prints, as a C compiler lays them out, the size and alignment of every record of the public
// headers and the offset and size of each of its fields: one line each, in the order of
// record_layouts.h. record_layout_cxx.cpp prints the same for C++.
#include <stddef.h>
#include <stdio.h>

#include "record_layouts.h"
#include <kelm/kelmasn_c.h>

#define PRINT_RECORD(record)                                                                       \
    printf("%s size %zu align %zu\n", #record, sizeof(record), _Alignof(record));
#define PRINT_FIELD(record, field)                                                                 \
    printf("%s.%s offset %zu size %zu\n", #record, #field, offsetof(record, field),                \
           sizeof(((record*)0)->field));

int main(void) {
    KELM_FOR_EACH_RECORD_LAYOUT(PRINT_RECORD, PRINT_FIELD)
    return 0;
}
