# Packages made by CPack from the install rules: a Debian package for Linux, a .zip for Windows.
#   cmake --build --preset linux --target docs && cpack --preset linux      -> build/linux/packages/*.deb
#   cmake --build --preset windows --target docs && cpack --preset windows  -> build/windows/packages/*.zip
# (scripts/package.sh does both.) The API reference goes in when the docs target has been built.
set(CPACK_PACKAGE_VENDOR "ZULFNDUTI")
set(CPACK_PACKAGE_CONTACT "ZULFNDUTI developers <zulfnduti@invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
  "C++17 foundation library: copy-on-write containers, files, processes, threads, regular expressions")
set(CPACK_PACKAGE_DESCRIPTION
  "Two shared libraries, ZULFNDUTI_CoreUtils and ZULFNDUTI_BasicUtils, their headers, a CMake package and a pkg-config file, the zulutil tool with its manual page, and the API reference.")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

if(WIN32)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_SYSTEM_NAME win64)
  set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${CPACK_SYSTEM_NAME})
  set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
else()
  set(CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_PACKAGE_NAME zulfnduti)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  # dpkg-shlibdeps finds the runtime packages the binaries need (libpcre2-8-0, libstdc++6, ...);
  # the package's own libraries are looked up in the staging tree.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR}/lib)
  # A shlibs file and the ldconfig trigger for the shared libraries.
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
endif()

include(CPack)
