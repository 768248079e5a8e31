// Helpers shared by the value classes: where a getter reads from, and how a typed default value
// is built. Internal to the library.
#ifndef KELM_ASN_VALUE_INTERNAL_H
#define KELM_ASN_VALUE_INTERNAL_H

#include <memory>
#include <new>

#include "asn_object.h"
#include "asn_source_site.h"

namespace kelm_asn_internal {

// The position that the memory exception of this file reports. Existing callers match this value
// in the exception line: it must never change, whatever becomes of this file's layout.
// A failed allocation of a typed default value.
inline constexpr kelm_source_site kInstallDefaultSite = {"src/asn1/asn_value_internal.h", 30};

// The object whose value a getter of `self` returns: itself when present, else its default
// value (which must be of the same class). Null, with `status` set, when there is neither.
template <class T> const T* value_source(const T& self, unsigned int& status) {
    if (self.is_present())
        return &self;
    const T* fallback =
        self.is_defaultable() ? dynamic_cast<const T*>(self.get_default_value()) : nullptr;
    if (fallback == nullptr)
        status = KELM_ASN_VALUE_MISSING;
    return fallback;
}

// Builds a default value of class T with the owner's tag and class, sets it from `args`, and
// hands it to the owner, which then owns it.
template <class T, class... Args> unsigned int install_default(T& owner, Args... args) {
    std::unique_ptr<T> fallback(new (std::nothrow) T(KELM_SECURITY_PLAIN));
    if (!fallback)
        throw kelm_asn_memexception(kInstallDefaultSite.file, kInstallDefaultSite.line,
                                    "Out of memory in asn_object::set_default_value");
    fallback->set_tag(owner.get_tag());
    fallback->set_class(owner.get_class());
    const unsigned int status = fallback->set_value(args...);
    if (status != KELM_ASN_OK)
        return status;
    return static_cast<unsigned int>(owner.set_default_value(fallback.release()));
}

} // namespace kelm_asn_internal

#endif
