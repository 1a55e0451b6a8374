#include "template/FieldTypes.h"

#include "tnbase/CharClass.h"

namespace bomparser {

namespace {
constexpr FieldType kUndefinedType{FieldKind::Undefined, "UNDEFINED", true, false, false};
}  // namespace

const FieldType& GetFieldType(FieldKind kind) {
  const auto index = static_cast<std::size_t>(kind);
  return index < kFieldTypes.size() ? kFieldTypes[index] : kUndefinedType;
}

const FieldType* FindFieldType(std::string_view name) {
  for (const FieldType& type : kFieldTypes) {
    if (EqualsNoCase(type.name, name)) return &type;
  }
  return nullptr;
}

}  // namespace bomparser
