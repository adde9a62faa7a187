#include <algorithm>
#include <limits>

#include "tests/reliability/BadInputCollection.h"

namespace fenn::test
{

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

const char* const rangeTooSmall = "Value range too small to normalize data";
const char* const tooFewPoints = "Not enough source points for kriging.";
const char* const singular = "Singular matrix";
const char* const overflow = "Value overflow";

void multiply(std::vector<double>& values, double factor)
{
    for (double& value : values)
        value *= factor;
}

/// Scales that need no range.
void giveScales(BadInput& input)
{
    input.settings.scaleFactors.assign(input.inputs.size(), 1.0);
}

void makeAllEqual(BadInput& input)
{
    for (std::vector<double>& variable : input.inputs)
        std::fill(variable.begin(), variable.end(), variable[0]);
    giveScales(input);
}

void makeCollinear(BadInput& input)
{
    for (std::size_t i = 0; i < input.inputs[0].size(); ++i)
        input.inputs[1][i] = 2.0 * input.inputs[0][i];
}

/// 10 000 samples at one place in front of the others.
void addCoincident(BadInput& input)
{
    for (std::vector<double>& variable : input.inputs)
        variable.insert(variable.begin(), 10000, 0.5);
    std::vector<double> outputs = randomValues(1, 10000, -5.0, 5.0, 34)[0];
    input.outputs[0].insert(input.outputs[0].begin(), outputs.begin(), outputs.end());
}

void keepOnePoint(BadInput& input)
{
    for (auto* variables : {&input.inputs, &input.outputs})
    {
        for (std::vector<double>& variable : *variables)
            variable.resize(1);
    }
}

void addSpecialCoordinates(BadInputCollection& collection)
{
    collection.add("ANaNCoordinate", gives(Numbers::notANumber), gives(Numbers::finite),
                   [](BadInput& input) { input.inputs[0][3] = notANumber; });
    collection.add("AFirstCoordinateOfNaN", refused(rangeTooSmall),
                   [](BadInput& input) { input.inputs[1][0] = notANumber; });
    collection.add("AFirstCoordinateOfNaNWithAGivenScale", gives(Numbers::notANumber),
                   [](BadInput& input)
                   {
                       input.inputs[1][0] = notANumber;
                       giveScales(input);
                   });
    collection.add("EveryCoordinateNaN", refused(rangeTooSmall),
                   [](BadInput& input) { std::fill(input.inputs[0].begin(), input.inputs[0].end(), notANumber); });
    collection.add("AnInfiniteCoordinate", gives(Numbers::notANumber),
                   [](BadInput& input) { input.inputs[0][3] = infinity; });
    collection.add("InfiniteCoordinatesOfBothSigns", gives(Numbers::notANumber),
                   [](BadInput& input)
                   {
                       input.inputs[1][3] = infinity;
                       input.inputs[1][4] = -infinity;
                   });
    collection.add("AnInfiniteCoordinateWithAGivenScale", gives(Numbers::notANumber),
                   [](BadInput& input)
                   {
                       input.inputs[0][3] = -infinity;
                       giveScales(input);
                   });
    collection.add("EveryCoordinateInfinite", refused(rangeTooSmall),
                   [](BadInput& input) { std::fill(input.inputs[0].begin(), input.inputs[0].end(), infinity); });
    collection.add("ADenormalCoordinate", gives(Numbers::finite),
                   [](BadInput& input) { input.inputs[0][3] = smallest; });
    collection.add("DenormalCoordinatesOnly", refused(rangeTooSmall),
                   [](BadInput& input) { multiply(input.inputs[0], 1e-310); });
    collection.add("DenormalCoordinatesOnlyWithGivenScales", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       multiply(input.inputs[0], 1e-310);
                       multiply(input.inputs[1], 1e-310);
                       giveScales(input);
                       input.settings.nugget = 0.5;
                   });
    collection.add("NegativeZeros", gives(Numbers::finite),
                   [](BadInput& input) { input.inputs[0][3] = input.inputs[1][4] = -0.0; });
}

void addWideRanges(BadInputCollection& collection)
{
    collection.add("ARangeOf1e308", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       multiply(input.inputs[0], 1e308);
                       multiply(input.targets[0], 1e308);
                   });
    collection.add("RangesOf1e308InEveryVariable", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       for (std::size_t v = 0; v < 2; ++v)
                       {
                           multiply(input.inputs[v], 1e308);
                           multiply(input.targets[v], 1e308);
                       }
                   });
    collection.add("ARangeThatOverflows", gives(Numbers::notANumber),
                   [](BadInput& input)
                   {
                       input.inputs[0][0] = -1e308;
                       input.inputs[0][1] = 1e308;
                   });
    collection.add("ARangeOf1e308WithAGivenScale", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       multiply(input.inputs[0], 1e308);
                       giveScales(input);
                   });
}

void addDegenerateSets(BadInputCollection& collection)
{
    collection.add("OnePoint", refused(rangeTooSmall), keepOnePoint);
    collection.add("OnePointWithGivenScales", refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       keepOnePoint(input);
                       giveScales(input);
                   });
    collection.add("NoPoints", refused(rangeTooSmall), [](BadInput& input) { input.numPts = 0; });
    collection.add("NoPointsWithGivenScales", refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       input.numPts = 0;
                       giveScales(input);
                   });
    collection.add("NoPointsAndNoValues", refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       input.inputs.assign(2, {});
                       input.outputs.assign(1, {});
                       giveScales(input);
                   });
    for (const int numPts : {-1, -63, -64, -65, std::numeric_limits<int>::min()})
    {
        const std::string name = "ANegativeNumberOfPoints" + std::to_string(-(numPts + 1));
        collection.add(name, refused(rangeTooSmall), [=](BadInput& input) { input.numPts = numPts; });
        collection.add(name + "WithGivenScales", refused(tooFewPoints),
                       [=](BadInput& input)
                       {
                           input.numPts = numPts;
                           giveScales(input);
                       });
    }
    collection.add("AllPointsEqual", refused(rangeTooSmall),
                   [](BadInput& input)
                   {
                       makeAllEqual(input);
                       input.settings.scaleFactors.clear();
                   });
    collection.add("AllPointsEqualWithGivenScales", gives(Numbers::finite), makeAllEqual);
    collection.add("AllPointsEqualWithANugget", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       makeAllEqual(input);
                       input.settings.nugget = 0.5;
                   });
    collection.add("AllPointsEqualUnderADrift", refused(singular), fails(singular),
                   [](BadInput& input)
                   {
                       makeAllEqual(input);
                       input.settings.driftOrder = 1;
                   });
    collection.add("AllPointsEqualAndMerged", refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       makeAllEqual(input);
                       input.settings.duplicateTolerance = 0.0;
                   });
    collection.add("AllPointsOnALine", gives(Numbers::finite), makeCollinear);
    collection.add("AllPointsOnALineUnderADrift", fails(overflow),
                   [](BadInput& input)
                   {
                       makeCollinear(input);
                       input.settings.driftOrder = 1;
                   });
    collection.add("AConstantVariable", refused(rangeTooSmall),
                   [](BadInput& input) { std::fill(input.inputs[1].begin(), input.inputs[1].end(), 7.0); });
    collection.add("AConstantVariableUnderADrift", refused(singular), fails(singular),
                   [](BadInput& input)
                   {
                       std::fill(input.inputs[1].begin(), input.inputs[1].end(), 7.0);
                       giveScales(input);
                       input.settings.driftOrder = 1;
                   });
}

void addRepetitions(BadInputCollection& collection)
{
    collection.add("AVariableTwice", gives(Numbers::finite),
                   [](BadInput& input) { input.inputs[1] = input.inputs[0]; });
    collection.add("AVariableTwiceUnderADrift", fails(overflow),
                   [](BadInput& input)
                   {
                       input.inputs[1] = input.inputs[0];
                       input.settings.driftOrder = 2;
                   });
    collection.add("ASampleTwice", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       for (std::vector<double>& variable : input.inputs)
                           variable[9] = variable[7];
                   });
    collection.add("EverySampleTwiceAndMerged", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       for (auto* variables : {&input.inputs, &input.outputs})
                       {
                           for (std::vector<double>& variable : *variables)
                               variable.insert(variable.end(), variable.begin(), variable.begin() + 24);
                       }
                       input.settings.duplicateTolerance = 0.0;
                   });
    collection.add("AnOutputTwice", gives(Numbers::finite),
                   [](BadInput& input) { input.outputs.push_back(input.outputs[0]); });
    collection.addLocal("TenThousandCoincidentPoints", gives(Numbers::finite), addCoincident);
    collection.addLocal("TenThousandCoincidentPointsUnderADrift", fails(singular),
                        [](BadInput& input)
                        {
                            addCoincident(input);
                            // They lie on the middle of the range, and the targets on them.
                            input.inputs[0][10000] = input.inputs[1][10000] = 1.5;
                            input.inputs[0][10001] = input.inputs[1][10001] = -0.5;
                            input.targets.assign(2, {0.5, 0.5, 0.5});
                            input.settings.driftOrder = 1;
                        });
    collection.add("TenThousandCoincidentPointsMerged", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       addCoincident(input);
                       input.settings.duplicateTolerance = 0.0;
                   });
    collection.add("TenThousandCoincidentPointsAloneMerged", refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       addCoincident(input);
                       makeAllEqual(input);
                       input.settings.duplicateTolerance = 0.0;
                   });
}

void addSpecialOutputs(BadInputCollection& collection)
{
    collection.add("ANaNOutput", gives(Numbers::notANumber),
                   [](BadInput& input) { std::fill(input.outputs[0].begin(), input.outputs[0].end(), notANumber); });
    collection.add("ANaNOutputBesideASoundOne", gives(Numbers::ofBothKinds),
                   [](BadInput& input)
                   {
                       input.outputs.push_back(input.outputs[0]);
                       std::fill(input.outputs[0].begin(), input.outputs[0].end(), notANumber);
                   });
    collection.add("InfiniteOutputsOfBothSigns", gives(Numbers::notANumber),
                   [](BadInput& input)
                   {
                       std::fill(input.outputs[0].begin(), input.outputs[0].end(), infinity);
                       std::fill(input.outputs[0].begin(), input.outputs[0].begin() + 8, -infinity);
                   });
    collection.add("OutputsOf1e308", gives(Numbers::finite),
                   [](BadInput& input) { multiply(input.outputs[0], 1e307); });
    collection.add("DenormalOutputs", gives(Numbers::finite),
                   [](BadInput& input) { multiply(input.outputs[0], 1e-310); });
}

} // namespace

std::vector<BadInput> badSampleCases()
{
    BadInputCollection collection;
    addSpecialCoordinates(collection);
    addWideRanges(collection);
    addDegenerateSets(collection);
    addRepetitions(collection);
    addSpecialOutputs(collection);
    return collection.cases;
}

} // namespace fenn::test
