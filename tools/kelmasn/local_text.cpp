// Texts between UTF-8 and the local code set, with iconv.
#include "local_text.h"

#include <langinfo.h>

#include <cerrno>

namespace kelmasn_tool {
namespace {

const iconv_t kNoConversion = reinterpret_cast<iconv_t>(-1);

bool convert(iconv_t cd, const std::string& in, std::string& out) {
    if (cd == kNoConversion)
        return false;
    iconv(cd, nullptr, nullptr, nullptr, nullptr); // back to the initial shift state
    out.clear();
    char* source = const_cast<char*>(in.data());
    size_t left = in.size();
    char chunk[256];
    while (left > 0) {
        char* target = chunk;
        size_t room = sizeof chunk;
        const size_t done = iconv(cd, &source, &left, &target, &room);
        out.append(chunk, static_cast<size_t>(target - chunk));
        if (done == static_cast<size_t>(-1) && errno != E2BIG)
            return false; // EILSEQ or EINVAL: no form in the target, or ill-formed input
    }
    char* target = chunk;
    size_t room = sizeof chunk;
    if (iconv(cd, nullptr, nullptr, &target, &room) == static_cast<size_t>(-1))
        return false;
    out.append(chunk, static_cast<size_t>(target - chunk));
    return true;
}

} // namespace

LocalText::LocalText()
    : codeset_(nl_langinfo(CODESET)), to_local_(iconv_open(codeset_.c_str(), "UTF-8")),
      from_local_(iconv_open("UTF-8", codeset_.c_str())) {}

LocalText::~LocalText() {
    if (to_local_ != kNoConversion)
        iconv_close(to_local_);
    if (from_local_ != kNoConversion)
        iconv_close(from_local_);
}

bool LocalText::ready() const {
    return to_local_ != kNoConversion && from_local_ != kNoConversion;
}

bool LocalText::to_local(const std::string& utf8, std::string& local) const {
    return convert(to_local_, utf8, local);
}

bool LocalText::from_local(const std::string& local, std::string& utf8) const {
    return convert(from_local_, local, utf8);
}

} // namespace kelmasn_tool
