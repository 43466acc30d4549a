#pragma once

#include <QComboBox>

namespace Workbench {

/// A list of tracks that moves items to the one that is chosen. Nothing is chosen in passing: neither by the wheel, nor
/// by a key before the list is open.
class TrackBox : public QComboBox
{
    Q_OBJECT

public:
    explicit TrackBox(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

} // namespace Workbench
