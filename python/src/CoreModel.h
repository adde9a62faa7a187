#ifndef FENN_PYTHON_COREMODEL_H
#define FENN_PYTHON_COREMODEL_H

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <sys/types.h>

#include <pybind11/pybind11.h>

#include "analysis/DataModel.h"
#include "python/src/Arrays.h"

namespace krige::python
{

/// Becomes Python's MemoryError.
class MemoryShortage : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// Throws MemoryShortage, with what the model takes and what is left, where its system does not fit into memory.
void checkMemory(const fenn::estimation::SampleSet& samples, const fenn::estimation::ModelSettings& settings,
                 bool isExact);

/// Reads samples of arrays. Needs the interpreter's lock. include: one flag per sample, or None.
fenn::estimation::SampleSet readSamples(const py::object& inputs, const py::object& outputs, const py::object& include);

/// The options that a caller gives, with a check of memory where the exact engine has to stand in.
fenn::estimation::EstimatorOptions makeOptions(int numThreads, bool isExact, bool mustTellPointsApart);

/// A model as Python holds it. A process that was forked has its memory but none of its threads: what is left of the
/// model there is neither asked nor taken down.
class CoreModel
{
public:
    CoreModel(const py::object& inputs, const py::object& outputs, const fenn::analysis::DataSettings& settings,
              const py::object& include, int numThreads, bool isExact, bool mustTellPointsApart);
    CoreModel(const CoreModel& other) = delete;
    CoreModel& operator=(const CoreModel& other) = delete;
    ~CoreModel();

    const fenn::analysis::DataModel& get() const
    {
        return *model;
    }

    const fenn::estimation::EstimatorOptions& getOptions() const
    {
        return options;
    }

    /// Answers targets in pieces, between which signals are seen to. Results are written where they are not None.
    void predict(const py::object& inputs, const py::object& values, const py::object& variances,
                 const py::object& standardErrors, const py::object& lowerEnds, const py::object& upperEnds,
                 double coverage) const;

    /// The estimates alone; None for values makes a new array.
    py::object estimate(const py::object& inputs, const py::object& values, const py::object& variances) const;

private:
    struct ResultTables;

    Table readTargets(const py::object& inputs) const;
    void predictInPieces(const Table& targets, ResultTables& results, double coverage) const;
    std::size_t choosePiece() const;

    pid_t process;
    fenn::estimation::EstimatorOptions options;
    std::unique_ptr<fenn::analysis::DataModel> model;
};

} // namespace krige::python

#endif
