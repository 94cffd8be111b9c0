#include "ui/dialogs/batch_progress_dialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QPushButton>
#include <algorithm>
#include <limits>

#include "batch/time_estimate.h"

namespace mirellon::ui {

namespace {

constexpr int kTickMs = 1000;

QString Clock(std::uint32_t seconds) {
  return QString::fromStdString(batch::ClockText(seconds));
}

}  // namespace

BatchProgressDialog::BatchProgressDialog(const Texts& texts, QWidget* parent)
    : QDialog(parent),
      entry_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      estimate_(new QLabel(Clock(0), this)),
      elapsedText_(new QLabel(Clock(0), this)) {
  setObjectName(QStringLiteral("batchProgressDialog"));
  setWindowTitle(texts(73));
  entry_->setObjectName(QStringLiteral("entry"));
  entry_->setTextFormat(Qt::PlainText);
  entry_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  bar_->setObjectName(QStringLiteral("control1008"));
  bar_->setTextVisible(false);
  bar_->setFixedHeight(8);
  bar_->setRange(0, 0);  // until the images are counted
  estimate_->setObjectName(QStringLiteral("control1009"));
  estimate_->setAlignment(Qt::AlignRight);
  elapsedText_->setObjectName(QStringLiteral("control1010"));
  elapsedText_->setAlignment(Qt::AlignRight);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Cancel)->setText(texts(text::kCancel));
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(16, 16, 16, 16);
  grid->setSpacing(8);
  grid->setColumnMinimumWidth(1, 200);
  grid->addWidget(entry_, 0, 0, 1, 2);
  grid->addWidget(bar_, 1, 0, 1, 2);
  grid->addWidget(new QLabel(texts(74), this), 2, 0);
  grid->addWidget(estimate_, 2, 1);
  grid->addWidget(new QLabel(texts(75), this), 3, 0);
  grid->addWidget(elapsedText_, 3, 1);
  grid->addWidget(buttons, 4, 0, 1, 2);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(&timer_, &QTimer::timeout, this, &BatchProgressDialog::Tick);
  timer_.start(kTickMs);
}

void BatchProgressDialog::SetTotal(std::uint32_t images) {
  total_ = images;
  constexpr std::uint32_t kMost = std::numeric_limits<int>::max();
  bar_->setRange(0, static_cast<int>(std::clamp(images, 1U, kMost)));
  bar_->setValue(static_cast<int>(finished_));
}

void BatchProgressDialog::ShowEntry(const std::filesystem::path& file) {
  entry_->setText(ShownName(file));
}

void BatchProgressDialog::ImageDone() {
  estimate_->setText(Clock(batch::EstimateTotal(elapsed_, total_, finished_)));
  ++finished_;
  bar_->setValue(static_cast<int>(finished_));
}

void BatchProgressDialog::Tick() {
  ++elapsed_;
  elapsedText_->setText(Clock(elapsed_));
}

}  // namespace mirellon::ui
