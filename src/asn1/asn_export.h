/// \file
/// Symbol visibility for the library's public surface.
///
/// The library is built with hidden visibility by default; only declarations marked KELM_API
/// reach the dynamic symbol table of libkelmasn.so.
#ifndef KELM_ASN_EXPORT_H
#define KELM_ASN_EXPORT_H

/// Marks a declaration as part of the library's public surface: exported from libkelmasn.so.
#define KELM_API __attribute__((visibility("default")))

/// A member of an exported class that serves only the library itself: kept out of the dynamic
/// symbol table.
#define KELM_LOCAL __attribute__((visibility("hidden")))

#endif
