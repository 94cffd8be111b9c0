# Helpers that keep every folder's CMakeLists.txt to a list of names.

add_library(mirellon_options INTERFACE)
# Sums of floats must come out the same on every machine, so nothing may be fused behind our back.
target_compile_options(mirellon_options INTERFACE -ffp-contract=off)
target_include_directories(mirellon_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(MIRELLON_SANITIZE)
  target_compile_options(mirellon_options INTERFACE -fsanitize=${MIRELLON_SANITIZE}
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(mirellon_options INTERFACE -fsanitize=${MIRELLON_SANITIZE})
endif()

add_library(mirellon_warnings INTERFACE)
target_compile_options(mirellon_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)

# mirellon_find_library(NAME HEADER LIBRARY): an imported target mirellon::NAME for a library that ships no
# package file; an empty LIBRARY means header only.
function(mirellon_find_library name header library)
  find_path(${name}_INCLUDE_DIR ${header} REQUIRED)
  add_library(mirellon_ext_${name} INTERFACE)
  add_library(mirellon::${name} ALIAS mirellon_ext_${name})
  target_include_directories(mirellon_ext_${name} SYSTEM INTERFACE ${${name}_INCLUDE_DIR})
  if(library)
    find_library(${name}_LIBRARY ${library} REQUIRED)
    target_link_libraries(mirellon_ext_${name} INTERFACE ${${name}_LIBRARY})
  endif()
endfunction()

# mirellon_add_library(NAME SOURCES ... [LINK ...] [PRIVATE_LINK ...]): the static library mirellon_NAME of one
# folder; who links it sees what it names under LINK, too.
function(mirellon_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;PRIVATE_LINK" ${ARGN})
  add_library(mirellon_${name} STATIC ${ARG_SOURCES})
  target_link_libraries(mirellon_${name} PUBLIC mirellon_options ${ARG_LINK}
                        PRIVATE mirellon_warnings ${ARG_PRIVATE_LINK})
endfunction()
