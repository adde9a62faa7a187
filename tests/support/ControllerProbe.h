#ifndef FENN_TESTS_SUPPORT_CONTROLLERPROBE_H
#define FENN_TESTS_SUPPORT_CONTROLLERPROBE_H

#include <set>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingModelAccess.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"

namespace fenn::test
{

/// Never built: a derived class may name what its base protects.
class ControllerProbe : public KrigingControllerAbstract
{
public:
    static const std::set<int>& getActiveOutputVars(const KrigingControllerAbstract& controller)
    {
        return controller.*(&ControllerProbe::activeOutputVars);
    }
};

inline const std::set<int>& activeOutputVarsOf(const KrigingSurrogateModel& model)
{
    return ControllerProbe::getActiveOutputVars(KrigingModelAccess::getController(model));
}

inline bool isGlobal(const KrigingSurrogateModel& model)
{
    return dynamic_cast<AllPtsKrigingController*>(&KrigingModelAccess::getController(model)) != nullptr;
}

inline bool isLocal(const KrigingSurrogateModel& model)
{
    return dynamic_cast<NPtsKrigingController*>(&KrigingModelAccess::getController(model)) != nullptr;
}

} // namespace fenn::test

#endif
