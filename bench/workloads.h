// The records that the benchmarks measure, built with malloc as a decode would fill them, so
// that kelmAsnFreeObj releases them.
//   W1  attrlist_s_t: 10 attributes of 3 values, names and texts of 12 characters (about 1.3 KB)
//   W2  acl_ext_s_t: 50 entries of 4 permissions (small masks and full 32-bit words), identity
//       names of 20 characters, 2 attributes of 2 values (about 4.4 KB)
//   W3  namevalue_s_t: a tree of depth 4 (the root and 3 levels), fan-out 3, 2 values per node
#ifndef KELMASN_BENCH_WORKLOADS_H
#define KELMASN_BENCH_WORKLOADS_H

#include <string>

#include "kelm/kelmasn.h"

namespace kelm_bench {

// A malloc'ed copy of `s` with its NUL.
char* text(const std::string& s);

// `n` malloc'ed bytes of `fill`.
unsigned char* bytes(unsigned int n, unsigned char fill);

// An attribute named `name` with `values` values, each a 12-character text and 16 bytes.
attr_s_t make_attribute(const std::string& name, unsigned int values);

attrlist_s_t make_w1();
acl_ext_s_t make_w2();
namevalue_s_t make_w3();

// A node of the W3 tree at `depth` (1 for the root): 2 values, and 3 nested nodes above depth 4.
namevalue_s_t make_node(unsigned int depth);

// A permission set of `n` permissions: n INTEGER elements in one list.
acl_permset_s_t make_permissions(unsigned int n);

// An audit event of 20 elements of 5 attributes each.
zuauditevent_s_t make_event();

} // namespace kelm_bench

#endif
