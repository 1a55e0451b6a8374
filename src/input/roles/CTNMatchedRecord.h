#pragma once

#include "input/RecordKind.h"

#include <cstddef>
#include <string>

namespace bomparser {

class CTNMatchedField;
class CTNParsedFileBlock;

/// Whether output values are wrapped in their tag names.
enum class Tags { Off, On };

/// What the parsed-file model needs to know of a template record. Played by CTNTemplateRecord.
class CTNMatchedRecord {
 public:
  virtual RecordKind GetRecordKind() const = 0;
  /// The record's place in its template: "E2", "A1", or "??" when no template holds it.
  virtual std::string GetRecordId() const = 0;
  /// The record's description, which is the name that users know it by.
  virtual std::string GetRecordName() const = 0;
  virtual std::size_t GetFieldCount() const = 0;
  virtual const CTNMatchedField* GetMatchedFieldAt(std::size_t index) const = 0;
  /// Appends the entity text of a block that this record matched. False when the block is none
  /// of this record's; nothing is appended then.
  virtual bool BuildEntityText(std::string& text, const CTNParsedFileBlock& block,
                               Tags tags) const = 0;

 protected:
  ~CTNMatchedRecord() = default;
};

}  // namespace bomparser
