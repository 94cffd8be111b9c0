// How the panel is put together.
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QScreen>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <initializer_list>

#include "skin/icon_engine.h"
#include "skin/skin_style.h"
#include "ui/measures.h"
#include "ui/parameter_panel.h"
#include "ui/plain_list.h"

namespace mirellon::ui {

namespace {

constexpr int kPanelWidth = 336;
constexpr int kPanelCharacters = 46;  // where they are larger than usual
constexpr int kInside = 8;
constexpr int kBetweenGroups = 16;
constexpr int kBesideScrollBar = 4;  // with the bar as much as on the left
constexpr int kLeastIcon = 16;
constexpr int kPauseMs = 150;

// In the order of the sliders.
struct SliderLook {
  const char* name;
  int caption;
};
constexpr std::array<SliderLook, profiles::kSliders.size()> kLooks{{{"m_dStrength", 116},
                                                                    {"m_dStrengthChroma", 117},
                                                                    {"m_dStrengthChromaLarge", 118},
                                                                    {"m_dDynamics", 119},
                                                                    {"m_dSharp1", 127},
                                                                    {"m_dSharp2", 128},
                                                                    {"m_dSharp3", 129}}};

QIcon Icon(const char* name) {
  return skin::StrokeIcon(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
}

// Some texts say with ";" where a list may break them.
QString InOneLine(QString text) {
  return text.replace(QLatin1Char(';'), QLatin1Char(' '));
}

}  // namespace

void ParameterPanel::Build() {
  setObjectName(QStringLiteral("parameterPanel"));
  content_ = new QWidget;
  auto* column = new QVBoxLayout(content_);
  column->setContentsMargins(kBetweenGroups, kBetweenGroups, kBesideScrollBar, kInside);
  column->setSpacing(kBetweenGroups);
  profileRows_ = BuildProfileRows();
  column->addWidget(profileRows_);
  infoBox_ = new QGroupBox(texts_(131), content_);
  infoBox_->setObjectName(QStringLiteral("imageInfoBox"));
  info_ = new QLabel(infoBox_);
  info_->setObjectName(QStringLiteral("imageInfo"));
  info_->setTextFormat(Qt::PlainText);
  info_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  info_->setWordWrap(true);
  auto* infoColumn = new QVBoxLayout(infoBox_);
  infoColumn->setContentsMargins(0, kInside, 0, 0);
  infoColumn->addWidget(info_);
  column->addWidget(infoBox_);
  manualSwitch_ = BuildManualSwitch();
  column->addWidget(manualSwitch_);
  column->addWidget(BuildManualControls());
  column->addStretch(1);

  scroll_ = new QScrollArea(this);
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setFocusPolicy(Qt::NoFocus);  // what is in it has the focus, and brings itself into view
  scroll_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);  // empty, it is not to be seen
  scroll_->setWidgetResizable(true);
  scroll_->setWidget(content_);
  auto* whole = new QVBoxLayout(this);
  whole->setContentsMargins(0, 0, 0, 0);
  whole->setSpacing(0);
  whole->addWidget(scroll_, 1);
  footer_ = BuildFooter();
  whole->addWidget(footer_);
  content_->installEventFilter(this);
  FitWidth();
  pause_.setSingleShot(true);
  pause_.setInterval(kPauseMs);
}

QWidget* ParameterPanel::BuildProfileRows() {
  auto* rows = new QWidget(content_);
  auto* grid = new QGridLayout(rows);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setSpacing(kInside);
  camera_ = new QComboBox(rows);
  camera_->setObjectName(QStringLiteral("cameraList"));
  camera_->setToolTip(texts_(251));
  camera_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  DressList(*camera_, texts_(130));
  iso_ = new QComboBox(rows);
  iso_->setObjectName(QStringLiteral("isoList"));
  iso_->setToolTip(texts_(251));
  DressList(*iso_, texts_(250));
  const auto button = [&](const char* name, const char* icon, int text, int meaning) {
    auto* made = new QToolButton(rows);
    made->setObjectName(QLatin1String(name));
    made->setIcon(Icon(icon));
    made->setIconSize(IconSize(*this, kLeastIcon));
    made->setText(texts_(text));
    made->setAccessibleName(texts_(meaning));  // "Save As..." is a command of the window, too
    return made;
  };
  measure_ = button("measureSetting", "measure", text::kMeasure, text::kMeasure);
  keep_ = button("saveSetting", "SETTINGS_SAVE", 123, 145);
  delete_ = button("deleteSetting", "SETTINGS_DELETE", 124, 146);
  auto* cameraLabel = new QLabel(texts_(130), rows);
  cameraLabel->setBuddy(camera_);
  auto* isoLabel = new QLabel(texts_(250), rows);
  isoLabel->setBuddy(iso_);
  grid->addWidget(cameraLabel, 0, 0);
  grid->addWidget(camera_, 0, 1, 1, 4);
  grid->addWidget(isoLabel, 1, 0);
  grid->addWidget(iso_, 1, 1);
  grid->addWidget(measure_, 1, 2);
  grid->addWidget(keep_, 1, 3);
  grid->addWidget(delete_, 1, 4);
  grid->setColumnStretch(1, 1);
  return rows;
}

QWidget* ParameterPanel::BuildManualSwitch() {
  auto* line = new QWidget(content_);
  auto* row = new QHBoxLayout(line);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(kInside);
  manual_ = new QToolButton(line);
  manual_->setObjectName(QStringLiteral("manualTuning"));
  manual_->setIconSize(IconSize(*this, kLeastIcon));
  manual_->setCheckable(true);
  manual_->setAccessibleName(texts_(147));
  auto* label = new QLabel(QStringLiteral("%1\n%2").arg(texts_(147), texts_(149)), line);
  label->setObjectName(QStringLiteral("manualTuningLabel"));
  label->setBuddy(manual_);
  row->addWidget(manual_);
  row->addWidget(label, 1);
  return line;
}

QWidget* ParameterPanel::BuildManualControls() {
  manualControls_ = new QWidget(content_);
  auto* column = new QVBoxLayout(manualControls_);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(kBetweenGroups);
  column->addWidget(GroupOf(122, 0, 2));
  QGroupBox* advanced = GroupOf(125, 2, 2);
  AddArtefacts(advanced);
  AddQuality(advanced);
  column->addWidget(advanced);
  column->addWidget(GroupOf(126, 4, 3));
  return manualControls_;
}

QGroupBox* ParameterPanel::GroupOf(int caption, std::size_t firstRow, std::size_t count) {
  auto* group = new QGroupBox(texts_(caption), manualControls_);
  auto* column = new QVBoxLayout(group);
  column->setContentsMargins(0, kInside, 0, 0);
  column->setSpacing(12);
  for (std::size_t i = firstRow; i < firstRow + count; ++i) {
    const SliderLook& look = kLooks.at(i);
    auto* row = new ParameterRow(profiles::kSliders.at(i), look.caption, look.name, texts_, group);
    rows_.push_back(row);
    column->addWidget(row);
  }
  return group;
}

void ParameterPanel::AddArtefacts(QGroupBox* group) {
  artefacts_ = new QButtonGroup(this);
  auto* column = new QVBoxLayout;
  column->setSpacing(4);
  auto* caption = new QLabel(texts_(150), group);
  caption->setWordWrap(true);
  column->addWidget(caption);
  for (int mode = 0; mode < 3; ++mode) {
    auto* button = new QRadioButton(texts_(151 + mode), group);
    button->setObjectName(QStringLiteral("artefacts%1").arg(mode));
    button->setAccessibleDescription(texts_(150));
    artefacts_->addButton(button, mode);
    column->addWidget(button);
  }
  qobject_cast<QVBoxLayout*>(group->layout())->addLayout(column);
}

void ParameterPanel::AddQuality(QGroupBox* group) {
  auto* row = new QHBoxLayout;
  row->setSpacing(kInside);
  quality_ = new QComboBox(group);
  quality_->setObjectName(QStringLiteral("qualityList"));
  quality_->addItems({InOneLine(texts_(35)), InOneLine(texts_(32)), InOneLine(texts_(36))});
  quality_->setCurrentIndex(context_.settings.GetNumber(settings::Setting::kQuality) - 1);
  DressList(*quality_, texts_(68));
  auto* caption = new QLabel(texts_(68), group);
  caption->setBuddy(quality_);
  row->addWidget(caption);
  row->addWidget(quality_, 1);
  qobject_cast<QVBoxLayout*>(group->layout())->addLayout(row);
}

QWidget* ParameterPanel::BuildFooter() {
  auto* footer = new QWidget(this);
  auto* column = new QVBoxLayout(footer);
  column->setContentsMargins(kBetweenGroups, kInside, kBetweenGroups, kBetweenGroups);
  column->setSpacing(kInside);
  setDefault_ = new QPushButton(texts_(66), footer);
  setDefault_->setObjectName(QStringLiteral("setDefault"));
  progress_ = new QProgressBar(footer);
  progress_->setObjectName(QStringLiteral("progress1037"));
  progress_->setAccessibleName(texts_(text::kProgress));
  progress_->setRange(0, 1000);
  progress_->setTextVisible(false);
  progress_->setFixedHeight(8);
  QSizePolicy keepsPlace = progress_->sizePolicy();
  keepsPlace.setRetainSizeWhenHidden(true);
  progress_->setSizePolicy(keepsPlace);
  denoise_ = new QPushButton(texts_(text::kDenoise), footer);
  denoise_->setObjectName(QStringLiteral("denoise1021"));
  denoise_->setProperty(skin::kPrimaryProperty, true);
  denoise_->setMinimumHeight(36);
  column->addWidget(setDefault_);
  column->addWidget(progress_);
  column->addWidget(denoise_);
  return footer;
}

void ParameterPanel::FitWidth() {
  const int content = content_->minimumSizeHint().width() + scroll_->verticalScrollBar()->sizeHint().width();
  const int needed = std::max(content, footer_->minimumSizeHint().width());
  const int wanted = std::max({kPanelWidth, fontMetrics().averageCharWidth() * kPanelCharacters, needed});
  // The photograph keeps its half; then the content scrolls across.
  const int width = std::min(wanted, std::max(kPanelWidth, screen()->availableGeometry().width() / 2));
  if (width != minimumWidth() || width != maximumWidth()) setFixedWidth(width);
}

bool ParameterPanel::eventFilter(QObject* watched, QEvent* event) {
  if (watched == content_ && event->type() == QEvent::LayoutRequest) FitWidth();
  return QWidget::eventFilter(watched, event);
}

void ParameterPanel::Connect() {
  // The pointer does not take the focus from the photograph, whose arrow and page keys go on working.
  for (QWidget* widget : std::initializer_list<QWidget*>{camera_, iso_, quality_, measure_, keep_, delete_,
                                                         manual_, setDefault_, denoise_}) {
    widget->setFocusPolicy(Qt::TabFocus);
  }
  connect(camera_, &QComboBox::activated, this, [this](int index) {
    Commit();
    model_.SelectCamera(static_cast<std::uint32_t>(index));
    FollowChoice();
  });
  connect(iso_, &QComboBox::activated, this, [this](int index) {
    Commit();
    model_.SelectIso(static_cast<std::uint32_t>(index));
    FollowChoice();
  });
  for (ParameterRow* row : rows_) {
    connect(row, &ParameterRow::moved, this, [this, row](double value) {
      model_.SetValue(row->row().value, value);
      pause_.start();
    });
    connect(row, &ParameterRow::settled, this, &ParameterPanel::Settle);
  }
  connect(artefacts_, &QButtonGroup::idClicked, this, [this](int mode) {
    model_.SetArtefacts(mode);
    Settle();
  });
  connect(&pause_, &QTimer::timeout, this, [this] {
    const bool held =
        std::any_of(rows_.begin(), rows_.end(), [](const auto* row) { return row->sliderHeld(); });
    if (held) {
      emit previewWished();
    } else {
      Settle();
    }
  });
  connect(quality_, &QComboBox::activated, this, &ParameterPanel::ChooseQuality);
  connect(measure_, &QToolButton::clicked, this, &ParameterPanel::Measure);
  connect(keep_, &QToolButton::clicked, this, &ParameterPanel::Keep);
  connect(delete_, &QToolButton::clicked, this, &ParameterPanel::Delete);
  connect(manual_, &QToolButton::toggled, this, &ParameterPanel::SetManual);
  connect(setDefault_, &QPushButton::clicked, this, &ParameterPanel::SetDefault);
  connect(denoise_, &QPushButton::clicked, this, [this] {
    if (running_) {
      emit abortRequested();
    } else {
      emit denoiseRequested();
    }
  });
}

}  // namespace mirellon::ui
