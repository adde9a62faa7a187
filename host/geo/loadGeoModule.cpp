#include "host/geo/loadGeoModule.h"

#include <filesystem>
#include <string_view>
#include <system_error>

#include <dlfcn.h>

#include "host/text/HostErrors.h"

namespace krige
{

namespace
{

/// The build tree has the module beside the program; an installed one lies where KRIGE_MODULE_FROM_PROGRAM says.
std::vector<std::string> usualPaths()
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    return {(folder / "krige_gdal.so").string(), (folder / KRIGE_MODULE_FROM_PROGRAM / "krige_gdal.so").string()};
}

template <typename Function>
Function findFunction(void* library, const char* name)
{
    return reinterpret_cast<Function>(::dlsym(library, name));
}

} // namespace

const GeoModule& loadGeoModule(const std::string& need)
{
    static const GeoModule* module = nullptr;
    if (!module)
        module = &loadGeoModuleFrom(usualPaths(), need);
    return *module;
}

const GeoModule& loadGeoModuleFrom(const std::vector<std::string>& paths, const std::string& need)
{
    std::error_code error;
    std::string path;
    for (const std::string& candidate : paths)
    {
        if (path.empty() && std::filesystem::exists(candidate, error))
            path = candidate;
    }
    if (path.empty())
        throw InputError(need + ": needs the module krige_gdal, which is not installed; it comes with the package "
                                "krige-gdal");
    void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw InputError(need + ": the module krige_gdal cannot be loaded: " + ::dlerror());
    const auto version = findFunction<GeoModuleVersion>(library, geoModuleVersionName);
    const auto make = findFunction<MakeGeoModule>(library, geoModuleMakeName);
    if (!version || !make || std::string_view(version()) != KRIGE_VERSION)
        throw InputError(need + ": " + path +
                         " belongs to another version of krige than this one, " KRIGE_VERSION
                         "; install the package krige-gdal of the same version");
    return *make();
}

} // namespace krige
