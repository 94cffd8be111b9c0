// The save dialog with its quality panel.
#pragma once

#include <QFileDialog>
#include <QLineEdit>

#include "ui/dialogs/dialogs.h"
#include "ui/dialogs/quality_slider.h"
#include "ui/texts.h"

namespace mirellon::ui {

// Offers the formats that suit the picture's depth. A name without one of their extensions gets the selected
// one's; an existing file is asked about under the name it really has, the photograph's own file is refused.
class SaveDialog : public QFileDialog {
  Q_OBJECT

 public:
  SaveDialog(const SaveQuestion& question, const Texts& texts, QWidget* parent);

  [[nodiscard]] SaveAnswer answer() const;
  void accept() override;

 private:
  [[nodiscard]] std::filesystem::path CompletePath() const;
  [[nodiscard]] int FilterIndex() const;  // counted from 1
  void FollowFilter();
  // The photograph itself, by whatever name or link.
  [[nodiscard]] bool IsSource(const std::filesystem::path& path) const;
  [[nodiscard]] bool MayReplace(const std::filesystem::path& path);

  Texts texts_;
  int bits_;
  std::filesystem::path source_;
  QualitySlider* quality_;
  QLineEdit* name_ = nullptr;
  QString typed_;  // the name as its user left it
};

}  // namespace mirellon::ui
