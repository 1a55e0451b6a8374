#pragma once

#include <cstdint>

namespace bomparser {

// Where templates that go in circles, or that match without end, stop. All such choices stand here.

/// A SUBRECORD field inside this many sub-records fails: records that contain each other end here.
constexpr int kMaxNestedRecords = 200;

/// Records that contain each other can try the same text over and over, each level anew. Attempts
/// at sub-records inside more than kDeepNesting others are counted, and beyond kMaxDeepAttempts
/// they fail until a record of the list is tried again.
constexpr int kDeepNesting = 20;
constexpr std::uint32_t kMaxDeepAttempts = 100'000;

/// How deep one match has gone into sub-records, and what it has spent there.
struct NestingState {
  int depth = 0;
  std::uint32_t deepAttempts = 0;

  /// False when the sub-record must not be tried.
  bool Enter() {
    if (depth >= kMaxNestedRecords) return false;
    if (depth > kDeepNesting && ++deepAttempts > kMaxDeepAttempts) return false;
    ++depth;
    return true;
  }
  void Leave() { --depth; }
};

/// True when a repeatable field must not be tried again: an instance that took no character is
/// counted, and it is the last.
constexpr bool EndsRepetition(std::uint32_t before, std::uint32_t after) { return before == after; }

/// Marks an object as being visited while the guard lives. For questions that follow references
/// from element to element or record to record: whoever finds the mark set has come in a circle.
class CircleGuard {
 public:
  explicit CircleGuard(bool& mark) : m_mark(mark), m_entered(!mark) { m_mark = true; }
  ~CircleGuard() {
    if (m_entered) m_mark = false;
  }
  CircleGuard(const CircleGuard&) = delete;
  CircleGuard& operator=(const CircleGuard&) = delete;
  bool IsCircle() const { return !m_entered; }

 private:
  bool& m_mark;
  bool m_entered;
};

}  // namespace bomparser
