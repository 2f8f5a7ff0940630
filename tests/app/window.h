#pragma once

#include <gtest/gtest.h>

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTest>
#include <memory>

#include "app/composition.h"

namespace thalvorn::app {

/// The program's own window over an empty fleet, one for all tests that look at it; each begins on the home page.
class Window : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    prepareApplication();
    composition_ = new Composition(Options{.selfTest = true, .size = QSize(1366, 768)});
    ASSERT_TRUE(composition_->claimStore());
    ASSERT_TRUE(composition_->show());
    ASSERT_TRUE(QTest::qWaitForWindowExposed(composition_->window()));
    composition_->window()->requestActivate();
  }
  static void TearDownTestSuite() {
    delete composition_;
    composition_ = nullptr;
  }
  void SetUp() override {
    app().open(QStringLiteral("home"));
    settle();
  }

  static AppController& app() { return composition_->app(); }
  static QQuickWindow* window() { return composition_->window(); }
  static void settle() {
    for (int round = 0; round < 5; ++round) QCoreApplication::processEvents();
  }
  static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::keyClick(window(), static_cast<Qt::Key>(key), modifiers);
    settle();
  }
  static void type(const QString& text) {
    for (const QChar letter : text) QTest::keyClick(window(), letter.toLatin1());
    settle();
  }

  /// A controller by its name in QML.
  static QObject* controller(const char* name) {
    return qmlEngine(window())->singletonInstance<QObject*>(qmlTypeId("Thalvorn", 1, 0, name));
  }

  /// An item of the given QML over the window's content, gone at the end of the test.
  QQuickItem* make(const QByteArray& qml) {
    QQmlComponent component(qmlEngine(window()));
    component.setData("import QtQuick\nimport Thalvorn\n" + qml, QUrl(QStringLiteral("qrc:/qml/Thalvorn/Test.qml")));
    item_.reset(qobject_cast<QQuickItem*>(component.create()));
    EXPECT_TRUE(item_) << component.errorString().toStdString();
    if (!item_) return nullptr;
    item_->setParentItem(window()->contentItem());
    item_->setZ(100);
    settle();
    return item_.get();
  }
  void TearDown() override {
    item_.reset();
    settle();
  }

  std::unique_ptr<QQuickItem> item_;
  static inline Composition* composition_ = nullptr;
};

}  // namespace thalvorn::app
