#include "ui/controls/Icons.h"

#include "tests/ui/support/UiTest.h"

#include <QImage>
#include <QPixmap>

namespace bomparser::test {
namespace {

constexpr IconId kAll[] = {IconId::Program, IconId::Valid,         IconId::Note,
                           IconId::Invalid, IconId::EntityRecords, IconId::AuxiliaryRecords};

int PaintedPixels(const QImage& image) {
  int painted = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      painted += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
  }
  return painted;
}

QImage ImageOf(IconId id, int size) { return Icon(id).pixmap(QSize(size, size), 1.0).toImage(); }

TEST(IconsTest, EveryPictureIsThereAtTheSizesOfListsAndTabs) {
  for (const IconId id : kAll) {
    for (const int size : {14, 16, 24, 48}) {
      const QImage image = ImageOf(id, size);
      EXPECT_EQ(image.size(), QSize(size, size)) << static_cast<int>(id);
      EXPECT_GT(PaintedPixels(image), size) << static_cast<int>(id);
    }
  }
}

TEST(IconsTest, NoTwoPicturesAreTheSame) {
  for (const IconId one : kAll) {
    for (const IconId other : kAll) {
      if (one == other) continue;
      EXPECT_NE(ImageOf(one, 16), ImageOf(other, 16));
    }
  }
}

}  // namespace
}  // namespace bomparser::test
