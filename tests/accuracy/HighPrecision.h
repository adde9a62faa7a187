#ifndef FENN_TESTS_ACCURACY_HIGHPRECISION_H
#define FENN_TESTS_ACCURACY_HIGHPRECISION_H

#include <vector>

#include <mpfr.h>

namespace fenn::test
{

/// An MPFR number of 256 bits, some 77 digits: sums of products of doubles in it are as good as exact, and systems that
/// are hopeless in double precision can still be solved.
class HighPrecision
{
public:
    HighPrecision(double value = 0.0)
    {
        mpfr_init2(number, precision);
        mpfr_set_d(number, value, MPFR_RNDN);
    }

    HighPrecision(const HighPrecision& other)
    {
        mpfr_init2(number, precision);
        mpfr_set4(number, other.number, MPFR_RNDN, mpfr_sgn(other.number));
    }

    HighPrecision& operator=(const HighPrecision& other)
    {
        mpfr_set4(number, other.number, MPFR_RNDN, mpfr_sgn(other.number));
        return *this;
    }

    ~HighPrecision()
    {
        mpfr_clear(number);
    }

    HighPrecision& operator+=(const HighPrecision& other)
    {
        mpfr_add(number, number, other.number, MPFR_RNDN);
        return *this;
    }

    HighPrecision& operator-=(const HighPrecision& other)
    {
        mpfr_sub(number, number, other.number, MPFR_RNDN);
        return *this;
    }

    HighPrecision& operator*=(const HighPrecision& other)
    {
        mpfr_mul(number, number, other.number, MPFR_RNDN);
        return *this;
    }

    HighPrecision& operator/=(const HighPrecision& other)
    {
        mpfr_div(number, number, other.number, MPFR_RNDN);
        return *this;
    }

    HighPrecision& addProduct(const HighPrecision& a, const HighPrecision& b)
    {
        mpfr_fma(number, a.number, b.number, number, MPFR_RNDN);
        return *this;
    }

    HighPrecision& addMagnitude(const HighPrecision& other)
    {
        if (mpfr_signbit(other.number) != 0)
            return *this -= other;
        return *this += other;
    }

    HighPrecision& negate()
    {
        mpfr_neg(number, number, MPFR_RNDN);
        return *this;
    }

    bool isZero() const
    {
        return mpfr_zero_p(number) != 0;
    }

    bool isSmallerInMagnitudeThan(const HighPrecision& other) const
    {
        return mpfr_cmpabs(number, other.number) < 0;
    }

    void swap(HighPrecision& other)
    {
        mpfr_swap(number, other.number);
    }

    double toDouble() const
    {
        return mpfr_get_d(number, MPFR_RNDN);
    }

private:
    static constexpr mpfr_prec_t precision = 256;

    mpfr_t number;
};

using HighVector = std::vector<HighPrecision>;
using HighRows = std::vector<HighVector>;

} // namespace fenn::test

#endif
