#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QLoggingCategory>

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  const QCoreApplication application(argc, argv);
  if (!qEnvironmentVariableIsSet("THALVORN_TRACE"))
    QLoggingCategory::setFilterRules(QStringLiteral("thalvorn.*.info=false\nthalvorn.*.warning=false"));
  return RUN_ALL_TESTS();
}
