// What the application owns and its window works with.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "engine/engine_context.h"
#include "settings/app_settings.h"
#include "settings/localization.h"
#include "ui/card_service.h"
#include "ui/dialogs/dialogs.h"

namespace mirellon::ui {

// All of it outlives the window.
struct DesktopContext {
  engine::EngineContext& engine;
  settings::AppSettings& settings;
  settings::Localization& localization;
  Dialogs& dialogs;
  std::filesystem::path applicationData;               // base::ApplicationDataFolder()
  std::vector<std::filesystem::path> resourceFolders;  // base::ResourceFolders()
  settings::LoadedSettings loaded;  // hwAccel: in force, so 0 until the card has been examined
  CardService* card = nullptr;      // null: none can be used
};

}  // namespace mirellon::ui
