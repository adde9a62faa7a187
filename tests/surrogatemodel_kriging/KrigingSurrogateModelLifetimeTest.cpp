#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/KrigingSurrogateModel.h"
#include "surrogatemodel_kriging/SemivariogramInterface.h"
#include "tests/support/AllocationWatch.h"
#include "tests/support/ControllerProbe.h"
#include "tests/support/ModelAccess.h"
#include "tests/support/ModelSample.h"

using fenn::test::AllocationWatch;
using fenn::test::ModelSample;
using fenn::test::ModelSettings;

namespace
{

ModelSettings makeSettings(double duplicateTolerance, int driftOrder, int numNearestPoints)
{
    ModelSettings settings;
    settings.duplicateTolerance = duplicateTolerance;
    settings.driftOrder = driftOrder;
    settings.numNearestPoints = numNearestPoints;
    return settings;
}

KrigingSurrogateModel* newModel(ModelSample& sample, const ModelSettings& settings)
{
    return new KrigingSurrogateModel(sample.inputs.arrays(), sample.outputs.arrays(), sample.numPts,
                                     settings.duplicateTolerance, settings.scaleFactors, settings.driftOrder,
                                     settings.rangeFraction, settings.nugget, settings.numNearestPoints);
}

/// Six samples in one input variable, of which the last two coincide.
class KrigingSurrogateModelLifetimeTest : public testing::Test
{
protected:
    void SetUp() override
    {
        // What a process allocates once and keeps is allocated here, before anything is counted.
        delete newModel(samples, makeSettings(0.0, 0, 0));
        EXPECT_NE(samples.failureOf(makeSettings(0.0, 0, -1)), "");
    }

    /// Expects that building fails with the message and that no allocation is left.
    static void expectFailureWithoutTrace(ModelSample& sample, const ModelSettings& settings,
                                          const std::string& message)
    {
        SCOPED_TRACE(message);
        bool hasFailedAsExpected = false;
        std::ptrdiff_t numLive = -1;
        {
            const AllocationWatch watch;
            try
            {
                delete newModel(sample, settings);
            }
            catch (const SurrogateModelInterface::Error& error)
            {
                hasFailedAsExpected = message == error.what();
            }
            numLive = watch.getNumLive();
        }
        EXPECT_TRUE(hasFailedAsExpected);
        EXPECT_EQ(numLive, 0);
    }

    ModelSample samples{{{0.0, 1.0, 2.0, 4.0, 8.0, 8.0}}, {{1.0, 3.0, 2.0, 5.0, 4.0, 6.0}}};
};

} // namespace

TEST_F(KrigingSurrogateModelLifetimeTest, TheWatchSeesWhatIsLeftBehind)
{
    std::ptrdiff_t numLive = 0;
    int* volatile kept = nullptr; // volatile: Clang leaves out an allocation whose address goes nowhere
    {
        const AllocationWatch watch;
        kept = new int(7);
        numLive = watch.getNumLive();
    }
    delete kept;

    EXPECT_EQ(numLive, 1);
}

TEST_F(KrigingSurrogateModelLifetimeTest, TheDestructorReleasesEverything)
{
    for (const int numNearestPoints : {0, 3})
    {
        std::ptrdiff_t numLiveWithModel = 0;
        std::ptrdiff_t numLive = -1;
        {
            const AllocationWatch watch;
            const SurrogateModelInterface* model = newModel(samples, makeSettings(0.0, 1, numNearestPoints));
            numLiveWithModel = watch.getNumLive();
            delete model;
            numLive = watch.getNumLive();
        }
        EXPECT_GT(numLiveWithModel, 3); // the model, its data block, semivariogram and controller
        EXPECT_EQ(numLive, 0);
    }
}

TEST_F(KrigingSurrogateModelLifetimeTest, TheControllerGoesFirstAndTheDataBlockLast)
{
    for (const int numNearestPoints : {0, 3})
    {
        const KrigingSurrogateModel* model = newModel(samples, makeSettings(0.0, 0, numNearestPoints));
        const void* controller = dynamic_cast<const void*>(&fenn::ModelAccess::getController(*model));
        const void* semivariogram = dynamic_cast<const void*>(&fenn::ModelAccess::getSemivariogram(*model));
        const void* dataBlock = dynamic_cast<const void*>(&fenn::ModelAccess::getDataBlock(*model));
        const void* normalizers = fenn::ModelAccess::getNormalizers(*model).data();
        const void* maxValues = fenn::ModelAccess::getMaxValues(*model).data();
        const void* minValues = fenn::ModelAccess::getMinValues(*model).data();
        std::vector<const void*> released;
        {
            AllocationWatch watch;
            for (const void* address : {controller, semivariogram, dataBlock, normalizers, maxValues, minValues})
                watch.follow(address);
            delete model;
            released = watch.getReleased();
        }

        EXPECT_EQ(released,
                  (std::vector<const void*>{controller, semivariogram, dataBlock, normalizers, maxValues, minValues}));
    }
}

TEST_F(KrigingSurrogateModelLifetimeTest, AConstructorThatFailsWhileNormalisingLeavesNothing)
{
    ModelSettings settings;
    settings.scaleFactors = {1e150};
    expectFailureWithoutTrace(samples, settings, "Scaling factor too large");
    settings.scaleFactors = {0.0};
    expectFailureWithoutTrace(samples, settings, "Scaling factor too small");
    ModelSample equal({{5.0, 5.0}}, {{1.0, 2.0}});
    expectFailureWithoutTrace(equal, {}, "Value range too small to normalize data");
}

TEST_F(KrigingSurrogateModelLifetimeTest, AConstructorThatFailsInItsControllerLeavesNothing)
{
    expectFailureWithoutTrace(samples, makeSettings(0.0, 0, -1), "Not enough source points for kriging.");
    expectFailureWithoutTrace(samples, makeSettings(0.0, 4, 3), "Not enough source points to calculate drift.");
    ModelSample two({{0.0, 1.0, 1.0}, {2.0, 3.0, 3.0}}, {{1.0, 2.0, 3.0}});
    expectFailureWithoutTrace(two, makeSettings(0.0, 0, 0), "Not enough source points for kriging.");
    ModelSample three({{0.0, 1.0, 2.0}}, {{1.0, 2.0, 3.0}});
    expectFailureWithoutTrace(three, makeSettings(0.0, 4, 0), "Not enough source points to calculate drift.");
}

TEST_F(KrigingSurrogateModelLifetimeTest, AConstructorThatFailsToFactoriseLeavesNothing)
{
    ModelSample constant({{0.0, 1.0, 2.0, 3.0}, {5.0, 5.0, 5.0, 5.0}}, {{1.0, 2.0, 3.0, 4.0}});
    ModelSettings settings = makeSettings(-1.0, 1, 0);
    settings.scaleFactors = {1.0, 1.0};
    expectFailureWithoutTrace(constant, settings, "Singular matrix");
}

TEST_F(KrigingSurrogateModelLifetimeTest, IsNeitherCopiedNorAssigned)
{
    EXPECT_FALSE(std::is_copy_constructible_v<KrigingSurrogateModel>);
    EXPECT_FALSE(std::is_copy_assignable_v<KrigingSurrogateModel>);
}
