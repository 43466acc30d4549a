#pragma once

// Internal to the kit; not installed.

#include <QThreadPool>

#include <memory>

namespace VeskTimeline::Kit {

/// From how many items on their destruction would be noticed where it happens.
constexpr std::size_t manyItems = 20'000;

/// Destroys a value on a thread of the global pool.
template <typename Value>
void disposeInBackground(Value&& value)
{
    auto shared = std::make_shared<std::decay_t<Value>>(std::forward<Value>(value));
    QThreadPool::globalInstance()->start([shared = std::move(shared)]() mutable { shared.reset(); });
}

} // namespace VeskTimeline::Kit
