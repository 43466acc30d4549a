#include "main_window.h"

#include "csv_import_assistant.h"
#include "file_session.h"
#include "icons.h"
#include "load_files.h"
#include "name_column.h"
#include "navigation.h"
#include "ruler_time.h"
#include "theme.h"
#include "view_settings.h"
#include "warnings_button.h"

#include <VeskTimeline/item_delegate.h>
#include <VeskTimeline/timeline_header_view.h>
#include <VeskTimeline/timeline_view.h>
#include <VeskTimeline/timeline_widget.h>
#include <VeskTimelineKit/labelled_item_tool_tips.h>
#include <VeskTimelineKit/standard_timeline_model.h>

#include <QSettings>

namespace Workbench {

using namespace VeskTimeline;
using namespace VeskTimeline::Kit;

namespace {

constexpr QSize startSize(1440, 800);

/// Leaves out the focus frame: there is no moving from row to row, keys are for the items.
class RowDelegate : public ItemDelegate
{
public:
    using ItemDelegate::ItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override
    {
        ItemDelegate::initStyleOption(option, index);
        option->state.setFlag(QStyle::State_HasFocus, false);
    }
};

} // namespace

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent)
{
    registerIcons();
    setWindowIcon(icon(QStringLiteral("vesk_timeline_workbench")));
    createTimeline();
    createNavigation();
    createStatusBar();
    createFileSession();
    createFileMenu();
    createEditMenu();
    createNavigateMenu();
    createViewMenu();
    createHelpMenu();
    createToolBar();
    explainFit();
    resize(startSize);
    showDocument(Document(), {});
}

MainWindow::~MainWindow()
{
    // The model, a member, must outlive whoever uses it, which as children would outlive it.
    m_autosave.reset();
    delete m_session;
    delete centralWidget();
}

TimelineView* MainWindow::view() const
{
    return m_timeline->view();
}

void MainWindow::createTimeline()
{
    m_timeline = new TimelineWidget(this);
    m_model = std::make_unique<StandardTimelineModel>(view());
    m_timeline->setModel(m_model.get());
    view()->setItemDelegate(new RowDelegate(view()));
    view()->setUniformRowHeights(true);
    (new LabelledItemToolTips(view()))->setTimeFormatter([](qint64 time) { return rulerTimeText(time); });
    m_nameColumn = new NameColumn(view());

    TimelineHeaderView* const header = m_timeline->header();
    header->setTrackLabel(tr("Track"));
    m_viewSettings = new ViewSettings(m_timeline);
    m_theme = new Theme(this);
    m_timeline->setZoomInIcon(icon(QStringLiteral("pnx_zoom_in")));
    m_timeline->setZoomOutIcon(icon(QStringLiteral("pnx_zoom_out")));
    // The ids of one document mean something else, or nothing, in the next.
    connect(m_model.get(), &QAbstractItemModel::modelAboutToBeReset, view(), &TimelineView::clearSelectedItems);
    connect(m_model.get(), &QAbstractItemModel::rowsRemoved, this, &MainWindow::forgetRemovedItems);
    connect(m_model.get(), &StandardTimelineModel::itemsRemoved, this, &MainWindow::forgetRemovedItems);
}

QList<FileError> MainWindow::openFiles(const QStringList& fileNames, const DocumentFormat* format)
{
    const ReadDocuments loaded = loadFiles(fileNames, format);
    if (loaded.refusals.isEmpty())
        showDocument(loaded.document, fileNames, format, {}, loaded.stretch);
    return loaded.refusals;
}

void MainWindow::showDocument(const Document& document, const QStringList& fileNames, const DocumentFormat* format,
                              const ReadOptions& options, double stretch)
{
    m_session->show(document, fileNames, format, options, stretch);
}

void MainWindow::showLoaded(const Document& document)
{
    view()->expandAll();
    m_nameColumn->fit();
    m_warningsButton->setWarnings(document.warnings());
    m_navigation->fit();
    m_timeline->header()->setIndicatorTime(view()->currentTime() + view()->zoomFactor() / 2);
}

void MainWindow::forgetRemovedItems()
{
    QList<int> kept;
    for (const int id : view()->selectedItemIds()) {
        if (m_model->hasItem(id))
            kept.append(id);
    }
    if (kept != view()->selectedItemIds())
        view()->selectItems(kept, true);
}

} // namespace Workbench
