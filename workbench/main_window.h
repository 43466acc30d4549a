#pragma once

#include "autosave.h"
#include "theme.h"

#include <VeskTimeline/timeline_utils.h>
#include <VeskTimelineKit/document.h>
#include <VeskTimelineKit/read_options.h>
#include <VeskTimelineKit/result.h>

#include <QList>
#include <QMainWindow>

#include <memory>
#include <optional>

class QAction;
class QMenu;
class QSettings;

namespace VeskTimeline {
class TimelineView;
class TimelineWidget;
namespace Kit {
class StandardTimelineModel;
struct DocumentFormat;
} // namespace Kit
} // namespace VeskTimeline

namespace Workbench {

class CsvImportAssistant;
class FileSession;
class FindBar;
class ItemCommands;
class NameColumn;
class Navigation;
class OverviewStrip;
class RecentFiles;
class TaskProgress;
class ViewSettings;
class WarningsButton;

/// The workbench's window: a timeline with everything switched on, a tool bar, and a status bar that says what is
/// loaded.
///
/// Navigation moves through a document of any length, and the overview strip below the timeline shows all of it.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Loads files and shows them, see showDocument().
    /// @param format the format of all of them; null: each file's by its suffix
    /// @return one error for each refused file; the window then stays as it was
    QList<VeskTimeline::Kit::FileError> openFiles(const QStringList& fileNames,
                                                  const VeskTimeline::Kit::DocumentFormat* format = nullptr);

    /// Shows what was loaded from the files instead of what was there, from the start of its range at the widest zoom.
    /// Asks nothing. For the other parameters see FileSession::show().
    void showDocument(const VeskTimeline::Kit::Document& document, const QStringList& fileNames,
                      const VeskTimeline::Kit::DocumentFormat* format = nullptr,
                      const VeskTimeline::Kit::ReadOptions& options = {}, double stretch = 1.0);

    /// Keeps changes in a journal from now on, and offers those that others have left, see Autosave.
    /// @param folder empty: Autosave::defaultFolder()
    void startAutosave(const QString& folder = {});
    /// Null before startAutosave().
    Autosave* autosave() const { return m_autosave.get(); }
    /// Adds the entry that offers what crashes have left, or says that there is nothing. Enabled by startAutosave().
    QAction* addRecoverAction(QMenu* menu);

    VeskTimeline::TimelineWidget* timeline() const { return m_timeline; }
    VeskTimeline::Kit::StandardTimelineModel* model() const { return m_model.get(); }
    /// Whatever reads or writes files for the window does so through this.
    FileSession* fileSession() const { return m_session; }

    ViewSettings* viewSettings() const { return m_viewSettings; }
    Theme* theme() const { return m_theme; }
    /// Takes over how the user left the window, its look and the settings of the view, and keeps them from now on. To
    /// be called before the window is shown.
    /// @param look for this time only; nothing: as the user left it
    void keepViewSettings(std::optional<Theme::Scheme> look = std::nullopt);
    /// The look that the user left the last window in.
    static Theme::Scheme keptLook();
    /// What is opened from now on is not remembered either: for a window that is no user's.
    void leaveNoTrace();
    /// Whatever moves the window of the timeline does so through this.
    Navigation* navigation() const { return m_navigation; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    VeskTimeline::TimelineView* view() const;
    void createTimeline();
    void createStatusBar();

    // Each menu has a file of its own.
    void createFileMenu();
    void createEditMenu();
    void createNavigateMenu();
    void createViewMenu();
    void goToPresent();
    void explainFit();
    void createHelpMenu();
    void addUndoActions(QMenu* menu);
    /// Export, print preview and print.
    void addPictureActions(QMenu* fileMenu);
    void createInspector();
    void createToolBar();
    /// @param name of the action as an object and of its icon, if there is one
    QAction* addMenuAction(QMenu* menu, const char* name, const QString& text, const QKeySequence& shortcut = {});

    void createFileSession();
    void openRecent(const QString& fileName);
    void createTaskProgress();
    void addSaveActions(QMenu* menu);
    void updateFileActions();
    void showLoaded(const VeskTimeline::Kit::Document& document);
    void showAdded(const VeskTimeline::Kit::Document& added);
    void showRecovered(const Autosave::Recovered& recovered);
    void forgetRemovedItems();

    void createNavigation();
    void addFindActions(QMenu* menu);
    void addStepActions(QMenu* menu);
    void goToDateAndTime();
    void updatePaging();

    VeskTimeline::TimelineWidget* m_timeline = nullptr;
    std::unique_ptr<VeskTimeline::Kit::StandardTimelineModel> m_model;
    ViewSettings* m_viewSettings = nullptr;
    Theme* m_theme = nullptr;
    Navigation* m_navigation = nullptr;
    OverviewStrip* m_overviewStrip = nullptr;
    FindBar* m_findBar = nullptr;
    FileSession* m_session = nullptr;
    std::unique_ptr<QSettings> m_settings;
    std::unique_ptr<CsvImportAssistant> m_importAssistant;
    RecentFiles* m_recentFiles = nullptr;
    TaskProgress* m_taskProgress = nullptr;
    bool m_mayClose = false;
    std::unique_ptr<Autosave> m_autosave;
    ItemCommands* m_itemCommands = nullptr;
    QAction* m_previousPart = nullptr;
    QAction* m_nextPart = nullptr;
    NameColumn* m_nameColumn = nullptr;
    WarningsButton* m_warningsButton = nullptr;
};

} // namespace Workbench
