mirellon_add_test(settings/app_settings LINK mirellon_settings)
mirellon_add_test(settings/language_file LINK mirellon_settings)
mirellon_add_test(settings/localization LINK mirellon_settings)
mirellon_add_test(settings/options_state LINK mirellon_settings)
mirellon_add_test(settings/running_mark LINK mirellon_settings)

target_compile_definitions(settings_language_file_test PRIVATE MIRELLON_RESOURCES="${CMAKE_SOURCE_DIR}/resources")
target_compile_definitions(settings_app_settings_test PRIVATE MIRELLON_DOCS="${CMAKE_SOURCE_DIR}/docs")
