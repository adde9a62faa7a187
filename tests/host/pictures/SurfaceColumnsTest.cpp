#include "host/pictures/SurfaceColumns.h"

#include <gtest/gtest.h>

using krige::chooseSurfaceColumns;
using krige::nameColumn;
using krige::PredictionColumn;
using krige::Quantity;
using krige::SurfaceOptions;

namespace
{

std::vector<Quantity> quantitiesOf(const std::vector<PredictionColumn>& columns)
{
    std::vector<Quantity> quantities;
    for (const PredictionColumn& column : columns)
        quantities.push_back(column.quantity);
    return quantities;
}

using Quantities = std::vector<Quantity>;

} // namespace

TEST(SurfaceColumnsTest, StandardErrorsStandBesideEveryEstimate)
{
    SurfaceOptions options;
    options.withStandardErrors = true;
    const std::vector<PredictionColumn> columns = chooseSurfaceColumns({"a", "b"}, options, false);

    EXPECT_EQ(quantitiesOf(columns),
              (Quantities{Quantity::Estimate, Quantity::StandardError, Quantity::Estimate, Quantity::StandardError}));
    EXPECT_EQ(columns[1].output, 0u);
    EXPECT_EQ(columns[2].output, 1u);
}

TEST(SurfaceColumnsTest, ALineHasTheEndsOfItsInterval)
{
    EXPECT_EQ(quantitiesOf(chooseSurfaceColumns({"a"}, {}, true)),
              (Quantities{Quantity::Estimate, Quantity::LowerEnd, Quantity::UpperEnd}));
    EXPECT_EQ(quantitiesOf(chooseSurfaceColumns({"a"}, {}, false)), Quantities{Quantity::Estimate});
}

TEST(SurfaceColumnsTest, TheVarianceIsDrawnOnceForAllOutputs)
{
    SurfaceOptions options;
    options.quantity = Quantity::Variance;

    EXPECT_EQ(quantitiesOf(chooseSurfaceColumns({"a", "b"}, options, false)), Quantities{Quantity::Variance});
}

TEST(SurfaceColumnsTest, NamesSayWhatIsShown)
{
    const krige::QuantityName zinc{"zinc", "ppm"};
    const auto nameOf = [&](Quantity quantity)
    {
        return nameColumn({"zinc", quantity, 0}, zinc, 90.0, false).text();
    };

    EXPECT_EQ(nameOf(Quantity::Estimate), "zinc (ppm)");
    EXPECT_EQ(nameOf(Quantity::StandardError), "standard error of zinc (ppm)");
    EXPECT_EQ(nameOf(Quantity::Variance), "variance for a sill of 1");
    EXPECT_EQ(nameOf(Quantity::LowerEnd), "lower end of the 90 % interval of zinc (ppm)");
    EXPECT_EQ(nameOf(Quantity::UpperEnd), "upper end of the 90 % interval of zinc (ppm)");
    EXPECT_EQ(nameColumn({"zinc", Quantity::StandardError, 0}, zinc, 90.0, true).text(), "standard error of ln zinc");
}
