#include "surrogatemodel_kriging/KrigingModelAccess.h"

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

KrigingControllerAbstract& KrigingModelAccess::getController(const KrigingSurrogateModel& model)
{
    return *model.controller;
}

const SurrogateModelDataBlock& KrigingModelAccess::getDataBlock(const KrigingSurrogateModel& model)
{
    return *model.dataBlock;
}

const SemivariogramInterface& KrigingModelAccess::getSemivariogram(const KrigingSurrogateModel& model)
{
    return *model.semivariogram;
}

const std::vector<Normalizer>& KrigingModelAccess::getNormalizers(const KrigingSurrogateModel& model)
{
    return model.normalizers;
}

const std::vector<double>& KrigingModelAccess::getMinValues(const KrigingSurrogateModel& model)
{
    return model.minValues;
}

const std::vector<double>& KrigingModelAccess::getMaxValues(const KrigingSurrogateModel& model)
{
    return model.maxValues;
}
