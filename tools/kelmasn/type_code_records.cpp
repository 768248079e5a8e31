// The type codes of the records reached by type code, as the tool's TYPE argument gives them.
#include "type_code_records.h"

#include <cerrno>
#include <cstdlib>

namespace kelmasn_tool {

bool parse_type_code(const std::string& name, unsigned int& code) {
    if (name.empty() || name[0] < '0' || name[0] > '9')
        return false;
    const bool hex = name.size() > 2 && name[0] == '0' && (name[1] == 'x' || name[1] == 'X');
    char* end = nullptr;
    errno = 0;
    const unsigned long value = std::strtoul(name.c_str(), &end, hex ? 16 : 10);
    if (errno != 0 || *end != '\0' || value > 0xFFFFFFFFul)
        return false;
    code = static_cast<unsigned int>(value);
    return true;
}

} // namespace kelmasn_tool
