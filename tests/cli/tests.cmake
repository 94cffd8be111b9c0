mirellon_add_test(cli/arguments LINK mirellon_cli_core)
mirellon_add_test(cli/bad_input LINK mirellon_test_image_files)
mirellon_add_test(cli/batch_command LINK mirellon_cli mirellon_test_image_files nlohmann_json::nlohmann_json)
mirellon_add_test(cli/command_line LINK mirellon_cli mirellon_test_image_files nlohmann_json::nlohmann_json)
mirellon_add_test(cli/interruption LINK mirellon_cli_core)
mirellon_add_test(cli/profiles_command
  LINK mirellon_cli mirellon_test_image_files nlohmann_json::nlohmann_json PkgConfig::exiv2)
mirellon_add_test(cli/report LINK mirellon_cli_core nlohmann_json::nlohmann_json)
mirellon_add_test(cli/terminal_progress LINK mirellon_cli_core)

target_compile_definitions(cli_bad_input_test PRIVATE MIRELLON_CLI="$<TARGET_FILE:mirellon-cli>")
add_dependencies(cli_bad_input_test mirellon-cli)
target_compile_definitions(cli_batch_command_test PRIVATE MIRELLON_DOCS="${CMAKE_SOURCE_DIR}/docs")
