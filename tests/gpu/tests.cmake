# The software driver is there on every machine, draws alike everywhere, and needs no display. It keeps memory
# until the process ends, and its threads are its own business.
function(mirellon_add_card_test name)
  if(MIRELLON_SANITIZE MATCHES "thread")
    return()
  endif()
  mirellon_add_test(${name} ${ARGN})
  set_tests_properties(${name} PROPERTIES ENVIRONMENT
    "LIBGL_ALWAYS_SOFTWARE=1;ASAN_OPTIONS=detect_leaks=0:detect_stack_use_after_return=1")
endfunction()

mirellon_add_card_test(gpu/gpu_filter LINK mirellon_gpu)
mirellon_add_card_test(gpu/passes LINK mirellon_gpu)
mirellon_add_card_test(gpu/programs LINK mirellon_gpu)
