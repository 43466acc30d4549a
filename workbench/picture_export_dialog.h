#pragma once

#include <VeskTimelineKit/picture_options.h>

#include <QDialog>

class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QSpinBox;
class QTimer;

namespace VeskTimeline {
class TimelineModel;
}

namespace Workbench {

/// What a window shows at the moment, for a picture of it.
struct PictureContext
{
    VeskTimeline::Kit::TimeSpan shownRange;
    QVector<int> expandedTracks; ///< those that can be seen or scrolled to
    QVector<int> selectedTracks; ///< of the selected items; may be empty
    std::optional<qint64> indicatorTime;
    QPalette palette;
    QString trackLabel;
    QString title;
    QString fileName; ///< proposed
};

/// Asks what a picture shall show and where it goes, and shows how it will look. Accepted only when such a picture can
/// be made.
class PictureExportDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param model must outlive the dialog
    PictureExportDialog(VeskTimeline::TimelineModel& model, const PictureContext& context, QWidget* parent = nullptr);

    QString fileName() const;
    VeskTimeline::Kit::PictureOptions options() const;

    /// Asks before a file is replaced, and stays open when it is not to be.
    void accept() override;

private:
    void createFields();
    void layOut();
    void connectFields();
    void askForFile();
    void update();
    void updatePreview();
    /// Empty, or why the fields say nothing that can be made; also names the size.
    QString check();

    VeskTimeline::TimelineModel& m_model;
    const PictureContext m_context;
    QLineEdit* m_file = nullptr;
    QComboBox* m_range = nullptr;
    QLineEdit* m_from = nullptr;
    QLineEdit* m_to = nullptr;
    QComboBox* m_tracks = nullptr;
    QSpinBox* m_width = nullptr;
    QDoubleSpinBox* m_scale = nullptr;
    QComboBox* m_page = nullptr;
    QCheckBox* m_portrait = nullptr;
    QSpinBox* m_pagesAcross = nullptr;
    QComboBox* m_colours = nullptr;
    QCheckBox* m_limits = nullptr;
    QCheckBox* m_indicator = nullptr;
    QLineEdit* m_title = nullptr;
    QLabel* m_preview = nullptr;
    QLabel* m_message = nullptr;
    QDialogButtonBox* m_buttons = nullptr;
    QTimer* m_previewTimer = nullptr;
};

} // namespace Workbench
