#include "ui/controls/CTNTemplateComboBoxes.h"

#include "input/MessageTexts.h"
#include "template/CTNParserTemplate.h"
#include "template/FieldTypes.h"
#include "tnbase/CTNFormulaCustom.h"
#include "tnbase/CTNTool.h"
#include "ui/controls/DisplayText.h"

#include <QFontMetrics>
#include <array>
#include <cstdint>
#include <span>
#include <utility>

namespace bomparser {
namespace {

template <class Code>
QVariant CodeData(Code code) {
  return QVariant(static_cast<int>(code));
}

// Compared only: nobody reaches the record through it.
QVariant RecordData(const CTNTemplateRecord* record) {
  return QVariant::fromValue(static_cast<quintptr>(reinterpret_cast<std::uintptr_t>(record)));
}

constexpr std::array kEntityTypes = {RecordKind::Aperture, RecordKind::Drill, RecordKind::Part};
constexpr std::array kAuxiliaryTypes = {RecordKind::SingleMatch, RecordKind::MultipleMatch,
                                        RecordKind::SubRecord};

/// Tags by code, the last one included.
struct TagRange {
  int first;
  int last;
};

constexpr TagRange kApertureTags{0, 27};
constexpr TagRange kDrillTags{30, 33};
constexpr TagRange kRoundTags{36, 37};
constexpr TagRange kPartTags{40, 71};
constexpr TagRange kCommonTags{74, 79};

constexpr std::array kTagsOfApertures = {kApertureTags, kRoundTags, kCommonTags};
constexpr std::array kTagsOfDrills = {kDrillTags, kRoundTags, kCommonTags};
constexpr std::array kTagsOfParts = {kPartTags, kCommonTags};
constexpr std::array kTagsOfOthers = {kApertureTags, kDrillTags, kRoundTags, kCommonTags};

std::span<const TagRange> TagsFor(RecordKind kind) {
  switch (kind) {
    case RecordKind::Aperture:
      return kTagsOfApertures;
    case RecordKind::Drill:
      return kTagsOfDrills;
    case RecordKind::Part:
      return kTagsOfParts;
    default:
      return kTagsOfOthers;
  }
}

// Shapes of the library that no aperture is described by.
constexpr int kComplexShape = 9;
constexpr int kNoneShape = 11;

constexpr int kLastStandardShape = 13;
constexpr int kFirstCustomShape = 15;
constexpr int kLastCustomShape = 21;
constexpr int kUndefinedShape = 22;

}  // namespace

CTNFieldTypeComboBox::CTNFieldTypeComboBox(QWidget* parent, FieldKind current)
    : CTNParserComboBox(parent), m_current(current) {}

void CTNFieldTypeComboBox::Fill() {
  Restart();
  for (const FieldType& type : kFieldTypes)
    AddEntry(ToDisplayText(type.name), CodeData(type.kind));
  SelectCode(CodeData(m_current));
}

CTNRecTypeComboBox::CTNRecTypeComboBox(QWidget* parent, RecordKind current)
    : CTNParserComboBox(parent), m_current(current) {}

void CTNRecTypeComboBox::Fill() {
  Restart();
  for (const RecordKind kind : IsEntityKind(m_current) ? kEntityTypes : kAuxiliaryTypes) {
    QString name = ToDisplayText(GetRecordTypeName(kind));
    if (CTNTemplateRecord::IsSingleMatchType(kind)) name += MessageText(Msg::SingleMatchMark);
    AddEntry(name, CodeData(kind));
  }
  SelectCode(CodeData(m_current));
}

CTNOutFieldKeyComboBox::CTNOutFieldKeyComboBox(QWidget* parent, RecordKind recordKind,
                                               OutputTag current)
    : CTNParserComboBox(parent), m_recordKind(recordKind), m_current(current) {}

void CTNOutFieldKeyComboBox::Fill() {
  Restart();
  for (const TagRange& range : TagsFor(m_recordKind)) {
    for (int code = range.first; code <= range.last; ++code)
      AddEntry(ToDisplayText(GetTagName(static_cast<OutputTag>(code))), QVariant(code));
  }
  SelectCode(CodeData(m_current));
}

CTNSubRecMatchValueComboBox::CTNSubRecMatchValueComboBox(QWidget* parent,
                                                         const CTNParserTemplate& document,
                                                         const CTNTemplateRecord* current)
    : CTNParserComboBox(parent), m_document(document), m_current(current) {}

void CTNSubRecMatchValueComboBox::Fill() {
  Restart();
  for (const auto& record : m_document.GetAuxiliaryRecords()) {
    if (record->IsSingleMatch()) continue;
    AddEntry(ToDisplayText(record->GetRecordId()) + MessageText(Msg::RecordLabelSeparator) +
                 ToDisplayText(record->GetRecordName()),
             RecordData(record.get()));
  }
  SelectCode(RecordData(m_current));
}

CTNTrueFalseComboBox::CTNTrueFalseComboBox(QWidget* parent, std::optional<bool> current)
    : CTNParserComboBox(parent), m_current(current) {}

void CTNTrueFalseComboBox::Fill() {
  Restart();
  AddEntry(MessageText(Msg::WordTrue), QVariant(1));
  AddEntry(MessageText(Msg::WordFalse), QVariant(0));
  if (m_current) {
    SelectCode(QVariant(*m_current ? 1 : 0));
  } else {
    SelectNothing();
  }
}

int CTNTrueFalseComboBox::GetLongestEntryWidth() const {
  return fontMetrics().horizontalAdvance(MessageText(Msg::WordFalse));
}

CTNAperRecDescComboBox::CTNAperRecDescComboBox(QWidget* parent, QString current)
    : CTNParserComboBox(parent), m_current(std::move(current)) {}

void CTNAperRecDescComboBox::Fill() {
  Restart();
  for (int shape = 0; shape <= kLastStandardShape; ++shape) {
    if (shape == kComplexShape || shape == kNoneShape) continue;
    AddEntry(ToDisplayText(CTNTool::GetStrFromShape(shape, true)).toUpper(), QVariant(shape));
  }
  for (int shape = kFirstCustomShape; shape <= kLastCustomShape; ++shape)
    AddEntry(ToDisplayText(CTNFormulaCustom::GetShapeName(shape, true)).toUpper(), QVariant(shape));

  const int named = findText(m_current, Qt::MatchFixedString);  // In any case.
  if (named >= 0) {
    SelectCode(itemData(named));
    return;
  }
  AddEntry(MessageText(Msg::UndefinedShape), QVariant(kUndefinedShape));
  // Shown, but no current value: leaving the box must not replace what the user wrote.
  SelectNothing();
  setCurrentIndex(count() - 1);
}

}  // namespace bomparser
