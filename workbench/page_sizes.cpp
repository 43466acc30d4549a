#include "page_sizes.h"

#include <QList>
#include <QPageSize>

#include <algorithm>

namespace Workbench {

namespace {

const QList<QPageSize::PageSizeId>& pageSizes()
{
    static const QList<QPageSize::PageSizeId> sizes{QPageSize::A5,     QPageSize::A4,    QPageSize::A3,
                                                    QPageSize::A2,     QPageSize::A1,    QPageSize::A0,
                                                    QPageSize::Letter, QPageSize::Legal, QPageSize::Tabloid};
    return sizes;
}

} // namespace

QStringList pageSizeNames()
{
    QStringList names;
    for (const QPageSize::PageSizeId id : pageSizes())
        names.append(QPageSize::key(id));
    return names;
}

bool setPage(QPageLayout& layout, const QString& name)
{
    const auto found = std::find_if(pageSizes().begin(), pageSizes().end(), [&name](QPageSize::PageSizeId id) {
        return QPageSize::key(id).compare(name, Qt::CaseInsensitive) == 0;
    });
    if (found == pageSizes().end())
        return false;
    const QMarginsF margins = layout.margins();
    layout.setPageSize(QPageSize(*found));
    layout.setMargins(margins);
    return true;
}

} // namespace Workbench
