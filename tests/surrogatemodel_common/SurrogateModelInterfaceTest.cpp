#include "surrogatemodel_common/SurrogateModelInterface.h"

#include <cstddef>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace
{

/// Tells when it is destroyed, and nothing else.
class EmptyModel : public virtual SurrogateModelInterface
{
public:
    explicit EmptyModel(bool& isDestroyed_) : isDestroyed(isDestroyed_) {}

    ~EmptyModel() override
    {
        isDestroyed = true;
    }

    void activateDependentVariables(const std::set<int>& /*dependentVars*/) override {}

    void interpolateDependentValues(const std::vector<double*>& /*targetValueArrays*/,
                                    const std::set<int>& /*dependentVars*/, std::vector<double*>& /*resultArrays*/,
                                    size_t /*numTargets*/) const override
    {
    }

    bool surfaceCoefficientInformationAvailable() const override
    {
        return false;
    }

    std::string surfaceCoefficientInformation(int /*index*/) override
    {
        return {};
    }

    bool qualityMetricInformationAvailable() const override
    {
        return false;
    }

    std::string qualityMetricInformation(int /*index*/) override
    {
        return {};
    }

private:
    bool& isDestroyed;
};

#if defined(__GNUC__)
/// Where a virtual operation stands in the table, in slots: the first word of its member pointer is the distance in
/// bytes, plus 1 on processors that mark virtual operations there.
template <typename MemberPointer>
std::size_t slotOf(MemberPointer operation)
{
    std::size_t word = 0;
    std::memcpy(&word, &operation, sizeof word);
    return word / sizeof(void*);
}
#endif

} // namespace

TEST(SurrogateModelInterfaceErrorTest, WhatIsTheMessageItWasBuiltFrom)
{
    const SurrogateModelInterface::Error error(std::string("Singular matrix"));

    EXPECT_STREQ(error.what(), "Singular matrix");
}

TEST(SurrogateModelInterfaceErrorTest, ACopyKeepsTheMessageWhenTheOriginalIsGone)
{
    auto original = std::make_unique<SurrogateModelInterface::Error>("Value overflow");
    const SurrogateModelInterface::Error copy(*original);
    original.reset();

    EXPECT_STREQ(copy.what(), "Value overflow");
}

TEST(SurrogateModelInterfaceErrorTest, AssignmentReplacesTheMessage)
{
    SurrogateModelInterface::Error error(std::string("Singular matrix"));
    {
        const SurrogateModelInterface::Error other(std::string("Value overflow"));
        error = other;
    }

    EXPECT_STREQ(error.what(), "Value overflow");
}

TEST(SurrogateModelInterfaceErrorTest, IsCaughtByItsOwnType)
{
    EXPECT_THROW(throw SurrogateModelInterface::Error("Singular matrix"), SurrogateModelInterface::Error);
}

TEST(SurrogateModelInterfaceErrorTest, IsCaughtAsExceptionBase)
{
    try
    {
        throw SurrogateModelInterface::Error("Singular matrix");
    }
    catch (const morvel::ExceptionBase& caught)
    {
        EXPECT_STREQ(caught.what(), "Singular matrix");
    }
}

TEST(SurrogateModelInterfaceErrorTest, IsCaughtAsStandardException)
{
    try
    {
        throw SurrogateModelInterface::Error("Singular matrix");
    }
    catch (const std::exception& caught)
    {
        EXPECT_STREQ(caught.what(), "Singular matrix");
    }
}

TEST(SurrogateModelInterfaceErrorTest, CopyingNeverThrows)
{
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<SurrogateModelInterface::Error>);
    EXPECT_TRUE(std::is_nothrow_copy_constructible_v<morvel::ExceptionBase>);
}

TEST(SurrogateModelInterfaceErrorTest, KeepsItsTypeAndMessageWhenCarriedToBeRethrown)
{
    std::exception_ptr carried;
    try
    {
        throw SurrogateModelInterface::Error("Value overflow");
    }
    catch (...)
    {
        carried = std::current_exception();
    }

    try
    {
        std::rethrow_exception(carried);
    }
    catch (const SurrogateModelInterface::Error& caught)
    {
        EXPECT_STREQ(caught.what(), "Value overflow");
    }
}

TEST(SurrogateModelInterfaceTest, IsAbstractAndNotCopied)
{
    EXPECT_TRUE(std::is_abstract_v<SurrogateModelInterface>);
    EXPECT_FALSE(std::is_copy_constructible_v<EmptyModel>);
}

TEST(SurrogateModelInterfaceTest, AModelIsDestroyedThroughTheInterface)
{
    bool isDestroyed = false;
    SurrogateModelInterface* model = new EmptyModel(isDestroyed);
    delete model;

    EXPECT_TRUE(isDestroyed);
}

#if defined(__GNUC__)
// Hosts call by slot: an operation inserted or moved breaks every one that is already built.
TEST(SurrogateModelInterfaceTest, TheVirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(slotOf(&SurrogateModelInterface::activateDependentVariables), 0U);
    EXPECT_EQ(slotOf(&SurrogateModelInterface::interpolateDependentValues), 1U);
    EXPECT_EQ(slotOf(&SurrogateModelInterface::surfaceCoefficientInformationAvailable), 2U);
    EXPECT_EQ(slotOf(&SurrogateModelInterface::surfaceCoefficientInformation), 3U);
    EXPECT_EQ(slotOf(&SurrogateModelInterface::qualityMetricInformationAvailable), 4U);
    EXPECT_EQ(slotOf(&SurrogateModelInterface::qualityMetricInformation), 5U);
}
#endif
