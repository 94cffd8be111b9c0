#include "ui/dialogs/options_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace mirellon::ui {

namespace {

constexpr int kIndent = 24;
constexpr int kLeastWidth = 308;

}  // namespace

OptionsDialog::OptionsDialog(settings::OptionsState& state, const settings::Localization& localization,
                             const Texts& texts, const QString& cardText, QWidget* parent)
    : QDialog(parent),
      state_(state),
      hardware_(new QCheckBox(texts(61), this)),
      fusion_(new QRadioButton(texts(111), this)),
      pureGpu_(new QRadioButton(texts(112), this)) {
  setObjectName(QStringLiteral("optionsDialog"));
  setWindowTitle(texts(57));
  auto* label = new QLabel(texts(58), this);
  label->setObjectName(QStringLiteral("control1077"));
  auto* language = new QComboBox(this);
  language->setObjectName(QStringLiteral("control1074"));
  for (const settings::Language& entry : localization.languages()) {
    language->addItem(QString::fromStdWString(entry.name));
  }
  // Without a language file there is the built-in language only.
  if (language->count() == 0) language->addItem(QStringLiteral("English"));
  language->setEnabled(language->count() > 1);
  language->setCurrentIndex(state.language());
  label->setBuddy(language);
  hardware_->setObjectName(QStringLiteral("control1076"));
  hardware_->setToolTip(cardText);
  fusion_->setObjectName(QStringLiteral("control1098"));
  pureGpu_->setObjectName(QStringLiteral("control1099"));
  auto* dark = new QCheckBox(QStringLiteral("Dark Scheme"), this);
  dark->setObjectName(QStringLiteral("control1085"));
  dark->setChecked(state.darkSchemeChecked());
  dark->hide();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(texts(text::kOk));
  buttons->button(QDialogButtonBox::Cancel)->setText(texts(text::kCancel));

  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(16, 16, 16, 16);
  column->setSpacing(8);
  column->addStrut(kLeastWidth);
  column->addWidget(label);
  column->addWidget(language);
  column->addSpacing(8);
  column->addWidget(hardware_);
  auto* modes = new QVBoxLayout;
  modes->setContentsMargins(kIndent, 0, 0, 0);
  modes->addWidget(fusion_);
  modes->addWidget(pureGpu_);
  column->addLayout(modes);
  column->addSpacing(16);
  column->addWidget(buttons);
  ShowState();

  connect(language, &QComboBox::currentIndexChanged, this,
          [this](int index) { state_.ChooseLanguage(index); });
  connect(hardware_, &QCheckBox::clicked, this, [this](bool checked) {
    state_.CheckHardware(checked);
    ShowState();
  });
  connect(fusion_, &QRadioButton::clicked, this, [this] { state_.ChooseFusion(true); });
  connect(pureGpu_, &QRadioButton::clicked, this, [this] { state_.ChooseFusion(false); });
  connect(dark, &QCheckBox::toggled, this, [this](bool checked) { state_.CheckDarkScheme(checked); });
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void OptionsDialog::ShowState() {
  hardware_->setChecked(state_.hardwareChecked());
  hardware_->setEnabled(state_.hardwareEnabled());
  fusion_->setEnabled(state_.fusionEnabled());
  pureGpu_->setEnabled(state_.fusionEnabled());
  (state_.fusionChosen() ? fusion_ : pureGpu_)->setChecked(true);
}

}  // namespace mirellon::ui
