#include "host/page/ValidationSection.h"

#include <limits>

#include <gmock/gmock.h>

using krige::sentencesOfValidation;
using krige::summarise;
using krige::ValidationResult;
using krige::validationSection;
using testing::HasSubstr;
using testing::Not;

namespace
{

/// Three points with the errors 1, -3 and 0, and standard errors of 2.
ValidationResult result()
{
    ValidationResult validation;
    validation.inputNames = {"x", "y"};
    validation.outputNames = {"z<"};
    validation.lines = {"2", "3+7", "4"};
    validation.inputs = {{0, 1, 2}, {0, 1, 0}};
    validation.truths = {{10, 20, 30}};
    validation.estimates = {{11, 17, 30}};
    validation.variances = {1, 1, 1};
    validation.sills = {{4, 4, 4}};
    return validation;
}

std::string sectionOf(const ValidationResult& validation, bool areLogarithms = false)
{
    return validationSection(validation, summarise(validation, 2), "3 folds of 3 samples, seed 1", "m", areLogarithms);
}

} // namespace

TEST(ValidationSectionTest, FiguresAreThoseOfTheErrors)
{
    const std::string html = sectionOf(result());

    EXPECT_THAT(html, HasSubstr("3 folds of 3 samples, seed 1."));
    EXPECT_THAT(html, HasSubstr("<th scope=\"row\">z&lt;</th><td>3</td><td>1.82574</td><td>1.33333</td>"));
}

TEST(ValidationSectionTest, TheWorstComeFirstWithTheirLines)
{
    EXPECT_THAT(
        sectionOf(result()),
        HasSubstr("<tr><th scope=\"row\">3+7</th><td>1</td><td>1</td><td>20</td><td>17</td><td>-3</td><td>2</td>"
                  "</tr>\n<tr><th scope=\"row\">2</th><td>0</td><td>0</td><td>10</td><td>11</td><td>1</td>"));
}

TEST(ValidationSectionTest, ErrorsAreMappedOrRunAlongTheOneInput)
{
    EXPECT_THAT(sectionOf(result()), HasSubstr("Map of the errors of z&lt;"));
    ValidationResult line = result();
    line.inputNames.pop_back();
    line.inputs.pop_back();
    EXPECT_THAT(sectionOf(line), HasSubstr("over x</figcaption>"));
}

TEST(ValidationSectionTest, LogarithmsAreNamed)
{
    EXPECT_THAT(sectionOf(result()), Not(HasSubstr("of the logarithms")));
    EXPECT_THAT(sectionOf(result(), true), HasSubstr("of the logarithms"));
}

TEST(ValidationSectionTest, APointWithoutAnEstimateIsLeftOutOfThePictures)
{
    ValidationResult missing = result();
    missing.estimates[0][1] = std::numeric_limits<double>::quiet_NaN();
    const std::string html = sectionOf(missing);

    EXPECT_THAT(html, HasSubstr("<th scope=\"row\">z&lt;</th><td>2</td>"));
    EXPECT_THAT(html, Not(HasSubstr("\"Mnan")));
}

TEST(ValidationSectionTest, OneSentenceTellsWhatEstimatesAreWorth)
{
    const ValidationResult validation = result();

    EXPECT_EQ(sentencesOfValidation(validation, summarise(validation, 0)),
              (std::vector<std::string>{"z<: estimates of samples left out are off by 1.83 (RMSE), where the values "
                                        "themselves vary by 10 (standard deviation); their 95 % intervals hold 100 % "
                                        "of the measured values."}));
}
