#include "ui/dialogs/save_dialog.h"

#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <system_error>

#include "ui/dialogs/file_dialog.h"

namespace mirellon::ui {

namespace {

QStringList FiltersFor(int bits) {
  if (bits == 16) return {QStringLiteral("*.tif"), QStringLiteral("*.png")};
  return {QStringLiteral("*.bmp"), QStringLiteral("*.tif"), QStringLiteral("*.png"), QStringLiteral("*.jpg")};
}

// A name that ends in one of the formats' extensions loses it, to get the selected one's.
QString WithoutOfferedExtension(const QString& name, const QStringList& filters) {
  for (const QString& filter : filters) {
    const QString extension = filter.mid(1);
    if (name.size() > extension.size() && name.endsWith(extension, Qt::CaseInsensitive)) {
      return name.chopped(extension.size());
    }
  }
  return name;
}

constexpr int kJpegFilter = 4;

}  // namespace

SaveDialog::SaveDialog(const SaveQuestion& question, const Texts& texts, QWidget* parent)
    : QFileDialog(parent, QString::fromStdWString(question.title)),
      texts_(texts),
      bits_(question.bitsPerComponent),
      source_(question.source),
      quality_(new QualitySlider(question.jpegQuality, texts, this)) {
  setObjectName(QStringLiteral("saveDialog"));
  setAcceptMode(AcceptSave);
  setFileMode(AnyFile);
  // The quality panel and the question about the final name need a dialog of our own.
  setOption(DontUseNativeDialog);
  setOption(DontConfirmOverwrite);
  DressFileDialog(*this);
  const QStringList filters = FiltersFor(bits_);
  setNameFilters(filters);
  selectNameFilter(filters.value(question.proposal.filterIndex - 1, filters.first()));
  if (!question.proposal.path.empty()) {
    setDirectory(TextOf(question.proposal.path.parent_path()));
    selectFile(TextOf(question.proposal.path.filename()));
  }
  if (auto* grid = qobject_cast<QGridLayout*>(layout())) {
    grid->addWidget(quality_, grid->rowCount(), 0, 1, grid->columnCount());
  }
  name_ = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
  if (name_ != nullptr) {
    typed_ = name_->text();
    connect(name_, &QLineEdit::textEdited, this, [this](const QString& name) { typed_ = name; });
    connect(this, &QFileDialog::currentChanged, this, [this] { typed_ = name_->text(); });
  }
  connect(this, &QFileDialog::filterSelected, this, &SaveDialog::FollowFilter);
  FollowFilter();
}

SaveAnswer SaveDialog::answer() const {
  return {CompletePath(), quality_->quality()};
}

std::filesystem::path SaveDialog::CompletePath() const {
  return imageio::CompleteName(PathOf(selectedFiles().value(0)), bits_, FilterIndex());
}

int SaveDialog::FilterIndex() const {
  return static_cast<int>(nameFilters().indexOf(selectedNameFilter())) + 1;
}

void SaveDialog::FollowFilter() {
  // The toolkit takes what follows the last dot of "IMG.v2-denoised" for an extension, and replaces it.
  if (name_ != nullptr) name_->setText(WithoutOfferedExtension(typed_, nameFilters()));
  quality_->setEnabled(FilterIndex() == kJpegFilter);
}

bool SaveDialog::IsSource(const std::filesystem::path& path) const {
  std::error_code none;
  return !source_.empty() && std::filesystem::equivalent(path, source_, none);
}

bool SaveDialog::MayReplace(const std::filesystem::path& path) {
  if (IsSource(path)) {
    QMessageBox box(QMessageBox::Warning, windowTitle(),
                    texts_(text::kNotSaved).arg(ShownName(path), texts_(text::kIsSource)), QMessageBox::Ok,
                    this);
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Ok)->setText(texts_(text::kOk));
    box.exec();
    return false;
  }
  QMessageBox box(QMessageBox::Question, windowTitle(), texts_(text::kOverwriteQuestion).arg(ShownName(path)),
                  QMessageBox::Yes | QMessageBox::No, this);
  box.setTextFormat(Qt::PlainText);
  box.button(QMessageBox::Yes)->setText(texts_(text::kYes));
  box.button(QMessageBox::No)->setText(texts_(text::kNo));
  return box.exec() == QMessageBox::Yes;
}

void SaveDialog::accept() {
  const std::filesystem::path chosen = PathOf(selectedFiles().value(0));
  std::error_code ignored;
  if (!chosen.empty() && !std::filesystem::is_directory(chosen, ignored)) {
    const std::filesystem::path path = CompletePath();
    if (std::filesystem::exists(path, ignored) && !MayReplace(path)) return;
  }
  QFileDialog::accept();
}

}  // namespace mirellon::ui
