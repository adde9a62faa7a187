#include "tests/accuracy/AccuracyTables.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace fenn::test
{

namespace
{

std::string numberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, value == 0.0 || (value >= 0.01 && value < 100.0) ? "%.2g" : "%.1e", value);
    return text;
}

std::string row(const std::vector<std::string>& cells)
{
    std::string text = "|";
    for (const std::string& cell : cells)
        text += " " + cell + " |";
    return text + "\n";
}

std::string heading(const std::vector<std::string>& cells)
{
    return row(cells) + row(std::vector<std::string>(cells.size(), "---"));
}

/// The worst of those values that there are, or a dash.
class Worst
{
public:
    void add(double value)
    {
        smallest = hasAny ? std::min(smallest, value) : value;
        largest = hasAny ? std::max(largest, value) : value;
        hasAny = true;
    }

    std::string text() const
    {
        return hasAny ? numberText(largest) : "-";
    }

    std::string rangeText() const
    {
        return hasAny ? numberText(smallest) + " to " + numberText(largest) : "-";
    }

private:
    bool hasAny = false;
    double smallest = 0.0;
    double largest = 0.0;
};

std::string outcomeText(std::size_t numSystems, std::size_t numFailures, std::size_t numOverflows)
{
    if (numSystems == 0)
        return "none";
    std::string text = std::to_string(numSystems) + ": ";
    if (numFailures == numSystems)
        return text + "Singular matrix";
    if (numFailures > 0)
        text += std::to_string(numFailures) + " Singular matrix, else ";
    text += "numbers";
    if (numOverflows > 0)
        text += ", for " + std::to_string(numOverflows) + " of " +
                std::to_string((numSystems - numFailures) * numHardTargets) + " targets Value overflow";
    return text;
}

std::string familyRow(const std::vector<const MeasuredSystem*>& family)
{
    int dimension = 0;
    std::size_t numSingular = 0;
    std::size_t numFailures = 0;
    std::size_t numOverflows = 0;
    Worst factorRatio, solveRatio, condition, estimateError, globalPolynomial, localPolynomial, sampleError;
    for (const MeasuredSystem* measured : family)
    {
        const SystemFigures& figures = measured->figures;
        dimension = std::max(dimension, figures.dimension);
        numOverflows += figures.numOverflows;
        if (figures.isSingularToWorkingPrecision())
            ++numSingular;
        if (!figures.failure.empty())
        {
            ++numFailures;
            continue;
        }
        factorRatio.add(figures.factorRatio);
        solveRatio.add(figures.solveRatio);
        if (figures.isSingularToWorkingPrecision())
            continue;
        condition.add(figures.condition);
        estimateError.add(figures.estimateError);
        globalPolynomial.add(measured->global.polynomialError);
        if (measured->system.settings.nugget == 0.0)
            sampleError.add(measured->global.sampleError);
        if (measured->hasLocal)
            localPolynomial.add(measured->local.polynomialError);
    }
    return row({family[0]->system.family, std::to_string(family.size()), std::to_string(dimension), factorRatio.text(),
                solveRatio.text(), condition.rangeText(), estimateError.text(), globalPolynomial.text(),
                localPolynomial.text(), sampleError.text(), outcomeText(numSingular, numFailures, numOverflows)});
}

} // namespace

std::vector<MeasuredSystem> measureHardSystems()
{
    std::vector<MeasuredSystem> all;
    for (HardSystem& system : makeHardSystems())
    {
        MeasuredSystem measured;
        measured.figures = measure(system);
        if (measured.figures.failure.empty())
        {
            const int numNearestPoints = numNearestPointsFor(system);
            measured.hasModels = true;
            measured.global = measureModel(system, 0);
            measured.hasLocal = numNearestPoints > 0;
            if (measured.hasLocal)
                measured.local = measureModel(system, numNearestPoints);
        }
        measured.system = std::move(system);
        all.push_back(std::move(measured));
    }
    return all;
}

std::string familyTable(const std::vector<MeasuredSystem>& systems)
{
    std::string text =
        heading({"Family", "Systems", "Rows, up to", "Factors", "Solutions", "Condition", "Estimates",
                 "Polynomials, global", "Polynomials, local", "Samples, global", "Singular to working precision"});
    std::vector<const MeasuredSystem*> family;
    for (const MeasuredSystem& measured : systems)
    {
        if (!family.empty() && family[0]->system.family != measured.system.family)
        {
            text += familyRow(family);
            family.clear();
        }
        family.push_back(&measured);
    }
    return text + familyRow(family);
}

std::string systemTable(const std::vector<MeasuredSystem>& systems)
{
    std::string text = heading({"Family", "System", "Rows", "Condition", "Factors", "Solutions", "Estimates", "Weights",
                                "Polynomials, global", "Polynomials, local", "Samples, global", "Samples, local",
                                "Overflows", "Failure"});
    for (const MeasuredSystem& measured : systems)
    {
        const SystemFigures& figures = measured.figures;
        text += row({measured.system.family, measured.system.name, std::to_string(figures.dimension),
                     numberText(figures.condition), numberText(figures.factorRatio), numberText(figures.solveRatio),
                     numberText(figures.estimateError), numberText(figures.weightError),
                     numberText(measured.global.polynomialError), numberText(measured.local.polynomialError),
                     numberText(measured.global.sampleError), numberText(measured.local.sampleError),
                     std::to_string(figures.numOverflows), figures.failure});
    }
    return text;
}

} // namespace fenn::test
