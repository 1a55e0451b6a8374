#pragma once

#include <QWidget>

namespace bomparser {

/// What the colours of the input file view mean: a word for each kind of block, in its colours.
class ColourLegend final : public QWidget {
  Q_OBJECT

 public:
  explicit ColourLegend(QWidget* parent = nullptr);
};

}  // namespace bomparser
