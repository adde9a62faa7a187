#include "host/reports/DuplicatesReport.h"

#include <gtest/gtest.h>

#include "tests/host/TemporaryFolder.h"

using krige::SampleTable;
using krige::test::TemporaryFolder;

namespace
{

std::string reportOf(const SampleTable& samples, double tolerance)
{
    const TemporaryFolder folder;
    krige::Settings settings;
    settings.duplicateTolerance = tolerance;
    krige::writeDuplicatesReport(folder.pathOf("merged.csv"), samples, settings);
    return folder.read("merged.csv");
}

} // namespace

TEST(DuplicatesReportTest, EverySampleOfAnAveragedPointIsListedWithItsLine)
{
    SampleTable samples{"s.csv", {"x"}, {"z"}, {{0, 5, 0, 5, 9, 0}}, {{1, 2, 3, 4, 5, 6}}};
    samples.lines = {2, 3, 4, 6, 7, 8};

    EXPECT_EQ(reportOf(samples, 0.0), "point,line,x,z\n"
                                      "1,2,0,1\n1,4,0,3\n1,8,0,6\n"
                                      "2,3,5,2\n2,6,5,4\n");
}

TEST(DuplicatesReportTest, SamplesApartLeaveTheHeaderRowAlone)
{
    SampleTable samples{"s.csv", {"a,b"}, {"z"}, {{0, 1, 2}}, {{1, 2, 3}}};
    samples.lines = {2, 3, 4};

    EXPECT_EQ(reportOf(samples, 0.0), "point,line,\"a,b\",z\n");
}

TEST(DuplicatesReportTest, TheToleranceDecidesWhatIsMerged)
{
    SampleTable samples{"s.csv", {"x"}, {"z"}, {{0, 1, 100}}, {{1, 2, 3}}};
    samples.lines = {2, 3, 4};

    EXPECT_EQ(reportOf(samples, 0.02), "point,line,x,z\n1,2,0,1\n1,3,1,2\n");
}
