#pragma once

#include "template/CTNTemplateRecord.h"
#include "ui/views/CTNTemplRecordListNode.h"
#include "ui/views/CTNTemplateListCtrl.h"

#include <vector>

namespace bomparser {

/// Which of the template's two lists of records a record list shows.
enum class RecordPage { Entity, Auxiliary };

/// The records of the template, entity or auxiliary ones. Types and descriptions are edited in
/// place; a type and, of apertures, a description bring the output elements that they require.
class CTNTemplRecordListCtrl final : public CTNTemplateListCtrl {
  Q_OBJECT

 public:
  CTNTemplRecordListCtrl(CTNFileParserEngine& engine, RecordPage page, QString caption,
                         QWidget* parent = nullptr);

  /// Shows the records of the template as they are now.
  void ShowRecords();
  /// The selected records in list order, without those that are gone.
  std::vector<CTNTemplateRecord*> GetSelectedRecords() const;

 signals:
  /// Another record than before is the one that was selected last: that of the current row or,
  /// where the last one is no longer selected, one of those that are. At most once a change.
  void CurrentRecordChanged(bomparser::CTNTemplateRecord* record);
  /// The record's fields and elements may be others than before.
  void ShowFieldsWanted(bomparser::CTNTemplateRecord* record);
  /// The selected records are to be put before this one; null is the end.
  void MoveRequested(bomparser::CTNTemplateRecord* before);

 protected:
  void AskToMoveBefore(const CTNTemplateListNode* before) override;
  void AdaptMenu(QMenu& menu) override;
  void OnCommand(Cmd command) override;
  QWidget* MakeEditor(const QModelIndex& cell, QWidget* parent) override;
  bool OnEndEdit(const QModelIndex& cell, const EditedValue& value) override;

 private:
  using Nodes = std::vector<std::shared_ptr<CTNTemplRecordListNode>>;

  void ReportSelection(const QItemSelection& selected);
  CTNTemplateRecord* SelectedLast(const QItemSelection& selected) const;
  void CreateRequiredOutputSets();
  static bool SetType(CTNTemplateRecord& record, const EditedValue& value);
  static bool SetDescription(CTNTemplateRecord& record, const EditedValue& value);
  /// The fields of the one record that was worked on are to be shown again.
  void WantFieldsOfOne(const Nodes& nodes);

  RecordPage m_page;
  RecordLink m_reported;  // The record that listeners were told of last.
};

}  // namespace bomparser
