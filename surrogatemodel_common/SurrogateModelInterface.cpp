#include "surrogatemodel_common/SurrogateModelInterface.h"

SurrogateModelInterface::Error::Error(const std::string& message) : morvel::ExceptionBase(message) {}

SurrogateModelInterface::Error::Error(const Error& other) noexcept = default;

SurrogateModelInterface::Error& SurrogateModelInterface::Error::operator=(const Error& other) noexcept = default;

SurrogateModelInterface::Error::~Error() = default;

SurrogateModelInterface::SurrogateModelInterface() = default;

SurrogateModelInterface::~SurrogateModelInterface() = default;
