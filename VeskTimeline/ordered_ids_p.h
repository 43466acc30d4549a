#pragma once

// Internal to the library; not installed.

#include "id_set_p.h"

#include <QHash>

namespace VeskTimeline {

/// A list of ids, each once, in the order in which they came, in which no id has to be searched.
///
/// Beside the list stand the set of its ids and, for each id, a ticket: a number that grows along the list. The place
/// of an id is found by halving the list, comparing tickets. Removing one from a million moves the ids behind it up and
/// leaves all tickets as they are. The tickets of ids that are not in the list are left over and mean nothing.
class OrderedIds
{
public:
    const QList<int>& list() const { return m_list; }
    bool contains(int id) const { return m_set.contains(id); }

    /// Replaces the list as it is, also where it names an id twice.
    void assign(const QList<int>& ids);
    void clear() { assign({}); }
    /// False for an id that is in the list already.
    bool append(int id);
    /// False for an id that is not in the list.
    bool remove(int id);

private:
    quint32 ticketOf(int id) const;
    void setTicket(int id, quint32 ticket);
    void giveTickets();
    qsizetype positionOf(int id) const;

    QList<int> m_list;
    IdSet m_set;
    std::vector<quint32> m_tickets;
    QHash<int, quint32> m_otherTickets;
    quint32 m_nextTicket = 0;
};

} // namespace VeskTimeline
