#include <limits>

#include "tests/reliability/BadInputCollection.h"

namespace fenn::test
{

namespace
{

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double smallest = std::numeric_limits<double>::denorm_min();
constexpr double largest = std::numeric_limits<double>::max();
constexpr int leastInt = std::numeric_limits<int>::min();
constexpr int greatestInt = std::numeric_limits<int>::max();

const char* const tooFewPoints = "Not enough source points for kriging.";
const char* const tooFewForDrift = "Not enough source points to calculate drift.";
const char* const overflow = "Value overflow";

void addRangeFractions(BadInputCollection& collection)
{
    const auto withFraction = [&](const std::string& name, const Outcome& outcome, double fraction)
    {
        collection.add(name, outcome, [=](BadInput& input) { input.settings.rangeFraction = fraction; });
    };
    withFraction("AZeroRangeFraction", gives(Numbers::finite), 0.0);
    withFraction("ANegativeZeroRangeFraction", gives(Numbers::finite), -0.0);
    withFraction("ANegativeRangeFraction", gives(Numbers::finite), -0.5);
    withFraction("ADenormalRangeFraction", gives(Numbers::finite), smallest);
    withFraction("ARangeFractionWhoseSquareOverflows", gives(Numbers::notANumber), 1e200);
    withFraction("AnInfiniteRangeFraction", gives(Numbers::notANumber), infinity);
    withFraction("ANaNRangeFraction", gives(Numbers::notANumber), notANumber);
}

void addNuggets(BadInputCollection& collection)
{
    const auto withNugget = [&](const std::string& name, const Outcome& outcome, double nugget)
    {
        collection.add(name, outcome, [=](BadInput& input) { input.settings.nugget = nugget; });
    };
    withNugget("ANegativeNugget", gives(Numbers::finite), -0.5);
    withNugget("AVeryNegativeNugget", fails(overflow), -1e300);
    withNugget("ANuggetOfTheSill", gives(Numbers::finite), 1.0);
    withNugget("ANuggetAboveTheSill", gives(Numbers::finite), 1.5);
    withNugget("ADenormalNugget", gives(Numbers::finite), smallest);
    withNugget("TheLargestNugget", gives(Numbers::notANumber), largest);
    withNugget("AnInfiniteNugget", gives(Numbers::notANumber), infinity);
    withNugget("ANaNNugget", gives(Numbers::notANumber), notANumber);
}

void addDriftOrders(BadInputCollection& collection)
{
    const auto withOrder = [&](const std::string& name, const Outcome& outcome, int order)
    {
        collection.add(name, outcome, [=](BadInput& input) { input.settings.driftOrder = order; });
    };
    withOrder("TheGreatestDriftOrder", gives(Numbers::finite), greatestInt);
    withOrder("ADriftOrderOfFive", gives(Numbers::finite), 5);
    withOrder("ADriftOrderOfMinusOne", gives(Numbers::finite), -1);
    withOrder("TheLeastDriftOrder", gives(Numbers::finite), leastInt);
    collection.add("TheGreatestDriftOrderOverTooFewPoints", refused(tooFewForDrift),
                   [](BadInput& input)
                   {
                       input.settings.driftOrder = greatestInt;
                       input.numPts = 13;
                       input.settings.numNearestPoints = input.settings.numNearestPoints == 0 ? 0 : 12;
                   });
    collection.add("TheGreatestDriftOrderOverFortyVariables", refused(tooFewPoints), refused(tooFewPoints),
                   [](BadInput& input)
                   {
                       input.inputs = randomValues(40, 24, 0.0, 1.0, 35);
                       input.settings.driftOrder = greatestInt;
                   });
    collection.add("FortyVariables", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       input.inputs = randomValues(40, 50, 0.0, 1.0, 35);
                       input.outputs = randomValues(1, 50, 0.0, 1.0, 36);
                       input.targets = randomValues(40, 5, 0.0, 1.0, 37);
                       input.settings.numNearestPoints = input.settings.numNearestPoints == 0 ? 0 : 45;
                   });
}

void addTolerances(BadInputCollection& collection)
{
    const auto withTolerance = [&](const std::string& name, const Outcome& outcome, double tolerance)
    {
        collection.add(name, outcome, [=](BadInput& input) { input.settings.duplicateTolerance = tolerance; });
    };
    withTolerance("ANegativeZeroTolerance", gives(Numbers::finite), -0.0);
    withTolerance("ADenormalTolerance", gives(Numbers::finite), smallest);
    withTolerance("ANaNTolerance", gives(Numbers::finite), notANumber);
    withTolerance("AnInfinitelyNegativeTolerance", gives(Numbers::finite), -infinity);
    withTolerance("AToleranceOfTheWholeRange", refused(tooFewPoints), 1.0);
    withTolerance("TheLargestTolerance", refused(tooFewPoints), largest);
    withTolerance("AnInfiniteTolerance", refused(tooFewPoints), infinity);
}

void addScaleFactors(BadInputCollection& collection)
{
    const auto withFactor = [&](const std::string& name, const Outcome& outcome, double factor)
    {
        collection.add(name, outcome, [=](BadInput& input) { input.settings.scaleFactors = {1.0, factor}; });
    };
    const Outcome tooLarge = refused("Scaling factor too large");
    const Outcome tooSmall = refused("Scaling factor too small");
    withFactor("AScaleFactorOf1e150", tooLarge, 1e150);
    withFactor("AScaleFactorOfMinus1e150", tooLarge, -1e150);
    withFactor("AnInfiniteScaleFactor", tooLarge, infinity);
    withFactor("AnInfinitelyNegativeScaleFactor", tooLarge, -infinity);
    withFactor("AScaleFactorOf1e149", gives(Numbers::finite), 1e149);
    withFactor("AScaleFactorOfZero", tooSmall, 0.0);
    withFactor("AScaleFactorOf1Over1e150", tooSmall, 1e-150);
    withFactor("ADenormalScaleFactor", tooSmall, smallest);
    withFactor("AScaleFactorOf1Over1e149", gives(Numbers::finite), 1e-149);
    withFactor("ANaNScaleFactor", gives(Numbers::notANumber), notANumber);
}

void addNumbersOfNearestPoints(BadInputCollection& collection)
{
    // Neither of the two strategies by name: the number chooses.
    const auto withNearest = [&](const std::string& name, const Outcome& outcome, int number)
    {
        BadInput input = BadInputCollection::soundInput();
        input.name = name;
        input.settings.numNearestPoints = number;
        input.outcome = outcome;
        collection.cases.push_back(input);
    };
    withNearest("TheGreatestNumberOfNearestPoints", gives(Numbers::finite), greatestInt);
    withNearest("TheLeastNumberOfNearestPoints", refused(tooFewPoints), leastInt);
    withNearest("MinusOneNearestPoint", refused(tooFewPoints), -1);
    withNearest("AsManyNearestPointsAsVariables", refused(tooFewPoints), 2);
    withNearest("OneNearestPointLessThanThereAre", gives(Numbers::finite), 23);
}

} // namespace

std::vector<BadInput> badSettingCases()
{
    BadInputCollection collection;
    addRangeFractions(collection);
    addNuggets(collection);
    addDriftOrders(collection);
    addTolerances(collection);
    addScaleFactors(collection);
    addNumbersOfNearestPoints(collection);
    return collection.cases;
}

} // namespace fenn::test
