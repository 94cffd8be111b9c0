// The page of the help window.
#pragma once

#include <QHash>
#include <QImage>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <cstddef>
#include <optional>
#include <vector>

#include "ui/model/help_page.h"

namespace mirellon::ui {

// Shows a help page in the colours of the scheme and in any size. A page's own style sheet is for ordinary
// browsers and not used here.
class HelpView : public QTextBrowser {
  Q_OBJECT

 public:
  explicit HelpView(QWidget* parent);

  // Pictures are looked for beside `file`.
  void ShowPage(const std::filesystem::path& file, const HelpPage& page);
  // Remembered for backward() and forward(), as following a link is.
  void GoTo(const QString& anchor);
  void backward() override;
  void forward() override;
  // The section at the top of what is seen, counted from 0; -1 before the first.
  [[nodiscard]] int currentSection() const;

  // In percent of the usual size, held to 50 to 300.
  void SetZoom(int percent);
  [[nodiscard]] int zoom() const { return zoom_; }

  // From the selection on, round the end. True = found, and selected.
  [[nodiscard]] bool Find(const QString& text, QTextDocument::FindFlags direction);
  // The same while the text is still being typed: what is found may begin where the selection does.
  [[nodiscard]] bool FindTyped(const QString& text);

  // Names of pictures that could not be read.
  [[nodiscard]] const QStringList& missingPictures() const { return missing_; }

 signals:
  void sectionChanged(int section);

 protected:
  void doSetSource(const QUrl& url, QTextDocument::ResourceType type) override;
  QVariant loadResource(int type, const QUrl& name) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  // What is at the view's top: a block, by the position of its first letter, and how far below its top that
  // is. Negative: the document's beginning.
  struct Place {
    int position = -1;
    double below = 0.0;
  };

  void Revisit(std::size_t visit);
  void TellHistory();
  void Render();      // anew, at the same place of the text
  void FitToWidth();  // text column and pictures
  void FitPictures(double width);
  // The last section comes to the top as every other does, however high the window.
  void LeaveRoomBelow();
  void LayOut();
  [[nodiscard]] Place TopOfView() const;
  void BringToTop(const Place& place);
  [[nodiscard]] double TopOf(const QTextBlock& block) const;
  void FollowScroll();
  [[nodiscard]] QString StyleSheet() const;

  QString html_;
  std::vector<QString> anchors_;      // of the sections
  std::vector<int> positions_;        // of their headings in the document
  QHash<QString, QImage> originals_;  // by the names in the page
  QStringList missing_;
  QUrl folder_;
  std::vector<Place> visits_;     // as they were left
  std::size_t visit_ = 0;         // the present one
  std::optional<Place> resized_;  // what was at the top when the size began to change
  QTimer fitTimer_;               // a window that is being resized does not lay out at every step
  int zoom_ = 100;
  int section_ = -1;
  double baseSize_;  // points
};

}  // namespace mirellon::ui
