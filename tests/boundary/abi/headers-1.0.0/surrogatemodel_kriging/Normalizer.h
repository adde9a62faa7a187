#ifndef FENN_SURROGATEMODEL_KRIGING_NORMALIZER_H
#define FENN_SURROGATEMODEL_KRIGING_NORMALIZER_H

/// Affine map of one variable: normalised = (raw + offset) * scale, the addition first.
///
/// A default-constructed normalizer is the identity. Differences of raw values are normalised by the scale alone, for
/// the offset cancels: (a - b) * scale. A plain value: copies are independent, and any number of threads may read one.
///
/// All of it is defined here and nothing of it is exported, although vectors of it cross the boundary: a host compiles
/// its own copy of these few lines.
class Normalizer
{
public:
    Normalizer() = default;
    Normalizer(const Normalizer& other) = default;
    Normalizer& operator=(const Normalizer& other) = default;
    virtual ~Normalizer() = default;

    double getOffset() const
    {
        return offset;
    }

    double getScale() const
    {
        return scale;
    }

    void setScale(double scale_)
    {
        scale = scale_;
    }

    void setOffset(double offset_)
    {
        offset = offset_;
    }

    double normalize(double rawValue) const
    {
        return (rawValue + offset) * scale;
    }

private:
    double offset = 0.0;
    double scale = 1.0;
};

/// Smallest and largest of the first count values; both are the first value when count is below 2. A NaN is never
/// below the minimum nor above the maximum, so one after the first value is passed over, and a first one stays.
inline void findMinMax(const double* values, int count, double& min, double& max)
{
    min = values[0];
    max = values[0];
    for (int i = 1; i < count; ++i)
    {
        if (values[i] < min)
            min = values[i];
        else if (values[i] > max)
            max = values[i];
    }
}

#endif
