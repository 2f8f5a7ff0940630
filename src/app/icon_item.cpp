#include "app/icon_item.h"

#include <QtQml/qqmlinfo.h>
#include <QCache>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSvgRenderer>

#include "app/icon_table.h"
#include "app/text.h"

namespace thalvorn::app {

namespace {

QString drawingPath(const QString& name) {
  const QByteArray utf8 = name.toUtf8();
  const std::string_view drawing = iconDrawing({utf8.constData(), static_cast<std::size_t>(utf8.size())});
  return QStringLiteral(":/icons/%1.svg").arg(toQt(drawing));
}

/// The drawing in `color`, `pixels` wide and high. Shared by all items of a render thread: a list shows the same few
/// icons many times.
QImage tintedIcon(const QString& name, const QColor& color, int pixels) {
  thread_local QCache<QString, QImage> cache(400);
  const QString key = QStringLiteral("%1|%2|%3").arg(name, QString::number(color.rgba(), 16), QString::number(pixels));
  if (const QImage* hit = cache.object(key)) return *hit;
  QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QSvgRenderer renderer(drawingPath(name));
  QPainter painter(&image);
  renderer.render(&painter, QRectF(0, 0, pixels, pixels));
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), color);
  painter.end();
  cache.insert(key, new QImage(image));
  return image;
}

}  // namespace

IconItem::IconItem(QQuickItem* parent) : QQuickItem(parent) { setFlag(ItemHasContents); }

void IconItem::setName(const QString& name) {
  if (name == name_) return;
  name_ = name;
  if (!name_.isEmpty() && !QFile::exists(drawingPath(name_))) qmlWarning(this) << "There is no icon named" << name_;
  redraw();
  Q_EMIT nameChanged();
}

void IconItem::setColor(const QColor& color) {
  if (color == color_) return;
  color_ = color;
  redraw();
  Q_EMIT colorChanged();
}

void IconItem::redraw() {
  stale_ = true;
  update();
}

void IconItem::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickItem::geometryChange(now, before);
  if (now.size() != before.size()) redraw();
}

void IconItem::itemChange(ItemChange change, const ItemChangeData& value) {
  QQuickItem::itemChange(change, value);
  if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) redraw();
}

QSGNode* IconItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
  auto* node = static_cast<QSGImageNode*>(old);
  const double side = std::min(width(), height());
  if (name_.isEmpty() || side <= 0 || color_.alpha() == 0) {
    delete node;
    stale_ = true;
    return nullptr;
  }
  if (!node) {
    node = window()->createImageNode();
    node->setOwnsTexture(true);
    stale_ = true;
  }
  if (stale_) {
    const int pixels = std::max(1, static_cast<int>(std::lround(side * window()->effectiveDevicePixelRatio())));
    node->setTexture(window()->createTextureFromImage(tintedIcon(name_, color_, pixels)));
    stale_ = false;
  }
  node->setFiltering(QSGTexture::Linear);
  node->setRect(QRectF((width() - side) / 2, (height() - side) / 2, side, side));
  return node;
}

}  // namespace thalvorn::app
