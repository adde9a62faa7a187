// A host that uses everything in the five installed headers and prints what it gets to the bit. Compiled twice: against
// the headers of an earlier release and against today's. Both run with today's libraries.

#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "surrogatemodel_common/SurrogateModelInterface.h"
#include "surrogatemodel_common/exception/ExceptionBase.h"
#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace
{

void print(const char* name, double value)
{
    std::printf("%s %a\n", name, value);
}

void print(const char* name, int value)
{
    std::printf("%s %d\n", name, value);
}

void print(const char* name, const std::string& text)
{
    std::printf("%s \"%s\"\n", name, text.c_str());
}

/// A model of the host's own behind the same interface, with the plug-in's as one of its bases.
class CountingModel : public KrigingSurrogateModel
{
public:
    using KrigingSurrogateModel::KrigingSurrogateModel;

    void activateDependentVariables(const std::set<int>& dependentVars) override
    {
        ++numActivations;
        KrigingSurrogateModel::activateDependentVariables(dependentVars);
    }

    int numActivations = 0;
};

class Samples
{
public:
    std::vector<double> x{0.0, 1.0, 2.0, 0.0, 1.0, 2.0, 0.0, 1.0, 2.0, 2.0};
    std::vector<double> y{0.0, 0.0, 0.0, 1.0, 1.0, 1.0, 2.0, 2.0, 2.0, 2.0};
    std::vector<double> height{3.0, 4.0, 3.5, 5.0, 8.0, 5.5, 3.0, 4.5, 3.0, 3.25};
    std::vector<double> width{1.0, 1.5, 1.0, 2.0, 2.5, 2.0, 1.0, 1.25, 1.0, 1.5};
    const std::vector<double*> inputs{x.data(), y.data()};
    const std::vector<double*> outputs{height.data(), width.data()};
    const int numPts = static_cast<int>(x.size());
};

void ask(SurrogateModelInterface& model)
{
    std::vector<double> targetX{0.5, 1.0, 1.75};
    std::vector<double> targetY{0.5, 1.0, 0.25};
    std::vector<double> heights(3);
    std::vector<double> widths(3);
    std::vector<double*> results{heights.data(), widths.data()};
    model.activateDependentVariables({0, 1});
    model.interpolateDependentValues({targetX.data(), targetY.data()}, {0, 1}, results, 3);
    for (const std::vector<double>& values : {heights, widths})
    {
        for (const double value : values)
            print("estimate", value);
    }
    print("surfaceCoefficientInformationAvailable", int{model.surfaceCoefficientInformationAvailable()});
    print("surfaceCoefficientInformation", model.surfaceCoefficientInformation(0));
    print("qualityMetricInformationAvailable", int{model.qualityMetricInformationAvailable()});
    print("qualityMetricInformation", model.qualityMetricInformation(1));
}

void useModels(Samples& samples)
{
    for (const int numNearestPoints : {0, 5})
    {
        for (const int driftOrder : {0, 1})
        {
            const std::unique_ptr<SurrogateModelInterface> model =
                std::make_unique<KrigingSurrogateModel>(samples.inputs, samples.outputs, samples.numPts, 0.0,
                                                        std::vector<double>{}, driftOrder, 0.8, 0.05, numNearestPoints);
            ask(*model);
        }
    }
    CountingModel counting(samples.inputs, samples.outputs, samples.numPts, 0.0, {1.0, 2.0}, 0, 1.0, 0.0, 0);
    ask(counting);
    print("activations", counting.numActivations);
}

template <typename Caught>
void fail(Samples& samples, const char* name)
{
    try
    {
        const KrigingSurrogateModel tooFew(samples.inputs, samples.outputs, 2, -1.0, {1.0, 1.0}, 0, 1.0, 0.0, 0);
        print(name, std::string("nothing was thrown"));
    }
    catch (const Caught& error)
    {
        const Caught copy(error);
        print(name, std::string(copy.what()));
    }
}

void useErrors(Samples& samples)
{
    fail<SurrogateModelInterface::Error>(samples, "SurrogateModelInterface::Error");
    fail<morvel::ExceptionBase>(samples, "morvel::ExceptionBase");
    const SurrogateModelInterface::Error own("thrown by the host");
    SurrogateModelInterface::Error other("replaced");
    other = own;
    print("other", std::string(other.what()));
}

void useDataBlock(Samples& samples)
{
    std::vector<Normalizer> normalizers(2);
    normalizers[0].setOffset(-1.0);
    normalizers[1].setScale(0.5);
    const std::vector<double> low{0.0, 0.0};
    const std::vector<double> high{2.0, 2.0};
    SurrogateModelDataBlock block(samples.numPts, samples.inputs, samples.outputs,
                                  std::vector<bool>(samples.x.size(), true), normalizers, low, high);
    block.removeDuplicatePts(0.0);
    print("blocks", block.getNumBlocks());
    print("inputs", block.getNumInputVars());
    print("outputs", block.getNumOutputVars());
    print("unblanked", block.getTotalNumUnblankedPoints());
    print("in block 1", block.getNumPtsInBlock(1));
    print("flag", int{block.getIncludePtArrayForBlock(0)[9]});
    print("merged x", block.getInputValueArraysForBlock(1)[0][0]);
    print("merged height", block.getOutputValueArraysForBlock(1)[0][0]);
    print("normalised", block.getInputVarNormalizers()[0].normalize(2.0));
    print("scale", block.getInputVarNormalizers()[1].getScale());
    print("offset", block.getInputVarNormalizers()[0].getOffset());
    print("validate", int{block.validate()});
    double min = 0.0;
    double max = 0.0;
    block.getOutputVarMinMax(0, min, max);
    print("min", min);
    print("max", max);
    findMinMax(samples.width.data(), samples.numPts, min, max);
    print("least width", min);
    print("largest width", max);
    print("mean", block.getOutputVarMean(0));
    print("variance", block.getOutputVarSampleVariance(0));
    std::vector<std::pair<int, int>> points;
    block.getAllUnblankedPts(points);
    for (const auto& [pointBlock, point] : points)
        std::printf("point %d %d\n", pointBlock, point);

    const SurrogateModelDataBlock two({3, 2}, {samples.inputs, samples.inputs}, {samples.outputs, samples.outputs},
                                      {{true, false, true}, {true, true}}, normalizers, low, high);
    print("unblanked of two", two.getTotalNumUnblankedPoints());
}

} // namespace

int main()
{
    Samples samples;
    useModels(samples);
    useErrors(samples);
    useDataBlock(samples);
    return 0;
}
