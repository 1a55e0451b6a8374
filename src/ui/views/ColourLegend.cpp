#include "ui/views/ColourLegend.h"

#include "input/CTNParsedFileBlock.h"
#include "ui/controls/DisplayText.h"
#include "ui/controls/Ids.h"
#include "ui/views/BlockKinds.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPalette>

namespace bomparser {
namespace {

QLabel* MakeSample(BlockKind kind) {
  constexpr int kMargin = 2;
  auto* const sample = new QLabel(BlockKindText(kind));
  QPalette colours = sample->palette();
  colours.setColor(QPalette::Window, ToQColor(BackColourOf(kind)));
  colours.setColor(QPalette::WindowText, ToQColor(TextColourOf(kind)));
  sample->setPalette(colours);
  sample->setAutoFillBackground(true);
  sample->setFrameShape(QFrame::StyledPanel);
  sample->setMargin(kMargin);
  SetControlId(*sample, Ctrl::ColourLegend);  // Help on any of them is help on the legend.
  return sample;
}

}  // namespace

ColourLegend::ColourLegend(QWidget* parent) : QWidget(parent) {
  SetControlId(*this, Ctrl::ColourLegend);
  setAccessibleName(MessageText(Msg::ColourLegend));
  auto* const row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  for (const BlockKind kind :
       {BlockKind::Entity, BlockKind::Auxiliary, BlockKind::Unmatched, BlockKind::Ignored}) {
    row->addWidget(MakeSample(kind));
  }
}

}  // namespace bomparser
