#include "input/CTNParsedFileBlock.h"
#include "template/CTNParserTemplate.h"
#include "tests/support/FailingMemory.h"
#include "tests/support/RandomMatch.h"
#include "tests/support/TemplateBuilder.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace bomparser {
namespace {

using namespace test;

using Lines = std::vector<std::string>;
template <class Element>
using Elements = std::vector<const Element*>;

// The template that edits are tried on.

template <class Work>
void ForEachRecord(const CTNParserTemplate& document, Work work) {
  for (const auto* list : {&document.GetEntityRecords(), &document.GetAuxiliaryRecords()}) {
    for (const auto& record : *list)
      work(*record);
  }
}

/// Gives every field and element a value that tells it from all others, wherever it goes.
template <class Field>
void NameAll(const std::vector<std::unique_ptr<Field>>& fields, const std::string& name) {
  for (const auto& field : fields)
    field->SetCurrentValue(name + std::to_string(&field - fields.data()));
}

/// Expressions that name what is there, what is not, and what reads as neither. All in capitals:
/// one by one, an identifier that becomes another and then the same again loses the case it was
/// typed in.
std::string RandomExpression(Chooser& choose) {
  std::string text;
  for (std::uint32_t count = 1 + choose.Below(4); count > 0; --count) {
    constexpr const char* kGlue[] = {".", ".", "+", " "};
    constexpr const char* kWords[] = {"F", "V", "E", "A", "??", "word", "\"F1\""};
    const std::uint32_t word = choose.Below(7);
    text += kWords[word];
    if (word < 4) text += std::to_string(1 + choose.Below(6));
    text += kGlue[choose.Below(4)];
  }
  return text;
}

std::unique_ptr<CTNParserTemplate> RandomDocument(std::uint32_t seed) {
  SeededChooser choose(seed);
  auto document = std::make_unique<CTNParserTemplate>(nullptr);
  MakeRandomTemplate(choose, *document, choose.OneIn(4) ? Circles::Some : Circles::No);
  for (std::uint32_t i = 0; i < 4; ++i) {
    auto& record = AddRecord(*document, i < 2 ? RecordKind::Part : RecordKind::MultipleMatch, "",
                             {Alpha(), SubRecord("A" + std::to_string(1 + choose.Below(4)))});
    for (std::uint32_t element = 0; element < 3; ++element)
      AddOutput(record, {OutputTag::Text, RandomExpression(choose)});
  }
  Relink(*document);
  int number = 0;
  ForEachRecord(*document, [&number](CTNTemplateRecord& record) {
    const std::string name = "record " + std::to_string(++number);
    record.SetDescription(name);
    NameAll(record.GetInputFields(), name + " field ");
    NameAll(record.GetOutputFields(), name + " element ");
    record.SetSingleMatchBlock(std::make_shared<CTNParsedFileBlock>(nullptr));
  });
  return document;
}

/// All that an edit may change.
Lines StateOf(const CTNParserTemplate& document) {
  Lines lines;
  ForEachRecord(document, [&lines](CTNTemplateRecord& record) {
    lines.push_back(record.GetRecordId() + ' ' + record.GetDescription() + ": " +
                    std::to_string(record.IsValid()) + ' ' + record.GetStatusText() +
                    (record.MayMeanMore() ? " may mean more" : "") +
                    (record.GetSingleMatchBlock() != nullptr ? " matched" : ""));
    for (const auto& field : record.GetInputFields()) {
      EXPECT_EQ(field->GetParentRecord(), &record);
      const CTNTemplateRecord* const sub = field->GetSubRecord();
      lines.push_back(field->GetCurrentValue() + ": " + std::string(field->GetTypeName()) + ' ' +
                      field->GetMatchValueText() + ' ' +
                      (sub != nullptr ? sub->GetDescription() : std::string("none")));
    }
    for (const auto& element : record.GetOutputFields()) {
      EXPECT_EQ(element->GetParentRecord(), &record);
      lines.push_back(element->GetCurrentValue() + ": " + element->GetExpression() + " = " +
                      element->GetExpressionText() + ' ' + std::to_string(element->IsValid()));
    }
  });
  return lines;
}

// What is edited, and before what.

template <class Element>
struct Choice {
  Elements<Element> elements;
  const Element* before = nullptr;
};

/// Some of the array in its order, and any of it or none to stand before.
template <class Element>
Choice<Element> Choose(Chooser& choose, const std::vector<std::unique_ptr<Element>>& array) {
  Choice<Element> choice;
  const std::uint32_t oneIn = 1 + choose.Below(3);
  for (const auto& element : array) {
    if (choose.OneIn(oneIn)) choice.elements.push_back(element.get());
  }
  const std::uint32_t before = choose.Below(static_cast<std::uint32_t>(array.size()) + 1);
  if (before < array.size()) choice.before = array[before].get();
  return choice;
}

const CTNParserTemplate::RecordList& AnyList(Chooser& choose, const CTNParserTemplate& document) {
  return choose.OneIn(2) ? document.GetEntityRecords() : document.GetAuxiliaryRecords();
}

CTNTemplateRecord& AnyRecord(Chooser& choose, const CTNParserTemplate& document) {
  const auto& list = AnyList(choose, document);
  return *list[choose.Below(static_cast<std::uint32_t>(list.size()))];
}

/// An edit of which everything is chosen already.
using Edit = std::function<bool()>;
enum class How { AtOnce, OneByOne };

/// True when it is done to any of the elements.
template <class Element, class Work>
bool DoEach(const Elements<Element>& elements, Work work) {
  return std::count_if(elements.begin(), elements.end(), work) > 0;
}

Edit DeleteSomeRecords(Chooser& choose, CTNParserTemplate& document, How how) {
  const auto records = Choose(choose, AnyList(choose, document)).elements;
  if (how == How::AtOnce) return [=, &document] { return document.DeleteRecords(records); };
  return [=, &document] {
    return DoEach(records, [&](const auto* record) { return document.DeleteRecord(record); });
  };
}

Edit MoveSomeRecords(Chooser& choose, CTNParserTemplate& document, How how) {
  const auto chosen = Choose(choose, AnyList(choose, document));
  if (how == How::AtOnce) {
    return [=, &document] { return document.MoveRecords(chosen.elements, chosen.before); };
  }
  return [=, &document] {
    return DoEach(chosen.elements,
                  [&](const auto* record) { return document.MoveRecord(record, chosen.before); });
  };
}

Edit RemoveSomeFields(Chooser& choose, CTNParserTemplate& document, How how) {
  CTNTemplateRecord& record = AnyRecord(choose, document);
  const auto fields = Choose(choose, record.GetInputFields()).elements;
  if (how == How::AtOnce) return [=, &record] { return record.RemoveFields(fields); };
  return [=, &record] {
    return DoEach(fields, [&](const auto* field) { return record.RemoveField(field) != nullptr; });
  };
}

template <class Field>
Edit MoveSome(CTNTemplateRecord& record, const Choice<Field>& chosen, How how) {
  if (how == How::AtOnce) {
    return [=, &record] { return record.MoveFields(chosen.elements, chosen.before); };
  }
  return [=, &record] {
    return DoEach(chosen.elements,
                  [&](const auto* field) { return record.MoveField(field, chosen.before); });
  };
}

Edit MoveSomeFields(Chooser& choose, CTNParserTemplate& document, How how) {
  CTNTemplateRecord& record = AnyRecord(choose, document);
  return MoveSome(record, Choose(choose, record.GetInputFields()), how);
}

Edit MoveSomeElements(Chooser& choose, CTNParserTemplate& document, How how) {
  CTNTemplateRecord& record = AnyRecord(choose, document);
  return MoveSome(record, Choose(choose, record.GetOutputFields()), how);
}

struct NamedEdit {
  const char* name;
  Edit (*make)(Chooser& choose, CTNParserTemplate& document, How how);
};

void PrintTo(const NamedEdit& named, std::ostream* out) { *out << named.name; }

class BulkEditTest : public testing::TestWithParam<NamedEdit> {
 protected:
  /// The edit that follows from the seed.
  static Edit MakeEdit(std::uint32_t seed, CTNParserTemplate& document, How how) {
    SeededChooser choose(seed);
    return GetParam().make(choose, document, how);
  }
  /// Lets every allocation of the edit fail in turn: all of it is done then, or nothing. Returns
  /// how often it was nothing.
  static int CountRefusals(std::uint32_t seed, MemoryFails fails);
};

TEST_P(BulkEditTest, DoesWhatTheSameEditsOneByOneDo) {
  int changes = 0;
  for (std::uint32_t seed = 0; seed < 100; ++seed) {
    const auto bulk = RandomDocument(seed);
    const auto single = RandomDocument(seed);
    const Lines before = StateOf(*bulk);
    ASSERT_EQ(before, StateOf(*single));
    EXPECT_EQ(MakeEdit(seed, *bulk, How::AtOnce)(), MakeEdit(seed, *single, How::OneByOne)())
        << seed;
    const Lines after = StateOf(*bulk);
    ASSERT_EQ(after, StateOf(*single)) << seed;
    if (after != before) ++changes;
    // What newcomers may be meant by is the same as well, and so is what is wrong with what is
    // left.
    for (CTNParserTemplate* document : {bulk.get(), single.get()}) {
      AddRecord(*document, RecordKind::MultipleMatch, "new", {Alpha()});
      document->Validate();
    }
    ASSERT_EQ(StateOf(*bulk), StateOf(*single)) << seed;
  }
  EXPECT_GT(changes, 20);
}

/// Expressions that could not be parsed without memory are parsed now.
Lines ValidatedStateOf(CTNParserTemplate& document) {
  document.Validate();
  return StateOf(document);
}

int BulkEditTest::CountRefusals(std::uint32_t seed, MemoryFails fails) {
  const auto undisturbed = RandomDocument(seed);
  const Lines before = ValidatedStateOf(*undisturbed);
  if (!MakeEdit(seed, *undisturbed, How::AtOnce)()) return 0;
  const Lines after = ValidatedStateOf(*undisturbed);
  int refusals = 0;
  ForEveryAllocation([&](std::int64_t granted) {
    const auto document = RandomDocument(seed);
    const Edit edit = MakeEdit(seed, *document, How::AtOnce);
    bool done = false;
    const bool failed = FailsAfter(
        granted, [&] { done = edit(); }, fails);
    EXPECT_TRUE(done || failed);
    EXPECT_EQ(ValidatedStateOf(*document), done ? after : before) << seed << ' ' << granted;
    if (done) return failed;
    ++refusals;
    const Lines log = document->GetErrorLog().GetAllLines();
    // The log may lack memory as well.
    EXPECT_TRUE(log == Lines{XmlStatusText(kXmlOutOfMemory)} || fails == MemoryFails::FromThenOn);
    return failed;
  });
  return refusals;
}

TEST_P(BulkEditTest, DoesAllOrNothingWhereMemoryRunsOut) {
  for (const MemoryFails fails : {MemoryFails::Once, MemoryFails::FromThenOn}) {
    EXPECT_GT(CountRefusals(1, fails), 20);
  }
}

INSTANTIATE_TEST_SUITE_P(Every, BulkEditTest,
                         testing::Values(NamedEdit{"DeleteRecords", DeleteSomeRecords},
                                         NamedEdit{"MoveRecords", MoveSomeRecords},
                                         NamedEdit{"RemoveFields", RemoveSomeFields},
                                         NamedEdit{"MoveFields", MoveSomeFields},
                                         NamedEdit{"MoveElements", MoveSomeElements}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace bomparser
