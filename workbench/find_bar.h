#pragma once

#include "item_search.h"

#include <QWidget>

#include <optional>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace Workbench {

class Navigation;

/// A bar that finds items by what their labels say, and, when asked to, their descriptions and attributes, as one
/// types. Next and previous go through the matches in the order of time, from the selected item or else from the start
/// of the window, and on from the other end.
///
/// Return and Shift+Return find the next and the previous item, Escape closes the bar.
class FindBar : public QWidget
{
    Q_OBJECT

public:
    /// @param navigation not owned
    explicit FindBar(Navigation* navigation, QWidget* parent = nullptr);

    QLineEdit* field() const { return m_field; }
    QCheckBox* detailsBox() const { return m_details; }
    /// "3 of 17", "No match" and the like.
    QString countText() const;
    /// That the search went on from the other end; empty when it did not.
    QString note() const;
    const ItemSearch& search() const { return m_search; }

public Q_SLOTS:
    /// Shows the bar with its text selected, and searches for it.
    void open();
    /// Hides the bar and gives the keys back to the timeline.
    void close();
    /// Go to the next or previous match; open the bar when there is nothing to look for yet.
    void findNext();
    void findPrevious();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void searchAnew();
    void find(int direction);
    void goOnFromSelection();
    void goTo(std::size_t index);
    void onFinished();
    void showCount();
    Match anchor() const;
    std::optional<std::size_t> currentIndex() const;

    Navigation* m_navigation;
    ItemSearch m_search;
    QLineEdit* m_field;
    QCheckBox* m_details;
    QLabel* m_count;
    QLabel* m_note;
    /// The match gone to last; none when nothing has been gone to since the bar was opened.
    std::optional<Match> m_current;
    /// Where what is being typed is looked for from.
    Match m_origin;
    /// What to do as soon as there are matches: 1 and -1 for next and previous, 0 for the first from the origin.
    std::optional<int> m_pending;
};

} // namespace Workbench
