#pragma once

#include <QLabel>

namespace Workbench {

/// A line of plain text that gives way: where there is no room for all of it, its end is left out and shown as a tool
/// tip instead.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    /// Line breaks are shown as blanks.
    void showText(const QString& text);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isCut() const;
};

} // namespace Workbench
