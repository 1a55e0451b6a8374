#include "tests/ui/desktop/DesktopTest.h"

#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QPixmap>
#include <QScreen>
#include <QTableView>
#include <set>

namespace bomparser::test {
namespace {

/// Needs a display, whose picture it takes as it is there.
class DesktopRealWindowTest : public DesktopTest {
 protected:
  static QImage Screen() {
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage().convertToFormat(
        QImage::Format_RGB32);
  }
  static std::size_t CountColours(const QImage& picture) {
    std::set<QRgb> colours;
    constexpr int kEvery = 3;
    for (int y = 0; y < picture.height(); y += kEvery) {
      for (int x = 0; x < picture.width(); x += kEvery)
        colours.insert(picture.pixel(x, y));
    }
    return colours.size();
  }
  static void Save(const QImage& picture) {
    const QString folder = QStringLiteral(BOMPARSER_SCREENSHOTS);
    QDir().mkpath(folder);
    const QString name =
        QStringLiteral("real-window-%1x%2.png").arg(picture.width()).arg(picture.height());
    EXPECT_TRUE(picture.save(folder + u'/' + name));
  }
};

TEST_F(DesktopRealWindowTest, TheDialogIsSeenOnTheScreenAndTakesKeys) {
  const std::string example = BOMPARSER_SOURCE_DIR "/examples/placement/";
  EXPECT_EQ(Open({"--template", example + "template.xml", "--input", example + "input.txt"},
                 [](QDialog& dialog) {
                   EXPECT_NE(QGuiApplication::platformName(), "offscreen");
                   ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
                   EXPECT_LE(dialog.width(), QGuiApplication::primaryScreen()->size().width());
                   EXPECT_LE(dialog.height(), QGuiApplication::primaryScreen()->size().height());
                   auto* const rows = FindControl<QTableView>(dialog, Ctrl::InputRows);
                   EXPECT_EQ(rows->model()->rowCount(), 22);
                   auto* const filter = FindControl<QLineEdit>(dialog, Ctrl::FilterText);
                   dialog.activateWindow();
                   filter->setFocus();
                   QTest::keyClicks(filter, "RES");
                   EXPECT_TRUE(QTest::qWaitFor([&] { return rows->model()->rowCount() == 3; }));
                   // A screen without windows has a colour or two.
                   EXPECT_TRUE(QTest::qWaitFor([] { return CountColours(Screen()) > 20; }, 20'000));
                   Save(Screen());
                   QTest::keyClick(filter, Qt::Key_Escape);
                   QTest::keyClick(&dialog, Qt::Key_Escape);
                   EXPECT_FALSE(dialog.isVisible());
                 }),
            0);
  EXPECT_TRUE(refusals.empty());
}

}  // namespace
}  // namespace bomparser::test
