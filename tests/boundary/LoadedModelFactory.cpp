// The host links the contract libraries only. From the plug-in's header it takes the size of the class; everything it
// calls is looked up in the loaded library.

#include "ModelFactory.h"

#include <dlfcn.h>
#include <new>
#include <stdexcept>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

namespace
{

using Constructor = void (*)(void* self, const std::vector<double*>& inputs, const std::vector<double*>& outputs,
                             int numPoints, double duplicateTolerance, const std::vector<double>& scaleFactors,
                             int driftOrder, double rangeFraction, double nugget, int numNearestPoints);

Constructor findConstructor()
{
    void* plugin = dlopen(FENN_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    if (plugin == nullptr)
        throw std::runtime_error(dlerror());
    // The complete-object constructor, which makes the virtual base too.
    void* constructor = dlsym(plugin, "_ZN21KrigingSurrogateModelC1ERKSt6vectorIPdSaIS1_EES5_idRKS0_IdSaIdEEiddi");
    if (constructor == nullptr)
        throw std::runtime_error(dlerror());
    return reinterpret_cast<Constructor>(constructor);
}

} // namespace

std::unique_ptr<SurrogateModelInterface> makeModel(const std::vector<double*>& inputs,
                                                   const std::vector<double*>& outputs, int numPoints, int driftOrder,
                                                   int numNearestPoints)
{
    static const Constructor construct = findConstructor();
    const std::vector<double> scales(inputs.size(), 1.0);
    void* storage = ::operator new(sizeof(KrigingSurrogateModel));
    try
    {
        construct(storage, inputs, outputs, numPoints, -1.0, scales, driftOrder, 1.0, 0.0, numNearestPoints);
    }
    catch (...)
    {
        ::operator delete(storage);
        throw;
    }
    return std::unique_ptr<SurrogateModelInterface>(static_cast<KrigingSurrogateModel*>(storage));
}
