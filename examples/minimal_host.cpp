// The smallest host: builds a model from samples it holds, asks through the interface and catches the one error type.

#include <cstdio>
#include <memory>
#include <set>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"

int main()
{
    // One array per variable. The model refers to them: they must outlive it.
    std::vector<double> x{0.0, 1.0, 2.0, 0.0, 1.0, 2.0, 0.0, 1.0, 2.0};
    std::vector<double> y{0.0, 0.0, 0.0, 1.0, 1.0, 1.0, 2.0, 2.0, 2.0};
    std::vector<double> height{3.0, 4.0, 3.5, 5.0, 8.0, 5.5, 3.0, 4.5, 3.0};
    const std::vector<double*> inputs{x.data(), y.data()};
    const std::vector<double*> outputs{height.data()};
    const int numSamples = static_cast<int>(x.size());

    const double doNotMerge = -1.0; // duplicate tolerance
    const std::vector<double> automaticScales;
    const int driftOrder = 0;
    const double rangeFraction = 1.0;
    const double nugget = 0.0;
    const int allPoints = 0;

    std::vector<double> targetX{0.5, 1.0, 1.75};
    std::vector<double> targetY{0.5, 1.0, 0.25};
    std::vector<double> estimates(targetX.size());
    try
    {
        const std::unique_ptr<SurrogateModelInterface> model = std::make_unique<KrigingSurrogateModel>(
            inputs, outputs, numSamples, doNotMerge, automaticScales, driftOrder, rangeFraction, nugget, allPoints);
        const std::set<int> wanted{0};
        model->activateDependentVariables(wanted);
        std::vector<double*> results{estimates.data()};
        model->interpolateDependentValues({targetX.data(), targetY.data()}, wanted, results, estimates.size());
        for (std::size_t t = 0; t < estimates.size(); ++t)
            std::printf("height(%g, %g) = %.6f\n", targetX[t], targetY[t], estimates[t]);

        // Two samples cannot carry a model of two inputs: the library says so.
        const KrigingSurrogateModel tooFew(inputs, outputs, 2, doNotMerge, {1.0, 1.0}, driftOrder, rangeFraction,
                                           nugget, allPoints);
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        std::printf("error: %s\n", error.what());
    }
    return 0;
}
