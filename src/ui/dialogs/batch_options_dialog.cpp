#include "ui/dialogs/batch_options_dialog.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

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
  buttons->button(QDialogButtonBox::Ok)->setText(texts(text::kOk));
  buttons->button(QDialogButtonBox::Cancel)->setText(texts(text::kCancel));
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
