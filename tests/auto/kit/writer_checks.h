#pragma once

#include "support/text_file.h"

#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/write_options.h>

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

/// What holds for the writers of all formats. They are (const Document&, const QString& fileName, const WriteOptions&)
/// to a WriteResult.
namespace WriterChecks {

using namespace VeskTimeline::Kit;

inline QStringList filesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden);
}

template <typename Write>
void aCancelledWriteKeepsTheOldFile(const QString& name, Write write)
{
    const QTemporaryDir dir;
    const QString fileName = writeFile(dir.filePath(name), "old");
    Document document;
    document.track({"A"}).items = {{"x", 0, 1, {}, true, {}, {}}, {"y", 2, 1, {}, true, {}, {}}};
    double reached = 0.0;
    const WriteResult result = write(document, fileName, WriteOptions{[&](double share) {
                                         reached = share;
                                         return false;
                                     }});
    QVERIFY(!result);
    QCOMPARE(result.error().text(), fileName + ": writing was cancelled");
    QCOMPARE(reached, 0.5);
    QCOMPARE(contentOf(fileName), QByteArray("old"));
    QCOMPARE(filesIn(dir), QStringList(name));
}

/// @param check for the file that has been written, by its name
template <typename Write, typename Check>
void aFileIsReplacedByTheWholeText(const Document& document, const QString& name, Write write, Check check)
{
    const QTemporaryDir dir;
    const QString fileName = writeFile(dir.filePath(name), "old");
    const WriteResult result = write(document, fileName, WriteOptions{});
    QVERIFY(result);
    QCOMPARE(result.value(), QStringList());
    check(fileName);
    QCOMPARE(filesIn(dir), QStringList(name));
}

template <typename Write>
void whatCannotBeWrittenIsReported(const QString& name, Write write)
{
    const QTemporaryDir dir;
    const QString fileName = dir.filePath("no/such/" + name);
    const WriteResult result = write(Document(), fileName, WriteOptions{});
    QVERIFY(!result);
    QCOMPARE(result.error().text(), fileName + ": No such file or directory");
}

} // namespace WriterChecks
