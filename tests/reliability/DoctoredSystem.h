#ifndef FENN_TESTS_RELIABILITY_DOCTOREDSYSTEM_H
#define FENN_TESTS_RELIABILITY_DOCTOREDSYSTEM_H

#include "surrogatemodel_kriging/AllPtsKrigingController.h"

namespace fenn::test
{

/// The factorised system that a controller keeps to itself.
KrigingMatrix& systemOf(AllPtsKrigingController& controller);

// An explicit instantiation may name what is private.
template <KrigingMatrix AllPtsKrigingController::*system>
struct SystemLoan
{
    friend KrigingMatrix& systemOf(AllPtsKrigingController& controller)
    {
        return controller.*system;
    }
};

template struct SystemLoan<&AllPtsKrigingController::krigingMatrix>;

/// Makes one diagonal factor effectively zero, so that every solve fails at it, for as long as it lives.
class DoctoredDiagonal
{
public:
    DoctoredDiagonal(AllPtsKrigingController& controller, int row)
        : element(systemOf(controller).getRow(row) + row), original(*element)
    {
        *element = 1e-200;
    }

    DoctoredDiagonal(const DoctoredDiagonal& other) = delete;
    DoctoredDiagonal& operator=(const DoctoredDiagonal& other) = delete;

    ~DoctoredDiagonal()
    {
        *element = original;
    }

private:
    double* element;
    double original;
};

} // namespace fenn::test

#endif
