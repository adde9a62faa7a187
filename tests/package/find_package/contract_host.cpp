// A host with a model of its own behind the contract: what it throws is caught as the exception library's type.

#include <cstdio>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_common/exception/ExceptionBase.h"

namespace
{

class FailingModel : public virtual SurrogateModelInterface
{
public:
    void activateDependentVariables(const std::set<int>& /*dependentVars*/) override {}

    void interpolateDependentValues(const std::vector<double*>& /*targetValueArrays*/,
                                    const std::set<int>& /*dependentVars*/, std::vector<double*>& /*resultArrays*/,
                                    size_t /*numTargets*/) const override
    {
        throw Error("no values here");
    }

    bool surfaceCoefficientInformationAvailable() const override
    {
        return false;
    }

    std::string surfaceCoefficientInformation(int /*index*/) override
    {
        return {};
    }

    bool qualityMetricInformationAvailable() const override
    {
        return false;
    }

    std::string qualityMetricInformation(int /*index*/) override
    {
        return {};
    }
};

} // namespace

int main()
{
    const std::unique_ptr<SurrogateModelInterface> model = std::make_unique<FailingModel>();
    std::vector<double*> results;
    try
    {
        model->interpolateDependentValues({}, {}, results, 0);
    }
    catch (const morvel::ExceptionBase& error)
    {
        std::printf("error: %s\n", error.what());
        return std::strcmp(error.what(), "no values here") == 0 ? 0 : 1;
    }
    return 1;
}
