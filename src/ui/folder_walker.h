// Walking through a folder beside the window.
#pragma once

#include <QObject>
#include <filesystem>

#include "ui/background_worker.h"
#include "ui/model/folder_walk.h"

namespace mirellon::ui {

// Looks for the neighbours of a photograph on a thread of its own: a large folder or a slow network does not
// hold up the window. Belongs to the window's thread.
class FolderWalker : public QObject {
  Q_OBJECT

 public:
  // One step more: from where the walk that is going on leads to, or else from `from`.
  void Go(const std::filesystem::path& from, Step step);
  // Nothing is told any more of the walk that is going on.
  void Drop();

 signals:
  // The end of a walk. `reached` is empty when it led nowhere else; `atEnd`: no further, though asked for.
  void arrived(const std::filesystem::path& reached, mirellon::ui::Step step, bool atEnd);

 private:
  struct Walk {
    std::filesystem::path start;
    std::filesystem::path place;
    Step step = Step::kNext;
    int steps = 0;
    bool atEnd = false;
  };
  static void Run(Walk& walk);
  void Begin(const std::filesystem::path& start, const std::filesystem::path& place);
  void Ended(const Walk& walk);

  int waiting_ = 0;  // steps not begun yet; below 0: backwards
  bool going_ = false;
  unsigned walks_ = 0;  // a dropped one has another number
  BackgroundWorker worker_;
};

}  // namespace mirellon::ui
