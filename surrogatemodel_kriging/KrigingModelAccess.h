#ifndef FENN_SURROGATEMODEL_KRIGING_KRIGINGMODELACCESS_H
#define FENN_SURROGATEMODEL_KRIGING_KRIGINGMODELACCESS_H

#include <vector>

class KrigingControllerAbstract;
class KrigingSurrogateModel;
class Normalizer;
class SemivariogramInterface;
class SurrogateModelDataBlock;

/// What a built model holds, for the command-line host's extras (variances, the semivariogram dump, merged points) and
/// the tests, so that nothing assembles a model a second time. In the static library only, never exported.
///
/// The references live as long as the model.
class KrigingModelAccess
{
public:
    KrigingModelAccess() = delete;

    static KrigingControllerAbstract& getController(const KrigingSurrogateModel& model);
    static const SurrogateModelDataBlock& getDataBlock(const KrigingSurrogateModel& model);
    static const SemivariogramInterface& getSemivariogram(const KrigingSurrogateModel& model);
    static const std::vector<Normalizer>& getNormalizers(const KrigingSurrogateModel& model);
    static const std::vector<double>& getMinValues(const KrigingSurrogateModel& model);
    static const std::vector<double>& getMaxValues(const KrigingSurrogateModel& model);
};

#endif
