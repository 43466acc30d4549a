#pragma once

#include "time_entry.h"

#include <QDialog>

class QCalendarWidget;
class QLabel;
class QLineEdit;

namespace Workbench {

class Navigation;

/// Asks for a date and time and brings the window of a timeline there, with the indicator set to it: typed freely, see
/// parseTimeEntry(), or picked in the calendar. What has been typed is explained as it is typed; a text that is no time
/// keeps the dialog open.
class GoToDialog : public QDialog
{
    Q_OBJECT

public:
    /// @param navigation not owned
    explicit GoToDialog(Navigation* navigation, QWidget* parent = nullptr);

    /// The field with what is typed.
    QLineEdit* field() const { return m_field; }
    QCalendarWidget* calendar() const { return m_calendar; }
    /// What the text is read as, or what is wrong with it.
    QString explanation() const;

    void accept() override;

private:
    TimeEntryContext context() const;
    void explain();
    void take(const QDate& date);

    Navigation* m_navigation;
    /// The middle of the window when the dialog was opened.
    qint64 m_here;
    QLineEdit* m_field;
    QLabel* m_explanation;
    QCalendarWidget* m_calendar;
};

} // namespace Workbench
