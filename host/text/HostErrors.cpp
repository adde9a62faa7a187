#include "host/text/HostErrors.h"

#include <system_error>

#include "host/text/NumberText.h"

namespace krige
{

InputError InputError::atLine(const std::string& path, std::size_t line, const std::string& message)
{
    return InputError(path + ", line " + std::to_string(line) + ": " + message);
}

InputError InputError::atColumn(const std::string& path, std::size_t line, const std::string& column,
                                const std::string& message)
{
    return InputError(path + ", line " + std::to_string(line) + ", column " + quoteForMessage(column) + ": " + message);
}

InputError InputError::fromSystem(const std::string& path, int errorNumber)
{
    return InputError(path + ": " + std::generic_category().message(errorNumber));
}

} // namespace krige
