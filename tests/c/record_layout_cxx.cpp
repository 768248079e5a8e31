// Prints, as the C++ compiler that builds the library lays them out, the size and alignment of
// every record of the public headers and the offset and size of each of its fields, as
// record_layout_c.c does for C. Fails when a record type of the library is missing from
// record_layouts.h.
#include <cstddef>
#include <cstdio>
#include <set>
#include <string>

#include "kelm/kelmasn.h"
#include "record_layouts.h"
#include "record_registry.h"

int main() {
    std::set<std::string> listed;
#define PRINT_RECORD(record)                                                                       \
    std::printf("%s size %zu align %zu\n", #record, sizeof(record), alignof(record));              \
    listed.insert(#record);
#define PRINT_FIELD(record, field)                                                                 \
    std::printf("%s.%s offset %zu size %zu\n", #record, #field, offsetof(record, field),           \
                sizeof(static_cast<record*>(nullptr)->field));
    KELM_FOR_EACH_RECORD_LAYOUT(PRINT_RECORD, PRINT_FIELD)

    int status = 0;
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        if (listed.count(types[i]->record_name) == 0) {
            std::fprintf(stderr, "record_layouts.h does not list %s\n", types[i]->record_name);
            status = 1;
        }
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        if (coded[i].code != KELMASN_TYPE_INTEGER &&
            listed.count(coded[i].type->record_name) == 0) {
            std::fprintf(stderr, "record_layouts.h does not list %s\n", coded[i].type->record_name);
            status = 1;
        }
    return status;
}
