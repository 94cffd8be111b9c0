# The software driver is there on every machine, draws alike everywhere, and needs no display. It keeps memory
# until the process ends, and its threads are its own business.
function(mirellon_card_environment name)
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "LIBGL_ALWAYS_SOFTWARE=1;ASAN_OPTIONS=detect_leaks=0:detect_stack_use_after_return=1")
endfunction()

function(mirellon_add_card_test name)
  if(MIRELLON_SANITIZE MATCHES "thread")
    return()
  endif()
  mirellon_add_test(${name} ${ARGN})
  mirellon_card_environment(${name})
endfunction()

mirellon_add_card_test(gpu/gpu_filter LINK mirellon_gpu)
mirellon_add_card_test(gpu/passes LINK mirellon_gpu)
mirellon_add_card_test(gpu/programs LINK mirellon_gpu)

add_library(mirellon_fake_egl SHARED gpu/fake_egl.cpp)
target_include_directories(mirellon_fake_egl PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(mirellon_fake_egl PRIVATE mirellon_options mirellon_warnings)
mirellon_add_test(gpu/gl_context_egl LINK mirellon_gpu mirellon_fake_egl)
target_compile_definitions(gpu_gl_context_egl_test PRIVATE MIRELLON_FAKE_EGL="$<TARGET_FILE:mirellon_fake_egl>")
