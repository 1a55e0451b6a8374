#pragma once

#include <cstdint>
#include <utility>

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

/// Output elements can name each other in long chains, and in so many ways that a value would never
/// end. A reference to another element or record adds nothing when it lies behind this many others,
/// or comes after so many within one value (each instance of a sub-record counts anew).
constexpr int kMaxReferenceDepth = 200;
constexpr std::uint32_t kMaxReferences = 10'000;

/// How far the references of the value that is being put together have gone.
class ReferenceBudget {
 public:
  /// False when the reference must not be followed.
  bool Enter() {
    if (m_depth == 0) m_references = 0;
    if (m_depth >= kMaxReferenceDepth || m_references >= kMaxReferences) return false;
    ++m_depth;
    ++m_references;
    return true;
  }
  void Leave() { --m_depth; }
  /// Starts to count anew, for an instance of a sub-record; what is returned goes to EndInstance.
  std::uint32_t BeginInstance() { return std::exchange(m_references, 0); }
  void EndInstance(std::uint32_t references) { m_references = references; }
  /// The one of the values that this thread evaluates for blocks.
  static ReferenceBudget& OfThisThread();

 private:
  int m_depth = 0;
  std::uint32_t m_references = 0;
};

}  // namespace bomparser
