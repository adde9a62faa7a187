#include "surrogatemodel_common/exception/ExceptionBase.h"

namespace morvel
{

// NOLINTNEXTLINE(bugprone-throw-keyword-missing): a member that holds the text; nothing is thrown here
ExceptionBase::ExceptionBase(const std::string& message) : text(message) {}

ExceptionBase::ExceptionBase(const ExceptionBase& other) noexcept = default;

ExceptionBase& ExceptionBase::operator=(const ExceptionBase& other) noexcept = default;

ExceptionBase::~ExceptionBase() = default;

const char* ExceptionBase::what() const noexcept
{
    return text.what();
}

} // namespace morvel
