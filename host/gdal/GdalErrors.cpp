#include "host/gdal/GdalErrors.h"

#include <mutex>
#include <utility>

#include <cpl_error.h>

#include "host/text/HostErrors.h"

namespace krige::gdal
{

namespace
{

std::mutex failureMutex;
std::string firstFailure;

void CPL_STDCALL keepFailure(CPLErr severity, CPLErrorNum /*number*/, const char* message)
{
    if (severity != CE_Failure && severity != CE_Fatal)
        return;
    const std::lock_guard<std::mutex> lock(failureMutex);
    if (firstFailure.empty())
        firstFailure = message;
}

} // namespace

void installErrorHandler()
{
    CPLSetErrorHandler(keepFailure);
}

std::string takeFailure()
{
    const std::lock_guard<std::mutex> lock(failureMutex);
    std::string failure = std::exchange(firstFailure, {});
    while (!failure.empty() && failure.back() == '\n')
        failure.pop_back();
    return failure;
}

void checkFailure(const std::string& name, const std::string& what)
{
    const std::string failure = takeFailure();
    if (!failure.empty())
        throw InputError(name + ": " + what + ": " + failure);
}

void throwFailure(const std::string& name, const std::string& what)
{
    checkFailure(name, what);
    throw InputError(name + ": " + what);
}

} // namespace krige::gdal
