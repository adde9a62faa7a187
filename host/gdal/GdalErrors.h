#ifndef FENN_HOST_GDAL_GDALERRORS_H
#define FENN_HOST_GDAL_GDALERRORS_H

#include <string>

namespace krige::gdal
{

/// Keeps GDAL from printing. What it reports as a failure, on any thread, is kept until somebody asks; warnings are
/// dropped.
void installErrorHandler();

/// The first failure since the last call, without a final line end; empty for none.
std::string takeFailure();

/// Throws InputError "NAME: WHAT: FAILURE" when there was a failure.
void checkFailure(const std::string& name, const std::string& what);

/// Likewise, whether GDAL reported one or not.
[[noreturn]] void throwFailure(const std::string& name, const std::string& what);

} // namespace krige::gdal

#endif
