#include "surrogatemodel_kriging/KrigingControllerAbstract.h"

#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

#include "surrogatemodel_kriging/AllPtsKrigingController.h"
#include "surrogatemodel_kriging/NPtsKrigingController.h"
#include "tests/support/SampleBlocks.h"

using namespace fenn::test;

namespace
{

/// A controller that answers nothing and shows what the base keeps for those that do.
class BareController : public KrigingControllerAbstract
{
public:
    using KrigingControllerAbstract::activeOutputVars;
    using KrigingControllerAbstract::centredOutputVars;
    using KrigingControllerAbstract::dataBlock;
    using KrigingControllerAbstract::KrigingControllerAbstract;
    using KrigingControllerAbstract::outputNormalizers;

    void interpolate(const std::vector<double*>&, const std::set<int>&, int, std::vector<double*>&,
                     std::vector<double*>&) override
    {
    }
};

/// Three outputs at three points: mid-ranges 6000, -20 and 0.5.
class KrigingControllerAbstractTest : public testing::Test
{
protected:
    SampleBlocks samples{{{0.0, 1.0, 2.0}}, {{5000.0, 7000.0, 6000.0}, {-30.0, -20.0, -10.0}, {0.0, 1.0, 0.5}}};
    BareController controller{&samples.block()};
};

} // namespace

TEST_F(KrigingControllerAbstractTest, AFreshControllerHasADefaultNormalizerPerOutputVariable)
{
    ASSERT_EQ(controller.outputNormalizers.size(), 3u);
    for (int o = 0; o < 3; ++o)
    {
        EXPECT_EQ(controller.getOutputNormalizer(o).getOffset(), 0.0);
        EXPECT_EQ(controller.getOutputNormalizer(o).getScale(), 1.0);
    }
}

TEST_F(KrigingControllerAbstractTest, AFreshControllerHasNoOutputVariablesAndKeepsTheDataBlock)
{
    EXPECT_TRUE(controller.activeOutputVars.empty());
    EXPECT_TRUE(controller.centredOutputVars.empty());
    EXPECT_EQ(controller.dataBlock, &samples.block());
}

TEST_F(KrigingControllerAbstractTest, TheAccessorShowsTheVariablesOwnNormalizer)
{
    EXPECT_EQ(&controller.getOutputNormalizer(1), &controller.outputNormalizers[1]);
}

TEST_F(KrigingControllerAbstractTest, ChosenOutputVariablesReplaceThoseBefore)
{
    controller.setOutputVars({1});
    controller.setOutputVars({2, 0});

    EXPECT_EQ(controller.activeOutputVars, (std::set<int>{0, 2}));
}

TEST_F(KrigingControllerAbstractTest, AVariableThatIsNotCentredKeepsItsOffset)
{
    controller.setOutputVars({2, 0});

    for (int o = 0; o < 3; ++o)
        EXPECT_EQ(controller.getOutputNormalizer(o).getOffset(), 0.0);
    EXPECT_TRUE(controller.centredOutputVars.empty());
}

TEST_F(KrigingControllerAbstractTest, ACentredVariableGetsItsNegatedMidRangeAsOffset)
{
    controller.centredOutputVars = {0, 1};

    controller.setOutputVars({0, 1, 2});

    EXPECT_EQ(controller.getOutputNormalizer(0).getOffset(), -6000.0);
    EXPECT_EQ(controller.getOutputNormalizer(1).getOffset(), 20.0);
    EXPECT_EQ(controller.getOutputNormalizer(2).getOffset(), 0.0);
    EXPECT_EQ(controller.centredOutputVars, (std::set<int>{0, 1}));
}

TEST_F(KrigingControllerAbstractTest, ACentredVariableThatIsNotChosenIsNotRefreshed)
{
    controller.centredOutputVars = {0, 1};

    controller.setOutputVars({1});

    EXPECT_EQ(controller.getOutputNormalizer(0).getOffset(), 0.0);
}

TEST_F(KrigingControllerAbstractTest, CentringLeavesTheScale)
{
    controller.centredOutputVars = {0};
    controller.outputNormalizers[0].setScale(3.0);

    controller.setOutputVars({0});

    EXPECT_EQ(controller.getOutputNormalizer(0).getScale(), 3.0);
}

TEST_F(KrigingControllerAbstractTest, AnOffsetIsRefreshedEachTimeItsVariableIsChosen)
{
    controller.centredOutputVars = {0};
    controller.setOutputVars({0});
    samples.outputs[0][0][1] = 9000.0;

    controller.setOutputVars({0});

    EXPECT_EQ(controller.getOutputNormalizer(0).getOffset(), -7000.0);
}

TEST_F(KrigingControllerAbstractTest, FallingValuesAreCentredByTheStartOfTheMaximum)
{
    samples.outputs[0][1] = {3.0, 2.0, 1.0};
    controller.centredOutputVars = {1};

    controller.setOutputVars({1});

    EXPECT_EQ(controller.getOutputNormalizer(1).getOffset(), 5e149); // (1 - 1e150) * -0.5
}

TEST_F(KrigingControllerAbstractTest, ItsOwnSetAsArgumentIsLeftUnchanged)
{
    controller.setOutputVars({0, 2});
    controller.centredOutputVars = {0};

    controller.setOutputVars(controller.activeOutputVars);

    EXPECT_EQ(controller.activeOutputVars, (std::set<int>{0, 2}));
    EXPECT_EQ(controller.getOutputNormalizer(0).getOffset(), -6000.0);
}

TEST_F(KrigingControllerAbstractTest, NoOutputVariablesMayBeChosen)
{
    controller.setOutputVars({1});
    controller.setOutputVars({});

    EXPECT_TRUE(controller.activeOutputVars.empty());
}

TEST_F(KrigingControllerAbstractTest, BothControllersAreControllers)
{
    EXPECT_TRUE((std::is_convertible_v<AllPtsKrigingController*, KrigingControllerAbstract*>));
    EXPECT_TRUE((std::is_convertible_v<NPtsKrigingController*, KrigingControllerAbstract*>));
    EXPECT_TRUE(std::has_virtual_destructor_v<KrigingControllerAbstract>);
}
