#ifndef FENN_SURROGATEMODEL_COMMON_SURROGATEMODELINTERFACE_H
#define FENN_SURROGATEMODEL_COMMON_SURROGATEMODELINTERFACE_H

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "surrogatemodel_common/exception/ExceptionBase.h"

#if defined(_WIN32)
#if defined(FENN_SURROGATEMODEL_COMMON_BUILD)
#define FENN_SURROGATEMODEL_COMMON_EXPORT __declspec(dllexport)
#else
#define FENN_SURROGATEMODEL_COMMON_EXPORT __declspec(dllimport)
#endif
#else
#define FENN_SURROGATEMODEL_COMMON_EXPORT __attribute__((visibility("default")))
#endif

/// What a host knows of a surrogate model: it picks output variables and asks for their values at target points.
///
/// Points travel as one array per variable, indexed by point: value k of variable v is arrays[v][k]. The caller owns
/// every array. Models derive virtually, so that one object may stand behind several interfaces of a host.
///
/// Unless a model says more, one object must not be used by two threads at once.
class FENN_SURROGATEMODEL_COMMON_EXPORT SurrogateModelInterface
{
public:
    /// The one exception type that a model throws for failures of its own; what() is the message.
    class FENN_SURROGATEMODEL_COMMON_EXPORT Error : public morvel::ExceptionBase
    {
    public:
        explicit Error(const std::string& message);
        Error(const Error& other) noexcept;
        Error& operator=(const Error& other) noexcept;
        ~Error() override;
    };

    // The order of the virtual operations is part of the binary contract: hosts call them by slot.

    /// Chooses the output variables, by index, that the following requests will ask for; replaces an earlier choice.
    virtual void activateDependentVariables(const std::set<int>& dependentVars) = 0;

    /// Estimates output variables at numTargets points. targetValueArrays: raw coordinates, one array per input
    /// variable. resultArrays: one array per element of dependentVars, in ascending index order, each with room for
    /// numTargets values. Throws Error when an estimate cannot be computed; results written before stay.
    virtual void interpolateDependentValues(const std::vector<double*>& targetValueArrays,
                                            const std::set<int>& dependentVars, std::vector<double*>& resultArrays,
                                            size_t numTargets) const = 0;

    virtual bool surfaceCoefficientInformationAvailable() const = 0;
    virtual std::string surfaceCoefficientInformation(int index) = 0;
    virtual bool qualityMetricInformationAvailable() const = 0;
    virtual std::string qualityMetricInformation(int index) = 0;

    virtual ~SurrogateModelInterface();

protected:
    SurrogateModelInterface();
    SurrogateModelInterface(const SurrogateModelInterface& other) = delete;
    SurrogateModelInterface& operator=(const SurrogateModelInterface& other) = delete;
};

#endif
