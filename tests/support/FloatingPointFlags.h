#ifndef FENN_TESTS_SUPPORT_FLOATINGPOINTFLAGS_H
#define FENN_TESTS_SUPPORT_FLOATINGPOINTFLAGS_H

#include <cfenv>
#include <limits>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace fenn::test
{

/// Values that leave a trace wherever one of them is computed with, whatever becomes of the result: a signalling NaN
/// raises "invalid", a denormal number, on x86, "denormal operand". Copying raises nothing.
constexpr double tracedValues[] = {std::numeric_limits<double>::signaling_NaN(), 3e-310};

/// The traces that this thread left since its flags were cleared.
class FloatingPointFlags
{
public:
    static void clear()
    {
        std::feclearexcept(FE_ALL_EXCEPT);
#if defined(__SSE2__)
        _mm_setcsr(_mm_getcsr() & ~denormalOperand);
#endif
    }

    static bool hasTrace()
    {
#if defined(__SSE2__)
        if ((_mm_getcsr() & denormalOperand) != 0)
            return true;
#endif
        // Not FE_DIVBYZERO: a compiler may divide by the zeros of padding ahead of the choice that throws the result
        // away.
        return std::fetestexcept(FE_INVALID | FE_OVERFLOW | FE_UNDERFLOW) != 0;
    }

private:
    static constexpr unsigned denormalOperand = 2;
};

} // namespace fenn::test

#endif
