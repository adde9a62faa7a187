#ifndef FENN_TESTS_ESTIMATION_DENSEKRIGING_H
#define FENN_TESTS_ESTIMATION_DENSEKRIGING_H

#include <cmath>
#include <cstddef>
#include <vector>

#include "estimation/ModelSettings.h"
#include "surrogatemodel_kriging/ModelParts.h"
#include "surrogatemodel_kriging/SurrogateModelDataBlock.h"
#include "tests/support/DenseMatrix.h"

namespace fenn::test
{

/// The Kriging equations of the points of a model in covariance form, from the formulas and in long double.
class DenseKriging
{
public:
    DenseKriging(const ModelParts& parts, const estimation::ModelSettings& settings_) : settings(settings_)
    {
        const SurrogateModelDataBlock& block = parts.getDataBlock();
        long double squaredDiagonal = 0.0L;
        for (std::size_t v = 0; v < parts.getNormalizers().size(); ++v)
        {
            const long double side = (static_cast<long double>(parts.getMaxValues()[v]) - parts.getMinValues()[v]) *
                                     parts.getNormalizers()[v].getScale();
            squaredDiagonal += side * side;
            offsets.push_back(parts.getNormalizers()[v].getOffset());
            scales.push_back(parts.getNormalizers()[v].getScale());
        }
        range = settings.rangeFraction * std::sqrt(squaredDiagonal);
        for (const auto& [b, i] : parts.getPoints())
        {
            std::vector<double> place;
            for (const double* column : block.getInputValueArraysForBlock(b))
                place.push_back(column[i]);
            places.push_back(normalised(place));
        }
    }

    std::size_t getNumPoints() const
    {
        return places.size();
    }

    /// Sill 1; 1 on the diagonal.
    DenseMatrix covariances() const
    {
        DenseMatrix c(places.size(), places.size());
        for (std::size_t i = 0; i < places.size(); ++i)
        {
            for (std::size_t j = 0; j < places.size(); ++j)
                c(i, j) = i == j ? 1.0L : covariance(places[i], places[j]);
        }
        return c;
    }

    /// Of the points and an observation at this raw place.
    DenseMatrix covariancesWith(const std::vector<double>& target) const
    {
        DenseMatrix c(places.size(), 1);
        for (std::size_t i = 0; i < places.size(); ++i)
            c(i, 0) = covariance(places[i], normalised(target));
        return c;
    }

    /// A row per point: every monomial of the normalised inputs up to the drift order, the constant first.
    DenseMatrix drift() const
    {
        const std::size_t numColumns = monomials(places[0]).size();
        DenseMatrix f(places.size(), numColumns);
        for (std::size_t i = 0; i < places.size(); ++i)
        {
            for (std::size_t k = 0; k < numColumns; ++k)
                f(i, k) = monomials(places[i])[k];
        }
        return f;
    }

    DenseMatrix driftAt(const std::vector<double>& target) const
    {
        const std::vector<long double> terms = monomials(normalised(target));
        DenseMatrix f(terms.size(), 1);
        for (std::size_t k = 0; k < terms.size(); ++k)
            f(k, 0) = terms[k];
        return f;
    }

    /// In semivariogram form, 0 on the diagonal: the points, then the drift with its constant.
    DenseMatrix borderedSystem() const
    {
        const DenseMatrix c = covariances();
        const DenseMatrix f = drift();
        const std::size_t n = places.size();
        DenseMatrix k(n + f.getNumColumns(), n + f.getNumColumns());
        for (std::size_t i = 0; i < n; ++i)
        {
            for (std::size_t j = 0; j < n; ++j)
                k(i, j) = 1.0L - c(i, j);
            for (std::size_t j = 0; j < f.getNumColumns(); ++j)
                k(i, n + j) = k(n + j, i) = f(i, j);
        }
        return k;
    }

private:
    std::vector<long double> normalised(const std::vector<double>& place) const
    {
        std::vector<long double> result;
        for (std::size_t v = 0; v < place.size(); ++v)
            result.push_back((place[v] + offsets[v]) * scales[v]);
        return result;
    }

    long double covariance(const std::vector<long double>& a, const std::vector<long double>& b) const
    {
        long double squared = 0.0L;
        for (std::size_t v = 0; v < a.size(); ++v)
            squared += (a[v] - b[v]) * (a[v] - b[v]);
        const long double h = std::sqrt(squared) / range;
        return h < 1.0L ? (1.0L - settings.nugget) * (1.0L - 1.5L * h + 0.5L * h * h * h) : 0.0L;
    }

    std::vector<long double> monomials(const std::vector<long double>& u) const
    {
        std::vector<long double> terms{1.0L};
        std::vector<std::size_t> lastFactor{0};
        std::size_t begin = 0;
        for (int degree = 1; degree <= settings.driftOrder; ++degree)
        {
            const std::size_t end = terms.size();
            for (std::size_t k = begin; k < end; ++k)
            {
                for (std::size_t v = lastFactor[k]; v < u.size(); ++v)
                {
                    terms.push_back(terms[k] * u[v]);
                    lastFactor.push_back(v);
                }
            }
            begin = end;
        }
        return terms;
    }

    estimation::ModelSettings settings;
    std::vector<long double> offsets;
    std::vector<long double> scales;
    long double range = 0.0L;
    std::vector<std::vector<long double>> places;
};

} // namespace fenn::test

#endif
