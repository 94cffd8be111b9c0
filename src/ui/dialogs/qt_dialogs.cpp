#include "ui/dialogs/qt_dialogs.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

#include "ui/dialogs/adding_dialog.h"
#include "ui/dialogs/batch_options_dialog.h"
#include "ui/dialogs/file_dialog.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/local_url.h"

namespace mirellon::ui {

namespace {

// The name shown, and what it lets through: names ask for the formats' other extensions, too.
constexpr const char* kOpenFilter = "*.bmp;*.jpg;*.tif;*.png (*.bmp *.jpg *.tif *.png *.jpeg *.tiff *.gif)";

// A message box stays below 1000 pixels, whatever its buttons need.
void StackWideButtons(QMessageBox& box) {
  constexpr int kWidestRow = 900;
  auto* row = box.findChild<QDialogButtonBox*>();
  if (row != nullptr && row->sizeHint().width() > kWidestRow) row->setOrientation(Qt::Vertical);
}

QMessageBox::Icon IconOf(base::MessageKind kind) {
  switch (kind) {
    case base::MessageKind::kInformation:
      return QMessageBox::Information;
    case base::MessageKind::kWarning:
      return QMessageBox::Warning;
    case base::MessageKind::kError:
      return QMessageBox::Critical;
    case base::MessageKind::kPlain:
      break;
  }
  return QMessageBox::NoIcon;
}

}  // namespace

void QtDialogs::ShowMessage(const std::wstring& text, const std::wstring& caption, base::MessageKind kind) {
  QMessageBox box(IconOf(kind), QString::fromStdWString(caption), QString::fromStdWString(text),
                  QMessageBox::Ok, owner_);
  box.setTextFormat(Qt::PlainText);
  box.button(QMessageBox::Ok)->setText(texts_(text::kOk));
  box.exec();
}

std::optional<std::filesystem::path> QtDialogs::AskOpenPath(const std::wstring& title) {
  QFileDialog dialog(owner_, QString::fromStdWString(title), TextOf(lastFolder_),
                     QString::fromLatin1(kOpenFilter));
  dialog.setObjectName(QStringLiteral("openDialog"));
  dialog.setFileMode(QFileDialog::ExistingFile);
  dialog.setOption(QFileDialog::HideNameFilterDetails);
  DressFileDialog(dialog);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
  const std::filesystem::path chosen = PathOf(dialog.selectedFiles().first());
  LookBeside(chosen);
  return chosen;
}

void QtDialogs::LookBeside(const std::filesystem::path& photograph) {
  lastFolder_ = photograph.parent_path();
}

std::optional<std::filesystem::path> QtDialogs::AskSavePath(const std::wstring& title,
                                                            const std::filesystem::path& proposal) {
  SaveQuestion question;
  question.title = title;
  question.proposal.path = proposal;
  const std::optional<SaveAnswer> answer = AskSave(question);
  if (!answer) return std::nullopt;
  return answer->path;
}

std::optional<SaveAnswer> QtDialogs::AskSave(const SaveQuestion& question) {
  SaveDialog dialog(question, texts_, owner_);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.answer();
}

std::optional<std::filesystem::path> QtDialogs::AskFolder(const std::wstring& title,
                                                          const std::filesystem::path& start) {
  // At once accepted, it is the folder to start with.
  QFileDialog dialog(owner_, QString::fromStdWString(title), TextOf(start));
  dialog.setObjectName(QStringLiteral("folderDialog"));
  dialog.setFileMode(QFileDialog::Directory);
  dialog.setOption(QFileDialog::ShowDirsOnly);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty()) return std::nullopt;
  return PathOf(dialog.selectedUrls().first());
}

std::optional<int> QtDialogs::AskBatchOptions(int jpegQuality) {
  BatchOptionsDialog dialog(jpegQuality, texts_, owner_);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.jpegQuality();
}

std::optional<ProfileName> QtDialogs::AskProfileName(const ProfileNameQuestion& question) {
  AddingDialog dialog(question, texts_, owner_);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return dialog.name();
}

std::optional<int> QtDialogs::AskChoice(const std::wstring& text, const std::wstring& caption,
                                        const std::vector<std::wstring>& answers) {
  return Ask(text, caption, answers, Recommend::kFirst);
}

std::optional<int> QtDialogs::AskCarefully(const std::wstring& text, const std::wstring& caption,
                                           const std::vector<std::wstring>& answers) {
  return Ask(text, caption, answers, Recommend::kCancel);
}

std::optional<int> QtDialogs::Ask(const std::wstring& text, const std::wstring& caption,
                                  const std::vector<std::wstring>& answers, Recommend recommend) {
  QMessageBox box(QMessageBox::Question, QString::fromStdWString(caption), QString::fromStdWString(text),
                  QMessageBox::NoButton, owner_);
  box.setObjectName(QStringLiteral("question"));
  box.setTextFormat(Qt::PlainText);
  std::vector<QAbstractButton*> buttons;
  for (const std::wstring& answer : answers) {
    const auto role = buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::DestructiveRole;
    buttons.push_back(box.addButton(QString::fromStdWString(answer), role));
  }
  QPushButton* cancel = box.addButton(texts_(text::kCancel), QMessageBox::RejectRole);
  box.setEscapeButton(cancel);
  if (recommend == Recommend::kCancel) box.setDefaultButton(cancel);
  StackWideButtons(box);
  box.exec();
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    if (box.clickedButton() == buttons[i]) return static_cast<int>(i);
  }
  return std::nullopt;
}

}  // namespace mirellon::ui
