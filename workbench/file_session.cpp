#include "file_session.h"

#include <VeskTimelineKit/document_format.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QFileInfo>
#include <QPushButton>
#include <QUndoStack>
#include <QWidget>

namespace Workbench {

using namespace VeskTimeline::Kit;

FileSession::FileSession(StandardTimelineModel* model, QWidget* window)
    : QObject(window), m_model(model), m_window(window), m_snapshot(model)
{
    const QUndoStack* const stack = model->undoStack();
    connect(stack, &QUndoStack::cleanChanged, this, &FileSession::stateChanged);
    connect(stack, &QUndoStack::indexChanged, this, [this] { ++m_edits; });
    connect(&m_watch, &FileWatch::changed, this, &FileSession::noticeChange);
    createLoader();
    createSaver();
}

FileSession::~FileSession() = default;

QStringList FileSession::fileNames() const
{
    QStringList names;
    for (const FileToRead& file : m_files)
        names.append(file.fileName);
    return names;
}

QString FileSession::nativeFileName() const
{
    const bool isNative = m_files.size() == 1 && m_files.front().format == &nativeFormat();
    return isNative ? m_files.front().fileName : QString();
}

bool FileSession::isModified() const
{
    if (m_isMarkedClean && (!m_wasClean || m_wasUnsaved))
        return true;
    return m_isUnsaved || !m_model->undoStack()->isClean();
}

QString FileSession::title() const
{
    if (m_files.empty())
        return tr("[*]VeskTimeline Workbench") + stretchText();
    // The place of the mark is doubled where a file name looks like one.
    const QString first =
        QFileInfo(m_files.front().fileName).fileName().replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    if (m_files.size() == 1)
        return tr("%1[*] – VeskTimeline Workbench").arg(first) + stretchText();
    return tr("%1 and %2 more[*] – VeskTimeline Workbench").arg(first).arg(m_files.size() - 1) + stretchText();
}

QString FileSession::stretchText() const
{
    if (m_stretch == 1.0)
        return {};
    return m_isStretchedWhole ? tr(" (times stretched by %1)").arg(m_stretch)
                              : tr(" (times of traces stretched by %1)").arg(m_stretch);
}

bool FileSession::isBusy() const
{
    return m_isAsking || m_loader.isRunning() || isSaving();
}

void FileSession::setUnsaved()
{
    if (m_isUnsaved)
        return;
    m_isUnsaved = true;
    Q_EMIT stateChanged();
}

void FileSession::cancel()
{
    m_loader.cancel();
    m_snapshot.cancel();
    m_saver.cancel();
}

void FileSession::startNew()
{
    whenDisposable([this] { show(Document(), {}); });
}

// One question at a time: another request brings the one that is open to the front.
void FileSession::whenDisposable(const std::function<void()>& then)
{
    if (m_question) {
        m_question->activateWindow();
        return;
    }
    Q_EMIT contentsNeeded();
    if (isSaving()) {
        m_afterSaving = [this, then] { whenDisposable(then); };
        return;
    }
    m_loader.cancel();
    m_editsWhenAsked = m_edits;
    if (!isModified()) {
        then();
        return;
    }
    askToSave(then);
}

QString FileSession::questionToSave() const
{
    if (m_files.empty())
        return tr("Save the changes?");
    const QString first = QFileInfo(m_files.front().fileName).fileName();
    if (m_files.size() == 1)
        return tr("Save the changes to “%1”?").arg(first);
    return tr("Save the changes to “%1” and %2 more?").arg(first).arg(m_files.size() - 1);
}

void FileSession::askToSave(const std::function<void()>& then)
{
    const FileQuestion question{"saveChanges", questionToSave(),
                                tr("Without saving, what has been changed since the last time is lost.")};
    m_question = ask(m_window, question, QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                     QMessageBox::Save, [this, then](QMessageBox::StandardButton button) {
                         m_question = nullptr;
                         if (button == QMessageBox::Discard) {
                             then();
                         } else if (button == QMessageBox::Save) {
                             m_afterSaving = then;
                             save();
                         }
                     });
}

void FileSession::noticeChange(const QString& fileName, bool exists)
{
    Q_EMIT contentsNeeded();
    const bool hasChanges = isModified();
    // The document is no longer what the file says, whatever the user makes of it.
    setUnsaved();
    const QString name = QFileInfo(fileName).fileName();
    if (!exists) {
        openMessage(m_window,
                    {"fileGone", tr("“%1” has been deleted or moved by another program.").arg(name),
                     tr("The timeline is still here, and can be saved again."), QMessageBox::Warning},
                    QMessageBox::Ok, QMessageBox::Ok);
        return;
    }
    if (m_question)
        return;
    const QString details = hasChanges ? tr("Reloading it loses what you have changed.") : QString();
    m_question =
        ask(m_window, {"fileChanged", tr("“%1” has been changed by another program. Reload it?").arg(name), details},
            hasChanges ? QMessageBox::Yes | QMessageBox::No | QMessageBox::Save : QMessageBox::Yes | QMessageBox::No,
            QMessageBox::No, [this, fileName](QMessageBox::StandardButton button) {
                m_question = nullptr;
                if (button == QMessageBox::Yes) {
                    m_editsWhenAsked = m_edits;
                    load(Purpose::Open, m_files);
                } else if (button == QMessageBox::Save) {
                    // Given up, this leaves open what becomes of the file: Save will ask.
                    chooseNameToSave(suggestedName(tr(" (mine)") + QStringLiteral(".vtl.json")));
                } else {
                    m_watch.accept(fileName);
                }
            });
    m_question->button(QMessageBox::Yes)->setText(tr("&Reload"));
    m_question->button(QMessageBox::No)->setText(tr("&Keep this one"));
    if (QAbstractButton* const saveMine = m_question->button(QMessageBox::Save))
        saveMine->setText(tr("&Save mine as…"));
}

QString FileSession::folder() const
{
    return m_files.empty() ? QString() : QFileInfo(m_files.front().fileName).absolutePath();
}

QString FileSession::suggestedName(const QString& suffix) const
{
    if (m_files.empty())
        return tr("timeline") + suffix;
    return withoutFormatSuffix(QFileInfo(m_files.front().fileName).absoluteFilePath()) + suffix;
}

} // namespace Workbench
