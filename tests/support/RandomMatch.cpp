#include "tests/support/RandomMatch.h"

#include "input/CTNStringCharBuffIter.h"
#include "tests/support/Application.h"
#include "tests/support/TemplateBuilder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <vector>

namespace bomparser::test {

namespace {

template <class Array>
const auto& Pick(Chooser& choose, const Array& array) {
  return array[choose.Below(static_cast<std::uint32_t>(std::size(array)))];
}

constexpr std::array kStrings = {"a", "b", "A|B", "ab|a", "1", "+", ".", "\t", "ab", "-|+", "\xFF"};
constexpr std::array kWords = {"a", "ab|b", "A", "B|AB|a"};
constexpr std::array kWhole = {"1", "12|2", "+1", "-2|1", "+12|-1"};
constexpr std::array kDecimal = {"1.", ".2", "+1.2|2,1", "-.1|1.1"};
constexpr std::array kAlnum = {"1a", "a", "b2|A1", "12"};
constexpr std::array kEntityKinds = {RecordKind::Part, RecordKind::Part, RecordKind::Drill};
constexpr std::array kAuxiliaryKinds = {RecordKind::SubRecord, RecordKind::SubRecord,
                                        RecordKind::SubRecord, RecordKind::MultipleMatch,
                                        RecordKind::SingleMatch};
constexpr std::array kTags = {OutputTag::RefDesignator, OutputTag::PartNumber, OutputTag::None,
                              OutputTag::None,          OutputTag::XLocation,  OutputTag::Text,
                              OutputTag::Units,         OutputTag::TCode,      OutputTag::Diameter};

/// A field that is no sub-record; type, values and limit at random.
FieldSpec RandomField(Chooser& choose) {
  const bool valued = choose.OneIn(3);
  const auto values = [&](const auto& list) { return valued ? Pick(choose, list) : ""; };
  FieldSpec field;
  switch (choose.Below(14)) {
    case 0:
    case 1:
      field = String(Pick(choose, kStrings));
      break;
    case 2:
      field = Column(static_cast<std::int32_t>(choose.Below(4)));
      break;
    case 3:
      field = Alnum(values(kAlnum));
      break;
    case 4:
      field = Alpha(values(kWords));
      break;
    case 5:
      field = WholeNum(values(kWhole));
      break;
    case 6:
      field = DecimalNum(values(kDecimal));
      break;
    case 7:
      field = Space();
      break;
    case 8:
      field = Tab();
      break;
    case 9:
      field = WhtSpace();
      break;
    case 10:
      field = NotWhtSpace();
      break;
    case 11:
      field = Newline();
      break;
    default:
      field = Scan(static_cast<std::int32_t>(choose.Below(4)));
      break;
  }
  field.required = !choose.OneIn(3);
  field.caseSensitive = choose.OneIn(3);
  return field;
}

/// The identifier of a record that the one at `place` of its list may contain: auxiliary records
/// contain those behind them, entity records any auxiliary record and entities behind them.
std::string RandomSubRecord(Chooser& choose, RecordKind kind, std::uint32_t place,
                            std::uint32_t auxiliary, std::uint32_t entities) {
  const std::uint32_t firstAuxiliary = IsEntityKind(kind) ? 0 : place + 1;
  if (IsEntityKind(kind) && place + 1 < entities && choose.OneIn(2)) {
    return "E" + std::to_string(place + 2 + choose.Below(entities - place - 1));
  }
  if (firstAuxiliary >= auxiliary) return {};
  return "A" + std::to_string(firstAuxiliary + 1 + choose.Below(auxiliary - firstAuxiliary));
}

void AddFields(Chooser& choose, CTNTemplateRecord& record, std::uint32_t place,
               std::uint32_t auxiliary, std::uint32_t entities) {
  const std::uint32_t count = choose.OneIn(30) ? 0 : 1 + choose.Below(4);
  const bool allOptional = record.GetType() == RecordKind::SubRecord && choose.OneIn(6);
  for (std::uint32_t i = 0; i < count; ++i) {
    FieldSpec field = RandomField(choose);
    if (choose.OneIn(2)) {
      const std::string id = RandomSubRecord(choose, record.GetType(), place, auxiliary, entities);
      if (!id.empty()) field = SubRecord(id);
      field.required = !choose.OneIn(3);
    }
    field.required = field.required && !allOptional;
    AddField(record, field);
    // A file cannot say it, but a program can: one instance and no more.
    if (field.kind == FieldKind::SubRecord && choose.OneIn(8)) {
      record.GetInputFields().back()->SetRepeatable(false);
    }
  }
  if (record.GetType() == RecordKind::SubRecord || choose.OneIn(12)) return;
  AddField(record, Newline());
}

std::string RandomItem(Chooser& choose, const CTNTemplateRecord& record) {
  const auto number = [&choose](std::size_t count) {
    return std::to_string(1 + choose.Below(static_cast<std::uint32_t>(count)));
  };
  switch (choose.Below(10)) {
    case 0:
      return "\"x\"";
    case 1:
      return "\"y \"";
    case 2:
      return "V" + number(3);
    case 3:
      return "A" + number(4);
    case 4:
      return "A" + number(4) + ".F" + number(3);
    case 5:
      return "A" + number(4) + ".V" + number(2);
    case 6:
      return choose.OneIn(2) ? "DESCRIPTION" : "TEMPL_UNITS";
    default:
      return record.GetInputFields().empty() ? "F1" : "F" + number(record.GetInputFields().size());
  }
}

void AddOutputs(Chooser& choose, CTNTemplateRecord& record) {
  const std::uint32_t count = choose.Below(4);
  for (std::uint32_t i = 0; i < count; ++i) {
    std::string expression = RandomItem(choose, record);
    while (choose.OneIn(3) && expression.size() < 16) {
      expression += choose.OneIn(2) ? " " : "+";
      expression += RandomItem(choose, record);
    }
    AddOutput(record, {Pick(choose, kTags), expression});
  }
}

/// Every record, auxiliary ones first.
std::vector<CTNTemplateRecord*> AllRecords(const CTNParserTemplate& document) {
  std::vector<CTNTemplateRecord*> records;
  for (const auto* list : {&document.GetAuxiliaryRecords(), &document.GetEntityRecords()}) {
    for (const auto& record : *list)
      records.push_back(record.get());
  }
  return records;
}

void RemoveInvalidElements(CTNTemplateRecord& record) {
  std::vector<const CTNTemplRecOutField*> invalid;
  for (const auto& element : record.GetOutputFields()) {
    if (element->IsValid() == 0) invalid.push_back(element.get());
  }
  for (const CTNTemplRecOutField* element : invalid)
    record.RemoveField(element);
  record.CreateRequiredOutputSet();
}

/// Records that are valid already get fields that close circles, as an edit can do.
void AddCircles(Chooser& choose, CTNParserTemplate& document) {
  const auto& records = document.GetAuxiliaryRecords();
  if (records.empty()) return;
  const auto count = static_cast<std::uint32_t>(records.size());
  for (std::uint32_t i = 0; i <= choose.Below(3); ++i) {
    CTNTemplateRecord& from = *records[choose.Below(count)];
    const CTNTemplateRecord& to = *records[choose.Below(count)];
    if (from.IsValid() == 0 || to.IsValid() == 0) continue;
    const bool front = !from.GetInputFields().empty() && choose.OneIn(2);
    CTNTemplRecInField* field =
        from.AddInputField(FieldKind::SubRecord, !choose.OneIn(2),
                           front ? from.GetInputFields().front().get() : nullptr);
    field->SetMatchValueText(to.GetRecordId());
  }
  for (CTNTemplateRecord* record : AllRecords(document))
    record->Validate();
}

void ClearAllValues(CTNParserTemplate& document) {
  for (CTNTemplateRecord* record : AllRecords(document)) {
    record->ClearValues();
    record->SetSingleMatchBlock(nullptr);
  }
}

std::vector<std::string> ShownValues(const CTNParserTemplate& document) {
  std::vector<std::string> values;
  const auto add = [&values](const CTNTemplateRecord& record, const CTNTemplRecField& field) {
    std::string id;
    record.GetFieldID(&field, id);
    values.push_back(record.GetRecordId() + '.' + id + '=' + field.GetCurrentValue());
  };
  for (const CTNTemplateRecord* record : AllRecords(document)) {
    for (const auto& field : record->GetInputFields())
      add(*record, *field);
    for (const auto& element : record->GetOutputFields())
      add(*record, *element);
  }
  return values;
}

std::vector<std::string> SingleBlocks(const CTNParserTemplate& document) {
  std::vector<std::string> blocks;
  for (const CTNTemplateRecord* record : AllRecords(document)) {
    const CTNParsedFileBlock* block = record->GetSingleMatchBlock();
    if (block != nullptr) blocks.push_back(block->ToReadableText());
  }
  return blocks;
}

std::vector<std::string> Counts(const ApplicationStats& stats) {
  return {"blocks " + std::to_string(stats.totalBlocks),
          "lines " + std::to_string(stats.totalLines),
          "entities " + std::to_string(stats.entityBlocks),
          "unmatched " + std::to_string(stats.unmatchedBlocks),
          "unmatched lines " + std::to_string(stats.unmatchedLines)};
}

std::vector<std::string> CountOnly(CTNParserTemplate& document, std::string_view text) {
  CTNParsedBlockPtrArray blocks(nullptr);
  CTNStringCharBuffIter cursor(text);
  std::string error;
  bool cancelled = false;
  document.BeginApplication(cursor.GetText(), blocks, ResultUse::Counted);
  document.ParseFile(cursor, blocks, error, cancelled);
  document.EndApplication(blocks);
  return Counts(blocks.GetStats());
}

std::string Compare(const char* what, const std::vector<std::string>& compiled,
                    const std::vector<std::string>& plain) {
  if (compiled == plain) return {};
  std::string text = std::string(what) + " differ\n";
  for (std::size_t i = 0; i < std::max(compiled.size(), plain.size()); ++i) {
    const std::string left = i < compiled.size() ? Escaped(compiled[i]) : "(none)";
    const std::string right = i < plain.size() ? Escaped(plain[i]) : "(none)";
    if (left != right) text += "  compiled " + left + "\n  plain    " + right + '\n';
  }
  return text;
}

char RandomCharacter(Chooser& choose) {
  constexpr std::string_view kCharacters("aabBA1122+-.,  \t\n\n\n\r\0\xFF\xE9", 23);
  return Pick(choose, kCharacters);
}

/// A text that a field which is no sub-record may take.
std::string SampleOf(Chooser& choose, const CTNTemplRecInField& field) {
  const std::vector<std::string> values = field.GetMatchValues();
  if (!values.empty()) return Pick(choose, values);
  switch (field.GetType()) {
    case FieldKind::Column:
      return std::string(static_cast<std::size_t>(field.GetMatchLength()), 'a');
    case FieldKind::Alphanumeric:
      return Pick(choose, kAlnum);
    case FieldKind::WholeNum:
      return choose.OneIn(3) ? "-2" : "12";
    case FieldKind::DecimalNum:
      return choose.OneIn(3) ? "+.2" : "1,1";
    case FieldKind::Space:
      return " ";
    case FieldKind::Tab:
      return "\t";
    case FieldKind::WhtSpace:
      return choose.OneIn(2) ? " " : "\t ";
    case FieldKind::NotWhtSpace:
      return choose.OneIn(2) ? "a" : "-\xFF";
    case FieldKind::Newline:
      return "\n";
    case FieldKind::ScanToNext:
      return std::string(choose.Below(5), choose.OneIn(4) ? '\n' : 'b');
    default:
      return "ab";
  }
}

/// Adds what the record may take, here and there with a fault.
void AddSample(Chooser& choose, const CTNTemplateRecord& record, int depth, std::string& text) {
  for (const auto& field : record.GetInputFields()) {
    if (!field->IsRequired() && choose.OneIn(2)) continue;
    if (choose.OneIn(24)) text += RandomCharacter(choose);
    if (field->GetType() != FieldKind::SubRecord) {
      text += SampleOf(choose, *field);
    } else if (field->GetSubRecord() != nullptr && depth < 4) {
      for (std::uint32_t i = 0; i <= choose.Below(2); ++i)
        AddSample(choose, *field->GetSubRecord(), depth + 1, text);
    }
  }
}

}  // namespace

void MakeRandomTemplate(Chooser& choose, CTNParserTemplate& document, Circles circles) {
  const std::uint32_t auxiliary = choose.Below(5);
  const std::uint32_t entities = choose.Below(4) + (auxiliary == 0 ? 1 : 0);
  for (std::uint32_t i = 0; i < auxiliary; ++i) {
    AddFields(choose, *document.AddRecord(Pick(choose, kAuxiliaryKinds), "aux"), i, auxiliary,
              entities);
  }
  for (std::uint32_t i = 0; i < entities; ++i) {
    AddFields(choose, *document.AddRecord(Pick(choose, kEntityKinds), "ent"), i, auxiliary,
              entities);
  }
  Relink(document);
  for (CTNTemplateRecord* record : AllRecords(document))
    AddOutputs(choose, *record);
  Relink(document);
  // Most records are to be valid: the others never match.
  if (!choose.OneIn(10)) {
    for (CTNTemplateRecord* record : AllRecords(document))
      RemoveInvalidElements(*record);
    Relink(document);
  }
  if (circles == Circles::Some) AddCircles(choose, document);
}

std::string MakeRandomText(Chooser& choose, const CTNParserTemplate& document,
                           std::uint32_t maxSize) {
  const std::vector<CTNTemplateRecord*> records = AllRecords(document);
  const std::uint32_t size = choose.Below(maxSize + 1);
  const bool blind = records.empty() || choose.OneIn(3);
  std::string text;
  while (text.size() < size) {
    if (blind || choose.OneIn(4)) {
      text += RandomCharacter(choose);
    } else {
      AddSample(choose, *Pick(choose, records), 0, text);
    }
  }
  text.resize(size);
  if (!choose.OneIn(3)) text += '\n';
  return text;
}

namespace {

/// In what several threads differ from one.
std::string DifferenceOfThreads(CTNParserTemplate& document, std::string_view text,
                                const Application& alone, const std::vector<std::string>& values,
                                const std::vector<std::string>& singles) {
  ClearAllValues(document);
  const Application shared = ApplyToText(document, text, WithThreads());
  std::string difference;
  difference += Compare("blocks of threads", shared.Readable(), alone.Readable());
  difference += Compare("failures of threads", {shared.error}, {alone.error});
  difference += Compare("counts of threads", Counts(shared.blocks.GetStats()),
                        Counts(alone.blocks.GetStats()));
  difference += Compare("single-match blocks of threads", SingleBlocks(document), singles);
  difference += Compare("values of threads", ShownValues(document), values);
  return difference;
}

}  // namespace

std::string FindDifference(CTNParserTemplate& document, std::string_view text) {
  ClearAllValues(document);
  const Application application = ApplyToText(document, text);
  const std::vector<std::string> values = ShownValues(document);
  const std::vector<std::string> singles = SingleBlocks(document);
  const std::string entities = EntityListOf(application);
  const std::string plainEntities = EntityListPlainly(application);
  const std::vector<std::string> counts = Counts(application.blocks.GetStats());
  const std::vector<std::string> countsAlone = CountOnly(document, text);
  std::string difference = DifferenceOfThreads(document, text, application, values, singles);
  ClearAllValues(document);
  const std::vector<std::string> plain = ApplyPlainly(document, text);

  difference += Compare("blocks", application.Readable(), plain);
  difference += Compare("entity lists", {entities}, {plainEntities});
  difference += Compare("counts", counts, countsAlone);
  difference += Compare("single-match blocks", singles, SingleBlocks(document));
  difference += Compare("values", values, ShownValues(document));
  return difference;
}

std::string Escaped(std::string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string out;
  for (const char c : text) {
    const auto code = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\\n";
    } else if (c == '\t') {
      out += "\\t";
    } else if (code < ' ' || code > '~') {
      out += "\\x";
      out += kDigits[code / 16];
      out += kDigits[code % 16];
    } else {
      out += c;
    }
  }
  return out;
}

std::string Describe(const CTNParserTemplate& document) {
  std::string out;
  for (const CTNTemplateRecord* record : AllRecords(document)) {
    out += record->GetRecordId() + ' ' + std::string(record->GetTypeName());
    out += record->IsValid() != 0 ? "" : " (invalid)";
    for (const auto& field : record->GetInputFields()) {
      out += ' ' + std::string(field->GetTypeName());
      if (!field->GetMatchValueText().empty()) {
        out +=
            (field->IsCaseSensitive() ? "='" : "~'") + Escaped(field->GetMatchValueText()) + '\'';
      }
      if (field->GetMatchLength() > 0) out += ':' + std::to_string(field->GetMatchLength());
      if (!field->IsRequired()) out += '?';
      if (field->IsRepeatable()) out += '*';
    }
    out += '\n';
    for (const auto& element : record->GetOutputFields()) {
      out += "    " + std::string(element->GetTagText()) + " := " + element->GetExpression() + '\n';
    }
  }
  return out;
}

std::string ExplainDifference(CTNParserTemplate& document, std::string text) {
  for (std::size_t size = text.size(); size > 0; size = (size == 1) ? 0 : (size + 1) / 2) {
    for (std::size_t at = 0; at + size <= text.size();) {
      std::string shorter = text;
      shorter.erase(at, size);
      if (FindDifference(document, shorter).empty()) {
        ++at;
      } else {
        text = std::move(shorter);
      }
    }
  }
  return Describe(document) + "text: " + Escaped(text) + '\n' + FindDifference(document, text);
}

}  // namespace bomparser::test
