#pragma once

#include <cstdint>

namespace bomparser {

class CTNTemplateRecord;

// Where templates that go in circles, or that match without end, stop. All such choices stand here.

/// A SUBRECORD field inside this many sub-records fails: records that contain each other end here.
constexpr int kMaxNestedRecords = 200;

/// Some records can try the same text over and over, each level anew: those that contain
/// themselves, and those that hold more than kMaxEmptyInstances sub-records even if each of their
/// fields matches once. Of these entangled records, attempts at sub-records are counted; beyond
/// kMaxEntangledAttempts they fail until a record of the list is tried again.
constexpr std::uint32_t kMaxEmptyInstances = 10'000;
constexpr std::uint32_t kMaxEntangledAttempts = 10'000;

/// How deep one match has gone into sub-records, and what it has spent there.
class NestingState {
 public:
  enum class Kind { Unknown, Plain, Entangled };

  /// Of a match that starts with a record whose kind is known,
  explicit NestingState(Kind kind) : m_kind(kind) {}
  /// or is found out when it matters. The record may be null; it must outlive the state.
  explicit NestingState(const CTNTemplateRecord* start) : m_start(start) {}

  /// False when the sub-record must not be tried.
  bool Enter() {
    if (m_depth >= kMaxNestedRecords) return false;
    if (++m_attempts > kMaxEntangledAttempts && IsEntangled()) return false;
    ++m_depth;
    return true;
  }
  void Leave() { --m_depth; }

  /// Lets scans read no more than this many characters in all, and fail then.
  void LimitScans(std::uint64_t& characters) { m_scanLimit = &characters; }
  bool MayScanOn() {
    if (m_scanLimit == nullptr) return true;
    if (*m_scanLimit == 0) return false;
    --*m_scanLimit;
    return true;
  }

 private:
  bool IsEntangled();

  const CTNTemplateRecord* m_start = nullptr;
  Kind m_kind = Kind::Unknown;
  int m_depth = 0;
  std::uint64_t m_attempts = 0;
  std::uint64_t* m_scanLimit = nullptr;
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
