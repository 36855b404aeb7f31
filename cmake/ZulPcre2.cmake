# PCRE2 for the rgx module: 8-bit code units, JIT on. Defines the imported target zul::pcre2.
# Linux: Debian's libpcre2-dev through pkg-config. Windows cross build: the static library that
# scripts/deps.sh builds from Debian's pcre2 source package with the MinGW toolchain
# (scripts/pcre2-mingw.sh) into ZUL_PCRE2_CACHE; configuring only looks for it there.
if(TARGET zul::pcre2)
  return()
endif()

if(WIN32 AND CMAKE_CROSSCOMPILING)
  # The same default as scripts/pcre2-mingw.sh.
  set(ZUL_PCRE2_CACHE "$ENV{HOME}/.cache/zulfnduti/pcre2" CACHE PATH
      "Where scripts/deps.sh keeps the MinGW build of PCRE2 (<cache>/<version>-mingw64)")
  file(GLOB zul_pcre2_stamps "${ZUL_PCRE2_CACHE}/*-mingw64/.built")
  set(zul_pcre2_prefix "")
  if(zul_pcre2_stamps)
    list(SORT zul_pcre2_stamps COMPARE NATURAL ORDER DESCENDING)
    list(GET zul_pcre2_stamps 0 zul_pcre2_stamp)
    get_filename_component(zul_pcre2_prefix "${zul_pcre2_stamp}" DIRECTORY)
  endif()
  if(NOT EXISTS "${zul_pcre2_prefix}/lib/libpcre2-8.a")
    message(FATAL_ERROR "No MinGW build of PCRE2 in ${ZUL_PCRE2_CACHE}: run scripts/deps.sh, which builds it "
                        "(or set ZUL_PCRE2_CACHE to where it was built)")
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
