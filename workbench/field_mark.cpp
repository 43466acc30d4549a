#include "field_mark.h"

#include <QLineEdit>
#include <QPalette>

namespace Workbench {

void setMarkedBad(QLineEdit* field, bool isBad)
{
    if (!isBad) {
        field->setPalette(QPalette());
        return;
    }
    QPalette palette = field->parentWidget() ? field->parentWidget()->palette() : QPalette();
    const bool isDark = palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
    palette.setColor(QPalette::Base, isDark ? QColor(0x6b, 0x22, 0x22) : QColor(0xff, 0xd5, 0xd5));
    field->setPalette(palette);
}

} // namespace Workbench
