#include "host/model/AnalysisInput.h"

#include <new>
#include <stdexcept>

#include "host/model/ModelFailure.h"
#include "host/text/HostErrors.h"
#include "surrogatemodel_common/SurrogateModelInterface.h"

namespace krige
{

fenn::estimation::SampleSet toSampleSet(const SampleTable& samples)
{
    return {samples.inputs, samples.outputs};
}

void explainFailures(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                     const std::string& circumstance, const std::function<void()>& work)
{
    try
    {
        work();
    }
    catch (const SurrogateModelInterface::Error& error)
    {
        throw InputError(circumstance + explainModelFailure(error.what(), samples, settings));
    }
    catch (const std::bad_alloc&)
    {
        throw InputError(explainMissingMemory(samples, settings));
    }
    catch (const std::invalid_argument& error)
    {
        throw UsageError(error.what());
    }
}

void runExplained(const SampleTable& samples, const fenn::estimation::ModelSettings& settings,
                  const std::string& circumstance, const std::function<void()>& work, bool isExact,
                  const FoldsAtOnce& foldsAtOnce)
{
    // Of the model of all samples: a fold's, or a trial's, is hardly smaller.
    checkModelMemory(samples, settings, findAvailableBytes(), isExact, foldsAtOnce);
    explainFailures(samples, settings, circumstance, work);
}

fenn::analysis::Progress reportTo(ProgressLine& line)
{
    return [&line](std::size_t numDone, std::size_t total)
    {
        line.update(numDone, total);
        return true;
    };
}

} // namespace krige
