#pragma once

#include <QPageLayout>
#include <QString>
#include <QStringList>

namespace Workbench {

/// The sizes of pages that can be chosen by name.
QStringList pageSizeNames();

/// Sets the size of that name, letter case aside; margins and orientation stay. @return whether there is such a size
bool setPage(QPageLayout& layout, const QString& name);

} // namespace Workbench
