#pragma once

#include <QString>
#include <QVariant>

class QAbstractItemView;

namespace bomparser {

/// What an in-place editor reports when it ends: the text, and of a combo box the entry's data.
struct EditedValue {
  QString text;
  QVariant data;
};

/// What every in-place editor can say of itself. Played by CTNInPlaceEdit and the in-place combo
/// boxes; CTNInPlaceDelegate ends them.
class CTNInPlaceEditor {
 public:
  /// The value to report; false when the editor has none, because nothing was chosen.
  virtual bool GetValue(EditedValue& value) const = 0;
  /// Selects everything: the value was refused and is to be typed again.
  virtual void SelectAll() = 0;

 protected:
  ~CTNInPlaceEditor() = default;
};

}  // namespace bomparser
