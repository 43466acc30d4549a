#pragma once

#include <QColor>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTemporaryDir>

/// The icons that an application provides: zoom in red, zoom out blue.
class IconFolder
{
public:
    IconFolder()
    {
        write(QStringLiteral("pnx_zoom_in.svg"), Qt::red);
        write(QStringLiteral("pnx_zoom_out.svg"), Qt::blue);
        QDir::setSearchPaths(QStringLiteral("icon"), {m_folder.path()});
    }
    ~IconFolder() { QDir::setSearchPaths(QStringLiteral("icon"), {}); }
    IconFolder(const IconFolder&) = delete;
    IconFolder& operator=(const IconFolder&) = delete;

private:
    void write(const QString& name, const QColor& color) const
    {
        const QString path = m_folder.filePath(name);
        // Where Qt cannot read the format, it tells by the content what a file is.
        if (!QImageReader::supportedImageFormats().contains("svg")) {
            QImage image(16, 16, QImage::Format_RGB32);
            image.fill(color);
            image.save(path, "PNG");
            return;
        }
        QFile file(path);
        if (file.open(QIODevice::WriteOnly)) {
            file.write(QStringLiteral("<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16'>"
                                      "<rect width='16' height='16' fill='%1'/></svg>")
                           .arg(color.name())
                           .toUtf8());
        }
    }

    QTemporaryDir m_folder;
};
