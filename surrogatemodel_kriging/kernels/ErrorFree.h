#ifndef FENN_KERNELS_ERROR_FREE_H
#define FENN_KERNELS_ERROR_FREE_H

namespace fenn::kernels
{

// Error-free transformations: the exact error of a rounded operation is a double, and a few further operations give it.
// They need every operation to be rounded once, as everything here is compiled.

struct WithError
{
    double value;
    double error;
};

/// value + error = a + b. D. E. Knuth, The Art of Computer Programming, volume 2, section 4.2.2.
inline WithError addWithError(double a, double b)
{
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

/// value + error = a - b.
inline WithError subtractWithError(double a, double b)
{
    const double difference = a - b;
    const double part = difference - a;
    return {difference, (a - (difference - part)) - (b + part)};
}

/// A double as the sum of two of at most 26 bits. Magnitudes up to 2^970.
struct Halves
{
    explicit Halves(double a)
    {
        const double scaled = 134217729.0 * a; // 2^27 + 1
        high = scaled - (scaled - a);
        low = a - high;
    }

    double high;
    double low;
};

/// value + error = a b, where nothing underflows.
inline WithError multiplyWithError(double a, double b)
{
    const double product = a * b;
    const Halves x(a);
    const Halves y(b);
    return {product, x.low * y.low - (((product - x.high * y.high) - x.low * y.high) - x.high * y.low)};
}

} // namespace fenn::kernels

#endif
