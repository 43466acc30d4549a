#include <VeskTimeline/timeline_view_drag_handler.h>
#include <VeskTimeline/timeline_view_resize_handler.h>
#include <VeskTimeline/timeline_view_selection_handler.h>

#include <QTest>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

using namespace VeskTimeline;

namespace {

/// The slot of a virtual operation in its class's table, counted from 0; the destructor has two. As the Itanium C++ ABI
/// encodes a pointer to member: the offset in the table, marked as virtual by a 1 in its first word, or on ARM in its
/// second.
template <typename Operation>
std::ptrdiff_t slotOf(Operation operation)
{
    static_assert(std::is_member_function_pointer_v<Operation>);
    std::ptrdiff_t words[2] = {};
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
#if defined(__aarch64__) || defined(__arm__)
    const bool isVirtual = (words[1] & 1) != 0;
    const std::ptrdiff_t offset = words[0];
#else
    const bool isVirtual = (words[0] & 1) != 0;
    const std::ptrdiff_t offset = words[0] - 1;
#endif
    return isVirtual ? offset / static_cast<std::ptrdiff_t>(sizeof(void*)) : -1;
}

template <typename... Operations>
std::vector<std::ptrdiff_t> slotsOf(Operations... operations)
{
    return {slotOf(operations)...};
}

/// The slots after the destructor's two, without gap.
std::vector<std::ptrdiff_t> afterDestructor(std::ptrdiff_t count)
{
    std::vector<std::ptrdiff_t> expected;
    for (std::ptrdiff_t i = 0; i < count; ++i)
        expected.push_back(2 + i);
    return expected;
}

struct DragAccess : TimelineViewDragHandler
{
    using TimelineViewDragHandler::canDragItemsTo;
    using TimelineViewDragHandler::canMoveItemsTo;
    using TimelineViewDragHandler::clear;
    using TimelineViewDragHandler::dragItemTrackId;
    using TimelineViewDragHandler::m_dragItemIds;
    using TimelineViewDragHandler::m_dragPos;
    using TimelineViewDragHandler::m_dragStartIndex;
    using TimelineViewDragHandler::m_dragStartPos;
    using TimelineViewDragHandler::m_dragStartTime;
    using TimelineViewDragHandler::m_snapLinePos;
    using TimelineViewDragHandler::m_view;
    using TimelineViewDragHandler::moveItemsLeft;
    using TimelineViewDragHandler::moveItemsRight;
    using TimelineViewDragHandler::TimelineViewDragHandler;
};

struct ResizeAccess : TimelineViewResizeHandler
{
    using TimelineViewResizeHandler::m_currentItemId;
    using TimelineViewResizeHandler::m_currentTrackId;
    using TimelineViewResizeHandler::m_resizePos;
    using TimelineViewResizeHandler::m_view;
    using TimelineViewResizeHandler::TimelineViewResizeHandler;
};

struct SelectAccess : TimelineViewSelectHandler
{
    using TimelineViewSelectHandler::getItemsWithinRubberBand;
    using TimelineViewSelectHandler::m_isRubberBandActive;
    using TimelineViewSelectHandler::m_rubberBand;
    using TimelineViewSelectHandler::m_selectedItemId;
    using TimelineViewSelectHandler::m_view;
    using TimelineViewSelectHandler::TimelineViewSelectHandler;
};

/// Where members lie in their object, the table pointer being at 0.
template <typename Object, typename... Members>
std::vector<std::ptrdiff_t> offsetsIn(const Object& object, const Members&... members)
{
    const auto* const begin = reinterpret_cast<const char*>(&object);
    return {reinterpret_cast<const char*>(&members) - begin...};
}

} // namespace

class TestHandlerSlots : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyHandlerIsAPolymorphicRoot();
    void dragHandlerSlots();
    void resizeHandlerSlots();
    void selectHandlerSlots();
    void accessorsTakeNoSlot();
    void dragHandlerMembersAreInOrder();
    void resizeHandlerMembersAreInOrder();
    void selectHandlerMembersAreInOrder();
    void resizePositionsHaveTheirValues();
};

void TestHandlerSlots::everyHandlerIsAPolymorphicRoot()
{
    QVERIFY(std::has_virtual_destructor_v<TimelineViewDragHandler>);
    QVERIFY(std::has_virtual_destructor_v<TimelineViewResizeHandler>);
    QVERIFY(std::has_virtual_destructor_v<TimelineViewSelectHandler>);
    // Nothing of a base lies before the view pointer, which follows the table pointer.
    const DragAccess drag(nullptr);
    const ResizeAccess resize(nullptr);
    const SelectAccess select(nullptr);
    const std::vector<std::ptrdiff_t> behindTable{static_cast<std::ptrdiff_t>(sizeof(void*))};
    QCOMPARE(offsetsIn(drag, drag.m_view), behindTable);
    QCOMPARE(offsetsIn(resize, resize.m_view), behindTable);
    QCOMPARE(offsetsIn(select, select.m_view), behindTable);
}

void TestHandlerSlots::dragHandlerSlots()
{
    using Handler = TimelineViewDragHandler;
    QCOMPARE(slotsOf(&Handler::dragEnterEvent, &Handler::dragMoveEvent, &Handler::dragLeaveEvent, &Handler::dropEvent,
                     &Handler::mouseMoveEvent, &Handler::mousePressEvent, &Handler::mouseReleaseEvent,
                     &Handler::keyPressEvent, &Handler::isActive, &Handler::deltaX, &Handler::deltaY,
                     &Handler::deltaTime, &DragAccess::canDragItemsTo, &DragAccess::canMoveItemsTo,
                     &DragAccess::moveItemsLeft, &DragAccess::moveItemsRight),
             afterDestructor(16));
}

void TestHandlerSlots::resizeHandlerSlots()
{
    using Handler = TimelineViewResizeHandler;
    QCOMPARE(slotsOf(&Handler::mouseMoveEvent, &Handler::mousePressEvent, &Handler::mouseReleaseEvent,
                     &Handler::isActive, &Handler::localSnapTime, &Handler::globalSnapTime),
             afterDestructor(6));
}

void TestHandlerSlots::selectHandlerSlots()
{
    using Handler = TimelineViewSelectHandler;
    QCOMPARE(slotsOf(&Handler::mouseDoubleClickEvent, &Handler::mouseMoveEvent, &Handler::mousePressEvent,
                     &Handler::mouseReleaseEvent, &Handler::keyPressEvent, &Handler::isActive,
                     &Handler::isRubberBandActive, &SelectAccess::getItemsWithinRubberBand),
             afterDestructor(8));
}

void TestHandlerSlots::accessorsTakeNoSlot()
{
    using Handler = TimelineViewDragHandler;
    QCOMPARE(slotsOf(&Handler::dragItemIds, &Handler::dragStartIndex, &Handler::dragStartTime, &Handler::dragStartPos,
                     &Handler::dragPos, &DragAccess::dragItemTrackId, &DragAccess::clear,
                     &TimelineViewSelectHandler::rubberBand),
             std::vector<std::ptrdiff_t>(8, -1));
}

void TestHandlerSlots::dragHandlerMembersAreInOrder()
{
    const DragAccess handler(nullptr);
    const std::vector<std::ptrdiff_t> offsets =
        offsetsIn(handler, handler.m_view, handler.m_dragItemIds, handler.m_dragStartIndex, handler.m_dragStartTime,
                  handler.m_dragStartPos, handler.m_dragPos, handler.m_snapLinePos);
    QVERIFY(std::is_sorted(offsets.begin(), offsets.end()));
}

void TestHandlerSlots::resizeHandlerMembersAreInOrder()
{
    const ResizeAccess handler(nullptr);
    const std::vector<std::ptrdiff_t> offsets =
        offsetsIn(handler, handler.m_view, handler.m_currentTrackId, handler.m_currentItemId, handler.m_resizePos);
    QVERIFY(std::is_sorted(offsets.begin(), offsets.end()));
    QCOMPARE(handler.m_currentTrackId, -1);
    QCOMPARE(handler.m_currentItemId, -1);
    QCOMPARE(handler.m_resizePos, TimelineViewResizeHandler::eNone);
}

void TestHandlerSlots::selectHandlerMembersAreInOrder()
{
    const SelectAccess handler(nullptr);
    const std::vector<std::ptrdiff_t> offsets = offsetsIn(handler, handler.m_view, handler.m_selectedItemId,
                                                          handler.m_rubberBand, handler.m_isRubberBandActive);
    QVERIFY(std::is_sorted(offsets.begin(), offsets.end()));
    QCOMPARE(handler.m_selectedItemId, -1);
    QVERIFY(handler.m_rubberBand.isNull());
    QVERIFY(!handler.m_isRubberBandActive);
}

void TestHandlerSlots::resizePositionsHaveTheirValues()
{
    QCOMPARE(static_cast<int>(TimelineViewResizeHandler::eNone), 0);
    QCOMPARE(static_cast<int>(TimelineViewResizeHandler::eStart), 1);
    QCOMPARE(static_cast<int>(TimelineViewResizeHandler::eEnd), 2);
}

QTEST_GUILESS_MAIN(TestHandlerSlots)
#include "tst_handler_slots.moc"
