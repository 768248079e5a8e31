/// \file
/// The source position that an exception of the runtime reports.
///
/// Every throw of the runtime names its position through a fixed kelm_source_site instead of
/// __FILE__ and __LINE__: callers match the "in <file> at line <n>" part of the exception line, so
/// the position a failure reports must not follow the file's location or layout.
#ifndef KELM_ASN_SOURCE_SITE_H
#define KELM_ASN_SOURCE_SITE_H

/// A throw site: the file and line that the exception of that site reports.
struct kelm_source_site {
    const char* file; ///< the source file named, with its folder from the project's root
    int line;         ///< the source line named
};

#endif
