#include "picture_export_dialog.h"

#include "file_dialogs.h"
#include "page_sizes.h"
#include "time_argument.h"

#include <VeskTimeline/timeline_model.h>
#include <VeskTimelineKit/picture_export.h>
#include <VeskTimelineKit/time_text.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr QSize previewSize(420, 260);

enum Range { WholeTimeline, ShownRange, FromTo };
enum Tracks { AllTracks, ExpandedTracks, SelectedTracks };
enum Colours { Light, Dark, AsInWindow };

template <typename Widget>
Widget* named(const char* name, Widget* widget)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

} // namespace

PictureExportDialog::PictureExportDialog(TimelineModel& model, const PictureContext& context, QWidget* parent)
    : QDialog(parent), m_model(model), m_context(context)
{
    setWindowTitle(tr("Export picture"));
    createFields();
    layOut();
    connectFields();
    update();
}

void PictureExportDialog::createFields()
{
    m_file = named("file", new QLineEdit(m_context.fileName, this));
    // The folder stays when another name is typed.
    const QFileInfo file(m_context.fileName);
    m_file->setFocus(Qt::OtherFocusReason);
    m_file->setSelection(static_cast<int>(m_context.fileName.size() - file.fileName().size()),
                         static_cast<int>(file.completeBaseName().size()));
    m_range = named("range", new QComboBox(this));
    m_range->addItems({tr("Whole timeline"), tr("What is shown"), tr("From – to")});
    m_from = named("from", new QLineEdit(formatTime(m_context.shownRange.start), this));
    m_to = named("to", new QLineEdit(formatTime(m_context.shownRange.end), this));
    constexpr int roomForTime = 170;
    m_from->setMinimumWidth(roomForTime);
    m_to->setMinimumWidth(roomForTime);
    m_tracks = named("tracks", new QComboBox(this));
    m_tracks->addItems({tr("All"), tr("Those expanded"), tr("Those of the selected items")});
    m_width = named("width", new QSpinBox(this));
    m_width->setRange(PictureOptions::leastWidth, PictureOptions::mostWidth);
    m_width->setValue(PictureOptions().width);
    m_width->setSuffix(tr(" pixels"));
    m_scale = named("scale", new QDoubleSpinBox(this));
    m_scale->setRange(0.25, 8.0);
    m_scale->setSingleStep(0.5);
    m_scale->setValue(1.0);
    m_page = named("page", new QComboBox(this));
    m_page->addItems(pageSizeNames());
    m_page->setCurrentText(QStringLiteral("A4"));
    m_portrait = named("portrait", new QCheckBox(tr("Upright"), this));
    m_pagesAcross = named("pagesAcross", new QSpinBox(this));
    m_pagesAcross->setRange(1, 1000);
    m_colours = named("colours", new QComboBox(this));
    m_colours->addItems({tr("Light"), tr("Dark"), tr("As in the window")});
    m_limits = named("limits", new QCheckBox(tr("Start and end of the range"), this));
    m_limits->setChecked(true);
    m_indicator = named("indicator", new QCheckBox(tr("Indicator"), this));
    m_indicator->setEnabled(m_context.indicatorTime.has_value());
    m_title = named("title", new QLineEdit(m_context.title, this));
    m_preview = named("preview", new QLabel(this));
    m_preview->setFixedSize(previewSize);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_message = named("message", new QLabel(this));
    m_message->setWordWrap(true);
    m_buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    m_buttons->addButton(tr("Export"), QDialogButtonBox::AcceptRole)->setObjectName(QStringLiteral("export"));
    m_previewTimer = new QTimer(this);
}

void PictureExportDialog::layOut()
{
    auto* const browse = new QPushButton(tr("Browse…"), this);
    connect(browse, &QPushButton::clicked, this, &PictureExportDialog::askForFile);
    const auto inOneRow = [](std::initializer_list<QWidget*> widgets) {
        auto* const row = new QHBoxLayout;
        for (QWidget* const widget : widgets)
            row->addWidget(widget);
        return row;
    };
    auto* const form = new QFormLayout;
    form->addRow(tr("File (PNG, SVG or PDF):"), inOneRow({m_file, browse}));
    form->addRow(tr("&Time:"), m_range);
    form->addRow(tr("From, to:"), inOneRow({m_from, m_to}));
    form->addRow(tr("Trac&ks:"), m_tracks);
    form->addRow(tr("&Width:"), m_width);
    form->addRow(tr("&Scale:"), m_scale);
    form->addRow(tr("Page:"), inOneRow({m_page, m_portrait}));
    form->addRow(tr("Pages &across:"), m_pagesAcross);
    form->addRow(tr("&Colours:"), m_colours);
    form->addRow(tr("Show:"), inOneRow({m_limits, m_indicator}));
    form->addRow(tr("T&itle:"), m_title);

    auto* const columns = new QHBoxLayout;
    columns->addLayout(form, 1);
    columns->addWidget(m_preview, 0, Qt::AlignTop);
    auto* const rows = new QVBoxLayout(this);
    rows->addLayout(columns);
    rows->addWidget(m_message);
    rows->addWidget(m_buttons);
}

void PictureExportDialog::connectFields()
{
    for (QLineEdit* const field : {m_file, m_from, m_to, m_title})
        connect(field, &QLineEdit::textChanged, this, &PictureExportDialog::update);
    for (QComboBox* const box : {m_range, m_tracks, m_page, m_colours})
        connect(box, &QComboBox::currentIndexChanged, this, &PictureExportDialog::update);
    for (QSpinBox* const box : {m_width, m_pagesAcross})
        connect(box, &QSpinBox::valueChanged, this, &PictureExportDialog::update);
    connect(m_scale, &QDoubleSpinBox::valueChanged, this, &PictureExportDialog::update);
    for (QCheckBox* const box : {m_portrait, m_limits, m_indicator})
        connect(box, &QCheckBox::toggled, this, &PictureExportDialog::update);
    connect(m_buttons, &QDialogButtonBox::accepted, this, &PictureExportDialog::accept);
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    constexpr int afterTyping = 150; // milliseconds
    m_previewTimer->setSingleShot(true);
    m_previewTimer->setInterval(afterTyping);
    connect(m_previewTimer, &QTimer::timeout, this, &PictureExportDialog::updatePreview);
}

void PictureExportDialog::askForFile()
{
    const QString chosen =
        QFileDialog::getSaveFileName(this, tr("Export picture"), fileName(), tr("Pictures (*.png *.svg *.pdf)"),
                                     nullptr, QFileDialog::DontConfirmOverwrite);
    if (!chosen.isEmpty())
        m_file->setText(chosen);
}

// A name alone is one in the folder that was proposed, wherever the program was started.
QString PictureExportDialog::fileName() const
{
    const QString name = m_file->text();
    return name.isEmpty() ? name : QFileInfo(m_context.fileName).absoluteDir().absoluteFilePath(name);
}

void PictureExportDialog::accept()
{
    askToReplace(
        this, fileName(), [this] { QDialog::accept(); }, [] {});
}

PictureOptions PictureExportDialog::options() const
{
    PictureOptions options;
    if (m_range->currentIndex() == ShownRange)
        options.range = m_context.shownRange;
    else if (m_range->currentIndex() == FromTo)
        options.range = spanArgument(m_from->text().trimmed() + QStringLiteral("..") + m_to->text().trimmed());
    if (m_tracks->currentIndex() == ExpandedTracks)
        options.trackIds = m_context.expandedTracks;
    else if (m_tracks->currentIndex() == SelectedTracks)
        options.trackIds = m_context.selectedTracks;
    options.width = m_width->value();
    options.scale = m_scale->value();
    if (m_colours->currentIndex() != Light)
        options.palette = m_colours->currentIndex() == Dark ? PictureOptions::darkPalette() : m_context.palette;
    options.hasLimits = m_limits->isChecked();
    if (m_indicator->isChecked())
        options.indicatorTime = m_context.indicatorTime;
    options.trackLabel = m_context.trackLabel;
    options.title = m_title->text();
    setPage(options.pages.layout, m_page->currentText());
    options.pages.layout.setOrientation(m_portrait->isChecked() ? QPageLayout::Portrait : QPageLayout::Landscape);
    options.pages.pagesAcross = m_pagesAcross->value();
    return options;
}

QString PictureExportDialog::check()
{
    const PictureOptions chosen = options();
    if (m_range->currentIndex() == FromTo && !chosen.range)
        return tr(
            "“From” and “to” are each a date, as 2024-05-31, or a time with its zone, as 2024-05-31T12:00:00Z; the "
            "end comes after the start.");
    if (m_tracks->currentIndex() == SelectedTracks && chosen.trackIds.isEmpty())
        return tr("No item is selected.");
    if (fileName().isEmpty())
        return tr("Name a file.");
    const Result<PictureSize> size = PictureExport::size(m_model, fileName(), chosen);
    if (!size)
        return size.error().reason;
    const bool isPaged = QFileInfo(fileName()).suffix().compare(u"pdf", Qt::CaseInsensitive) == 0;
    m_message->setText(isPaged
                           ? tr("Pages: %1").arg(size.value().pages)
                           : tr("%1 × %2 pixels").arg(size.value().pixels.width()).arg(size.value().pixels.height()));
    return {};
}

void PictureExportDialog::update()
{
    m_file->setToolTip(fileName());
    const QString suffix = QFileInfo(fileName()).suffix().toLower();
    const bool isPaged = suffix == u"pdf";
    for (QWidget* const field :
         {static_cast<QWidget*>(m_page), static_cast<QWidget*>(m_portrait), static_cast<QWidget*>(m_pagesAcross)})
        field->setEnabled(isPaged);
    m_width->setEnabled(!isPaged);
    m_scale->setEnabled(suffix == u"png");
    m_from->setEnabled(m_range->currentIndex() == FromTo);
    m_to->setEnabled(m_range->currentIndex() == FromTo);

    const QString problem = check();
    if (!problem.isEmpty())
        m_message->setText(problem);
    m_buttons->findChild<QPushButton*>(QStringLiteral("export"))->setEnabled(problem.isEmpty());
    m_previewTimer->start();
}

void PictureExportDialog::updatePreview()
{
    const bool canBeMade = m_buttons->findChild<QPushButton*>(QStringLiteral("export"))->isEnabled();
    m_preview->setPixmap(canBeMade ? QPixmap::fromImage(PictureExport::preview(m_model, fileName(), options(),
                                                                               m_preview->contentsRect().size()))
                                   : QPixmap());
}

} // namespace Workbench
