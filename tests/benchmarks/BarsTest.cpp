#include "benchmarks/support/Bars.h"

#include <string>

#include <gtest/gtest.h>

using namespace fenn::benchmarks;

namespace
{

template <class Report>
std::string printedBy(const Report& report)
{
    testing::internal::CaptureStdout();
    report();
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(RepeatsTest, TheMedianOfAnOddNumberIsTheOneInTheMiddle)
{
    EXPECT_EQ(Repeats({5.0, 1.0, 3.0}).median(), 3.0);
}

TEST(RepeatsTest, TheMedianOfAnEvenNumberIsTheMeanOfTheTwoInTheMiddle)
{
    EXPECT_EQ(Repeats({5.0, 1.0, 3.0, 4.0}).median(), 3.5);
}

TEST(RepeatsTest, AFigureIsMeasuredAsOftenAsAskedFor)
{
    double next = 0.0;

    EXPECT_EQ(Repeats(3, [&] { return ++next; }).all(), (std::vector<double>{1.0, 2.0, 3.0}));
}

TEST(BarsTest, ALineHoldsTheMedianTheBarAndEveryValue)
{
    const auto report = []
    {
        reportAtMost("local target", "N = 16", Repeats({3.0, 4.0, 5.0}), "us", 3.5);
    };

    EXPECT_EQ(printedBy(report), "BAR | local target | N = 16 | 4 us | <= 3.5 | **no** | 3 4 5 |\n");
}

TEST(BarsTest, AFigureThatIsMeasuredOnceIsItsOnlyValue)
{
    const auto report = []
    {
        reportAtLeast("rate, of the peak", "n = 10", 0.75, "of the peak", 0.75);
    };

    EXPECT_EQ(printedBy(report), "BAR | rate, of the peak | n = 10 | 0.75 of the peak | >= 0.75 | yes | 0.75 |\n");
}

TEST(BarsTest, AComparisonNamesTheYardstickBehindThePath)
{
    const auto report = []
    {
        reportTimesAsFast("factorisation", "`dgetrf`", "n = 10", 1.2, 1.1);
    };

    EXPECT_EQ(printedBy(report), "BAR | factorisation, beside `dgetrf` | n = 10 | 1.2 x | >= 1.1 | yes | 1.2 |\n");
}

TEST(BarsTest, AFigureWithoutABarIsNeitherMetNorMissed)
{
    const auto report = []
    {
        reportFigure("rate", "n = 10", Repeats({2.0}), "GFlop/s");
    };

    EXPECT_EQ(printedBy(report), "BAR | rate | n = 10 | 2 GFlop/s | none |  | 2 |\n");
}
