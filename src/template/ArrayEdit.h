#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace bomparser {

/// An edit of some elements of an array that owns them, all at once, which can be undone as long as
/// nobody else has changed the array. The elements chosen keep their order, and so do the others.
/// Only making one takes memory.
template <class Element>
class ArrayEdit {
 public:
  using Array = std::vector<std::unique_ptr<Element>>;
  using Chosen = std::unordered_set<const Element*>;

  ArrayEdit(Array& array, const std::vector<const Element*>& chosen)
      : m_array(array), m_chosen(chosen.begin(), chosen.end()) {
    m_places.reserve(array.size());
    for (const auto& element : array)
      m_places.emplace(element.get(), m_places.size());
    m_taken.reserve(m_chosen.size());
  }

  /// True when something was chosen, all of which is in the array.
  bool IsPossible() const {
    return !m_chosen.empty() &&
           std::all_of(m_chosen.begin(), m_chosen.end(),
                       [this](const Element* element) { return m_places.contains(element); });
  }
  /// Puts the chosen elements before another one, or at the end when that is not in the array. If
  /// it is chosen itself, the rest go before it.
  void MoveBefore(const Element* before) {
    const auto moves = [=, this](const auto& element) {
      return element.get() != before && m_chosen.contains(element.get());
    };
    const auto found = m_places.find(before);
    const std::size_t place = found != m_places.end() ? found->second : m_array.size();
    const auto middle = m_array.begin() + static_cast<std::ptrdiff_t>(place);
    std::stable_partition(m_array.begin(), middle, std::not_fn(moves));
    std::stable_partition(middle, m_array.end(), moves);
  }
  /// Takes the chosen elements out. They live as long as the edit, or with who takes them over.
  void TakeOut() {
    const auto stays = [this](const auto& element) { return !m_chosen.contains(element.get()); };
    const auto gone = std::stable_partition(m_array.begin(), m_array.end(), stays);
    std::move(gone, m_array.end(), std::back_inserter(m_taken));
    m_array.erase(gone, m_array.end());
  }
  /// Everything is where it was.
  void Undo() {
    // Into the room that they left.
    std::move(m_taken.begin(), m_taken.end(), std::back_inserter(m_array));
    m_taken.clear();
    std::sort(m_array.begin(), m_array.end(), [this](const auto& one, const auto& other) {
      return m_places.at(one.get()) < m_places.at(other.get());
    });
  }

  const Chosen& GetChosen() const { return m_chosen; }
  Array& GetTaken() { return m_taken; }

 private:
  Array& m_array;
  const Chosen m_chosen;
  std::unordered_map<const Element*, std::size_t> m_places;  // Of all elements, before the edit.
  Array m_taken;
};

}  // namespace bomparser
