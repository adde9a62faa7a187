#include "host/page/DataSection.h"

#include <gmock/gmock.h>

using krige::dataSection;
using krige::SampleTable;
using testing::HasSubstr;
using testing::Not;

namespace
{

SampleTable samples()
{
    return {"s<1>.csv", {"x", "y"}, {"z&w"}, {{0, 1, 2, 3}, {5, 6, 7, 5}}, {{10, 20, 30, 40}}, {2, 3, 4, 5}, 2};
}

std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

} // namespace

TEST(DataSectionTest, SaysWhatWasReadAndLeftOut)
{
    EXPECT_THAT(
        dataSection(samples(), "", {}),
        HasSubstr("4 samples of s&lt;1&gt;.csv with 2 inputs and 1 output; 2 rows with a missing value left out."));
}

TEST(DataSectionTest, ColumnsHaveTheirFigures)
{
    EXPECT_THAT(dataSection(samples(), "", {}),
                HasSubstr("<tr><th scope=\"row\">z&amp;w</th><td>output</td><td>10</td><td>17.5</td><td>25</td>"
                          "<td>25</td><td>32.5</td><td>40</td><td>12.9099</td></tr>"));
}

TEST(DataSectionTest, ThereIsAMapPerOutputAndAHistogramPerColumn)
{
    const std::string html = dataSection(samples(), "km", {});

    EXPECT_EQ(countOf(html, "<figure>"), 4u);
    EXPECT_THAT(html, HasSubstr("Where z&amp;w was sampled"));
    EXPECT_THAT(html, HasSubstr(">y (km)</text>"));
    EXPECT_EQ(countOf(html, "class=\"bar\""), 4u + 4u + 3u); // five bins each, some of them empty
}

TEST(DataSectionTest, OneInputIsDrawnAsALine)
{
    SampleTable line = samples();
    line.inputNames.pop_back();
    line.inputs.pop_back();

    EXPECT_THAT(dataSection(line, "", {}), HasSubstr("z&amp;w over x"));
}

TEST(DataSectionTest, OfManySamplesSomeAreDrawn)
{
    SampleTable many = samples();
    for (std::vector<double>* column : {&many.inputs[0], &many.inputs[1], &many.outputs[0]})
        column->resize(6000, 1.0);

    EXPECT_THAT(dataSection(many, "", {}), HasSubstr("; 5000 of 6000 samples"));
}

TEST(DataSectionTest, WarningsStandAsTexts)
{
    EXPECT_THAT(dataSection(samples(), "", {"a <b>"}), HasSubstr("<ul class=\"warnings\">\n<li>a &lt;b&gt;</li>"));
    EXPECT_THAT(dataSection(samples(), "", {}), Not(HasSubstr("warnings")));
}
