// The "Batch Denoising" dialog.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <cstdint>
#include <filesystem>

#include "ui/texts.h"

namespace mirellon::ui {

// How far a batch run is, how long it has run and will run in all. Cancelled by its button, its key or its
// frame; the run itself is its owner's.
class BatchProgressDialog : public QDialog {
  Q_OBJECT

 public:
  BatchProgressDialog(const Texts& texts, QWidget* parent);

  void SetTotal(std::uint32_t images);
  void ShowEntry(const std::filesystem::path& file);
  void ImageDone();
  void Tick();  // a second has passed

 private:
  QLabel* entry_;
  QProgressBar* bar_;
  QLabel* estimate_;
  QLabel* elapsedText_;
  QTimer timer_;
  std::uint32_t total_ = 0;
  std::uint32_t finished_ = 0;
  std::uint32_t elapsed_ = 0;
};

}  // namespace mirellon::ui
