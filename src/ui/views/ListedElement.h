#pragma once

#include <algorithm>
#include <cstddef>

namespace bomparser {

/// The element, if the array still owns it, and null otherwise: nothing is read of it before that
/// is known. It is looked for at its last known position first.
template <class Array, class Element>
Element* FindListed(const Array& array, Element* element, std::size_t position) {
  if (position < array.size() && array[position].get() == element) return element;
  const bool listed = std::any_of(array.begin(), array.end(),
                                  [element](const auto& entry) { return entry.get() == element; });
  return listed ? element : nullptr;
}

}  // namespace bomparser
