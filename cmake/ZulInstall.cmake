# Install rules, the CMake package (ZULFNDUTI::CoreUtils, ZULFNDUTI::BasicUtils) and pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS ZULFNDUTI_CoreUtils ZULFNDUTI_BasicUtils
  EXPORT ZULFNDUTITargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

# The public headers, file by file: a module folder with impl headers only (sys) leaves no empty
# folder behind.
foreach(tree core basic)
  zul_collect_headers(${PROJECT_SOURCE_DIR}/${tree} headers)
  foreach(header IN LISTS headers)
    file(RELATIVE_PATH rel ${PROJECT_SOURCE_DIR}/${tree} ${header})
    get_filename_component(dir ${rel} DIRECTORY)
    install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZULFNDUTI/${dir})
  endforeach()
endforeach()
install(FILES ${ZUL_GENERATED_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/ZULFNDUTI)

if(ZUL_MINGW_RUNTIME_DLLS)
  install(FILES ${ZUL_MINGW_RUNTIME_DLLS} DESTINATION ${CMAKE_INSTALL_BINDIR})
  # Debian's MinGW runtime DLLs carry their debug information (libstdc++-6.dll: 23 MB, 2 MB
  # without); a stripped install (cmake --install --strip, CPack) strips the installed copies.
  foreach(dll IN LISTS ZUL_MINGW_RUNTIME_DLLS)
    get_filename_component(dll_name ${dll} NAME)
    install(CODE "if(CMAKE_INSTALL_DO_STRIP)
  execute_process(COMMAND \"${CMAKE_STRIP}\" --strip-unneeded
    \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/${dll_name}\" COMMAND_ERROR_IS_FATAL ANY)
endif()")
  endforeach()
endif()

set(ZUL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZULFNDUTI)
install(EXPORT ZULFNDUTITargets NAMESPACE ZULFNDUTI:: DESTINATION ${ZUL_CMAKE_DIR})

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZULFNDUTIConfig.cmake.in
  ${CMAKE_BINARY_DIR}/ZULFNDUTIConfig.cmake
  INSTALL_DESTINATION ${ZUL_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/ZULFNDUTIConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/ZULFNDUTIConfig.cmake ${CMAKE_BINARY_DIR}/ZULFNDUTIConfigVersion.cmake
  DESTINATION ${ZUL_CMAKE_DIR})

file(RELATIVE_PATH ZUL_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(${PROJECT_SOURCE_DIR}/cmake/ZULFNDUTI.pc.in ${CMAKE_BINARY_DIR}/ZULFNDUTI.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/ZULFNDUTI.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
