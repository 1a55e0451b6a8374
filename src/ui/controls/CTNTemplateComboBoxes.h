#pragma once

#include "input/FieldKind.h"
#include "input/RecordKind.h"
#include "template/OutputTags.h"
#include "ui/controls/CTNParserComboBox.h"

#include <optional>

namespace bomparser {

class CTNParserTemplate;
class CTNTemplateRecord;

/// The field types in code order; item data is the type's code.
class CTNFieldTypeComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  CTNFieldTypeComboBox(QWidget* parent, FieldKind current);
  void Fill() override;

 private:
  FieldKind m_current;
};

/// The types that a record may be given: entity types for an entity record, auxiliary types for any
/// other. Item data is the type's code; the single-match type has "*" behind its name.
class CTNRecTypeComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  CTNRecTypeComboBox(QWidget* parent, RecordKind current);
  void Fill() override;

 private:
  RecordKind m_current;
};

/// The tags that suit records of a type, in code order; item data is the tag's code.
class CTNOutFieldKeyComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  CTNOutFieldKeyComboBox(QWidget* parent, RecordKind recordKind, OutputTag current);
  void Fill() override;

 private:
  RecordKind m_recordKind;
  OutputTag m_current;
};

/// The auxiliary records of a template but the single-match ones, each as "A1 - name". Item data is
/// the record, as a pointer that is compared only.
class CTNSubRecMatchValueComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  /// The template is not owned. `current` may be null.
  CTNSubRecMatchValueComboBox(QWidget* parent, const CTNParserTemplate& document,
                              const CTNTemplateRecord* current);
  void Fill() override;

 private:
  const CTNParserTemplate& m_document;
  const CTNTemplateRecord* m_current;
};

/// "TRUE" (1) and "FALSE" (0).
class CTNTrueFalseComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  CTNTrueFalseComboBox(QWidget* parent, std::optional<bool> current);
  void Fill() override;
  int GetLongestEntryWidth() const override;

 private:
  std::optional<bool> m_current;
};

/// The shapes that an aperture record's description may name, upper-cased; item data is the shape's
/// index. A description that names none adds "UNDEFINED" (22).
class CTNAperRecDescComboBox : public CTNParserComboBox {
  Q_OBJECT

 public:
  CTNAperRecDescComboBox(QWidget* parent, QString current);
  void Fill() override;

 private:
  QString m_current;
};

}  // namespace bomparser
