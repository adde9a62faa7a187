#ifndef FENN_TESTS_SUPPORT_CONTROLLERPROBE_H
#define FENN_TESTS_SUPPORT_CONTROLLERPROBE_H

#include <set>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "tests/support/ModelAccess.h"

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
    return ControllerProbe::getActiveOutputVars(fenn::ModelAccess::getController(model));
}

inline bool isGlobal(const KrigingSurrogateModel& model)
{
    return dynamic_cast<AllPtsKrigingController*>(&fenn::ModelAccess::getController(model)) != nullptr;
}

inline bool isLocal(const KrigingSurrogateModel& model)
{
    return dynamic_cast<NPtsKrigingController*>(&fenn::ModelAccess::getController(model)) != nullptr;
}

} // namespace fenn::test

#endif
