#include "file_dialogs.h"

#include "icons.h"

#include <VeskTimelineKit/document_format.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>
#include <QStyle>

#include <algorithm>

namespace Workbench {

using namespace VeskTimeline::Kit;

namespace {

struct Tr
{
    Q_DECLARE_TR_FUNCTIONS(FileDialogs)
};

QString filterOf(const DocumentFormat& format)
{
    QStringList patterns;
    for (const QString& suffix : format.suffixes)
        patterns.append(QStringLiteral("*.") + suffix);
    return QStringLiteral("%1 (%2)").arg(format.description, patterns.join(u' '));
}

QStringList filtersToRead()
{
    QStringList patterns;
    QStringList filters;
    for (const DocumentFormat& format : documentFormats()) {
        filters.append(filterOf(format));
        for (const QString& suffix : format.suffixes)
            patterns.append(QStringLiteral("*.") + suffix);
    }
    patterns.removeDuplicates();
    filters.prepend(Tr::tr("All timelines (%1)").arg(patterns.join(u' ')));
    filters.append(Tr::tr("All files (*)"));
    return filters;
}

QFileDialog* makeDialog(QWidget* window, const char* name, const QString& title, QFileDialog::AcceptMode mode)
{
    auto* const dialog = new QFileDialog(window, title);
    dialog->setObjectName(QString::fromLatin1(name));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setAcceptMode(mode);
    // It would ask before the name has got its suffix, and hold everything up.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    if (mode == QFileDialog::AcceptSave)
        dialog->setLabelText(QFileDialog::LookIn, Tr::tr("Save in:"));
    return dialog;
}

const DocumentFormat* formatOfFilter(const QString& filter)
{
    for (const DocumentFormat& format : documentFormats()) {
        if (filterOf(format) == filter)
            return &format;
    }
    return nullptr;
}

// Of the workbench, not of the style: in the manner of its other icons, on light and on dark ground.
QPixmap pixmapOf(QMessageBox::Icon kind)
{
    const QString name = kind == QMessageBox::Information ? QStringLiteral("information")
                         : kind == QMessageBox::Question  ? QStringLiteral("question")
                                                          : QStringLiteral("warning");
    return icon(name).pixmap(QApplication::style()->pixelMetric(QStyle::PM_MessageBoxIconSize));
}

// A short text above must not break the lines below it, such as names of files, into many.
void makeRoomForDetails(const QMessageBox& box)
{
    constexpr int widest = 480;
    auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"));
    if (!label)
        return;
    const int needed = label->fontMetrics().size(Qt::TextExpandTabs, label->text()).width();
    label->setMinimumWidth(std::min(needed + 1, widest));
}

} // namespace

QMessageBox* openMessage(QWidget* window, const FileQuestion& question, QMessageBox::StandardButtons buttons,
                         QMessageBox::StandardButton defaultButton)
{
    auto* const box =
        new QMessageBox(QMessageBox::NoIcon, Tr::tr("VeskTimeline Workbench"), question.text, buttons, window);
    box->setObjectName(QString::fromLatin1(question.name));
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(question.details);
    // Its own setting holds for the text alone.
    for (QLabel* const label : box->findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    box->setIconPixmap(pixmapOf(question.icon));
    makeRoomForDetails(*box);
    box->setDefaultButton(defaultButton);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
    return box;
}

QMessageBox* ask(QWidget* window, const FileQuestion& question, QMessageBox::StandardButtons buttons,
                 QMessageBox::StandardButton defaultButton,
                 const std::function<void(QMessageBox::StandardButton)>& then)
{
    QMessageBox* const box = openMessage(window, question, buttons, defaultButton);
    QObject::connect(box, &QMessageBox::finished, window, [box, then] {
        const QMessageBox::StandardButton button = box->standardButton(box->clickedButton());
        then(button == QMessageBox::NoButton ? QMessageBox::Cancel : button);
    });
    return box;
}

QMessageBox* askToReplace(QWidget* window, const QString& fileName, const std::function<void()>& then,
                          const std::function<void()>& otherwise)
{
    const QFileInfo file(fileName);
    if (!file.exists()) {
        then();
        return nullptr;
    }
    QMessageBox* const box = ask(
        window,
        {"overwrite", Tr::tr("“%1” is there already. Replace it?").arg(file.fileName()),
         QDir::toNativeSeparators(file.absoluteFilePath())},
        QMessageBox::Save | QMessageBox::Cancel, QMessageBox::Cancel,
        [then, otherwise](QMessageBox::StandardButton button) { button == QMessageBox::Save ? then() : otherwise(); });
    box->button(QMessageBox::Save)->setText(Tr::tr("&Replace"));
    return box;
}

void reportRefusals(QWidget* window, const QList<FileError>& refusals)
{
    constexpr qsizetype mostShown = 20;
    QStringList reasons;
    for (const FileError& refusal : refusals.mid(0, mostShown))
        reasons.append(refusal.text());
    if (refusals.size() > mostShown)
        reasons.append(Tr::tr("and %1 more").arg(refusals.size() - mostShown));
    openMessage(window, {"notOpened", Tr::tr("Nothing was opened."), reasons.join(u'\n'), QMessageBox::Warning},
                QMessageBox::Ok, QMessageBox::Ok);
}

void chooseFilesToRead(QWidget* window, const char* name, const QString& title, const QString& folder,
                       const std::function<void(const QStringList&)>& then)
{
    QFileDialog* const dialog = makeDialog(window, name, title, QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setNameFilters(filtersToRead());
    dialog->setDirectory(folder);
    QObject::connect(dialog, &QFileDialog::filesSelected, window, then);
    dialog->open();
}

void chooseFileToSave(QWidget* window, const QString& suggestion, const std::function<void(const QString&)>& then,
                      const std::function<void()>& otherwise)
{
    QFileDialog* const dialog = makeDialog(window, "saveDialog", Tr::tr("Save timeline"), QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    // Traces are *.json as well: listed, they would soon be overwritten.
    dialog->setNameFilters({QStringLiteral("%1 (*.vtl.json)").arg(nativeFormat().description)});
    dialog->setDirectory(QFileInfo(suggestion).path());
    dialog->selectFile(QFileInfo(suggestion).fileName());
    QObject::connect(dialog, &QFileDialog::fileSelected, window, then);
    QObject::connect(dialog, &QFileDialog::rejected, window, otherwise);
    dialog->open();
}

void chooseFileToExport(QWidget* window, const QString& suggestion,
                        const std::function<void(const QString&, const DocumentFormat&)>& then)
{
    QFileDialog* const dialog = makeDialog(window, "exportDialog", Tr::tr("Export timeline"), QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    QStringList filters;
    for (const DocumentFormat& format : documentFormats()) {
        if (format.write && &format != &nativeFormat())
            filters.append(filterOf(format));
    }
    dialog->setNameFilters(filters);
    dialog->setDirectory(QFileInfo(suggestion).path());
    dialog->selectFile(QFileInfo(suggestion).fileName());
    QObject::connect(dialog, &QFileDialog::fileSelected, window, [dialog, then](const QString& fileName) {
        const DocumentFormat* const bySuffix = documentFormatBySuffix(fileName);
        if (bySuffix && bySuffix->write)
            then(fileName, *bySuffix);
        else if (const DocumentFormat* const chosen = formatOfFilter(dialog->selectedNameFilter()))
            then(fileName + u'.' + chosen->suffixes.first(), *chosen);
    });
    dialog->open();
}

const DocumentFormat& nativeFormat()
{
    return *documentFormatByName(QStringLiteral("vtl"));
}

QString withoutFormatSuffix(const QString& fileName)
{
    qsizetype longest = 0;
    for (const DocumentFormat& format : documentFormats()) {
        for (const QString& suffix : format.suffixes) {
            if (fileName.endsWith(u'.' + suffix, Qt::CaseInsensitive))
                longest = std::max(longest, suffix.size() + 1);
        }
    }
    return fileName.chopped(longest);
}

QString withNativeSuffix(const QString& fileName)
{
    const QString suffix = QStringLiteral(".vtl.json");
    return fileName.endsWith(suffix, Qt::CaseInsensitive) ? fileName : withoutFormatSuffix(fileName) + suffix;
}

} // namespace Workbench
