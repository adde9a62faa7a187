#include "host/text/Interruption.h"

#include <gtest/gtest.h>

using krige::Interruption;

namespace
{

/// What SIGINT does now.
struct sigaction currentAction()
{
    struct sigaction action = {};
    sigaction(SIGINT, nullptr, &action);
    return action;
}

} // namespace

TEST(InterruptionTest, TheFirstSignalIsNotedAndTheSecondWouldEndTheProcess)
{
    const Interruption interruption;
    EXPECT_FALSE(interruption.isRequested());

    raise(SIGINT);

    EXPECT_TRUE(interruption.isRequested());
    EXPECT_EQ(currentAction().sa_handler, SIG_DFL);
}

TEST(InterruptionTest, AnEarlierSignalIsForgotten)
{
    {
        const Interruption interruption;
        raise(SIGINT);
    }
    EXPECT_FALSE(Interruption().isRequested());
}

TEST(InterruptionTest, WhatTheSignalDidBeforeItDoesAgain)
{
    const struct sigaction before = currentAction();
    {
        const Interruption interruption;
        EXPECT_NE(currentAction().sa_handler, before.sa_handler);
    }
    EXPECT_EQ(currentAction().sa_handler, before.sa_handler);
}

TEST(InterruptionTest, AnIgnoredSignalStaysIgnored)
{
    struct sigaction ignoring = {};
    ignoring.sa_handler = SIG_IGN;
    struct sigaction before = {};
    sigaction(SIGINT, &ignoring, &before);
    {
        const Interruption interruption;
        raise(SIGINT);
        EXPECT_FALSE(interruption.isRequested());
    }
    EXPECT_EQ(currentAction().sa_handler, SIG_IGN);
    sigaction(SIGINT, &before, nullptr);
}
