#include "host/targets/PredictionWriter.h"

#include <cstring>
#include <utility>

#include "host/files/CsvReader.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"

namespace krige
{

namespace
{

constexpr std::size_t mostVtkAxes = 3;

/// Big-endian, as legacy VTK files are on every machine.
void appendBigEndian(std::string& bytes, double value)
{
    std::uint64_t bits = 0;
    static_assert(sizeof bits == sizeof value);
    std::memcpy(&bits, &value, sizeof bits);
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>(bits >> shift & 0xFF);
}

/// Names of arrays hold no blanks; VTK's own writers and readers spell what cannot stand there as %XX.
std::string encodeVtkName(const std::string& name)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : name)
    {
        const auto code = static_cast<unsigned char>(c);
        if (code > 0x20 && code < 0x7F && c != '%' && c != '"')
        {
            encoded += c;
            continue;
        }
        encoded += '%';
        encoded += digits[code >> 4];
        encoded += digits[code & 0xF];
    }
    return encoded;
}

} // namespace

CsvPredictions::CsvPredictions(const std::string& path, std::vector<std::string> columnNames_)
    : output(path), columnNames(std::move(columnNames_))
{
}

void CsvPredictions::begin()
{
    if (columnNames.empty())
        return;
    std::string header;
    for (const std::string& name : columnNames)
    {
        if (!header.empty())
            header += ',';
        appendCsvField(header, name);
    }
    output.write(header + '\n');
}

void CsvPredictions::write(const std::vector<std::vector<double>>& targets,
                           const std::vector<std::vector<double>>& values, const TargetSource& source)
{
    text.clear();
    for (std::size_t t = 0; t < targets.front().size(); ++t)
    {
        for (const std::vector<std::vector<double>>* columns : {&targets, &values})
        {
            for (const std::vector<double>& column : *columns)
            {
                appendNumber(text, column[t]);
                text += ',';
            }
        }
        text.pop_back();
        text += source.getTexts(t);
        text += '\n';
    }
    output.write(text);
}

void CsvPredictions::finish()
{
    output.commit();
}

VtkPredictions::VtkPredictions(const std::string& path, const GridSpec& grid_, std::vector<std::string> valueNames_)
    : output(path), grid(grid_), valueNames(std::move(valueNames_))
{
    if (grid.axes.size() > mostVtkAxes)
        throw UsageError("--output: a .vtk file holds grids of up to 3 axes, not " + std::to_string(grid.axes.size()) +
                         "; name a .csv file");
}

void VtkPredictions::begin()
{
    std::string dimensions = "DIMENSIONS";
    std::string origin = "ORIGIN";
    std::string spacing = "SPACING";
    for (std::size_t a = 0; a < mostVtkAxes; ++a)
    {
        const GridAxis axis = a < grid.axes.size() ? grid.axes[a] : GridAxis{};
        const double step = axis.count > 1 ? axis.getNode(1) - axis.low : 0.0;
        dimensions += ' ' + std::to_string(axis.count);
        origin += ' ' + formatNumber(axis.low);
        spacing += ' ' + formatNumber(step > 0.0 ? step : 1.0); // readers insist on one above 0
    }
    const std::string header = "# vtk DataFile Version 3.0\nkrige predict\nBINARY\nDATASET STRUCTURED_POINTS\n" +
                               dimensions + '\n' + origin + '\n' + spacing + "\nPOINT_DATA " +
                               std::to_string(grid.numNodes) + '\n';
    std::uint64_t offset = header.size();
    output.writeAt(0, header);
    for (const std::string& name : valueNames)
    {
        const std::string arrayHeader = "SCALARS " + encodeVtkName(name) + " double 1\nLOOKUP_TABLE default\n";
        output.writeAt(offset, arrayHeader);
        nextOffsets.push_back(offset + arrayHeader.size());
        offset = nextOffsets.back() + grid.numNodes * sizeof(double);
        output.writeAt(offset, "\n");
        ++offset;
    }
}

void VtkPredictions::write(const std::vector<std::vector<double>>& /*targets*/,
                           const std::vector<std::vector<double>>& values, const TargetSource& /*source*/)
{
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        bytes.clear();
        for (const double value : values[i])
            appendBigEndian(bytes, value);
        output.writeAt(nextOffsets[i], bytes);
        nextOffsets[i] += bytes.size();
    }
}

void VtkPredictions::finish()
{
    output.commit();
}

} // namespace krige
