#pragma once

#include <unordered_map>
#include <vector>

namespace bomparser {

/// Things lead to each other, in circles and by many ways, and some of them to a goal. Tells which
/// of them reach a goal. Ways may be added at any time, none is ever taken away; each costs its own
/// time only, however many things are asked about.
///
/// Whoever uses it says where a thing leads to: every thing comes once from Next, and is followed
/// by Lead and ReachGoal. Things are not owned and must outlive this object.
template <class Thing>
class Reachability {
 public:
  /// A thing that is known. Stays where it is.
  struct Place {
    const Thing* thing = nullptr;
    bool reachesGoal = false;
    std::vector<Place*> comingFrom;  // Empty once a goal is reached: all of them were told.
  };

  /// The place of a thing; one that is new comes from Next.
  Place& At(const Thing& thing) {
    const auto [at, isNew] = m_places.try_emplace(&thing);
    Place& place = at->second;
    if (isNew) {
      place.thing = &thing;
      m_pending.push_back(&place);
    }
    return place;
  }
  /// A thing that is known comes from Next again: it leads to more than it did.
  void LookAgain(const Thing& thing) {
    const auto at = m_places.find(&thing);
    if (at != m_places.end() && !at->second.reachesGoal) m_pending.push_back(&at->second);
  }
  /// The next place of which nobody has said where it leads to; null when there is none.
  Place* Next() {
    if (m_pending.empty()) return nullptr;
    Place* const place = m_pending.back();
    m_pending.pop_back();
    return place;
  }

  void Lead(Place& from, Place& to) {
    if (to.reachesGoal) {
      ReachGoal(from);
    } else if (!from.reachesGoal) {
      to.comingFrom.push_back(&from);
    }
  }
  void ReachGoal(Place& place) {
    std::vector<Place*> told{&place};
    while (!told.empty()) {
      Place& next = *told.back();
      told.pop_back();
      if (next.reachesGoal) continue;
      next.reachesGoal = true;
      told.insert(told.end(), next.comingFrom.begin(), next.comingFrom.end());
      next.comingFrom = {};
    }
  }

 private:
  std::unordered_map<const Thing*, Place> m_places;
  std::vector<Place*> m_pending;
};

}  // namespace bomparser
