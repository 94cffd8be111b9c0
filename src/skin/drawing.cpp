#include "skin/drawing.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <algorithm>
#include <cmath>

namespace mirellon::skin {

namespace {

// Halves go outward: what lies inside an outline grows at both ends, and the outline stays as thin as it can.
struct Span {
  qreal start;
  qreal length;

  [[nodiscard]] Span Snapped(qreal scale) const {
    const qreal first = std::ceil(start * scale - 0.5);
    const qreal last = std::floor((start + length) * scale + 0.5);
    return {first / scale, std::max(last - first, 1.0) / scale};
  }
};

QXmlStreamAttributes Snapped(const QXmlStreamAttributes& attributes, qreal scale) {
  const auto value = [&](const char* name) { return attributes.value(QLatin1String(name)).toDouble(); };
  const Span across = Span{value("x"), value("width")}.Snapped(scale);
  const Span down = Span{value("y"), value("height")}.Snapped(scale);
  QXmlStreamAttributes snapped;
  for (const QXmlStreamAttribute& attribute : attributes) {
    const QStringView name = attribute.name();
    const bool moved = name == QLatin1String("x") || name == QLatin1String("y") ||
                       name == QLatin1String("width") || name == QLatin1String("height");
    if (!moved) snapped.append(attribute);
  }
  snapped.append(QStringLiteral("x"), QString::number(across.start, 'f', 6));
  snapped.append(QStringLiteral("y"), QString::number(down.start, 'f', 6));
  snapped.append(QStringLiteral("width"), QString::number(across.length, 'f', 6));
  snapped.append(QStringLiteral("height"), QString::number(down.length, 'f', 6));
  return snapped;
}

}  // namespace

std::optional<QByteArray> InColours(const QByteArray& svg, const Scheme& scheme) {
  QByteArray coloured;
  qsizetype at = 0;
  for (qsizetype open = svg.indexOf('{'); open >= 0; open = svg.indexOf('{', at)) {
    const qsizetype close = svg.indexOf('}', open);
    if (close < 0) return std::nullopt;
    const QColor colour = ColourNamed(scheme, QByteArrayView(svg).sliced(open + 1, close - open - 1));
    if (!colour.isValid()) return std::nullopt;
    coloured += QByteArrayView(svg).sliced(at, open - at);
    coloured += colour.name().toLatin1();
    at = close + 1;
  }
  coloured += QByteArrayView(svg).sliced(at);
  return coloured;
}

QByteArray OnWholePixels(const QByteArray& svg, qreal scale) {
  QXmlStreamReader reader(svg);
  QByteArray snapped;
  QXmlStreamWriter writer(&snapped);
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement() && reader.name() == QLatin1String("rect")) {
      writer.writeStartElement(reader.namespaceUri().toString(), reader.name().toString());
      writer.writeAttributes(Snapped(reader.attributes(), scale));
    } else if (!reader.hasError()) {
      writer.writeCurrentToken(reader);
    }
  }
  return reader.hasError() ? svg : snapped;
}

}  // namespace mirellon::skin
