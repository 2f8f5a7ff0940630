#pragma once

#include <qqmlregistration.h>
#include <QColor>
#include <QQuickItem>

namespace thalvorn::app {

/// One bundled icon, drawn in one colour at the exact pixel size of the screen it is on.
/// `name` is a drawing of assets/icons or a stored symbol name of the icon table; an unknown name is a warning.
class IconItem : public QQuickItem {
  Q_OBJECT
  QML_NAMED_ELEMENT(IconShape)
  Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

 public:
  explicit IconItem(QQuickItem* parent = nullptr);

  QString name() const { return name_; }
  void setName(const QString& name);
  QColor color() const { return color_; }
  void setColor(const QColor& color);

 Q_SIGNALS:
  void nameChanged();
  void colorChanged();

 protected:
  QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
  void geometryChange(const QRectF& now, const QRectF& before) override;
  void itemChange(ItemChange change, const ItemChangeData& value) override;

 private:
  void redraw();

  QString name_;
  QColor color_;
  bool stale_ = true;
};

}  // namespace thalvorn::app
