#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

namespace bomparser {

class CTNParserTemplate;
class CTNTemplRecField;
class CTNTemplateRecord;

/// Makes expressions follow what they mean. Identifiers are positions, so whoever adds, removes or
/// moves fields or records changes what "F2" or "A1" stands for. The keeper remembers before the
/// change what every identifier means; Apply afterwards renames them in all stored expression
/// texts, token by token, also in texts that do not parse at the moment. What is gone becomes "??".
/// Then all expressions are parsed again.
///
/// Create it before the change, call Apply after it; what was removed may be deleted in between.
class CTNIdentifierKeeper {
 public:
  /// For a change among the fields of a record: of its whole template, if it is in one.
  explicit CTNIdentifierKeeper(CTNTemplateRecord& record);
  /// For a change among the records of a template.
  explicit CTNIdentifierKeeper(CTNParserTemplate& document);
  void Apply();

 private:
  struct Fields {
    std::vector<const CTNTemplRecField*> inputs;
    std::vector<const CTNTemplRecField*> outputs;
  };
  using Ids = std::unordered_map<const void*, std::string>;

  void Remember(CTNTemplateRecord& record);
  void Remember(CTNParserTemplate& document);
  std::vector<CTNTemplateRecord*> RecordsNow() const;
  Ids IdsNow() const;
  bool MeansSomething(const Fields& fields, const std::string& token, const void*& meaning) const;
  const CTNTemplateRecord* RecordMeant(const std::string& token) const;
  std::string Renamed(const CTNTemplateRecord& record, const std::string& expression,
                      const Ids& ids) const;

  CTNParserTemplate* m_template;
  CTNTemplateRecord* m_alone = nullptr;  // A record outside any template.
  std::vector<CTNTemplateRecord*> m_entities;
  std::vector<CTNTemplateRecord*> m_auxiliaries;
  std::unordered_map<const CTNTemplateRecord*, Fields> m_fields;
};

}  // namespace bomparser
