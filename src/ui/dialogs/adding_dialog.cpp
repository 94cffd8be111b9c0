#include "ui/dialogs/adding_dialog.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>

#include "base/text.h"
#include "profiles/camera_key.h"
#include "ui/dialogs/button_box.h"

namespace mirellon::ui {

namespace {

constexpr int kMostCharacters = static_cast<int>(base::kShortTextCapacity) - 1;

}  // namespace

AddingDialog::AddingDialog(const ProfileNameQuestion& question, const Texts& texts, QWidget* parent)
    : QDialog(parent),
      exif_(question.exif),
      camera_(new QLineEdit(QString::fromStdWString(question.proposal.camera), this)),
      iso_(new QLineEdit(QString::fromStdWString(question.proposal.iso), this)) {
  setObjectName(QStringLiteral("addingDialog"));
  setWindowTitle(texts(142));
  camera_->setObjectName(QStringLiteral("camera"));
  camera_->setMaxLength(kMostCharacters);
  camera_->setMinimumWidth(std::max(280, fontMetrics().averageCharWidth() * 40));
  iso_->setObjectName(QStringLiteral("iso"));
  iso_->setMaxLength(kMostCharacters);
  auto* fromExif = new QPushButton(QStringLiteral("<-EXIF"), this);
  fromExif->setObjectName(QStringLiteral("fromExif"));
  fromExif->setAutoDefault(false);
  fromExif->setEnabled(!exif_.iso.empty() || (!exif_.make.empty() && !exif_.model.empty()));
  auto* buttons = OkAndCancel(texts, this);
  auto* cameraLabel = new QLabel(texts(130), this);
  cameraLabel->setBuddy(camera_);
  auto* isoLabel = new QLabel(texts(250), this);
  isoLabel->setBuddy(iso_);

  auto* grid = new QGridLayout(this);
  grid->setContentsMargins(16, 16, 16, 16);
  grid->setSpacing(8);
  grid->addWidget(cameraLabel, 0, 0);
  grid->addWidget(camera_, 0, 1);
  grid->addWidget(fromExif, 0, 2);
  grid->addWidget(isoLabel, 1, 0);
  grid->addWidget(iso_, 1, 1);
  grid->addWidget(buttons, 2, 0, 1, 3);
  connect(fromExif, &QPushButton::clicked, this, &AddingDialog::TakeFromPhotograph);
  setTabOrder(camera_, fromExif);
  setTabOrder(fromExif, iso_);
}

ProfileName AddingDialog::name() const {
  return {camera_->text().toStdWString(), iso_->text().toStdWString()};
}

void AddingDialog::TakeFromPhotograph() {
  if (!exif_.make.empty() && !exif_.model.empty()) {
    camera_->setText(QString::fromStdWString(profiles::CameraKey(exif_.make, exif_.model)));
  }
  if (!exif_.iso.empty()) iso_->setText(QString::fromStdWString(exif_.iso));
}

}  // namespace mirellon::ui
