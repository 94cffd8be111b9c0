mirellon_add_test(cli/arguments LINK mirellon_cli_core)
mirellon_add_test(cli/report LINK mirellon_cli_core nlohmann_json::nlohmann_json)
mirellon_add_test(cli/terminal_progress LINK mirellon_cli_core)
