#include <limits>

#include "tests/reliability/BadInputCollection.h"

namespace fenn::test
{

namespace
{

const char* const overflow = "Value overflow";

} // namespace

std::vector<BadInput> badTargetCases()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double smallest = std::numeric_limits<double>::denorm_min();

    BadInputCollection collection;
    const auto withTarget = [&](const std::string& name, const Outcome& outcome, double coordinate, int driftOrder)
    {
        collection.add(name, outcome,
                       [=](BadInput& input)
                       {
                           input.targets[1][3] = coordinate;
                           input.settings.driftOrder = driftOrder;
                       });
    };
    withTarget("ANaNTarget", gives(Numbers::ofBothKinds), notANumber, 0);
    withTarget("ANaNTargetUnderADrift", gives(Numbers::ofBothKinds), notANumber, 2);
    withTarget("AnInfiniteTarget", gives(Numbers::finite), infinity, 0);
    withTarget("AnInfiniteTargetUnderADrift", gives(Numbers::ofBothKinds), infinity, 1);
    withTarget("ATargetAt1e308", gives(Numbers::finite), 1e308, 0);
    withTarget("ATargetAt1e308UnderADrift", gives(Numbers::ofBothKinds), -1e308, 1);
    withTarget("ATargetAt1e200UnderADrift", fails(overflow), -1e200, 1);
    withTarget("ATargetWhoseMonomialsOverflow", gives(Numbers::ofBothKinds), 1e100, 4);
    withTarget("ADenormalTarget", gives(Numbers::finite), -smallest, 3);
    collection.add("EveryTargetTheSame", gives(Numbers::finite),
                   [](BadInput& input)
                   {
                       for (std::vector<double>& variable : input.targets)
                           variable.assign(40, variable[0]);
                   });
    collection.add("NoTargets", gives(Numbers::none),
                   [](BadInput& input)
                   {
                       for (std::vector<double>& variable : input.targets)
                           variable.clear();
                   });
    return collection.cases;
}

} // namespace fenn::test
