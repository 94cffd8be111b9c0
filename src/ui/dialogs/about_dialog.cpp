#include "ui/dialogs/about_dialog.h"

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <array>

namespace mirellon::ui {

namespace {

struct Library {
  const char* name;
  const char* terms;
};
// As docs/licences.md has them.
constexpr std::array kLibraries{
    Library{"Qt 6", "LGPL-3.0, GPL-2.0-or-later"},
    Library{"FreeImage", "GPL-2.0, GPL-3.0, FIPL-1.0"},
    Library{"Exiv2", "GPL-2.0-or-later"},
    Library{"Little CMS 2", "MIT"},
    Library{"GLEW", "BSD-3-Clause, MIT"},
    Library{"EGL, OpenGL (GLVND)", "MIT, BSD-1-Clause, Apache-2.0"},
    Library{"Highway", "Apache-2.0"},
    Library{"SimpleIni", "MIT"},
    Library{"libxcb", "MIT"},
};
constexpr int kLicenceLines = 7;

QString LicenceText(const Texts& texts) {
  QString text = texts(text::kLicence);
  for (const Library& library : kLibraries) {
    text += QStringLiteral("\n%1: %2").arg(QLatin1String(library.name), QLatin1String(library.terms));
  }
  return text;
}

QPlainTextEdit* LicenceView(const Texts& texts, QWidget* parent) {
  auto* view = new QPlainTextEdit(LicenceText(texts), parent);
  view->setObjectName(QStringLiteral("licences"));
  view->setAccessibleName(texts(text::kLicences));
  view->setReadOnly(true);
  view->setTabChangesFocus(true);
  view->setFixedHeight(kLicenceLines * view->fontMetrics().lineSpacing() + 2 * view->frameWidth() + 8);
  return view;
}

}  // namespace

QString CardText(const CardService* card, bool on, const Texts& texts) {
  CardStatus status{CardStatus::State::kRefused, {}, "no graphics driver can be opened", false};
  if (card != nullptr) status = card->status();
  const QString name = QString::fromStdString(status.name);
  QString state = name;
  if (status.state == CardStatus::State::kExamined) state = texts(text::kCardExamined);
  if (status.state == CardStatus::State::kUsable && !on) state = texts(text::kCardOff).arg(name);
  if (status.state == CardStatus::State::kRefused) {
    state = texts(text::kCardRefused).arg(QString::fromStdString(status.refusal));
  }
  return texts(text::kCard).arg(state);
}

AboutDialog::AboutDialog(const Texts& texts, const QString& cardText, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("aboutDialog"));
  setWindowTitle(texts(text::kAbout));
  auto* icon = new QLabel(this);
  icon->setPixmap(QIcon(QStringLiteral(":/icons/mirellon.svg")).pixmap(QSize(96, 96), devicePixelRatioF()));
  icon->setAlignment(Qt::AlignHCenter);
  auto* name = new QLabel(QStringLiteral("Mirellon"), this);
  QFont large = name->font();
  large.setPointSizeF(large.pointSizeF() * 1.8);
  name->setFont(large);
  name->setAlignment(Qt::AlignHCenter);
  auto* about = new QLabel(texts(text::kAboutText).arg(QStringLiteral(MIRELLON_VERSION)), this);
  about->setAlignment(Qt::AlignHCenter);
  auto* card = new QLabel(cardText, this);
  card->setObjectName(QStringLiteral("card"));
  card->setAlignment(Qt::AlignHCenter);
  card->setWordWrap(true);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
  buttons->button(QDialogButtonBox::Ok)->setText(texts(text::kOk));
  buttons->setCenterButtons(true);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(32, 24, 32, 24);
  column->setSpacing(8);
  column->addWidget(icon);
  column->addWidget(name);
  column->addWidget(about);
  column->addWidget(card);
  column->addSpacing(8);
  column->addWidget(LicenceView(texts, this));
  column->addSpacing(8);
  column->addWidget(buttons);
  column->setSizeConstraint(QLayout::SetFixedSize);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
}

}  // namespace mirellon::ui
