#ifndef FENN_TESTS_SUPPORT_NAIVELINEARSYSTEM_H
#define FENN_TESTS_SUPPORT_NAIVELINEARSYSTEM_H

#include <cmath>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace fenn::test
{

/// The written formulas of the factorisation and the solve as plain loops over whole rows, which are really exchanged:
/// what the library's bits are held against. Outcomes are texts: empty, or that of the Error the library throws.
class NaiveLinearSystem
{
public:
    using Rows = std::vector<std::vector<double>>;

    explicit NaiveLinearSystem(Rows rows_) : rows(std::move(rows_)), pivots(rows.size()) {}

    std::string factorise()
    {
        const std::size_t n = rows.size();
        std::vector<double> scale(n);
        for (std::size_t i = 0; i < n; ++i)
        {
            double big = 0.0;
            for (std::size_t k = 0; k < n; ++k)
            {
                if (std::fabs(rows[i][k]) > big)
                    big = std::fabs(rows[i][k]);
            }
            if (big == 0.0)
                return "Singular matrix";
            scale[i] = 1.0 / big;
        }
        for (std::size_t j = 0; j < n; ++j)
        {
            for (std::size_t i = 0; i < n; ++i)
            {
                double sum = rows[i][j];
                for (std::size_t k = 0; k < (i < j ? i : j); ++k)
                    sum = sum - rows[i][k] * rows[k][j];
                rows[i][j] = sum;
            }
            std::size_t p = j;
            double best = 0.0;
            for (std::size_t i = j; i < n; ++i)
            {
                const double scaledMagnitude = scale[i] * std::fabs(rows[i][j]);
                if (scaledMagnitude >= best)
                {
                    best = scaledMagnitude;
                    p = i;
                }
            }
            if (p != j)
            {
                rows[p].swap(rows[j]);
                scale[p] = scale[j];
            }
            pivots[j] = static_cast<int>(p);
            if (-1e-150 < rows[j][j] && rows[j][j] < 1e-150)
                rows[j][j] = 1e-150;
            const double d = 1.0 / rows[j][j];
            for (std::size_t i = j + 1; i < n; ++i)
                rows[i][j] = rows[i][j] * d;
        }
        return "";
    }

    std::string solve(std::vector<double>& b) const
    {
        const std::size_t n = rows.size();
        std::size_t first = n; // none
        for (std::size_t i = 0; i < n; ++i)
        {
            const auto p = static_cast<std::size_t>(pivots[i]);
            double sum = b[p];
            b[p] = b[i];
            if (first != n)
            {
                for (std::size_t k = first; k < i; ++k)
                    sum = sum - rows[i][k] * b[k];
            }
            else if (sum != 0.0)
                first = i;
            b[i] = sum;
        }
        for (std::size_t i = n; i-- > 0;)
        {
            double sum = b[i];
            for (std::size_t k = i + 1; k < n; ++k)
                sum = sum - rows[i][k] * b[k];
            if (-1e-150 < rows[i][i] && rows[i][i] < 1e-150)
                return "Singular matrix";
            const double x = sum / rows[i][i];
            if (x > 1e150 || x < -1e150)
                return "Value overflow";
            b[i] = x;
        }
        return "";
    }

    Rows rows; // logical rows: of the matrix, then of its factors
    std::vector<int> pivots;
};

} // namespace fenn::test

#endif
