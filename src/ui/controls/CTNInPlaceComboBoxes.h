#pragma once

#include "ui/controls/CTNInPlaceEditor.h"
#include "ui/controls/CTNTemplateComboBoxes.h"
#include "ui/controls/Ids.h"

#include <QPersistentModelIndex>
#include <utility>

namespace bomparser {

/// A plain combo box over a cell. Left without a choice it reports the current value's entry, and
/// nothing where the value has none.
template <class Plain>
class CTNInPlaceComboBox : public Plain, public CTNInPlaceEditor {
 public:
  /// For the cell, filled with what `values` say; see the plain box.
  template <class... Values>
  explicit CTNInPlaceComboBox(QWidget* parent, const QModelIndex& cell, Values&&... values)
      : Plain(parent, std::forward<Values>(values)...), m_cell(cell) {
    SetControlId(*this, Ctrl::InPlaceCombo);
    QObject::connect(this, &QComboBox::activated, this, [this] { m_chosen = true; });
    this->Fill();
  }

  int GetItem() const { return m_cell.row(); }
  int GetSubItem() const { return m_cell.column(); }

  bool GetValue(EditedValue& value) const override {
    const int entry = this->currentIndex();
    if (entry < 0 || (!m_chosen && !this->HasCurrentValue())) return false;
    value = {this->itemText(entry), this->itemData(entry)};
    return true;
  }
  void SelectAll() override {}

 private:
  QPersistentModelIndex m_cell;
  bool m_chosen = false;
};

class CTNInPlaceFieldTypeComboBox final : public CTNInPlaceComboBox<CTNFieldTypeComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};
class CTNInPlaceRecTypeComboBox final : public CTNInPlaceComboBox<CTNRecTypeComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};
class CTNInPlaceOutFieldKeyComboBox final : public CTNInPlaceComboBox<CTNOutFieldKeyComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};
class CTNInPlaceSubRecMatchValueComboBox final
    : public CTNInPlaceComboBox<CTNSubRecMatchValueComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};
class CTNInPlaceTrueFalseComboBox final : public CTNInPlaceComboBox<CTNTrueFalseComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};
class CTNInPlaceAperRecDescComboBox final : public CTNInPlaceComboBox<CTNAperRecDescComboBox> {
 public:
  using CTNInPlaceComboBox::CTNInPlaceComboBox;
};

}  // namespace bomparser
