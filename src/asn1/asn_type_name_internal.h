// Type names stored by the runtime's own constructors and destructors. Not installed.
#ifndef KELMASN_ASN_TYPE_NAME_INTERNAL_H
#define KELMASN_ASN_TYPE_NAME_INTERNAL_H

#include <cstddef>
#include <cstring>

// Stores the literal `name` in a value object's type_name field exactly as set_type_name does (the
// characters, then zeros to the end of the field). Every value object stores a name when it is
// made and another when it is destroyed, so this runs for every element of every message: with the
// literal's length known when compiling, it is a few stores rather than a loop.
template <size_t Field, size_t N>
inline void kelm_store_type_name(char (&field)[Field], const char (&name)[N]) {
    static_assert(N < Field, "a type name has at most the field's size less one characters");
    std::memcpy(field, name, N);
    std::memset(field + N, 0, Field - N);
}

#endif
