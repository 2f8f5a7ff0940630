#include <gmock/gmock.h>

#include <QtCore/QCoreApplication>

#include "store/kill_child.h"

int main(int argc, char** argv) {
  if (const auto status = thalvorn::testing_tools::runAsKilledChild(argc, argv)) return *status;
  testing::InitGoogleMock(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
