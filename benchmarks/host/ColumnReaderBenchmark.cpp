// Reading a million rows of three numbers against std::from_chars alone over the same numbers, already split and in
// memory: what of the time is the price of files, lines, fields and checks. Numbers of 17 digits are what krige writes;
// those of four are what people type, and leave the least time to hide the rest in.

#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "host/files/ColumnReader.h"
#include "host/text/NumberText.h"

namespace
{

using Clock = std::chrono::steady_clock;
using Columns = std::vector<std::vector<double>>;

constexpr std::size_t numRows = 1000000;
constexpr std::size_t rowsPerBlock = 65536;
constexpr int numRepetitions = 5;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string makeRows(int digits)
{
    std::mt19937_64 engine(1);
    std::string text = "x,y,z\n";
    for (std::size_t row = 0; row < numRows; ++row)
    {
        for (int c = 0; c < 3; ++c)
        {
            const double value = static_cast<double>(engine() >> 11) * 0x1p-53 * 1000.0;
            char number[40];
            std::snprintf(number, sizeof number, "%.*g%c", digits, value, c < 2 ? ',' : '\n');
            text += number;
        }
    }
    return text;
}

std::vector<std::string_view> splitNumbers(const std::string& text)
{
    std::vector<std::string_view> numbers;
    std::size_t begin = text.find('\n') + 1;
    while (begin < text.size())
    {
        const std::size_t end = text.find_first_of(",\n", begin);
        numbers.push_back(std::string_view(text).substr(begin, end - begin));
        begin = end + 1;
    }
    return numbers;
}

double sumByParsing(const std::vector<std::string_view>& numbers)
{
    double sum = 0.0;
    for (const std::string_view number : numbers)
    {
        double value = 0.0;
        std::from_chars(number.data(), number.data() + number.size(), value);
        sum += value;
    }
    return sum;
}

double sumByReading(const std::string& path)
{
    krige::ColumnReader reader(path, {"x", "y", "z"});
    Columns columns;
    double sum = 0.0;
    while (const std::size_t count = reader.read(columns, rowsPerBlock))
    {
        for (std::size_t row = 0; row < count; ++row)
        {
            for (const std::vector<double>& column : columns)
                sum += column[row];
        }
    }
    return sum;
}

bool compare(int digits)
{
    const std::string text = makeRows(digits);
    const std::string path =
        (std::filesystem::temp_directory_path() / ("krige-benchmark-" + std::to_string(::getpid()) + ".csv")).string();
    std::ofstream(path, std::ios::binary) << text;
    const std::vector<std::string_view> numbers = splitNumbers(text);
    bool same = true;
    for (int repetition = 0; repetition < numRepetitions; ++repetition)
    {
        Clock::time_point start = Clock::now();
        const double parsed = sumByParsing(numbers);
        const double parsing = secondsSince(start);
        start = Clock::now();
        const double read = sumByReading(path);
        const double reading = secondsSince(start);
        same = same && parsed == read;
        std::printf("%2d digits: from_chars %.3f s, reading %.3f s, ratio %.2f\n", digits, parsing, reading,
                    reading / parsing);
    }
    std::filesystem::remove(path);
    if (!same)
        std::fprintf(stderr, "the numbers read are not those of the file\n");
    return same;
}

} // namespace

int main()
{
    const bool longOnes = compare(17);
    const bool shortOnes = compare(4);
    return longOnes && shortOnes ? 0 : 1;
}
