#include "ui/dialogs/batch_options_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/mnemonics.h"

namespace mirellon::ui {

BatchOptionsDialog::BatchOptionsDialog(int jpegQuality, const Texts& texts, QWidget* parent)
    : QDialog(parent), quality_(new QualitySlider(jpegQuality, texts, this)) {
  setObjectName(QStringLiteral("batchOptionsDialog"));
  setWindowTitle(texts(72));
  auto* text = new QLabel(texts(143), this);
  text->setObjectName(QStringLiteral("control1111"));
  text->setTextFormat(Qt::PlainText);
  text->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  Mnemonics mnemonics;
  const auto name = [&](QDialogButtonBox::StandardButton which, int number, const char* object) {
    QPushButton* button = buttons->button(which);
    button->setObjectName(QLatin1String(object));
    button->setText(mnemonics(texts(number)));
  };
  name(QDialogButtonBox::Ok, text::kOk, "ok1");
  name(QDialogButtonBox::Cancel, text::kCancel, "cancel2");
  auto* caption = quality_->findChild<QLabel*>(QStringLiteral("control1075"));
  caption->setText(mnemonics(caption->text()));
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(16, 16, 16, 16);
  column->setSpacing(16);
  column->addStrut(408);
  column->addWidget(text);
  column->addWidget(quality_);
  column->addWidget(buttons);
  buttons->button(QDialogButtonBox::Ok)->setFocus();
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

}  // namespace mirellon::ui
