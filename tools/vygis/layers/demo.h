#pragma once

#include <QDir>
#include <QString>

// Where the demo reads its samples and writes its results, and what it tells the user.
class DemoRun
{
public:
    DemoRun(const QString& samples, const QDir& output) : m_samples(samples), m_output(output) {}

    QString sample(const QString& name) const { return m_samples + QLatin1Char('/') + name; }
    QString output(const QString& name) const { return m_output.filePath(name); }

    // A fresh copy of a sample in the output folder, for the steps that change a file in
    // place; empty when it cannot be made.
    QString copyOfSample(const QString& name, const QString& copyName) const;

    // Prints what a step made and what the file holds.
    void made(const QString& file, const QString& holds) const;
    // Prints what a step found without making a file.
    void found(const QString& what) const;
    // Prints why a step failed and counts it.
    void failed(const QString& what);

    int failures() const { return m_failures; }

private:
    QString m_samples;
    QDir m_output;
    int m_failures = 0;
};

// The steps, by the kind of file they work on.
void runWorkbookSteps(DemoRun& run);
void runReaderSteps(DemoRun& run);
void runTemplateSteps(DemoRun& run);
void runLayerSteps(DemoRun& run);
void runReportSteps(DemoRun& run);
