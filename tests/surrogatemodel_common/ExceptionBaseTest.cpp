#include "surrogatemodel_common/exception/ExceptionBase.h"

#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

TEST(ExceptionBaseTest, WhatIsTheMessageItWasBuiltFrom)
{
    const morvel::ExceptionBase exception(std::string("out of range"));

    EXPECT_STREQ(exception.what(), "out of range");
}

TEST(ExceptionBaseTest, AnEmptyMessageStaysEmpty)
{
    const morvel::ExceptionBase exception((std::string()));

    EXPECT_STREQ(exception.what(), "");
}

TEST(ExceptionBaseTest, KeepsTheMessageWhenTheStringChanges)
{
    std::string message("a message too long to be stored inside the string object itself");
    const morvel::ExceptionBase exception(message);
    message[0] = 'X';

    EXPECT_STREQ(exception.what(), "a message too long to be stored inside the string object itself");
}

TEST(ExceptionBaseTest, AssignmentReplacesTheMessage)
{
    morvel::ExceptionBase exception(std::string("first"));
    {
        const morvel::ExceptionBase other(std::string("second"));
        exception = other;
    }

    EXPECT_STREQ(exception.what(), "second");
}

TEST(ExceptionBaseTest, ACopyKeepsTheMessageWhenTheOriginalIsGone)
{
    auto original = std::make_unique<morvel::ExceptionBase>("Value overflow");
    const morvel::ExceptionBase copy(*original);
    original.reset();

    EXPECT_STREQ(copy.what(), "Value overflow");
}

TEST(ExceptionBaseTest, IsDestroyedThroughTheStandardException)
{
    const std::unique_ptr<std::exception> exception = std::make_unique<morvel::ExceptionBase>("Value overflow");

    EXPECT_TRUE((std::is_base_of_v<std::exception, morvel::ExceptionBase>));
    EXPECT_STREQ(exception->what(), "Value overflow");
}

TEST(ExceptionBaseTest, AStringIsNotTurnedIntoAnExceptionUnasked)
{
    EXPECT_FALSE((std::is_convertible_v<std::string, morvel::ExceptionBase>));
}
