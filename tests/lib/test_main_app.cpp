// Widgets, translators and the progress dialog need an application object. The test
// program takes its main from GoogleTest, so the application lives in a global
// environment instead, on the offscreen platform unless the caller chose another.

#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

class WidgetApplication : public ::testing::Environment
{
public:
    void SetUp() override
    {
        if (QCoreApplication::instance())
            return;
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QApplication>(m_argc, m_argv);
    }

    void TearDown() override { m_application.reset(); }

private:
    char m_name[16] = "test_vygisutil";
    char* m_argv[2] = {m_name, nullptr};
    int m_argc = 1;
    std::unique_ptr<QApplication> m_application;
};

::testing::Environment* const widgetApplication =
    ::testing::AddGlobalTestEnvironment(new WidgetApplication);

} // namespace
