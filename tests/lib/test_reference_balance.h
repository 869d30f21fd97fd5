#pragma once

#include "tsbase.h"

#include <gtest/gtest.h>

// A test that fails when it leaves a host object alive or a reference unreleased: every
// function the library exports must give back what it takes, on every path.
class ReferenceBalanceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_objects = VyObjects::TsRefBase::LiveObjectCount();
        m_references = VyObjects::TsRefBase::OutstandingReferenceCount();
    }
    void TearDown() override
    {
        EXPECT_EQ(VyObjects::TsRefBase::LiveObjectCount(), m_objects) << "objects leaked";
        EXPECT_EQ(VyObjects::TsRefBase::OutstandingReferenceCount(), m_references);
    }

private:
    long long m_objects = 0;
    long long m_references = 0;
};
