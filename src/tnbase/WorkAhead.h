#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace bomparser {

/// Threads that make the items of a sequence ahead of one consumer, who takes them in order. The
/// consumer shares the work: an item that nobody has begun is his, as it would be without threads,
/// and while one that he needs is being made he makes a later one.
template <class Item>
class WorkAhead {
 public:
  /// Makes the item at `index`. False leaves it to the consumer, and so does std::bad_alloc;
  /// nothing else may be thrown. Workers are numbered; the consumer has the last number.
  using Make = std::function<bool(std::size_t worker, std::size_t index, Item& item)>;
  /// Asked by the consumer's thread now and then while it waits: true ends the waiting.
  using IsCalledOff = std::function<bool()>;

  /// Starts so many threads, or fewer where the system gives no more. They are never more than
  /// `window` items ahead.
  WorkAhead(std::size_t workers, std::size_t count, std::size_t window, Make make,
            IsCalledOff isCalledOff = {})
      : m_make(std::move(make)),
        m_isCalledOff(std::move(isCalledOff)),
        m_count(count),
        m_slots(window) {
    m_threads.reserve(workers);
    try {
      for (std::size_t i = 0; i < workers; ++i)
        m_threads.emplace_back([this, i] { Work(i); });
    } catch (const std::system_error&) {
      // Those that there are do it.
    } catch (const std::bad_alloc&) {
    }
  }
  ~WorkAhead() {
    {
      const std::lock_guard lock(m_mutex);
      m_next = m_count;
      m_ended = true;
    }
    m_mayBegin.notify_all();
    for (std::thread& thread : m_threads)
      thread.join();
  }
  WorkAhead(const WorkAhead&) = delete;
  WorkAhead& operator=(const WorkAhead&) = delete;

  /// The item at `index`, which is above that of the call before; that item ends. Null when it is
  /// the consumer's to make, and when the work is called off. May take as long as making an item.
  Item* Take(std::size_t index) {
    std::unique_lock lock(m_mutex);
    m_taken = index;
    const bool begun = index < m_next;
    if (!begun) m_next = index + 1;
    // Threads that had to wait begin again when there is enough to do: waking one takes long.
    if (m_next <= m_taken + (m_slots.size() + 1) / 2) m_mayBegin.notify_all();
    if (!begun) return nullptr;
    Slot& slot = SlotOf(index);
    while (slot.state == State::Busy) {
      if (m_isCalledOff && m_isCalledOff()) return nullptr;
      if (MayBeginNext()) {
        MakeNext(m_threads.size(), lock);
      } else {
        m_isMade.wait_for(lock, kPatience);
      }
    }
    return slot.state == State::Made ? &slot.item : nullptr;
  }

 private:
  enum class State { Empty, Busy, Made, Left };
  static constexpr std::chrono::milliseconds kPatience{20};
  struct Slot {
    State state = State::Empty;
    Item item{};
  };

  Slot& SlotOf(std::size_t index) { return m_slots[index % m_slots.size()]; }
  bool MayBeginNext() {
    // The consumer may still use the item that he took last.
    return m_next < m_count && m_next < m_taken + m_slots.size() &&
           SlotOf(m_next).state != State::Busy;
  }

  void Work(std::size_t worker) {
    std::unique_lock lock(m_mutex);
    for (;;) {
      m_mayBegin.wait(lock, [this] { return m_ended || MayBeginNext(); });
      if (m_ended) return;
      MakeNext(worker, lock);
    }
  }

  void MakeNext(std::size_t worker, std::unique_lock<std::mutex>& lock) {
    const std::size_t index = m_next++;
    Slot& slot = SlotOf(index);
    slot.state = State::Busy;
    lock.unlock();
    bool made = false;
    try {
      made = m_make(worker, index, slot.item);
    } catch (const std::bad_alloc&) {
      // The consumer will see whether it is enough for him.
    }
    lock.lock();
    slot.state = made ? State::Made : State::Left;
    m_isMade.notify_one();
  }

  const Make m_make;
  const IsCalledOff m_isCalledOff;
  const std::size_t m_count;
  std::mutex m_mutex;
  std::condition_variable m_mayBegin;  // Workers wait for it,
  std::condition_variable m_isMade;    // and the consumer for this.
  std::vector<Slot> m_slots;
  std::size_t m_next = 0;   // The first item that nobody has begun.
  std::size_t m_taken = 0;  // The item that the consumer took last.
  bool m_ended = false;
  std::vector<std::thread> m_threads;
};

}  // namespace bomparser
