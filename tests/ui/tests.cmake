mirellon_add_test(ui/model/colour_transform LINK mirellon_ui_model PkgConfig::lcms)
mirellon_add_test(ui/model/commands LINK mirellon_ui_model)
mirellon_add_test(ui/model/document_session LINK mirellon_ui_model)
mirellon_add_test(ui/model/orientation LINK mirellon_ui_model)
mirellon_add_test(ui/model/panel_model LINK mirellon_ui_model)
mirellon_add_test(ui/model/help_page LINK mirellon_ui_model)
mirellon_add_test(ui/model/preview_queue LINK mirellon_ui_model)
mirellon_add_test(ui/model/small_models LINK mirellon_ui_model)
mirellon_add_test(ui/model/view_geometry LINK mirellon_ui_model)
mirellon_add_test(ui/model/view_renderer LINK mirellon_ui_model)

find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
add_library(mirellon_test_window STATIC
  ${CMAKE_CURRENT_LIST_DIR}/opened_folders.h ${CMAKE_CURRENT_LIST_DIR}/qt_main.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tagged_photo.cpp ${CMAKE_CURRENT_LIST_DIR}/window_harness.cpp)
set_target_properties(mirellon_test_window PROPERTIES AUTOMOC ON)
target_link_libraries(mirellon_test_window
  PUBLIC mirellon_test_support mirellon_ui Qt6::Test
  PRIVATE PkgConfig::exiv2 PkgConfig::lcms mirellon_warnings)
target_compile_definitions(mirellon_test_window PRIVATE MIRELLON_TEST_SCREEN="${CMAKE_CURRENT_LIST_DIR}/screen.json")

mirellon_add_test(ui/model/batch_outcome LINK mirellon_ui_model)
mirellon_add_test(ui/model/thumbnail LINK mirellon_ui_model)
mirellon_add_test(ui/background_worker LINK mirellon_test_window)
mirellon_add_test(ui/batch_controller LINK mirellon_test_window mirellon_test_image_files PkgConfig::exiv2)
mirellon_add_test(ui/batch_dialogs LINK mirellon_test_window)
mirellon_add_test(ui/main_window_batch LINK mirellon_test_window mirellon_test_image_files)
mirellon_add_test(ui/accessibility LINK mirellon_test_window)
mirellon_add_test(ui/image_view LINK mirellon_test_window)
mirellon_add_test(ui/languages LINK mirellon_test_window SOURCES ui/clipped_texts.cpp)
mirellon_add_test(ui/focus LINK mirellon_test_window)
mirellon_add_test(ui/main_window LINK mirellon_test_window)
mirellon_add_test(ui/main_window_commands LINK mirellon_test_window)
mirellon_add_test(ui/main_window_leave LINK mirellon_test_window)
mirellon_add_test(ui/application LINK mirellon_test_window)
mirellon_add_test(ui/dialogs LINK mirellon_test_window)
mirellon_add_test(ui/help LINK mirellon_test_window)
mirellon_add_test(ui/parameter_panel LINK mirellon_test_window)
mirellon_add_test(ui/posted_calls LINK mirellon_test_window)
mirellon_add_test(ui/workbench LINK mirellon_test_window)

foreach(test accessibility languages)
  target_compile_definitions(ui_${test}_test PRIVATE MIRELLON_RESOURCES="${CMAKE_SOURCE_DIR}/resources")
endforeach()
# The program opens the card's driver and a display, neither of which is built for the thread sanitizer.
if(NOT MIRELLON_SANITIZE MATCHES "thread")
  add_test(NAME ui/end_to_end
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/end_to_end_test ${CMAKE_RUNTIME_OUTPUT_DIRECTORY})
  set_tests_properties(ui/end_to_end PROPERTIES TIMEOUT 300
    ENVIRONMENT "LSAN_OPTIONS=suppressions=${CMAKE_CURRENT_LIST_DIR}/leaks.supp:print_suppressions=0")
endif()
mirellon_add_card_test(ui/desktop_card LINK mirellon_test_window)
target_compile_definitions(ui_languages_test PRIVATE MIRELLON_RESOURCES="${CMAKE_SOURCE_DIR}/resources")

# Qt's offscreen platform has OpenGL only where an X display is.
if(NOT MIRELLON_SANITIZE MATCHES "thread")
  find_program(MIRELLON_XVFB_RUN xvfb-run)
  add_executable(ui_card_beside_qt_test ui/card_beside_qt_test.cpp)
  target_link_libraries(ui_card_beside_qt_test PRIVATE
    mirellon_test_support mirellon_gpu Qt6::Gui GTest::gtest mirellon_warnings)
  set(launcher)
  if(MIRELLON_XVFB_RUN)
    set(launcher ${MIRELLON_XVFB_RUN} -a)
  endif()
  add_test(NAME ui/card_beside_qt COMMAND ${launcher} $<TARGET_FILE:ui_card_beside_qt_test>)
  mirellon_card_environment(ui/card_beside_qt)
endif()
