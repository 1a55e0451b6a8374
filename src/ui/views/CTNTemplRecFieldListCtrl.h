#pragma once

#include "template/CTNTemplRecInField.h"
#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplRecFieldListNode.h"
#include "ui/views/CTNTemplateListCtrl.h"

#include <vector>

namespace bomparser {

/// The input fields of one record; everything about them is edited in place.
class CTNTemplRecFieldListCtrl final : public CTNTemplateListCtrl {
  Q_OBJECT

 public:
  CTNTemplRecFieldListCtrl(CTNFileParserEngine& engine, QString caption, QWidget* parent = nullptr);

  /// Shows the fields of the record as they are now; of none with null.
  void ShowFields(CTNTemplateRecord* record);
  /// The record whose fields are shown; null without one, and once it is gone.
  CTNTemplateRecord* GetRecord() const { return m_record; }
  /// The selected fields in list order, without those that are gone.
  std::vector<CTNTemplRecInField*> GetSelectedFields() const;
  /// Output elements were dropped here. They are welcome, and nothing comes of it but that this
  /// list's own selection is gathered and handed on.
  void TakeOutputElements();

  bool BeginEdit(const QModelIndex& cell) override;

 signals:
  /// The selected fields are to be put before this one; null is the end.
  void MoveRequested(bomparser::CTNTemplRecInField* before);
  /// Output elements were dropped; the own selection is gathered.
  void SelectionHandedOn();

 protected:
  void AskToMoveBefore(const CTNTemplateListNode* before) override;
  void AdaptMenu(QMenu& menu) override;
  QWidget* MakeEditor(const QModelIndex& cell, QWidget* parent) override;
  bool OnEndEdit(const QModelIndex& cell, const EditedValue& value) override;
  void OnLeftWithoutValue() override;

 private:
  QWidget* MakeMatchValueEditor(const CTNTemplRecInField& field, const QModelIndex& cell,
                                QWidget* parent) const;
  bool LacksSubRecords(const QModelIndex& cell) const;

  RecordLink m_record;
};

}  // namespace bomparser
