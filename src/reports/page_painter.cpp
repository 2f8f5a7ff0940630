#include "reports/page_painter.h"

#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <optional>

namespace thalvorn {
namespace {

using paper::LineStyle;
using paper::TextStyle;

QPen penOf(LineStyle style, double scale) {
  const auto& facts = paper::facts(style);
  return QPen(QColor(facts.colour), facts.width * scale, Qt::SolidLine, Qt::FlatCap);
}

/// The photo upright and no larger than paper shows; null when the file cannot be read.
QImage readPhoto(const QString& path, double widthInPoints, double heightInPoints) {
  QImageReader reader(path);
  reader.setAutoTransform(true);
  const QSize stored = reader.size();
  const double perPoint = paper::photoResolution / 72;
  if (stored.isValid()) {
    const double longest = std::max(widthInPoints, heightInPoints) * perPoint;
    const double shrink = longest / std::max(stored.width(), stored.height());
    if (shrink < 1) {
      reader.setScaledSize(
          QSize(std::max(1, qRound(stored.width() * shrink)), std::max(1, qRound(stored.height() * shrink))));
    }
  }
  return reader.read();
}

void paintPhoto(QPainter& painter, const PhotoItem& item, Typesetter& typesetter, double scale) {
  const QRectF place(item.x * scale, item.y * scale, item.width * scale, item.height * scale);
  const QString path = QString::fromStdString(item.photo->path);
  const QImage image = readPhoto(path, item.width, item.height);
  painter.setPen(penOf(LineStyle::frame, scale));
  painter.setBrush(Qt::NoBrush);
  if (image.isNull()) {
    painter.drawRect(place);
    const std::string text = "Photo not available:\n" + QFileInfo(path).fileName().toStdString();
    std::vector<TextLine> lines;
    typesetter.wrap(text, TextStyle::caption, item.width - 12, lines);
    const auto& facts = paper::facts(TextStyle::caption);
    painter.setPen(QColor(facts.colour));
    double y = item.y + item.height / 2;
    for (const auto& line : lines) {
      typesetter.draw(painter, QPointF(item.x + 6, y) * scale, line.text, line.plain, TextStyle::caption);
      y += facts.lineHeight;
    }
    typesetter.flush(painter);
    return;
  }
  const QSizeF size = QSizeF(image.size()).scaled(place.size(), Qt::KeepAspectRatio);
  const QRectF target(place.x(), place.y() + (place.height() - size.height()), size.width(), size.height());
  painter.drawImage(target, image);
  painter.drawRect(target);
}

}  // namespace

void paintPage(QPainter& painter, const Page& page, Typesetter& typesetter, double scale) {
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  for (const auto& photo : page.photos) paintPhoto(painter, photo, typesetter, scale);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(penOf(LineStyle::frame, scale));
  for (const auto& frame : page.frames) {
    const double radius = static_cast<double>(frame.radius) * scale;
    painter.drawRoundedRect(QRectF(frame.x * scale, frame.y * scale, frame.width * scale, frame.height * scale), radius,
                            radius);
  }
  for (const auto style : {LineStyle::hairline, LineStyle::rule, LineStyle::mark}) {
    QList<QLineF> lines;
    for (const auto& line : page.lines) {
      if (line.style == style) lines.emplaceBack(line.x1 * scale, line.y1 * scale, line.x2 * scale, line.y2 * scale);
    }
    painter.setPen(penOf(style, scale));
    painter.drawLines(lines);
  }
  painter.setPen(penOf(LineStyle::rule, scale));
  for (const auto& tick : page.ticks) {
    const QRectF box(tick.x * scale, tick.y * scale, paper::tickBoxSize * scale, paper::tickBoxSize * scale);
    painter.drawRect(box);
    if (tick.ticked) {
      const QPointF points[] = {box.topLeft() + QPointF(0.2 * box.width(), 0.5 * box.height()),
                                box.topLeft() + QPointF(0.42 * box.width(), 0.75 * box.height()),
                                box.topLeft() + QPointF(0.8 * box.width(), 0.22 * box.height())};
      painter.drawPolyline(points, 3);
    }
  }
  std::optional<TextStyle> current;
  for (const auto& text : page.texts) {
    if (text.style != current) {
      typesetter.flush(painter);
      painter.setPen(QPen(QColor(paper::facts(text.style).colour), 0.7 * scale));
    }
    current = text.style;
    typesetter.draw(painter, QPointF(text.x * scale, text.baseline * scale), text.text, text.plain, text.style);
    if (text.struck) {
      const double y = (text.baseline - 0.28 * paper::facts(text.style).size) * scale;
      painter.drawLine(QPointF(text.x * scale, y), QPointF((text.x + text.width) * scale, y));
    }
  }
  typesetter.flush(painter);
}

}  // namespace thalvorn
