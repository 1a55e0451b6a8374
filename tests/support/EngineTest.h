#pragma once

#include "entry/CTNFileParserEngine.h"
#include "tests/support/Application.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/OutputTexts.h"
#include "tests/support/TemplateBuilder.h"
#include "tests/support/TestFolder.h"

#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace bomparser::test {

/// The bytes of the file at the path; "(none)" when there is no such file.
inline std::string BytesAt(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(none)";
}

inline std::string XmlText(CTNParserTemplate& document) {
  std::string text;
  EXPECT_EQ(document.GetXml(text), kXmlOk) << document.LastError();
  return text;
}

/// A template with one record for the lines that are one of the words ("a|b"): a part, whose
/// designator is the word, or an auxiliary record.
inline std::string TemplateFor(std::string_view words, RecordKind kind = RecordKind::Part,
                               std::int32_t beginRow = 1) {
  CTNParserTemplate document(nullptr);
  document.SetBeginRow(beginRow);
  AddRecord(document, kind, "line", {String(words), Newline()}, {Designator("F1"), PartNumber()});
  return XmlText(document);
}

/// What the entity list says of a line that TemplateFor took.
inline std::string EntityFor(const std::string& word) {
  return "<ENTITY>Part<REF_DESIGNATOR>" + word +
         "</REF_DESIGNATOR><PART_NUMBER>P</PART_NUMBER></ENTITY>";
}
inline std::string ListOfWords(const std::vector<std::string>& words) {
  std::string list = "<TN_FILEPARSER_ENTITIES>";
  for (const std::string& word : words)
    list += EntityFor(word);
  return list + "</TN_FILEPARSER_ENTITIES>";
}

/// An engine with a front end that records what it is told, and a folder for its files. `Base` is
/// TestFolder or a kind of it.
template <class Base>
class EngineTestIn : public Base {
 protected:
  void Open(const std::string& text, const std::string& name = "input.txt") {
    this->WriteFile(name, text);
    std::string error;
    ASSERT_TRUE(engine.OpenInputFile(this->PathOf(name), error)) << error;
  }
  void Load(const std::string& xml, const std::string& name = "template.xml") {
    this->WriteFile(name, xml);
    ASSERT_TRUE(engine.LoadTemplate(this->PathOf(name))) << LogText();
  }
  /// "ok", or the error with " (cancelled)" behind it.
  std::string Apply(ShowProgress show = ShowProgress::No) {
    std::string error = "before";
    bool cancelled = true;
    const bool done = engine.ApplyTemplate(error, cancelled, show);
    if (done) return error.empty() && !cancelled ? "ok" : "ok?";
    return error + (cancelled ? " (cancelled)" : "");
  }
  std::string List() const {
    std::string list;
    std::string error;
    const auto add = [&list](std::string_view piece) {
      list += piece;
      return true;
    };
    EXPECT_TRUE(engine.WriteEntityList(add, error)) << error;
    return list;
  }
  /// Asking writes what is owed.
  std::string SideCopyPath() {
    std::string path;
    std::string error;
    EXPECT_TRUE(engine.GetSideCopyPath(path, error)) << error;
    return path;
  }
  std::string SideCopy() { return BytesAt(SideCopyPath()); }
  std::vector<std::string> Log() { return engine.GetTemplate()->GetErrorLog().GetAllLines(); }
  std::string LogText() {
    std::string text;
    for (const std::string& line : Log())
      text += line + '\n';
    return text;
  }
  CTNParserTemplate& Document() { return *engine.GetTemplate(); }
  CTNParserInFile& InFile() { return *engine.GetInputFile(); }
  /// The flags of the input file that are set: "applied done stale".
  std::string Flags() {
    std::string flags;
    for (const auto& [set, name] :
         {std::pair(InFile().IsApplied(), "applied"), std::pair(InFile().IsOutputDone(), "done"),
          std::pair(InFile().IsStale(), "stale")}) {
      if (set) flags += (flags.empty() ? "" : " ") + std::string(name);
    }
    return flags;
  }

  FakeFrontEnd frontEnd;
  CTNFileParserEngine engine{&frontEnd};
};

}  // namespace bomparser::test
