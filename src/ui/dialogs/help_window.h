// The help pages in a window of the program's own.
#pragma once

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QTreeWidget>
#include <filesystem>
#include <vector>

#include "ui/dialogs/help_view.h"
#include "ui/texts.h"

namespace mirellon::ui {

// A page with its contents beside it, and what one needs to find one's way. Remembers its place in the
// settings file. Closed by Esc.
class HelpWindow : public QMainWindow {
  Q_OBJECT

 public:
  HelpWindow(const Texts& texts, std::filesystem::path settingsFile, QWidget* parent);
  ~HelpWindow() override;
  HelpWindow(const HelpWindow&) = delete;
  HelpWindow& operator=(const HelpWindow&) = delete;

  void ShowPage(const std::filesystem::path& file, const HelpPage& page);
  void GoTo(const QString& anchor);
  // The section that is seen; empty before a page is shown.
  [[nodiscard]] QString currentAnchor() const;
  [[nodiscard]] HelpView& view() { return *view_; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  struct Entry;

  void BuildToolBar();
  void BuildFindField(QToolBar* bar);
  QAction* Add(QToolBar* bar, const Entry& entry);
  void ListSections(const HelpPage& page);
  void MarkSection(int section);
  void ShowContents();
  void FindAgain(bool backward);
  void TellFound(bool found);
  void RestorePlace();
  void StorePlace();

  Texts texts_;
  std::filesystem::path settingsFile_;
  QTreeWidget* contents_;
  HelpView* view_;
  QLineEdit* find_ = nullptr;
  QLabel* notFound_ = nullptr;
  std::vector<QTreeWidgetItem*> items_;  // of the sections; null for the page's title
};

}  // namespace mirellon::ui
