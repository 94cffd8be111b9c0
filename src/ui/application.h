// The program from its start to its end.
#pragma once

#include <QApplication>
#include <filesystem>
#include <vector>

#include "gpu/gl_context.h"
#include "ui/model/card_examiner.h"

namespace mirellon::ui {

struct StartOptions {
  std::filesystem::path photograph;  // opened at once; empty: none
  std::filesystem::path applicationData;
  std::vector<std::filesystem::path> resourceFolders;
  CardExaminer::Parts card{TryCardApart, gpu::MakeGlContext};
};

// Icons and other resources that are linked in; once, before any widget is made.
void InitResources();

// Texts, settings with the crash marker, colours, window, graphics card; then the event loop, and all of it
// back in order. Returns the loop's exit code.
[[nodiscard]] int RunApplication(QApplication& application, const StartOptions& options);

}  // namespace mirellon::ui
