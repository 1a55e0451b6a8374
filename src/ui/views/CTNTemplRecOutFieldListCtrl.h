#pragma once

#include "template/CTNTemplRecOutField.h"
#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplRecOutFieldListNode.h"
#include "ui/views/CTNTemplateListCtrl.h"

#include <cstddef>
#include <vector>

namespace bomparser {

/// The output elements of one record: their tags and the expressions of their values.
class CTNTemplRecOutFieldListCtrl final : public CTNTemplateListCtrl {
  Q_OBJECT

 public:
  CTNTemplRecOutFieldListCtrl(CTNFileParserEngine& engine, QString caption,
                              QWidget* parent = nullptr);

  /// Shows the output elements of the record as they are now; none with null.
  void ShowElements(CTNTemplateRecord* record);
  /// The record whose elements are shown; null without one, and once it is gone.
  CTNTemplateRecord* GetRecord() const { return m_record; }
  /// The selected elements in list order, without those that are gone.
  std::vector<CTNTemplRecOutField*> GetSelectedElements() const;
  /// Deletes the selected elements from the last to the first, after a question where the record
  /// needs one for its only element with that tag; boxes tell what cannot be deleted. Returns how
  /// many are gone. Nothing is told, and the list shows them until it is filled again.
  std::size_t DeleteSelected();

  bool CanDropOn(const QWidget* target) const override;
  void OnDrop(QWidget* target, const QPoint& screenPoint) override;

 signals:
  /// The selected elements are to be put before this one; null is the end.
  void MoveRequested(bomparser::CTNTemplRecOutField* before);

 protected:
  void AskToMoveBefore(const CTNTemplateListNode* before) override;
  void AdaptMenu(QMenu& menu) override;
  QWidget* MakeEditor(const QModelIndex& cell, QWidget* parent) override;
  bool OnEndEdit(const QModelIndex& cell, const EditedValue& value) override;

 private:
  bool MayDelete(const CTNTemplRecOutFieldListNode& node);
  static bool Delete(const CTNTemplRecOutFieldListNode& node);

  RecordLink m_record;
};

}  // namespace bomparser
