#include <QApplication>
#include <QLocale>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication::setStyle(QStringLiteral("Fusion"));
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("bomparser"));
  // Boxes and pop-ups must not depend on how long the machine takes to animate them.
  QApplication::setEffectEnabled(Qt::UI_AnimateMenu, false);
  QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
  QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
  return RUN_ALL_TESTS();
}
