#ifndef FENN_TESTS_SUPPORT_MODELACCESS_H
#define FENN_TESTS_SUPPORT_MODELACCESS_H

#include <vector>

#include "surrogatemodel_kriging/KrigingControllerAbstract.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"

namespace fenn
{

/// What a built model holds. The references live as long as the model.
class ModelAccess
{
public:
    ModelAccess() = delete;

    static KrigingControllerAbstract& getController(const KrigingSurrogateModel& model)
    {
        return *model.controller;
    }

    static const SurrogateModelDataBlock& getDataBlock(const KrigingSurrogateModel& model)
    {
        return *model.dataBlock;
    }

    static const SemivariogramInterface& getSemivariogram(const KrigingSurrogateModel& model)
    {
        return *model.semivariogram;
    }

    static const std::vector<Normalizer>& getNormalizers(const KrigingSurrogateModel& model)
    {
        return model.normalizers;
    }

    static const std::vector<double>& getMinValues(const KrigingSurrogateModel& model)
    {
        return model.minValues;
    }

    static const std::vector<double>& getMaxValues(const KrigingSurrogateModel& model)
    {
        return model.maxValues;
    }
};

} // namespace fenn

#endif
