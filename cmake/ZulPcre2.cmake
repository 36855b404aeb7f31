# PCRE2 for the rgx module: 8-bit code units, JIT on. Defines the imported target zul::pcre2.
# Linux: Debian's libpcre2-dev through pkg-config. Windows cross build: a static library built
# from Debian's pcre2 source package with the MinGW toolchain by scripts/pcre2-mingw.sh, cached
# outside the build tree (ZUL_PCRE2_CACHE) so that fresh build trees reuse it.
if(TARGET zul::pcre2)
  return()
endif()

if(WIN32 AND CMAKE_CROSSCOMPILING)
  if(DEFINED ENV{HOME} AND NOT "$ENV{HOME}" STREQUAL "")
    set(zul_pcre2_default_cache "$ENV{HOME}/.cache/zulfnduti/pcre2")
  else()
    set(zul_pcre2_default_cache "${CMAKE_BINARY_DIR}/_deps/pcre2")
  endif()
  set(ZUL_PCRE2_CACHE "${zul_pcre2_default_cache}" CACHE PATH
      "Where the MinGW build of PCRE2 and its Debian source package are kept")
  execute_process(
    COMMAND bash ${PROJECT_SOURCE_DIR}/scripts/pcre2-mingw.sh ${ZUL_PCRE2_CACHE} ${CMAKE_TOOLCHAIN_FILE}
    RESULT_VARIABLE zul_pcre2_rc
    OUTPUT_VARIABLE zul_pcre2_prefix
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT zul_pcre2_rc EQUAL 0 OR NOT EXISTS "${zul_pcre2_prefix}/lib/libpcre2-8.a")
    message(FATAL_ERROR "PCRE2 for the Windows build could not be made (scripts/pcre2-mingw.sh)")
  endif()
  message(STATUS "PCRE2 (MinGW, static, JIT): ${zul_pcre2_prefix}")
  add_library(zul::pcre2 STATIC IMPORTED GLOBAL)
  set_target_properties(zul::pcre2 PROPERTIES
    IMPORTED_LOCATION "${zul_pcre2_prefix}/lib/libpcre2-8.a"
    INTERFACE_INCLUDE_DIRECTORIES "${zul_pcre2_prefix}/include"
    INTERFACE_COMPILE_DEFINITIONS "PCRE2_STATIC;PCRE2_CODE_UNIT_WIDTH=8")
else()
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(ZUL_PCRE2 REQUIRED IMPORTED_TARGET GLOBAL libpcre2-8)
  add_library(zul::pcre2 INTERFACE IMPORTED GLOBAL)
  set_target_properties(zul::pcre2 PROPERTIES
    INTERFACE_LINK_LIBRARIES PkgConfig::ZUL_PCRE2
    INTERFACE_COMPILE_DEFINITIONS "PCRE2_CODE_UNIT_WIDTH=8")
endif()
