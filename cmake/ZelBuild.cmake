# Compiler settings shared by all targets, and the two functions that make a library or a test of the house.
include(GNUInstallDirs)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")

find_program(ZEL_CCACHE ccache)
if(ZEL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${ZEL_CCACHE}")
endif()

add_library(zel_settings INTERFACE)
target_compile_options(zel_settings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler's library sets the warning off itself (its defect 105651).
  target_compile_options(zel_settings INTERFACE -Wno-restrict)
endif()
# Values must not depend on the processor that compiled them: no fused multiply-add.
target_compile_options(zel_settings INTERFACE -ffp-contract=off)
if(ZEL_SANITIZE)
  target_compile_options(zel_settings INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(zel_settings INTERFACE -fsanitize=address,undefined)
endif()
if(ZEL_FUZZ)
  # The fuzzer is led by what the libraries execute, so they have to tell it.
  target_compile_options(zel_settings INTERFACE -fsanitize=fuzzer-no-link
    -fsanitize=float-cast-overflow -fno-sanitize-recover=float-cast-overflow)
  target_link_options(zel_settings INTERFACE -fsanitize=fuzzer-no-link)
endif()

# zel_add_library(<component> <output name>): target zel_<component> with the alias zel::<component>.
# Folders add their files with target_sources().
function(zel_add_library component output)
  add_library(zel_${component})
  add_library(zel::${component} ALIAS zel_${component})
  set_target_properties(zel_${component} PROPERTIES
    OUTPUT_NAME ${output} EXPORT_NAME ${component} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
  target_compile_features(zel_${component} PUBLIC cxx_std_20)
  target_include_directories(zel_${component}
    PUBLIC "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>"
    PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(zel_${component} PRIVATE "$<BUILD_INTERFACE:zel_settings>")
endfunction()
