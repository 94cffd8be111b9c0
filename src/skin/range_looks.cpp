#include <QStyle>
#include <algorithm>
#include <chrono>

#include "skin/looks.h"

namespace mirellon::skin {

namespace {

constexpr int kTrack = 4;
constexpr int kTrackInset = 4;
constexpr int kLeastKnob = 32;

// The track on both sides of the knob's middle; the part towards the least value first.
struct TrackParts {
  QRectF done;
  QRectF rest;
};

TrackParts PartsOf(const QStyleOptionSlider& slider, const QRect& handle) {
  const QPointF middle = QRectF(handle).center();
  QRectF whole(slider.rect);
  QRectF first;
  QRectF second;
  if (slider.orientation == Qt::Horizontal) {
    whole = QRectF(whole.left() + kTrackInset, middle.y() - kTrack / 2.0, whole.width() - 2 * kTrackInset,
                   kTrack);
    first = second = whole;
    first.setRight(middle.x());
    second.setLeft(middle.x());
  } else {
    whole = QRectF(middle.x() - kTrack / 2.0, whole.top() + kTrackInset, kTrack,
                   whole.height() - 2 * kTrackInset);
    first = second = whole;
    first.setBottom(middle.y());
    second.setTop(middle.y());
  }
  return slider.upsideDown ? TrackParts{second, first} : TrackParts{first, second};
}

// A third of the bar, on its way there and back.
QRectF BusyPart(const QStyleOptionProgressBar& bar) {
  constexpr std::chrono::milliseconds kThereAndBack(2400);
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(now) % kThereAndBack;
  const qreal phase = static_cast<qreal>(since.count()) / static_cast<qreal>(kThereAndBack.count());
  QRectF part(bar.rect);
  part.setWidth(part.width() / 3);
  part.translate((bar.rect.width() - part.width()) * (phase < 0.5 ? 2 * phase : 2 - 2 * phase), 0);
  return part;
}

QRectF DonePart(const QStyleOptionProgressBar& bar) {
  const qreal range = static_cast<qreal>(bar.maximum) - bar.minimum;
  const qreal share = range <= 0 ? 0 : (static_cast<qreal>(bar.progress) - bar.minimum) / range;
  QRectF done(bar.rect);
  const qreal length = std::clamp<qreal>(share, 0, 1) * done.width();
  const bool fromRight = (bar.direction == Qt::RightToLeft) != bar.invertedAppearance;
  if (fromRight) {
    done.setLeft(done.right() - length);
  } else {
    done.setWidth(length);
  }
  return done;
}

bool CanDraw(const QStyleOptionProgressBar& bar) {
  return bar.state.testFlag(QStyle::State_Horizontal);
}

}  // namespace

bool IsBusy(const QStyleOptionProgressBar& bar) {
  return bar.minimum == 0 && bar.maximum == 0;
}

bool DrawSlider(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSlider& slider,
                const QWidget* widget) {
  const QRect handle = style.subControlRect(QStyle::CC_Slider, &slider, QStyle::SC_SliderHandle, widget);
  const TrackParts parts = PartsOf(slider, handle);
  const bool enabled = slider.state.testFlag(QStyle::State_Enabled);
  const bool pressed = slider.state.testFlag(QStyle::State_Sunken) &&
                       slider.activeSubControls.testFlag(QStyle::SC_SliderHandle);
  const bool focus = enabled && slider.state.testFlag(QStyle::State_HasFocus);
  const PartState knob = StateOf(enabled, slider.state.testFlag(QStyle::State_MouseOver) || focus, pressed);
  if (!canvas.Has(Part::kThumb, knob)) return false;
  if (!canvas.Stretch(Part::kTrack, StateOf(enabled, false, false), parts.rest) ||
      !canvas.Stretch(Part::kTrack, StateOf(enabled, false, true), parts.done)) {
    return false;
  }
  canvas.Centre(Part::kThumb, knob, handle);
  return !focus || canvas.Centre(Part::kFocusRound, PartState::kOn, handle);
}

bool DrawScrollBar(const SkinCanvas& canvas, const QStyle& style, const QStyleOptionSlider& bar,
                   const QWidget* widget) {
  const bool usable = bar.maximum > bar.minimum;
  const bool pressed =
      bar.state.testFlag(QStyle::State_Sunken) && bar.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider);
  const PartState state = StateOf(bar.state.testFlag(QStyle::State_Enabled),
                                  bar.state.testFlag(QStyle::State_MouseOver), pressed);
  if (!canvas.Has(Part::kScroll, state)) return false;
  canvas.painter().fillRect(bar.rect, bar.palette.color(QPalette::Window));
  if (!usable) return true;
  return canvas.Stretch(Part::kScroll, state,
                        style.subControlRect(QStyle::CC_ScrollBar, &bar, QStyle::SC_ScrollBarSlider, widget));
}

QRect ScrollBarPart(const QStyleOptionSlider& bar, QStyle::SubControl part) {
  const bool upright = bar.orientation == Qt::Vertical;
  const int length = upright ? bar.rect.height() : bar.rect.width();
  const qint64 range = static_cast<qint64>(bar.maximum) - bar.minimum;
  int knob = length;
  if (range > 0) {
    knob = static_cast<int>(static_cast<qint64>(bar.pageStep) * length / (range + bar.pageStep));
    knob = std::min(std::max(knob, kLeastKnob), length);
  }
  const int start = QStyle::sliderPositionFromValue(bar.minimum, bar.maximum, bar.sliderPosition,
                                                    length - knob, bar.upsideDown);
  const auto span = [&](int first, int size) {
    const QRect rect =
        upright ? QRect(0, first, bar.rect.width(), size) : QRect(first, 0, size, bar.rect.height());
    return QStyle::visualRect(bar.direction, bar.rect, rect.translated(bar.rect.topLeft()));
  };
  switch (part) {
    case QStyle::SC_ScrollBarSlider:
      return span(start, knob);
    case QStyle::SC_ScrollBarSubPage:
      return span(0, start);
    case QStyle::SC_ScrollBarAddPage:
      return span(start + knob, length - start - knob);
    case QStyle::SC_ScrollBarGroove:
      return bar.rect;
    default:
      return {};
  }
}

bool DrawProgressGroove(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar) {
  if (!CanDraw(bar)) return false;
  return canvas.Stretch(Part::kProgress, StateOf(bar.state.testFlag(QStyle::State_Enabled), false, false),
                        bar.rect);
}

bool DrawProgressContents(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar) {
  if (!CanDraw(bar)) return false;
  QRectF done = IsBusy(bar) ? BusyPart(bar) : DonePart(bar);
  if (done.width() <= 0) return true;
  // The first sign of progress is a whole rounded end.
  const qreal least = std::min<qreal>(bar.rect.height(), bar.rect.width());
  if (done.width() < least) {
    if (done.right() >= bar.rect.x() + bar.rect.width()) {
      done.setLeft(done.right() - least);
    } else {
      done.setWidth(least);
    }
  }
  return canvas.Stretch(Part::kProgress, StateOf(bar.state.testFlag(QStyle::State_Enabled), false, true),
                        done);
}

void DrawProgressText(const SkinCanvas& canvas, const QStyleOptionProgressBar& bar) {
  if (!bar.textVisible || bar.text.isEmpty()) return;
  const bool enabled = bar.state.testFlag(QStyle::State_Enabled);
  const QRectF done = DonePart(bar);
  QPainter& painter = canvas.painter();
  const auto write = [&](const QRectF& where, const QColor& colour) {
    painter.save();
    painter.setClipRect(where, Qt::IntersectClip);
    painter.setPen(colour);
    painter.drawText(bar.rect, Qt::AlignCenter | Qt::TextSingleLine, bar.text);
    painter.restore();
  };
  const Scheme& scheme = canvas.scheme();
  QRectF rest(bar.rect);
  if (done.left() > rest.left()) {
    rest.setRight(done.left());
  } else {
    rest.setLeft(done.right());
  }
  write(rest, scheme.text);
  write(done, enabled ? scheme.onAccent : scheme.window);
}

}  // namespace mirellon::skin
