// Texts between the tool's JSON, always UTF-8, and the local code set of the environment's
// locale, as the local-code-set entry points read and write them.
#ifndef KELMASN_TOOL_LOCAL_TEXT_H
#define KELMASN_TOOL_LOCAL_TEXT_H

#include <iconv.h>

#include <string>

namespace kelmasn_tool {

// Converts with iconv between UTF-8 and the code set that nl_langinfo(CODESET) names for the
// current locale (set it with setlocale first). Never substitutes: a text that the target cannot
// hold is refused.
class LocalText {
  public:
    LocalText();
    ~LocalText();
    LocalText(const LocalText&) = delete;
    LocalText& operator=(const LocalText&) = delete;

    // False when the code set has no iconv conversion; codeset() names it.
    bool ready() const;
    const std::string& codeset() const { return codeset_; }

    // UTF-8 to the local code set; false when a character has no form there (or the input is not
    // UTF-8).
    bool to_local(const std::string& utf8, std::string& local) const;
    // The local code set to UTF-8; false for bytes that are not text of the local code set.
    bool from_local(const std::string& local, std::string& utf8) const;

  private:
    std::string codeset_;
    iconv_t to_local_;
    iconv_t from_local_;
};

} // namespace kelmasn_tool

#endif
