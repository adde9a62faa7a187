#include "analysis/NelderMead.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace fenn::analysis
{

namespace
{

struct Vertex
{
    std::vector<double> point;
    double value;
};

/// a + factor (b - a)
std::vector<double> along(const std::vector<double>& a, const std::vector<double>& b, double factor)
{
    std::vector<double> point(a.size());
    for (std::size_t v = 0; v < a.size(); ++v)
        point[v] = a[v] + factor * (b[v] - a[v]);
    return point;
}

/// The mean of all vertices but the last, which is the worst.
std::vector<double> centroidOfBest(const std::vector<Vertex>& simplex)
{
    std::vector<double> centroid(simplex[0].point.size(), 0.0);
    for (std::size_t v = 0; v < centroid.size(); ++v)
    {
        for (std::size_t k = 0; k + 1 < simplex.size(); ++k)
            centroid[v] += simplex[k].point[v];
        centroid[v] /= static_cast<double>(simplex.size() - 1);
    }
    return centroid;
}

bool isSmall(const std::vector<Vertex>& simplex, const std::vector<double>& steps, double tolerance)
{
    for (std::size_t v = 0; v < steps.size(); ++v)
    {
        for (const Vertex& vertex : simplex)
        {
            if (std::fabs(vertex.point[v] - simplex[0].point[v]) > tolerance * std::fabs(steps[v]))
                return false;
        }
    }
    return true;
}

} // namespace

std::vector<double> minimise(const std::function<double(const std::vector<double>&)>& function,
                             const std::vector<double>& start, const std::vector<double>& steps,
                             std::size_t maxEvaluations, double tolerance)
{
    std::size_t numEvaluations = 0;
    const auto evaluate = [&](std::vector<double> point)
    {
        const bool hasBudget = numEvaluations < maxEvaluations;
        numEvaluations += hasBudget ? 1 : 0;
        const double value = hasBudget ? function(point) : std::numeric_limits<double>::infinity();
        return Vertex{std::move(point), value};
    };

    std::vector<Vertex> simplex{evaluate(start)};
    for (std::size_t v = 0; v < steps.size(); ++v)
    {
        std::vector<double> moved = start;
        moved[v] += steps[v];
        simplex.push_back(evaluate(std::move(moved)));
    }
    const auto sortSimplex = [&]
    {
        std::stable_sort(simplex.begin(), simplex.end(),
                         [](const Vertex& a, const Vertex& b) { return a.value < b.value; });
    };
    sortSimplex();
    while (numEvaluations < maxEvaluations && !isSmall(simplex, steps, tolerance))
    {
        Vertex& worst = simplex.back();
        const double secondWorst = simplex[simplex.size() - 2].value;
        const std::vector<double> centroid = centroidOfBest(simplex);
        const Vertex reflected = evaluate(along(centroid, worst.point, -1.0));
        if (reflected.value < simplex[0].value)
        {
            const Vertex expanded = evaluate(along(centroid, worst.point, -2.0));
            worst = expanded.value < reflected.value ? expanded : reflected;
        }
        else if (reflected.value < secondWorst)
            worst = reflected;
        else
        {
            const bool isOutside = reflected.value < worst.value;
            const Vertex contracted = evaluate(along(centroid, isOutside ? reflected.point : worst.point, 0.5));
            if (contracted.value < std::min(reflected.value, worst.value))
                worst = contracted;
            else
            {
                for (std::size_t k = 1; k < simplex.size(); ++k)
                    simplex[k] = evaluate(along(simplex[0].point, simplex[k].point, 0.5));
            }
        }
        sortSimplex();
    }
    return simplex[0].point;
}

} // namespace fenn::analysis
