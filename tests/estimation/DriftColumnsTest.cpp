#include "estimation/DriftColumns.h"

#include <gtest/gtest.h>

#include "estimation/makeModelParts.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "tests/estimation/Samples.h"

namespace
{

using fenn::estimation::calcDriftColumns;
using fenn::estimation::makeModelParts;
using fenn::estimation::SampleSet;

TEST(DriftColumnsTest, ColumnsEndWithTheConstant)
{
    const SampleSet samples({{0.0, 1.0, 2.0, 4.0}}, {{0.0, 0.0, 0.0, 1.0}}); // normalised: -1, -0.5, 0, 1
    const auto parts = makeModelParts(samples, {});

    EXPECT_EQ(calcDriftColumns(*parts, 2),
              (std::vector<std::vector<double>>{{-1.0, -0.5, 0.0, 1.0}, {1.0, 0.25, 0.0, 1.0}, {1.0, 1.0, 1.0, 1.0}}));
    EXPECT_EQ(calcDriftColumns(*parts, 0), (std::vector<std::vector<double>>{{1.0, 1.0, 1.0, 1.0}}));
}

TEST(DriftColumnsTest, TermsOfTwoInputsAreThoseOfTheSystem)
{
    const SampleSet samples = fenn::test::smoothSamples(14, 3);
    const auto parts = makeModelParts(samples, {-1.0, {}, 3, 1.0, 0.0, 0});
    const KrigingMatrix system(parts->getDataBlock(), 14, &parts->getSemivariogram(), 3);
    std::vector<double> scratch(2);
    std::vector<double> column(static_cast<std::size_t>(system.getDimension()));

    const auto columns = calcDriftColumns(*parts, 3);

    ASSERT_EQ(columns.size(), column.size() - 14);
    for (std::size_t i = 0; i < 14; ++i)
    {
        system.buildRightHandSide(column.data(), 0, {samples.getInput(0)[i], samples.getInput(1)[i]},
                                  parts->getPoints(), scratch);
        for (std::size_t k = 0; k < columns.size(); ++k)
            EXPECT_EQ(columns[k][i], column[14 + k]) << k << ' ' << i;
    }
}

} // namespace
