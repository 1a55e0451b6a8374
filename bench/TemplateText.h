#pragma once

#include <string>
#include <string_view>

namespace bomparser::bench {

/// Puts the text of a template file together, record by record. Texts are taken as they are: none
/// that the benchmarks use needs escaping.
class TemplateText {
 public:
  explicit TemplateText(std::string_view title);

  /// Starts a record; fields and output elements that follow are its own.
  TemplateText& Record(std::string_view type, std::string_view description);
  TemplateText& Field(std::string_view type, std::string_view values = {});
  /// A field that may be missing.
  TemplateText& Optional(std::string_view type, std::string_view values = {});
  TemplateText& Output(std::string_view tag, std::string_view expression);

  /// Multiple Match records that every list has: a line that begins with one of the texts, and a
  /// line of blanks.
  TemplateText& LinesFrom(std::string_view texts, std::string_view description);
  TemplateText& BlankLines();

  /// The whole template, closed.
  std::string Finish();

 private:
  void Add(std::string_view type, std::string_view values, std::string_view required);
  void CloseRecord();

  std::string m_text;
  bool m_inRecord = false;
};

}  // namespace bomparser::bench
