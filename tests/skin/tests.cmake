find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
add_library(mirellon_test_skin STATIC ${CMAKE_CURRENT_LIST_DIR}/qt_main.cpp ${CMAKE_CURRENT_LIST_DIR}/pixels.cpp)
target_link_libraries(mirellon_test_skin
  PUBLIC mirellon_test_support mirellon_specimens Qt6::Test PRIVATE mirellon_warnings)

mirellon_add_test(skin/drawing LINK mirellon_test_skin)
mirellon_add_test(skin/skin_images LINK mirellon_test_skin)
mirellon_add_test(skin/skin_canvas LINK mirellon_test_skin)
mirellon_add_test(skin/skin_style LINK mirellon_test_skin)
mirellon_add_test(skin/install LINK mirellon_test_skin)
