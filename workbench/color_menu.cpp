#include "color_menu.h"

#include <VeskTimelineKit/standard_timeline_model.h>

#include <QColorDialog>
#include <QPainter>
#include <QPixmap>

namespace Workbench {

using VeskTimeline::Kit::StandardTimelineModel;

namespace {

constexpr int paletteSize = 12;
constexpr int swatchSize = 16;

} // namespace

ColorMenu::ColorMenu(const QString& title, const QString& noneText, QWidget* parent) : QMenu(title, parent)
{
    const QString names[paletteSize] = {tr("Blue"),  tr("Orange"), tr("Green"),  tr("Red"),
                                        tr("Teal"),  tr("Yellow"), tr("Purple"), tr("Pink"),
                                        tr("Brown"), tr("Olive"),  tr("Indigo"), tr("Grey")};
    for (int i = 0; i < paletteSize; ++i) {
        const QColor color = StandardTimelineModel::trackColor(i);
        connect(addAction(swatch(color), names[i]), &QAction::triggered, this,
                [this, color] { Q_EMIT colorChosen(color); });
    }
    addSeparator();
    connect(addAction(tr("&Other…")), &QAction::triggered, this, &ColorMenu::askForColor);
    connect(addAction(noneText), &QAction::triggered, this, [this] { Q_EMIT colorChosen(QColor()); });
}

QIcon ColorMenu::swatch(const QColor& color)
{
    QPixmap pixmap(swatchSize, swatchSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setPen(Qt::gray);
    painter.setBrush(color.isValid() ? QBrush(color) : QBrush(Qt::gray, Qt::BDiagPattern));
    painter.drawRect(0, 0, swatchSize - 1, swatchSize - 1);
    return pixmap;
}

void ColorMenu::askForColor()
{
    auto* const dialog = new QColorDialog(m_current.isValid() ? m_current : QColor(Qt::white), parentWidget());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QColorDialog::colorSelected, this, &ColorMenu::colorChosen);
    dialog->open();
}

} // namespace Workbench
