# How every file of this project is compiled, and how a layer is declared.

find_program(CCACHE ccache)
if(CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Debug information must not carry the folder of the checkout, or no two checkouts share an object.
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
endif()

add_library(quorvel_compile INTERFACE)
target_include_directories(quorvel_compile INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(quorvel_compile INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow=local -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wimplicit-fallthrough)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # `-Wshadow=local` is the other compiler's spelling.
  target_compile_options(quorvel_compile INTERFACE -Wno-unknown-warning-option)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 takes the unused payload of an empty std::optional or std::variant for a forgotten one.
  target_compile_options(quorvel_compile INTERFACE -Wno-maybe-uninitialized)
endif()
if(QUORVEL_SANITIZERS)
  target_compile_options(quorvel_compile INTERFACE
    -fsanitize=${QUORVEL_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(quorvel_compile INTERFACE -fsanitize=${QUORVEL_SANITIZERS})
endif()

# quorvel_layer(NAME SOURCES … NEEDS …): a static library; what it needs is what it may include.
# A layer of headers alone has nothing to archive.
function(quorvel_layer name)
  cmake_parse_arguments(LAYER "" "" "SOURCES;NEEDS" ${ARGN})
  if(LAYER_SOURCES)
    add_library(${name} STATIC ${LAYER_SOURCES})
    target_link_libraries(${name} PUBLIC quorvel_compile ${LAYER_NEEDS})
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE quorvel_compile ${LAYER_NEEDS})
  endif()
endfunction()
