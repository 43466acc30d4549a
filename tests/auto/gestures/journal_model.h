#pragma once

#include "support/test_model.h"
#include "support/view_fixture.h"

#include <QStringList>

#include <functional>
#include <stdexcept>

/// What an application's model may throw.
enum class Failure { Text, CString, Standard };
Q_DECLARE_METATYPE(Failure)

[[noreturn]] inline void throwVeto(Failure failure)
{
    switch (failure) {
    case Failure::Text:
        throw QStringLiteral("veto");
    case Failure::CString:
        throw "veto";
    case Failure::Standard:
        break;
    }
    throw std::runtime_error("veto");
}

/// A model that writes down which of its virtual operations are called, and fails where it is told to. Times are noted
/// in milliseconds from the start of the fixture's range.
class JournalModel : public TestModel
{
public:
    using TestModel::TestModel;

    /// Calls that change something, in order.
    QStringList journal;
    /// Questions to the policy hooks, in order.
    mutable QStringList asked;
    std::function<bool(const VeskTimeline::Item&, qint64)> canMove;
    std::function<bool(const VeskTimeline::Item&, int, qint64)> canDrop;
    std::function<bool(const VeskTimeline::Item&, qint64, int)> canResize;

    /// Lets every call or question that begins so fail from now on.
    void failAt(const QString& call, Failure failure)
    {
        m_failingCall = call;
        m_failure = failure;
    }
    void failNoMore() { m_failingCall.clear(); }
    void forgetCalls()
    {
        journal.clear();
        asked.clear();
    }

    /// Removes a track and its row, as an application's model does.
    void removeTrackRow(int trackId)
    {
        const QModelIndex index = indexOfTrack(trackId);
        beginRemoveRows(index.parent(), index.row(), index.row());
        removeTrack(trackId);
        endRemoveRows();
    }

    void setItemStartTime(VeskTimeline::Track& track, VeskTimeline::Item& item, qint64 time) override
    {
        note(&journal, QStringLiteral("track.start(%1, %2)").arg(item.id()).arg(relative(time)));
        TestModel::setItemStartTime(track, item, time);
    }
    void setItemStartTime(VeskTimeline::Item& item, qint64 time) override
    {
        note(&journal, QStringLiteral("item.start(%1, %2)").arg(item.id()).arg(relative(time)));
        TestModel::setItemStartTime(item, time);
    }
    void setItemStartTime(int itemId, qint64 time) override
    {
        note(&journal, QStringLiteral("id.start(%1, %2)").arg(itemId).arg(relative(time)));
        TestModel::setItemStartTime(itemId, time);
    }
    void setItemDuration(VeskTimeline::Track& track, VeskTimeline::Item& item, int duration) override
    {
        note(&journal, QStringLiteral("track.duration(%1, %2)").arg(item.id()).arg(duration));
        TestModel::setItemDuration(track, item, duration);
    }
    void setItemDuration(VeskTimeline::Item& item, int duration) override
    {
        note(&journal, QStringLiteral("item.duration(%1, %2)").arg(item.id()).arg(duration));
        TestModel::setItemDuration(item, duration);
    }
    void setItemDuration(int itemId, int duration) override
    {
        note(&journal, QStringLiteral("id.duration(%1, %2)").arg(itemId).arg(duration));
        TestModel::setItemDuration(itemId, duration);
    }
    void moveItemToTrack(int itemId, int trackId, qint64 time) override
    {
        note(&journal, QStringLiteral("moveToTrack(%1, %2, %3)").arg(itemId).arg(trackId).arg(relative(time)));
        TestModel::moveItemToTrack(itemId, trackId, time);
    }
    void removeItem(int itemId) override
    {
        note(&journal, QStringLiteral("remove(%1)").arg(itemId));
        TestModel::removeItem(itemId);
    }
    void copyToClipboard(const QVector<int>& itemIds) override
    {
        note(&journal, QStringLiteral("copy(%1)").arg(joined(itemIds)));
        TestModel::copyToClipboard(itemIds);
    }
    void cutToClipboard(const QVector<int>& itemIds) override
    {
        note(&journal, QStringLiteral("cut(%1)").arg(joined(itemIds)));
        TestModel::cutToClipboard(itemIds);
    }
    void pasteFromClipboard(qint64 time) override
    {
        note(&journal, QStringLiteral("paste(%1)").arg(relative(time)));
        TestModel::pasteFromClipboard(time);
    }
    bool canMoveItem(const VeskTimeline::Item& item, qint64 start) const override
    {
        note(&asked, QStringLiteral("canMove(%1, %2)").arg(item.id()).arg(relative(start)));
        return canMove ? canMove(item, start) : TestModel::canMoveItem(item, start);
    }
    bool canDropItem(const VeskTimeline::Item& item, int trackId, qint64 start) const override
    {
        note(&asked, QStringLiteral("canDrop(%1, %2, %3)").arg(item.id()).arg(trackId).arg(relative(start)));
        return canDrop ? canDrop(item, trackId, start) : TestModel::canDropItem(item, trackId, start);
    }
    bool canResizeItem(const VeskTimeline::Item& item, qint64 start, int duration) const override
    {
        note(&asked, QStringLiteral("canResize(%1, %2, %3)").arg(item.id()).arg(relative(start)).arg(duration));
        return canResize ? canResize(item, start, duration) : TestModel::canResizeItem(item, start, duration);
    }

private:
    static qint64 relative(qint64 time) { return time - ViewFixture::origin; }
    static QString joined(const QVector<int>& ids)
    {
        QStringList texts;
        for (const int id : ids)
            texts.append(QString::number(id));
        return texts.join(QStringLiteral(", "));
    }
    void note(QStringList* list, const QString& call) const
    {
        list->append(call);
        if (!m_failingCall.isEmpty() && call.startsWith(m_failingCall))
            throwVeto(m_failure);
    }

    QString m_failingCall;
    Failure m_failure = Failure::Text;
};
