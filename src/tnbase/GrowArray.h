#pragma once

#include "tnbase/Reallocate.h"

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <type_traits>
#include <utility>

namespace bomparser {

/// A growing array of plain values for many millions of them: it grows by half through Reallocate,
/// which on Linux moves the pages of a large array instead of copying them, and it can be filled in
/// place (MakeRoom, Advance) without a value being set twice. Pointers into it end with the next
/// growth.
template <class T>
class GrowArray {
  static_assert(std::is_trivially_copyable_v<T>, "values are moved as bytes");
  static_assert(alignof(T) <= alignof(std::max_align_t),
                "Reallocate gives the usual alignment only");

 public:
  GrowArray() = default;
  GrowArray(const GrowArray&) = delete;
  GrowArray& operator=(const GrowArray&) = delete;
  GrowArray(GrowArray&& other) noexcept { Swap(other); }
  GrowArray& operator=(GrowArray&& other) noexcept {
    GrowArray taken(std::move(other));
    Swap(taken);
    return *this;
  }
  ~GrowArray() { Reallocate(m_data, 0); }

  /// The first value; null as long as nothing was reserved.
  T* Data() { return m_data; }
  const T* Data() const { return m_data; }

  std::size_t Size() const { return m_size; }
  std::size_t Capacity() const { return m_capacity; }

  T& operator[](std::size_t index) {
    assert(index < m_size);
    return m_data[index];
  }
  const T& operator[](std::size_t index) const {
    assert(index < m_size);
    return m_data[index];
  }

  T* begin() { return m_data; }
  T* end() { return m_data + m_size; }
  const T* begin() const { return m_data; }
  const T* end() const { return m_data + m_size; }

  /// Forgets the values from `size` on; the memory stays. `size` is at most Size().
  void Cut(std::size_t size) {
    assert(size <= m_size);
    m_size = size;
  }

  /// Makes room for `capacity` values in all, exactly. Throws std::bad_alloc when there is no
  /// memory; the values stay.
  void Reserve(std::size_t capacity) {
    if (capacity > m_capacity) {
      SetCapacity(capacity);
    }
  }

  /// Gives the memory beyond the last value back.
  void ShrinkToFit() {
    if (m_size < m_capacity) {
      SetCapacity(m_size);
    }
  }

  /// Where the next `count` values go. They belong to the array once Advance counts them; until
  /// then their contents are undefined. Throws std::bad_alloc when there is no memory; the values
  /// stay.
  T* MakeRoom(std::size_t count) {
    if (count > m_capacity - m_size) {
      Grow(count);
    }
    return m_data + m_size;
  }

  /// Counts `count` values that were written to the room of the last MakeRoom.
  void Advance(std::size_t count) {
    assert(count <= m_capacity - m_size);
    m_size += count;
  }

  /// Adds a copy of `value`, which may be a value of this array.
  void Push(const T& value) {
    const T copy = value;
    ::new (static_cast<void*>(MakeRoom(1))) T(copy);
    ++m_size;
  }

  void Swap(GrowArray& other) noexcept {
    std::swap(m_data, other.m_data);
    std::swap(m_size, other.m_size);
    std::swap(m_capacity, other.m_capacity);
  }

 private:
  static constexpr std::size_t kFirstCapacity = 16;
  static constexpr std::size_t kMaxCapacity =
      static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(T);

  void Grow(std::size_t count) {
    if (count > kMaxCapacity - m_size) {
      throw std::bad_alloc();
    }
    const std::size_t needed = m_size + count;
    const std::size_t byHalf =
        m_capacity < kMaxCapacity / 3 * 2 ? m_capacity + m_capacity / 2 : kMaxCapacity;
    std::size_t capacity = needed > byHalf ? needed : byHalf;
    if (capacity < kFirstCapacity) {
      capacity = kFirstCapacity;
    }
    SetCapacity(capacity);
  }

  void SetCapacity(std::size_t capacity) {
    if (capacity > kMaxCapacity) {
      throw std::bad_alloc();
    }
    void* const data = Reallocate(m_data, capacity * sizeof(T));
    if (data == nullptr && capacity > 0) {
      throw std::bad_alloc();
    }
    m_data = static_cast<T*>(data);
    m_capacity = capacity;
  }

  T* m_data = nullptr;
  std::size_t m_size = 0;
  std::size_t m_capacity = 0;
};

}  // namespace bomparser
