#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QLocale>

int main(int argc, char* argv[]) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
  const QGuiApplication application(argc, argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
