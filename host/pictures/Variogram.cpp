#include "host/pictures/Variogram.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>
#include <system_error>

#include <sys/mman.h>
#include <unistd.h>

#include "host/model/ModelMemory.h"
#include "host/pictures/Gnuplot.h"
#include "host/text/HostErrors.h"
#include "host/text/NumberText.h"
#include "surrogatemodel_kriging/KrigingMatrix.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/Normalizer.h"
#include "surrogatemodel_kriging/SphericalSemivariogram.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"

namespace krige
{

namespace
{

/// What the dump keeps per ordered pair of points: three doubles, and as much again while its list grows.
constexpr double bytesPerPair = 72.0;

void checkMemory(const SurrogateModelDataBlock& block, const std::string& path)
{
    double numPairs = 0.0;
    for (int b = 0; b < block.getNumBlocks(); ++b)
    {
        const double numPts = block.getNumPtsInBlock(b);
        numPairs += numPts * numPts * block.getNumBlocks();
    }
    const double available = findAvailableBytes();
    if (numPairs * bytesPerPair > available)
        throw InputError(path + ": every pair of points takes " + formatBytes(numPairs * bytesPerPair) +
                         " of memory, and this machine has " + formatBytes(available) +
                         " left; add --lags 15 to bin them");
}

/// A file without a name, in memory: the dump ignores write errors, and a disk may be full.
class MemoryFile
{
public:
    MemoryFile() : descriptor(::memfd_create("krige", 0))
    {
        if (descriptor < 0)
            throw InputError("a file in memory cannot be made: " + std::generic_category().message(errno));
    }

    MemoryFile(const MemoryFile& other) = delete;
    MemoryFile& operator=(const MemoryFile& other) = delete;

    ~MemoryFile()
    {
        ::close(descriptor);
    }

    std::string getPath() const
    {
        return "/proc/self/fd/" + std::to_string(descriptor);
    }

    std::string readAll() const
    {
        std::string text;
        char bytes[65536];
        for (ssize_t count = 0;
             (count = ::pread(descriptor, bytes, sizeof bytes, static_cast<off_t>(text.size()))) > 0;)
            text.append(bytes, static_cast<std::size_t>(count));
        return text;
    }

private:
    int descriptor;
};

/// Lags and empirical values of a dump.
std::vector<std::vector<double>> pointsOfDump(const std::string& dump)
{
    std::vector<std::vector<double>> columns(2);
    std::istringstream lines(dump);
    for (std::string line; std::getline(lines, line);)
    {
        double lag = 0.0;
        double empirical = 0.0;
        if (line.empty() || line[0] == '#' || std::sscanf(line.c_str(), "%lf %lf", &lag, &empirical) != 2)
            continue;
        columns[0].push_back(lag);
        columns[1].push_back(empirical);
    }
    return columns;
}

} // namespace

std::string dumpOfModel(const fenn::ModelParts& parts, const std::string& path)
{
    const SurrogateModelDataBlock& block = parts.getDataBlock();
    checkMemory(block, path);
    // The smallest system: the dump looks at the points and the semivariogram only.
    const KrigingMatrix matrix(block, block.getNumInputVars() + 1, &parts.getSemivariogram(), 0);
    const MemoryFile file;
    if (!matrix.writeSemivariogramDump(file.getPath().c_str(), 0))
        throw InputError("the semivariogram cannot be written to memory: /proc is needed for it");
    return file.readAll();
}

std::string csvOfBins(const std::vector<fenn::analysis::LagBin>& bins)
{
    std::string text = "lower_lag,upper_lag,mean_lag,semivariance,model,pairs\n";
    for (const fenn::analysis::LagBin& bin : bins)
    {
        for (const double value : {bin.lowerLag, bin.upperLag, bin.meanLag, bin.semivariance, bin.modelValue})
        {
            appendNumber(text, value);
            text += ',';
        }
        text += std::to_string(bin.numPairs) + "\n";
    }
    return text;
}

VariogramCurve curveOfModel(const fenn::ModelParts& parts, double maxLag)
{
    constexpr int numSteps = 200;
    const std::vector<Normalizer>& normalizers = parts.getNormalizers();
    const double variance = parts.getDataBlock().getOutputVarSampleVariance(0);
    std::vector<double> separation(normalizers.size(), 0.0);
    VariogramCurve curve;
    for (int i = 0; i <= numSteps; ++i)
    {
        curve.lags.push_back(maxLag * (i == 0 ? 1e-6 : i / static_cast<double>(numSteps)));
        separation[0] = curve.lags.back() / normalizers[0].getScale();
        curve.values.push_back(variance * parts.getSemivariogram().evaluate(separation));
    }
    return curve;
}

void drawVariogram(const std::string& path, const std::string& outputName, const std::string& dump,
                   const std::vector<fenn::analysis::LagBin>& bins, const VariogramCurve& curve)
{
    Picture picture;
    std::vector<std::vector<double>> binned(2);
    std::vector<double> heights = curve.values;
    for (const fenn::analysis::LagBin& bin : bins)
    {
        binned[0].push_back(bin.meanLag);
        binned[1].push_back(bin.semivariance);
        heights.push_back(bin.semivariance);
    }
    std::string dots;
    if (!dump.empty())
    {
        const std::vector<std::vector<double>> points = pointsOfDump(dump);
        // A few pairs far above all others would press the rest against the axis.
        std::vector<double> sorted = points[1];
        std::sort(sorted.begin(), sorted.end());
        heights.push_back(sorted[sorted.size() * 19 / 20]);
        dots =
            picture.addData(points) + " using 1:2 with points pt 7 ps 0.2 lc rgb '#999999' title 'pairs at one lag', ";
    }
    const double top = 1.1 * *std::max_element(heights.begin(), heights.end());
    const std::string line = picture.addData({curve.lags, curve.values});
    std::string circles;
    if (!bins.empty())
        circles = ", " + picture.addData(binned) +
                  " using 1:2 with points pt 7 ps 1.4 lc rgb '#21918c' title 'mean of each bin of lags'";
    picture.addPanel("set key outside top center horizontal reverse Left samplen 2\n"
                     "set xlabel 'lag (normalised)'\nset ylabel " +
                     quoteForGnuplot("semivariance of " + outputName) +
                     "\nset xrange [0:" + formatNumber(curve.lags.back()) +
                     "]\nset yrange [0:" + formatNumber(top > 0.0 ? top : 1.0) + "]\nplot " + dots + line +
                     " using 1:2 with lines lw 2.5 lc rgb '#440154' title 'model'" + circles + "\n");
    picture.save(path);
}

} // namespace krige
