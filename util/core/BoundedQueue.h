#pragma once
// A bounded multi-producer / multi-consumer queue for handing work between
// threads. A full queue never blocks the producer: tryPush() refuses and the
// refusal is counted, so a slow consumer costs dropped items, not memory.
//
// Thread contract: every member may be called from any thread.

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

namespace mirabend {

template <typename T>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity) : m_capacity(capacity ? capacity : 1) {}

    // Adds an item unless the queue is full or closed. Returns false (and
    // counts a drop) when the item was refused.
    bool tryPush(T item)
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_closed || m_items.size() >= m_capacity) {
                ++m_dropped;
                return false;
            }
            m_items.push_back(std::move(item));
        }
        m_ready.notify_one();
        return true;
    }

    // Waits for an item. Returns nothing once the queue is closed and empty.
    std::optional<T> pop()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ready.wait(lock, [this] { return m_closed || !m_items.empty(); });
        return takeLocked();
    }

    // Waits at most `timeout` for an item.
    template <typename Duration>
    std::optional<T> popFor(Duration timeout)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ready.wait_for(lock, timeout, [this] { return m_closed || !m_items.empty(); });
        return takeLocked();
    }

    // Refuses further pushes and wakes every waiting consumer; items already
    // queued can still be popped.
    void close()
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_closed = true;
        }
        m_ready.notify_all();
    }

    std::size_t size() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_items.size();
    }
    std::size_t capacity() const { return m_capacity; }
    std::uint64_t dropped() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_dropped;
    }

private:
    std::optional<T> takeLocked()
    {
        if (m_items.empty())
            return std::nullopt;
        T item = std::move(m_items.front());
        m_items.pop_front();
        return item;
    }

    const std::size_t m_capacity;
    mutable std::mutex m_mutex;
    std::condition_variable m_ready;
    std::deque<T> m_items;
    std::uint64_t m_dropped = 0;
    bool m_closed = false;
};

} // namespace mirabend
