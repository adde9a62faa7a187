#include "host/targets/PredictionWriter.h"

#include <cstring>

#include <gmock/gmock.h>

#include "host/text/HostErrors.h"
#include "tests/host/TemporaryFolder.h"

using krige::GridSpec;
using krige::test::messageOf;
using krige::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

namespace
{

/// Gives every line of a block this text at its end.
class TextSource : public krige::TargetSource
{
public:
    explicit TextSource(std::string text_) : text(std::move(text_)) {}

    std::size_t read(std::vector<std::vector<double>>& /*columns*/, std::size_t /*maxTargets*/) override
    {
        return 0;
    }

    std::string_view getTexts(std::size_t /*t*/) const override
    {
        return text;
    }

private:
    std::string text;
};

/// The doubles that stand big-endian behind this place of a file.
std::vector<double> doublesAt(const std::string& bytes, std::size_t place, std::size_t count)
{
    std::vector<double> values;
    for (std::size_t i = 0; i < count; ++i)
    {
        std::uint64_t bits = 0;
        for (std::size_t b = 0; b < 8; ++b)
            bits = bits << 8 | static_cast<unsigned char>(bytes[place + 8 * i + b]);
        values.emplace_back();
        std::memcpy(&values.back(), &bits, sizeof bits);
    }
    return values;
}

class PredictionWriterTest : public testing::Test
{
protected:
    std::string written(krige::PredictionWriter& writer)
    {
        writer.begin();
        writer.write({{1, 2}, {3, 4}}, {{0.5, 0.25}}, TextSource(",a"));
        writer.write({{5}, {6}}, {{0.1}}, TextSource(",\"b,c\""));
        writer.finish();
        return folder.read("out");
    }

    TemporaryFolder folder;
    std::string path = folder.pathOf("out");
};

} // namespace

TEST_F(PredictionWriterTest, CsvLinesAreInputsThenValuesThenTheSourcesTexts)
{
    krige::CsvPredictions writer(path, {"x", "y", "z", "id"});

    EXPECT_EQ(written(writer), "x,y,z,id\n1,3,0.5,a\n2,4,0.25,a\n5,6,0.1,\"b,c\"\n");
}

TEST_F(PredictionWriterTest, NamesThatNeedThemHaveQuotes)
{
    krige::CsvPredictions writer(path, {"a,b", "c\"d"});
    writer.begin();
    writer.finish();

    EXPECT_EQ(folder.read("out"), "\"a,b\",\"c\"\"d\"\n");
}

TEST_F(PredictionWriterTest, ALaterShardsCsvHasNoHeaderRow)
{
    krige::CsvPredictions writer(path, {});

    EXPECT_THAT(written(writer), StartsWith("1,3,0.5,a\n"));
}

TEST_F(PredictionWriterTest, AVtkFileTellsTheGridAndNamesTheArrays)
{
    const GridSpec grid = krige::parseGridSpec("x=0:2:3,y=10:10:1", {"x", "y"});
    krige::VtkPredictions writer(path, grid, {"z (m)"});

    EXPECT_THAT(written(writer),
                StartsWith("# vtk DataFile Version 3.0\nkrige predict\nBINARY\n"
                           "DATASET STRUCTURED_POINTS\nDIMENSIONS 3 1 1\nORIGIN 0 10 0\nSPACING 1 1 1\n"
                           "POINT_DATA 3\nSCALARS z%20(m) double 1\nLOOKUP_TABLE default\n"));
}

TEST_F(PredictionWriterTest, AVtkArrayHoldsTheBitsOfItsValuesBlockAfterBlock)
{
    const GridSpec grid = krige::parseGridSpec("x=0:2:3,y=10:10:1", {"x", "y"});
    krige::VtkPredictions writer(path, grid, {"z"});
    const std::string bytes = written(writer);

    EXPECT_EQ(doublesAt(bytes, bytes.size() - 25, 3), (std::vector<double>{0.5, 0.25, 0.1}));
    EXPECT_EQ(bytes.back(), '\n');
}

TEST_F(PredictionWriterTest, VtkArraysFollowEachOtherThoughTheirBlocksTakeTurns)
{
    const GridSpec grid = krige::parseGridSpec("x=0:1:2", {"x"});
    krige::VtkPredictions writer(path, grid, {"a", "b"});
    writer.begin();
    writer.write({{0}}, {{1}, {3}}, TextSource(""));
    writer.write({{1}}, {{2}, {4}}, TextSource(""));
    writer.finish();
    const std::string bytes = folder.read("out");
    const std::string secondHeader = "\nSCALARS b double 1\nLOOKUP_TABLE default\n";
    const std::size_t second = bytes.find(secondHeader);

    ASSERT_NE(second, std::string::npos);
    EXPECT_EQ(doublesAt(bytes, second - 16, 2), (std::vector<double>{1, 2}));
    EXPECT_EQ(doublesAt(bytes, second + secondHeader.size(), 2), (std::vector<double>{3, 4}));
}

TEST_F(PredictionWriterTest, AVtkFileHasNoRoomForFourAxes)
{
    const GridSpec grid = krige::parseGridSpec("2x2x2x2", {"a", "b", "c", "d"});

    EXPECT_EQ(messageOf<krige::UsageError>([&] { const krige::VtkPredictions writer(path, grid, {"z"}); }),
              "--output: a .vtk file holds grids of up to 3 axes, not 4; name a .csv file");
}
