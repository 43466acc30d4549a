#pragma once

#include <VeskTimelineKit/picture_options.h>

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace VeskTimeline::Kit {
class Document;
}

namespace Workbench {

/// What the command line says about a picture.
struct PictureArguments
{
    VeskTimeline::Kit::PictureOptions options; ///< without the tracks, which have ids only in a model
    QStringList tracks;                        ///< paths, see VeskTimeline::Kit::splitTrackPath()
};

/// The options of the command line that are about pictures.
class PictureCommandOptions
{
public:
    PictureCommandOptions();

    void addTo(QCommandLineParser& parser) const;
    /// Reads the values of the options. @param isPicture whether a picture is to be made at all
    /// @return empty, or what is wrong with them
    QString read(const QCommandLineParser& parser, bool isPicture, PictureArguments& arguments) const;

private:
    QList<QCommandLineOption> all() const;

    QCommandLineOption m_range;
    QCommandLineOption m_tracks;
    QCommandLineOption m_width;
    QCommandLineOption m_scale;
    QCommandLineOption m_title;
    QCommandLineOption m_dark;
    QCommandLineOption m_page;
    QCommandLineOption m_portrait;
    QCommandLineOption m_pagesAcross;
};

/// Writes a picture of a document, and what is wrong to standard error. Needs a QApplication. @return an exit status
int convertToPicture(const VeskTimeline::Kit::Document& document, const PictureArguments& arguments,
                     const QString& output);

} // namespace Workbench
