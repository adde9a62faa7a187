#ifndef FENN_HOST_PAGE_AXIS_H
#define FENN_HOST_PAGE_AXIS_H

#include <string>
#include <vector>

namespace krige
{

/// An axis of a chart from low to high, with marks at round values between. Immutable.
class Axis
{
public:
    struct Mark
    {
        double value = 0.0;
        std::string label;
    };

    /// Finite ends; an axis without a length is widened. mostMarks: 2 or more, as many labels as there is room for.
    Axis(double low_, double high_, int mostMarks);

    /// Where a value lies: 0 at the low end, 1 at the high one.
    double shareOf(double value) const;

    double getLow() const
    {
        return low;
    }

    double getHigh() const
    {
        return high;
    }

    const std::vector<Mark>& getMarks() const
    {
        return marks;
    }

    /// Where labels would be long, for values such as 5634120.5, they are what is above this text's number, e.g.
    /// "5634000"; otherwise empty.
    const std::string& getOffset() const
    {
        return offset;
    }

private:
    void addMarks(int mostMarks);

    double low;
    double high;
    std::vector<Mark> marks;
    std::string offset;
};

/// The axis over finite values with a margin at either end, a share of their span; infinities and NaN are ignored.
/// Without a value: 0 to 1.
Axis axisOver(const std::vector<double>& values, double margin, int mostMarks);

} // namespace krige

#endif
