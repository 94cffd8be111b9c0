#include "ui/dialogs/options_dialog.h"

#include <QVBoxLayout>

#include "ui/dialogs/button_box.h"
#include "ui/plain_list.h"

namespace mirellon::ui {

namespace {

constexpr int kIndent = 24;
constexpr int kLeastWidth = 308;

}  // namespace

OptionsDialog::OptionsDialog(settings::OptionsState& state, const settings::Localization& localization,
                             const Texts& texts, const QString& cardText, QWidget* parent)
    : QDialog(parent),
      state_(state),
      languageLabel_(new QLabel(texts(58), this)),
      language_(new QComboBox(this)),
      hardware_(new QCheckBox(texts(61), this)),
      fusion_(new QRadioButton(texts(111), this)),
      pureGpu_(new QRadioButton(texts(112), this)),
      dark_(new QCheckBox(QStringLiteral("Dark Scheme"), this)) {
  setObjectName(QStringLiteral("optionsDialog"));
  setWindowTitle(texts(57));
  languageLabel_->setObjectName(QStringLiteral("control1077"));
  language_->setObjectName(QStringLiteral("control1074"));
  hardware_->setObjectName(QStringLiteral("control1076"));
  hardware_->setToolTip(cardText);
  fusion_->setObjectName(QStringLiteral("control1098"));
  pureGpu_->setObjectName(QStringLiteral("control1099"));
  dark_->setObjectName(QStringLiteral("control1085"));
  dark_->setChecked(state.darkSchemeChecked());
  dark_->hide();
  FillLanguages(localization, texts);
  Arrange(texts);
  ShowState();
  Connect();
}

void OptionsDialog::FillLanguages(const settings::Localization& localization, const Texts& texts) {
  for (const settings::Language& entry : localization.languages()) {
    language_->addItem(QString::fromStdWString(entry.name));
  }
  // Without a language file there is the built-in language only.
  if (language_->count() == 0) language_->addItem(QStringLiteral("English"));
  language_->setEnabled(language_->count() > 1);
  language_->setCurrentIndex(state_.language());
  languageLabel_->setBuddy(language_);
  DressList(*language_, texts(58));
}

void OptionsDialog::Arrange(const Texts& texts) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(16, 16, 16, 16);
  column->setSpacing(8);
  column->addStrut(kLeastWidth);
  column->addWidget(languageLabel_);
  column->addWidget(language_);
  column->addSpacing(8);
  column->addWidget(hardware_);
  auto* modes = new QVBoxLayout;
  modes->setContentsMargins(kIndent, 0, 0, 0);
  modes->addWidget(fusion_);
  modes->addWidget(pureGpu_);
  column->addLayout(modes);
  column->addSpacing(16);
  column->addWidget(OkAndCancel(texts, this));
}

void OptionsDialog::Connect() {
  connect(language_, &QComboBox::currentIndexChanged, this,
          [this](int index) { state_.ChooseLanguage(index); });
  connect(hardware_, &QCheckBox::clicked, this, [this](bool checked) {
    state_.CheckHardware(checked);
    ShowState();
  });
  connect(fusion_, &QRadioButton::clicked, this, [this] { state_.ChooseFusion(true); });
  connect(pureGpu_, &QRadioButton::clicked, this, [this] { state_.ChooseFusion(false); });
  connect(dark_, &QCheckBox::toggled, this, [this](bool checked) { state_.CheckDarkScheme(checked); });
}

void OptionsDialog::ShowState() {
  hardware_->setChecked(state_.hardwareChecked());
  hardware_->setEnabled(state_.hardwareEnabled());
  fusion_->setEnabled(state_.fusionEnabled());
  pureGpu_->setEnabled(state_.fusionEnabled());
  (state_.fusionChosen() ? fusion_ : pureGpu_)->setChecked(true);
}

}  // namespace mirellon::ui
