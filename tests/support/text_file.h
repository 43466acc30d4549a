#pragma once

#include <QByteArray>
#include <QFile>

/// What a file holds; for one that cannot be read, words that say so.
inline QByteArray contentOf(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

/// Makes or replaces a file. @return its name
inline QString writeFile(const QString& fileName, const QByteArray& content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(fileName));
    return fileName;
}
