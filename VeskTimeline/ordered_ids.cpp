#include "ordered_ids_p.h"

#include <algorithm>
#include <limits>

namespace VeskTimeline {

void OrderedIds::assign(const QList<int>& ids)
{
    m_list = ids;
    m_set.clear();
    m_otherTickets.clear();
    m_nextTicket = 0;
    for (const int id : m_list) {
        if (m_set.insert(id))
            setTicket(id, m_nextTicket);
        ++m_nextTicket;
    }
}

bool OrderedIds::append(int id)
{
    if (!m_set.insert(id))
        return false;
    if (m_nextTicket == std::numeric_limits<quint32>::max())
        giveTickets();
    m_list.append(id);
    setTicket(id, m_nextTicket++);
    return true;
}

bool OrderedIds::remove(int id)
{
    if (!m_set.remove(id))
        return false;
    m_list.removeAt(positionOf(id));
    return true;
}

quint32 OrderedIds::ticketOf(int id) const
{
    return IdSet::isDense(id) ? m_tickets[static_cast<std::size_t>(id)] : m_otherTickets.value(id);
}

void OrderedIds::setTicket(int id, quint32 ticket)
{
    if (!IdSet::isDense(id)) {
        m_otherTickets.insert(id, ticket);
        return;
    }
    const auto place = static_cast<std::size_t>(id);
    if (place >= m_tickets.size())
        m_tickets.resize(std::max(place + 1, 2 * m_tickets.size()));
    m_tickets[place] = ticket;
}

// From the start, once the numbers have been used up.
void OrderedIds::giveTickets()
{
    m_nextTicket = 0;
    for (const int id : std::as_const(m_list))
        setTicket(id, m_nextTicket++);
}

qsizetype OrderedIds::positionOf(int id) const
{
    const quint32 ticket = ticketOf(id);
    const auto found = std::lower_bound(m_list.cbegin(), m_list.cend(), ticket,
                                        [this](int other, quint32 wanted) { return ticketOf(other) < wanted; });
    if (found != m_list.cend() && *found == id)
        return found - m_list.cbegin();
    // A list that names ids twice has tickets that do not grow throughout.
    return m_list.indexOf(id);
}

} // namespace VeskTimeline
