#pragma once

#include "ui/controls/CTNInPlaceEditor.h"
#include "ui/controls/CTNParserEdit.h"
#include "ui/controls/Ids.h"

#include <QPersistentModelIndex>

namespace bomparser {

/// A text box over a cell.
class CTNInPlaceEdit final : public CTNParserEdit, public CTNInPlaceEditor {
  Q_OBJECT

 public:
  CTNInPlaceEdit(QWidget* parent, const QModelIndex& cell, const QString& text);

  int GetItem() const { return m_cell.row(); }
  int GetSubItem() const { return m_cell.column(); }
  const QString& GetInitialText() const { return m_initialText; }

  bool GetValue(EditedValue& value) const override;
  void SelectAll() override;

 protected:
  bool event(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QPersistentModelIndex m_cell;
  QString m_initialText;
};

}  // namespace bomparser
