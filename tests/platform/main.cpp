#include <gtest/gtest.h>

#include <QCoreApplication>
#include <cstdio>

#include "platform/store_access.h"

namespace {

/// What the other process does in the tests of a store's ownership: becomes its window, says so, and stays.
int holdStore(const QString& storePath) {
  auto claimed = thalvorn::claimForWindow(storePath);
  if (!claimed || !std::holds_alternative<std::unique_ptr<thalvorn::SingleInstance>>(*claimed)) return 1;
  std::puts("holding");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.size() == 3 && arguments.at(1) == QLatin1StringView("--hold-store")) return holdStore(arguments.at(2));
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
