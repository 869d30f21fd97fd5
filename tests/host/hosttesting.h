#ifndef VYGIS_TESTS_HOSTTESTING_H
#define VYGIS_TESTS_HOSTTESTING_H

// Shared by the host tests: readable failure output for host values, and a
// fixture that fails any test leaving an object or a reference behind.

#include "tsbase.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>

namespace VyObjects {

inline void PrintTo(const TsString& text, std::ostream* out)
{
    *out << '"' << text.toUtf8() << '"';
}

inline void PrintTo(const TsVariant& value, std::ostream* out)
{
    *out << "TsVariant(code " << value.GetType() << ", \"" << value.ToString().toUtf8() << "\")";
}

} // namespace VyObjects

// Counts from construction to destruction, so that what a derived fixture holds is
// created after the first count and gone before the second.
class ReferenceBalanceTest : public ::testing::Test
{
protected:
    ~ReferenceBalanceTest() override
    {
        EXPECT_EQ(VyObjects::TsRefBase::LiveObjectCount(), m_liveObjects) << "objects leaked";
        EXPECT_EQ(VyObjects::TsRefBase::OutstandingReferenceCount(), m_references)
            << "references not released";
    }

private:
    const long long m_liveObjects = VyObjects::TsRefBase::LiveObjectCount();
    const long long m_references = VyObjects::TsRefBase::OutstandingReferenceCount();
};

// A widget application for the length of one test, on the offscreen platform
// unless the environment chose another.
class WidgetApplicationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test_host";
        static char* argv[] = {name, nullptr};
        m_application = std::make_unique<QApplication>(argc, argv);
    }

    void TearDown() override { m_application.reset(); }

private:
    std::unique_ptr<QApplication> m_application;
};

#endif // VYGIS_TESTS_HOSTTESTING_H
