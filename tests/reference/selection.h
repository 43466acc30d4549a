#pragma once

#include <QList>

/// Plain reference for a view's selection: one list, searched for every id. Each call answers whether the change is
/// announced.
namespace Reference {

struct Selection
{
    QList<int> ids;

    bool clear()
    {
        ids.clear();
        return true;
    }
    bool select(int id, bool isCleared)
    {
        if (isCleared)
            ids.clear();
        else if (ids.contains(id))
            return false;
        ids.append(id);
        return true;
    }
    bool selectMany(const QList<int>& added, bool isCleared)
    {
        if (isCleared)
            ids.clear();
        for (const int id : added) {
            if (!ids.contains(id))
                ids.append(id);
        }
        return true;
    }
    bool unselect(int id) { return ids.removeOne(id); }
};

} // namespace Reference
