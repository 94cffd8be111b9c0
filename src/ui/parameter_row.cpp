#include "ui/parameter_row.h"

#include <QEvent>
#include <QGridLayout>

#include "ui/measures.h"
#include "ui/model/typed_value.h"

namespace mirellon::ui {

namespace {

profiles::ScrollCode CodeOf(int action) {
  switch (action) {
    case QAbstractSlider::SliderSingleStepSub:
      return profiles::ScrollCode::kLineUp;
    case QAbstractSlider::SliderSingleStepAdd:
      return profiles::ScrollCode::kLineDown;
    case QAbstractSlider::SliderPageStepSub:
      return profiles::ScrollCode::kPageUp;
    case QAbstractSlider::SliderPageStepAdd:
      return profiles::ScrollCode::kPageDown;
    default:
      return profiles::ScrollCode::kThumbTrack;
  }
}

}  // namespace

ParameterRow::ParameterRow(const profiles::SliderRow& row, int caption, const char* name, const Texts& texts,
                           QWidget* parent)
    : QWidget(parent),
      row_(row),
      caption_(new QLabel(texts(caption), this)),
      value_(new QLineEdit(this)),
      slider_(new QSlider(Qt::Horizontal, this)) {
  const QLatin1String field(name);
  caption_->setObjectName(QStringLiteral("caption.") + field);
  caption_->setToolTip(texts(249));
  caption_->installEventFilter(this);
  caption_->setBuddy(slider_);
  caption_->setWordWrap(true);
  value_->setObjectName(QStringLiteral("value.") + field);
  value_->setAccessibleName(texts(caption));
  value_->setAlignment(Qt::AlignRight);
  value_->setAcceptDrops(false);  // a photograph dropped here is the window's
  FitValue();
  slider_->setObjectName(QStringLiteral("slider.") + field);
  slider_->setRange(row.minPosition, row.maxPosition);
  slider_->setSingleStep(1);
  slider_->setPageStep(1);
  slider_->setFocusPolicy(Qt::StrongFocus);
  slider_->installEventFilter(this);
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(8);
  grid->setVerticalSpacing(4);
  grid->addWidget(caption_, 0, 0);
  grid->addWidget(value_, 0, 1);
  grid->addWidget(slider_, 1, 0, 1, 2);
  grid->setColumnStretch(0, 1);
  connect(slider_, &QSlider::actionTriggered, this, &ParameterRow::FollowAction);
  connect(slider_, &QSlider::sliderReleased, this, &ParameterRow::settled);
  connect(value_, &QLineEdit::editingFinished, this, &ParameterRow::Commit);
}

void ParameterRow::ShowValue(double value) {
  slider_->setValue(profiles::PositionOfValue(row_, value));
  ShowLabel(value);
}

void ParameterRow::ShowLabel(double value) {
  shown_ = value;
  value_->setText(QString::fromStdWString(profiles::ValueLabel(row_, value)));
  value_->setModified(false);
}

void ParameterRow::FollowAction(int action) {
  const profiles::SliderMove move =
      profiles::MoveSlider(row_, CodeOf(action), slider_->value(), slider_->sliderPosition());
  slider_->setSliderPosition(move.position);
  ShowLabel(move.value);
  emit moved(move.value);
}

void ParameterRow::Commit() {
  if (!value_->isModified()) return;
  const std::optional<double> value = TypedValue(row_, value_->text().toStdString());
  if (value) return Give(*value);
  ShowLabel(shown_);
}

void ParameterRow::Give(double value) {
  ShowValue(value);
  emit moved(value);
  emit settled();
}

void ParameterRow::FitValue() {
  value_->setFont(TabularFont(font()));
  value_->setFixedWidth(value_->fontMetrics().horizontalAdvance(QStringLiteral("-00.00")) + 16);
}

void ParameterRow::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) FitValue();
  QWidget::changeEvent(event);
}

bool ParameterRow::eventFilter(QObject* watched, QEvent* event) {
  if (watched == caption_ && event->type() == QEvent::MouseButtonDblClick && isEnabled()) {
    Give(row_.defaultValue);
    return true;
  }
  if (watched == slider_ && event->type() == QEvent::Wheel && !slider_->hasFocus()) {
    event->ignore();
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace mirellon::ui
