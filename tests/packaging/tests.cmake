add_test(NAME packaging/installation
  COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/packaging/installation_test ${CMAKE_BINARY_DIR})
