// The "Batch Denoising" dialog.
#pragma once

#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <cstdint>
#include <filesystem>

#include "ui/texts.h"
#include "ui/thumbnail_view.h"

namespace mirellon::ui {

// How far a batch run is, how long it has run and will run in all, and what is in work. Cancelled by its
// button, its key or its frame; the run itself is its owner's.
class BatchProgressDialog : public QDialog {
  Q_OBJECT

 public:
  BatchProgressDialog(const Texts& texts, QWidget* parent);

  void SetTotal(std::uint32_t images);
  // A file's turn has come; what was shown of the one before goes.
  void ShowEntry(const std::filesystem::path& file);
  void ShowBefore(const QImage& picture) { before_->Show(picture); }
  void ShowAfter(const QImage& picture) { after_->Show(picture); }
  void ImageDone();
  void Tick();  // a second has passed

  void done(int result) override;

 private:
  void Build(const Texts& texts);
  void ShowCounts();

  QLabel* entry_;
  ThumbnailView* before_;
  ThumbnailView* after_;
  QProgressBar* bar_;
  QLabel* estimateText_;
  QLabel* elapsedText_;
  QLabel* remainingText_;
  QTimer timer_;
  bool counted_ = false;
  std::uint32_t total_ = 0;
  std::uint32_t finished_ = 0;
  std::uint32_t elapsed_ = 0;  // seconds
};

}  // namespace mirellon::ui
