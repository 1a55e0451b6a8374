#pragma once

#include "input/FieldKind.h"

#include <string>
#include <string_view>

namespace bomparser {

class CTNMatchedRecord;

/// What the parsed-file model needs to know of an input field. Played by CTNTemplRecInField; it
/// lets the model stand below the template.
class CTNMatchedField {
 public:
  virtual FieldKind GetFieldKind() const = 0;
  /// The display name of the kind, for example "WHOLE_NUM".
  virtual std::string_view GetFieldTypeName() const = 0;
  /// The record that the field is part of; null for a field on its own.
  virtual const CTNMatchedRecord* GetMatchedRecord() const = 0;
  /// The record that a SUBRECORD field names; null for others and while unresolved.
  virtual const CTNMatchedRecord* GetMatchedSubRecord() const = 0;

 protected:
  ~CTNMatchedField() = default;
};

}  // namespace bomparser
