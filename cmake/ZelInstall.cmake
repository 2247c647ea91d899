# What cmake --install puts in place: libraries, headers, the package for find_package and the one for pkg-config.
include(CMakePackageConfigHelpers)

set(ZEL_INSTALL_TARGETS zel_framework zel_zel zel_tables)
if(ZEL_QT)
  list(APPEND ZEL_INSTALL_TARGETS zel_qt)
endif()
foreach(driver sqlite odbc)
  string(TOUPPER ZEL_${driver} option)
  if(${option})
    list(APPEND ZEL_INSTALL_TARGETS zel_${driver})
    string(APPEND ZEL_PC_DRIVERS " -lzel${driver}")
  endif()
endforeach()
if(ZEL_QT AND ZEL_WIDGETS)
  list(APPEND ZEL_INSTALL_TARGETS zel_widgets)
endif()
install(TARGETS ${ZEL_INSTALL_TARGETS} EXPORT zelTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/zel DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")

set(ZEL_CONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/zel)
install(EXPORT zelTargets NAMESPACE zel:: DESTINATION ${ZEL_CONFIG_DIR})
configure_package_config_file(cmake/zelConfig.cmake.in "${PROJECT_BINARY_DIR}/zelConfig.cmake"
  INSTALL_DESTINATION ${ZEL_CONFIG_DIR})
write_basic_package_version_file("${PROJECT_BINARY_DIR}/zelConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/zelConfig.cmake" "${PROJECT_BINARY_DIR}/zelConfigVersion.cmake"
  DESTINATION ${ZEL_CONFIG_DIR})

if(ZEL_QT)
  set(ZEL_PC_QT "-lzelqt")
endif()
set(ZEL_PC_FILES zel.pc)
if(ZEL_QT AND ZEL_WIDGETS)
  list(APPEND ZEL_PC_FILES zel-widgets.pc)
endif()
foreach(file IN LISTS ZEL_PC_FILES)
  configure_file(cmake/${file}.in "${PROJECT_BINARY_DIR}/${file}.configured" @ONLY)
  # The prefix is known only when the package is installed.
  install(CODE "
    file(READ \"${PROJECT_BINARY_DIR}/${file}.configured\" content)
    string(REPLACE \"ZEL_PREFIX\" \"\${CMAKE_INSTALL_PREFIX}\" content \"\${content}\")
    file(WRITE \"${PROJECT_BINARY_DIR}/${file}\" \"\${content}\")")
  install(FILES "${PROJECT_BINARY_DIR}/${file}" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
