#include "ui/dialogs/quality_slider.h"

#include <QHBoxLayout>
#include <algorithm>

#include "ui/measures.h"

namespace mirellon::ui {

namespace {

constexpr int kLeast = 10;
constexpr int kMost = 100;

}  // namespace

QualitySlider::QualitySlider(int quality, const Texts& texts, QWidget* parent)
    : QWidget(parent), quality_(std::max(quality, kLeast)) {
  auto* label = new QLabel(texts(text::kJpegQuality), this);
  label->setObjectName(QStringLiteral("control1075"));
  slider_ = new QSlider(Qt::Horizontal, this);
  slider_->setObjectName(QStringLiteral("control1082"));
  slider_->setRange(kLeast, kMost);
  slider_->setPageStep(1);
  slider_->setValue(quality_);
  label->setBuddy(slider_);
  value_ = new QLabel(QString::number(quality_), this);
  value_->setObjectName(QStringLiteral("control1083"));
  value_->setFont(TabularFont(value_->font()));
  value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  value_->setMinimumWidth(value_->fontMetrics().horizontalAdvance(QStringLiteral("100")));
  auto* percent = new QLabel(QStringLiteral("%"), this);
  percent->setObjectName(QStringLiteral("control1078"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(8);
  row->addWidget(label);
  row->addWidget(slider_, 1);
  row->addWidget(value_);
  row->addWidget(percent);
  connect(slider_, &QSlider::actionTriggered, this, &QualitySlider::Follow);
}

void QualitySlider::Follow(int action) {
  switch (action) {
    case QAbstractSlider::SliderSingleStepSub:
    case QAbstractSlider::SliderPageStepSub:
      quality_ = slider_->value() - 1;
      break;
    case QAbstractSlider::SliderSingleStepAdd:
    case QAbstractSlider::SliderPageStepAdd:
      quality_ = slider_->value() + 1;
      break;
    default:
      quality_ = slider_->sliderPosition();
  }
  value_->setText(QString::number(quality_));
}

}  // namespace mirellon::ui
