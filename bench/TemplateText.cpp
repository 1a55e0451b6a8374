#include "bench/TemplateText.h"

#include <fmt/format.h>
#include <iterator>

namespace bomparser::bench {

TemplateText::TemplateText(std::string_view title) {
  fmt::format_to(std::back_inserter(m_text),
                 "<PARSER_TEMPLATE>\n"
                 "  <DEFAULT_UNITS>MM</DEFAULT_UNITS>\n"
                 "  <TITLE>{}</TITLE>\n",
                 title);
}

TemplateText& TemplateText::Record(std::string_view type, std::string_view description) {
  CloseRecord();
  m_inRecord = true;
  fmt::format_to(std::back_inserter(m_text),
                 "  <TEMPLATE_RECORD TYPE=\"{}\">\n"
                 "    <DESC>{}</DESC>\n",
                 type, description);
  return *this;
}

TemplateText& TemplateText::Field(std::string_view type, std::string_view values) {
  Add(type, values, "TRUE");
  return *this;
}

TemplateText& TemplateText::Optional(std::string_view type, std::string_view values) {
  Add(type, values, "FALSE");
  return *this;
}

TemplateText& TemplateText::Output(std::string_view tag, std::string_view expression) {
  fmt::format_to(std::back_inserter(m_text),
                 "    <OUTPUT_FIELD KEY=\"{}\"><VALUE>{}</VALUE></OUTPUT_FIELD>\n", tag,
                 expression);
  return *this;
}

TemplateText& TemplateText::LinesFrom(std::string_view texts, std::string_view description) {
  return Record("Multiple Match", description)
      .Field("STRING", texts)
      .Field("SCAN_TO_NEXT")
      .Field("NEWLINE");
}

TemplateText& TemplateText::BlankLines() {
  return Record("Multiple Match", "Blank line").Optional("WHTSPACE").Field("NEWLINE");
}

std::string TemplateText::Finish() {
  CloseRecord();
  return m_text + "</PARSER_TEMPLATE>\n";
}

void TemplateText::Add(std::string_view type, std::string_view values, std::string_view required) {
  fmt::format_to(std::back_inserter(m_text),
                 "    <INPUT_FIELD TYPE=\"{}\" REQUIRED=\"{}\">"
                 "<MATCH_VALUE_STR>{}</MATCH_VALUE_STR></INPUT_FIELD>\n",
                 type, required, values);
}

void TemplateText::CloseRecord() {
  if (m_inRecord) m_text += "  </TEMPLATE_RECORD>\n";
  m_inRecord = false;
}

}  // namespace bomparser::bench
