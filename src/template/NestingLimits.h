#pragma once

#include <algorithm>
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

  /// Lets scans go on as long as no more than this many characters were read in all; then they
  /// fail.
  void LimitScans(std::uint64_t& characters) { m_scanLimit = &characters; }
  bool MayScanOn() {
    Spend(1);
    return m_scanLimit == nullptr || *m_scanLimit > 0;
  }
  /// So many characters were read by a trial.
  void Spend(std::uint64_t characters) {
    if (m_scanLimit != nullptr) *m_scanLimit -= std::min(characters, *m_scanLimit);
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

/// How far the references of the value that is being put together have gone. What goes on is told
/// by objects that live as long.
class ReferenceBudget {
 public:
  /// An element's items are put together. Counting starts with the outermost element: what it names
  /// is part of its value.
  class Value {
   public:
    explicit Value(ReferenceBudget& budget) : m_budget(budget) {
      if (m_budget.m_values++ == 0) m_budget.m_references = 0;
    }
    ~Value() { --m_budget.m_values; }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;

   private:
    ReferenceBudget& m_budget;
  };

  /// A reference is followed, if it may be.
  class Reference {
   public:
    explicit Reference(ReferenceBudget& budget) : m_budget(budget), m_entered(budget.Enter()) {}
    ~Reference() {
      if (m_entered) --m_budget.m_depth;
    }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    bool MayBeFollowed() const { return m_entered; }

   private:
    ReferenceBudget& m_budget;
    bool m_entered;
  };

  /// An instance of a sub-record is put together: it counts anew, but how deep it lies counts on.
  class Instance {
   public:
    explicit Instance(ReferenceBudget& budget) : Instance(budget, budget.m_depth) {}
    Instance(ReferenceBudget& budget, int depth)
        : m_budget(budget),
          m_references(std::exchange(budget.m_references, 0)),
          m_depth(std::exchange(budget.m_depth, depth)) {}
    ~Instance() {
      m_budget.m_references = m_references;
      m_budget.m_depth = m_depth;
    }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

   private:
    ReferenceBudget& m_budget;
    std::uint32_t m_references;
    int m_depth;
  };

  /// How many references are being followed, one inside the other.
  int GetDepth() const { return m_depth; }

  /// The one of the values that this thread evaluates.
  static ReferenceBudget& OfThisThread();

 private:
  bool Enter() {
    if (m_depth >= kMaxReferenceDepth || m_references >= kMaxReferences) return false;
    ++m_depth;
    ++m_references;
    return true;
  }

  int m_depth = 0;
  int m_values = 0;
  std::uint32_t m_references = 0;
};

}  // namespace bomparser
