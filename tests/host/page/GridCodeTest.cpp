#include "host/page/GridCode.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>
#include <zlib.h>

#include "tests/support/Samples.h"

using krige::encodeGrid;
using krige::GridCode;

namespace
{

const double notANumber = std::numeric_limits<double>::quiet_NaN();

std::string bytesOf(const std::string& base64)
{
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned group = 0;
    int numBits = 0;
    for (const char c : base64)
    {
        if (c == '=')
            break;
        group = (group << 6U | static_cast<unsigned>(letters.find(c))) & 0xfffffU;
        numBits += 6;
        if (numBits < 8)
            continue;
        numBits -= 8;
        bytes += static_cast<char>(group >> static_cast<unsigned>(numBits) & 0xffU);
    }
    return bytes;
}

/// What the page's script makes of a code: NaN for no value.
std::vector<double> decoded(const GridCode& code, std::size_t numColumns, std::size_t numRows)
{
    const std::size_t count = numColumns * numRows;
    const std::string packed = bytesOf(code.packed);
    std::string bytes(2 * count, '\0');
    uLongf size = bytes.size();
    EXPECT_EQ(uncompress(reinterpret_cast<Bytef*>(bytes.data()), &size, reinterpret_cast<const Bytef*>(packed.data()),
                         packed.size()),
              Z_OK);
    EXPECT_EQ(size, 2 * count);
    std::vector<std::uint16_t> codes(count);
    std::vector<double> values(count);
    for (std::size_t row = 0; row < numRows; ++row)
    {
        unsigned sum = 0;
        for (std::size_t column = 0; column < numColumns; ++column)
        {
            const std::size_t i = row * numColumns + column;
            sum += static_cast<unsigned char>(bytes[i]) + 256U * static_cast<unsigned char>(bytes[count + i]);
            codes[i] = static_cast<std::uint16_t>(sum + (row > 0 ? codes[i - numColumns] : 0U));
            const double digits = static_cast<double>(code.base) + codes[i] - 1.0;
            values[i] = codes[i] == 0        ? notANumber
                        : code.exponent <= 0 ? digits / std::pow(10.0, -code.exponent)
                                             : digits * std::pow(10.0, code.exponent);
        }
    }
    return values;
}

} // namespace

TEST(GridCodeTest, ValuesComeBackRoundedToTheirDecimal)
{
    const std::vector<double> values{0.0, 123.456, 500.0, 7.005, 499.994, 250.25};
    const GridCode code = encodeGrid(values, 3);

    EXPECT_EQ(code.exponent, -2);
    EXPECT_EQ(decoded(code, 3, 2), (std::vector<double>{0.0, 123.46, 500.0, 7.01, 499.99, 250.25}));
}

TEST(GridCodeTest, StepsAreFineWhateverTheSpan)
{
    for (const double span : {1e-9, 0.3, 65533.0, 65534.0, 7e5, 3e18, 1e300})
    {
        SCOPED_TRACE(span);
        std::vector<double> values = fenn::test::randomValues(1, 77, 0.0, 1.0, 5).front();
        for (double& value : values)
            value *= span;
        values[3] = 0.0;
        values[4] = span;
        const GridCode code = encodeGrid(values, 11);
        const double step = std::pow(10.0, code.exponent);
        EXPECT_LE(span / step, 65534.0);
        EXPECT_GE(span / step, 6500.0);
        const std::vector<double> shown = decoded(code, 11, 7);
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_NEAR(shown[i], values[i], 0.500001 * step);
    }
}

TEST(GridCodeTest, WhereThereIsNoValueThereIsNoCode)
{
    const std::vector<double> shown = decoded(encodeGrid({1.0, notANumber, INFINITY, 3.0}, 2), 2, 2);

    EXPECT_EQ(shown[0], 1.0);
    EXPECT_TRUE(std::isnan(shown[1]));
    EXPECT_TRUE(std::isnan(shown[2]));
    EXPECT_EQ(shown[3], 3.0);
    EXPECT_TRUE(std::isnan(decoded(encodeGrid({notANumber, notANumber}, 2), 2, 1)[1]));
}

TEST(GridCodeTest, EqualValuesKeepSixDigits)
{
    EXPECT_EQ(decoded(encodeGrid({123.4567, 123.4567}, 2), 2, 1)[1], 123.457);
    EXPECT_EQ(decoded(encodeGrid({0.0, 0.0}, 1), 1, 2)[1], 0.0);
}

TEST(GridCodeTest, ASmallSpanFarFromZeroKeepsTheDigitsThatDoublesHave)
{
    const std::vector<double> shown = decoded(encodeGrid({-1e9, -1e9 + 1e-3}, 2), 2, 1);

    EXPECT_EQ(shown[0], -1e9);
    EXPECT_NEAR(shown[1], -1e9 + 1e-3, 1e-5);
}

TEST(GridCodeTest, ASmoothSurfacePacksWell)
{
    std::vector<double> values;
    for (int j = 0; j < 300; ++j)
    {
        for (int i = 0; i < 300; ++i)
            values.push_back(std::sin(0.01 * i) * std::cos(0.013 * j));
    }
    EXPECT_LT(encodeGrid(values, 300).packed.size(), values.size() / 2); // of two bytes each
}

TEST(GridCodeTest, Base64IsThatOfTheStandard)
{
    // RFC 4648, section 10.
    EXPECT_EQ(krige::base64Of(""), "");
    EXPECT_EQ(krige::base64Of("f"), "Zg==");
    EXPECT_EQ(krige::base64Of("fo"), "Zm8=");
    EXPECT_EQ(krige::base64Of("foobar"), "Zm9vYmFy");
    EXPECT_EQ(krige::base64Of("\xff\xfe\xfd"), "//79");
}
