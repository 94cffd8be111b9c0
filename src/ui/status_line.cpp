#include "ui/status_line.h"

#include "ui/elided_label.h"
#include "ui/model/view_texts.h"

namespace mirellon::ui {

namespace {

constexpr int kNoteMs = 6000;
constexpr int kWholeBar = 1000;
constexpr int kWorkDelayMs = 250;

}  // namespace

StatusLine::StatusLine(const Texts& texts, QWidget* parent)
    : QStatusBar(parent),
      texts_(texts),
      hint_(new ElidedLabel(Qt::ElideRight, this)),
      bar_(new QProgressBar(this)),
      stop_(new QPushButton(texts(text::kAbort), this)),
      photograph_(new QLabel(this)),
      zoom_(new QLabel(this)) {
  setObjectName(QStringLiteral("statusLine"));
  setSizeGripEnabled(false);
  setContentsMargins(8, 0, 8, 0);
  hint_->setObjectName(QStringLiteral("hint"));
  bar_->setObjectName(QStringLiteral("statusProgress"));
  bar_->setAccessibleName(texts(text::kProgress));
  bar_->setRange(0, kWholeBar);
  bar_->setTextVisible(false);
  bar_->setFixedSize(140, 8);
  bar_->hide();
  stop_->setObjectName(QStringLiteral("statusAbort"));
  stop_->hide();
  photograph_->setObjectName(QStringLiteral("photographInfo"));
  zoom_->setObjectName(QStringLiteral("zoomInfo"));
  photograph_->setContentsMargins(8, 0, 8, 0);
  zoom_->setContentsMargins(8, 0, 0, 0);
  addWidget(hint_, 1);
  addPermanentWidget(bar_);
  addPermanentWidget(stop_);
  addPermanentWidget(photograph_);
  addPermanentWidget(zoom_);
  noteTimer_.setSingleShot(true);
  workTimer_.setSingleShot(true);
  connect(&noteTimer_, &QTimer::timeout, this, [this] {
    note_.clear();
    UpdateHint();
  });
  connect(&workTimer_, &QTimer::timeout, this, &StatusLine::UpdateHint);
  connect(stop_, &QPushButton::clicked, this, &StatusLine::stopRequested);
}

void StatusLine::SetHint(const QString& hint) {
  hintText_ = hint;
  UpdateHint();
}

void StatusLine::Note(const QString& note) {
  note_ = note;
  noteTimer_.start(kNoteMs);
  UpdateHint();
}

void StatusLine::ShowPhotograph(const Photograph& photograph) {
  if (photograph.source == nullptr) {
    photograph_->clear();
    zoom_->clear();
    return;
  }
  const picture::SBxPicBuf& shown = photograph.display->level(0);  // upright
  const QString noise = texts_(text::kNoise)
                            .arg(photograph.noise.luminance, 0, 'f', 1)
                            .arg(photograph.noise.chrominance, 0, 'f', 1);
  photograph_->setText(
      QStringLiteral("%1×%2 · %3 · %4")
          .arg(shown.width)
          .arg(shown.height)
          .arg(texts_(text::kBits).arg(photograph.source->record().bitsPerComponent), noise));
}

void StatusLine::ShowZoom(double zoom) {
  zoom_->setText(QString::fromStdString(ZoomText(zoom)));
}

void StatusLine::ShowWork(const QString& work, bool stoppable) {
  const bool begins = work_.isEmpty() && !work.isEmpty();
  work_ = work;
  stoppable_ = stoppable;
  bar_->setValue(0);
  if (begins) workTimer_.start(kWorkDelayMs);
  if (work.isEmpty()) workTimer_.stop();
  UpdateHint();
}

void StatusLine::ShowProgress(std::optional<int> permille) {
  bar_->setRange(0, permille ? kWholeBar : 0);
  bar_->setValue(permille.value_or(0));
}

void StatusLine::UpdateHint() {
  const bool working = !work_.isEmpty() && !workTimer_.isActive();
  bar_->setVisible(working);
  stop_->setVisible(working && stoppable_);
  if (working) {
    hint_->setText(work_);
  } else {
    hint_->setText(note_.isEmpty() ? hintText_ : note_);
  }
  hint_->setToolTip(PlainToolTip(hint_->text()));
}

}  // namespace mirellon::ui
