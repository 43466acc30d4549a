#include "file_session.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QFileInfo>
#include <QSet>
#include <QUndoStack>

#include <algorithm>
#include <iterator>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

bool areAllStretched(const std::vector<FileToRead>& files)
{
    return std::all_of(files.begin(), files.end(),
                       [](const FileToRead& file) { return file.format && file.format->isStretched; });
}

} // namespace

void FileSession::createLoader()
{
    connect(&m_loader, &DocumentLoader::progressChanged, this, [this](double share, const QString& fileName) {
        Q_EMIT workProgressed(share, tr("Reading %1").arg(QFileInfo(fileName).fileName()));
    });
    connect(&m_loader, &DocumentLoader::cancelled, this, &FileSession::workEnded);
    connect(&m_loader, &DocumentLoader::refused, this, [this](const QList<FileError>& refusals) {
        Q_EMIT workEnded();
        reportRefusals(m_window, refusals);
    });
    connect(&m_loader, &DocumentLoader::loaded, this, [this](const std::shared_ptr<LoadedDocument>& loaded) {
        Q_EMIT workEnded();
        if (m_purpose == Purpose::Add) {
            addLoaded(*loaded);
            return;
        }
        // Nobody was asked about what has been changed while the files were read.
        if (m_edits == m_editsWhenAsked)
            replaceDocument(*loaded);
        else
            whenDisposable([this, loaded] { replaceDocument(*loaded); });
    });
}

void FileSession::askForFilesToOpen()
{
    chooseFilesToRead(m_window, "openDialog", tr("Open timelines"), folder(),
                      [this](const QStringList& fileNames) { open(fileNames); });
}

void FileSession::askForFilesToAdd()
{
    chooseFilesToRead(m_window, "addDialog", tr("Add files to this timeline"), folder(),
                      [this](const QStringList& fileNames) { add(fileNames); });
}

FileSession::Files FileSession::filesToRead(const QStringList& fileNames) const
{
    Files files;
    for (const QString& fileName : fileNames) {
        FileToRead file;
        file.fileName = fileName;
        file.format = &documentFormatOf(fileName);
        files.push_back(file);
    }
    return files;
}

// Files before the position have been asked about.
void FileSession::askAboutFiles(Files files, std::size_t position, const std::function<void(Files)>& then)
{
    const DocumentFormat* const csv = documentFormatByName(QStringLiteral("csv"));
    const auto isToAskAbout = [csv](const FileToRead& file) { return file.format == csv; };
    const auto next = std::find_if(files.begin() + static_cast<std::ptrdiff_t>(position), files.end(), isToAskAbout);
    if (next == files.end() || !m_askForReadOptions) {
        then(std::move(files));
        return;
    }
    m_isAsking = true;
    Q_EMIT stateChanged();
    const auto asked = static_cast<std::size_t>(std::distance(files.begin(), next));
    const FileToRead file = *next;
    m_askForReadOptions(file.fileName, file.options, [this, files, asked, then](const ReadAnswer& answer) mutable {
        m_isAsking = false;
        if (answer) {
            files[asked].options = *answer;
            askAboutFiles(std::move(files), asked + 1, then);
        }
        Q_EMIT stateChanged();
    });
}

void FileSession::open(const QStringList& fileNames)
{
    if (fileNames.isEmpty() || m_isAsking)
        return;
    whenDisposable([this, fileNames] {
        askAboutFiles(filesToRead(fileNames), 0, [this](Files files) { load(Purpose::Open, std::move(files)); });
    });
}

void FileSession::add(const QStringList& fileNames)
{
    if (fileNames.isEmpty() || isBusy())
        return;
    askAboutFiles(filesToRead(fileNames), 0, [this](Files files) {
        nameTracks(files);
        load(Purpose::Add, std::move(files));
    });
}

// Tracks of the same name would become one.
void FileSession::nameTracks(Files& files) const
{
    QSet<QString> taken;
    for (const VeskTimeline::TrackPtr& track : m_model->rootTrack()->tracks())
        taken.insert(track->text());
    for (FileToRead& file : files) {
        const QString name = QFileInfo(file.fileName).fileName();
        file.trackName = name;
        for (int number = 2; taken.contains(file.trackName); ++number)
            file.trackName = QStringLiteral("%1 (%2)").arg(name).arg(number);
        taken.insert(file.trackName);
    }
}

void FileSession::reload()
{
    if (m_files.empty() || isBusy() || m_question)
        return;
    Q_EMIT contentsNeeded();
    m_editsWhenAsked = m_edits;
    if (!isModified()) {
        load(Purpose::Open, m_files);
        return;
    }
    m_question = ask(
        m_window, {"reloadChanges", tr("Read the files again?"), tr("What has been changed since is lost.")},
        QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Cancel, [this](QMessageBox::StandardButton button) {
            m_question = nullptr;
            if (button == QMessageBox::Discard)
                load(Purpose::Open, m_files);
        });
}

void FileSession::load(Purpose purpose, Files files)
{
    if (isBusy())
        return;
    m_purpose = purpose;
    m_loading = std::move(files);
    QStringList names;
    for (const FileToRead& file : m_loading)
        names.append(file.fileName);
    // Before reading: what changes from now on is a change.
    m_stampsOfLoading = stampsOf(names);
    m_loader.start(m_loading);
    Q_EMIT workStarted(tr("Reading %1").arg(QFileInfo(names.first()).fileName()));
}

void FileSession::replaceDocument(LoadedDocument& loaded)
{
    m_files = m_loading;
    m_stretch = loaded.stretch;
    m_isStretchedWhole = areAllStretched(m_files);
    m_isUnsaved = false;
    m_watch.watch(m_stampsOfLoading);
    m_model->setDocument(std::move(loaded.prepared));
    // A stack that is empty keeps the mark of changes that a recovered document had.
    m_model->undoStack()->setClean();
    const ReadOptions options = m_files.empty() ? ReadOptions() : m_files.front().options;
    Q_EMIT documentLoaded(loaded.document, fileNames(), options);
    Q_EMIT stateChanged();
    if (!m_files.empty())
        Q_EMIT filesUsed(fileNames());
}

void FileSession::addLoaded(LoadedDocument& loaded)
{
    const bool wasStretchedWhole = !m_model->rootTrack()->hasTracks() || (m_stretch != 1.0 && m_isStretchedWhole);
    m_model->addDocument(std::move(loaded.prepared));
    m_isStretchedWhole = wasStretchedWhole && areAllStretched(m_loading);
    if (loaded.stretch != 1.0)
        m_stretch = loaded.stretch;
    Q_EMIT stateChanged();
    QStringList names;
    for (const FileToRead& file : m_loading)
        names.append(file.fileName);
    Q_EMIT filesAdded(loaded.document);
    Q_EMIT filesUsed(names);
}

void FileSession::show(const Document& document, const QStringList& fileNames, const DocumentFormat* format,
                       const ReadOptions& options, double stretch)
{
    m_loading = filesToRead(fileNames);
    for (FileToRead& file : m_loading) {
        file.options = options;
        file.options.progress = nullptr;
        if (format)
            file.format = format;
    }
    m_stampsOfLoading = stampsOf(fileNames);
    LoadedDocument loaded{shareDocument(Document(document)), PreparedDocument(document), stretch};
    replaceDocument(loaded);
}

} // namespace Workbench
