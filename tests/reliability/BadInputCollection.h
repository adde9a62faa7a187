#ifndef FENN_TESTS_RELIABILITY_BADINPUTCOLLECTION_H
#define FENN_TESTS_RELIABILITY_BADINPUTCOLLECTION_H

#include <string>
#include <utility>
#include <vector>

#include "tests/reliability/BadInputCases.h"
#include "tests/support/Samples.h"

namespace fenn::test
{

inline Outcome gives(Numbers numbers)
{
    return {{}, {}, numbers};
}

/// At construction.
inline Outcome refused(const std::string& error)
{
    return {error, {}, Numbers::finite};
}

/// In the request.
inline Outcome fails(const std::string& error)
{
    return {{}, error, Numbers::finite};
}

/// Cases that each change one thing of a sound input.
class BadInputCollection
{
public:
    static constexpr std::size_t numPts = 24;

    /// 24 points of the unit square, and targets of which the last lies on a point.
    static BadInput soundInput()
    {
        BadInput sound;
        sound.inputs = randomValues(2, numPts, 0.0, 1.0, 31);
        sound.outputs = randomValues(1, numPts, -5.0, 5.0, 32);
        sound.targets = randomValues(2, 5, 0.0, 1.0, 33);
        sound.targets[0].push_back(sound.inputs[0][7]);
        sound.targets[1].push_back(sound.inputs[1][7]);
        return sound;
    }

    /// change(input) makes it bad.
    template <typename Change>
    void add(const std::string& name, const Outcome& global, const Outcome& local, Change change)
    {
        addCase(name + "Globally", global, change, 0);
        addLocal(name, local, change);
    }

    template <typename Change>
    void add(const std::string& name, const Outcome& both, Change change)
    {
        add(name, both, both, change);
    }

    /// For inputs of more points than a global model should be tried with.
    template <typename Change>
    void addLocal(const std::string& name, const Outcome& outcome, Change change)
    {
        addCase(name + "Locally", outcome, change, 16);
    }

    std::vector<BadInput> cases;

private:
    template <typename Change>
    void addCase(const std::string& name, const Outcome& outcome, Change change, int numNearestPoints)
    {
        BadInput input = soundInput();
        input.name = name;
        input.settings.numNearestPoints = numNearestPoints;
        input.outcome = outcome;
        change(input);
        cases.push_back(std::move(input));
    }
};

} // namespace fenn::test

#endif
