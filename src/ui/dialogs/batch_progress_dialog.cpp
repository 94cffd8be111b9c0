#include "ui/dialogs/batch_progress_dialog.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QPushButton>
#include <QTextDocument>
#include <algorithm>
#include <limits>

#include "base/text.h"
#include "batch/time_estimate.h"
#include "ui/elided_label.h"
#include "ui/mnemonics.h"

namespace mirellon::ui {

namespace {

constexpr int kTickMs = 1000;

QString Clock(std::uint32_t seconds) {
  return QString::fromStdString(batch::ClockText(seconds));
}

QLabel* ValueLabel(const char* name, const QString& caption, QWidget* parent) {
  auto* label = new QLabel(Clock(0), parent);
  label->setObjectName(QLatin1String(name));
  label->setAccessibleName(caption);
  label->setAlignment(Qt::AlignTrailing | Qt::AlignVCenter);
  return label;
}

}  // namespace

BatchProgressDialog::BatchProgressDialog(const Texts& texts, QWidget* parent)
    : QDialog(parent),
      entry_(new ElidedLabel(Qt::ElideMiddle, this)),
      before_(new ThumbnailView(this)),
      after_(new ThumbnailView(this)),
      bar_(new QProgressBar(this)),
      estimateText_(ValueLabel("control1009", texts(74), this)),
      elapsedText_(ValueLabel("control1010", texts(75), this)),
      remainingText_(ValueLabel("remaining", texts(text::kRemaining), this)) {
  setObjectName(QStringLiteral("batchProgressDialog"));
  setWindowTitle(texts(text::kBatch));
  entry_->setObjectName(QStringLiteral("entry"));
  before_->setObjectName(QStringLiteral("thumbnailBefore"));
  before_->setAccessibleName(texts(text::kBefore));
  after_->setObjectName(QStringLiteral("thumbnailAfter"));
  after_->setAccessibleName(texts(text::kAfter));
  bar_->setObjectName(QStringLiteral("control1008"));
  bar_->setAccessibleName(texts(text::kBatch));
  bar_->setTextVisible(false);
  bar_->setFixedHeight(8);
  bar_->setRange(0, 1);  // until the images are counted
  bar_->setValue(0);
  remainingText_->clear();
  Build(texts);
  connect(&timer_, &QTimer::timeout, this, &BatchProgressDialog::Tick);
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.start(kTickMs);
}

void BatchProgressDialog::Build(const Texts& texts) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  Mnemonics mnemonics;
  QPushButton* cancel = buttons->button(QDialogButtonBox::Cancel);
  cancel->setObjectName(QStringLiteral("cancel2"));
  cancel->setText(mnemonics(texts(text::kCancel)));
  const auto caption = [&](int number, const char* name) {
    auto* label = new QLabel(texts(number), this);
    label->setObjectName(QLatin1String(name));
    return label;
  };
  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(16, 16, 16, 16);
  grid->setSpacing(8);
  constexpr int kGroupGap = 8;  // beside the spacing
  int row = 0;
  const auto pair = [&](QWidget* left, QWidget* right) {
    grid->addWidget(left, row, 0);
    grid->addWidget(right, row++, 1);
  };
  grid->addWidget(entry_, row++, 0, 1, 2);
  grid->setRowStretch(row, 1);
  pair(before_, after_);
  QLabel* beforeText = caption(text::kBefore, "captionBefore");
  QLabel* afterText = caption(text::kAfter, "captionAfter");
  for (QLabel* label : {beforeText, afterText}) label->setAlignment(Qt::AlignCenter);
  pair(beforeText, afterText);
  grid->setRowMinimumHeight(row++, kGroupGap);
  grid->addWidget(bar_, row++, 0, 1, 2);
  pair(caption(74, "control1075"), estimateText_);
  pair(caption(75, "control1078"), elapsedText_);
  pair(caption(text::kRemaining, "captionRemaining"), remainingText_);
  grid->setRowMinimumHeight(row++, kGroupGap);
  grid->addWidget(buttons, row, 0, 1, 2);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void BatchProgressDialog::SetTotal(std::uint32_t images) {
  counted_ = true;
  total_ = images;
  constexpr std::uint32_t kMost = std::numeric_limits<int>::max();
  bar_->setRange(0, static_cast<int>(std::clamp(images, 1U, kMost)));
  // Counted later than the first ones were done.
  if (finished_ > 0) estimateText_->setText(Clock(batch::EstimateTotal(elapsed_, total_, finished_ - 1)));
  ShowCounts();
}

void BatchProgressDialog::ShowEntry(const std::filesystem::path& file) {
  entry_->setText(ShownName(file));
  const QString path = QString::fromStdString(base::PrintableName(file.native()));
  entry_->setToolTip(Qt::convertFromPlainText(path));
  before_->Show({});
  after_->Show({});
}

void BatchProgressDialog::ImageDone() {
  if (counted_) estimateText_->setText(Clock(batch::EstimateTotal(elapsed_, total_, finished_)));
  ++finished_;
  ShowCounts();
}

void BatchProgressDialog::ShowCounts() {
  if (!counted_) return;
  // What is worked on need not be what was counted.
  bar_->setValue(
      static_cast<int>(std::min<std::uint32_t>(finished_, static_cast<std::uint32_t>(bar_->maximum()))));
  remainingText_->setText(QString::number(total_ - std::min(finished_, total_)));
}

void BatchProgressDialog::Tick() {
  ++elapsed_;
  elapsedText_->setText(Clock(elapsed_));
}

void BatchProgressDialog::done(int result) {
  timer_.stop();
  QDialog::done(result);
}

}  // namespace mirellon::ui
