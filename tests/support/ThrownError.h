#ifndef FENN_TESTS_SUPPORT_THROWNERROR_H
#define FENN_TESTS_SUPPORT_THROWNERROR_H

#include <string>

#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace fenn::test
{

/// The text of the Error that call throws; "no Error" when it returns. Other exceptions pass through.
template <typename Call>
std::string textOfError(Call&& call)
{
    try
    {
        call();
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        return error.what();
    }
    return "no Error";
}

} // namespace fenn::test

#endif
