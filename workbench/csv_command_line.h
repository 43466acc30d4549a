#pragma once

#include <VeskTimelineKit/csv_options.h>

#include <QCommandLineOption>
#include <QList>
#include <QString>

class QCommandLineParser;

namespace Workbench {

/// The command line options that say how files of comma-separated values are to be understood.
class CsvCommandLine
{
public:
    CsvCommandLine();

    QList<QCommandLineOption> options() const;

    /// @param csvOptions gets what is said
    /// @return what is wrong about a value, in a sentence without an end; empty when all are right
    QString read(const QCommandLineParser& parser, VeskTimeline::Kit::CsvOptions& csvOptions) const;

private:
    QCommandLineOption m_map;
    QCommandLineOption m_delimiter;
    QCommandLineOption m_decimal;
    QCommandLineOption m_encoding;
    QCommandLineOption m_timeUnit;
    QCommandLineOption m_dateFormat;
    QCommandLineOption m_timeZone;
};

} // namespace Workbench
