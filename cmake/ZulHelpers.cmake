# Gives each source ZUL_SOURCE_NAME, the name a throw site records: its path below `root`
# without the extension and the platform suffix ("utl/impl/utl_File").
function(zul_source_names root)
  foreach(src IN LISTS ARGN)
    file(RELATIVE_PATH rel "${root}" "${src}")
    string(REGEX REPLACE "\\.(cpp|c)$" "" rel "${rel}")
    string(REGEX REPLACE "_(win32|posix)$" "" rel "${rel}")
    set_source_files_properties("${src}" PROPERTIES COMPILE_DEFINITIONS "ZUL_SOURCE_NAME=\"${rel}\"")
  endforeach()
endfunction()

# Collects the sources of a library tree laid out as <root>/<mod>/impl/<mod>_<Name>.cpp, each
# with its source name. Files ending in _win32.cpp or _posix.cpp are taken for their own
# platform only.
function(zul_collect_sources root out_var)
  file(GLOB_RECURSE srcs CONFIGURE_DEPENDS "${root}/*/impl/*.cpp" "${root}/*/impl/*.c")
  set(kept "")
  foreach(src IN LISTS srcs)
    if(src MATCHES "_${ZUL_OTHER_PLATFORM_SUFFIX}\\.(cpp|c)$")
      continue()
    endif()
    list(APPEND kept "${src}")
  endforeach()
  zul_source_names(${root} ${kept})
  set(${out_var} "${kept}" PARENT_SCOPE)
endfunction()

# Public headers of a library tree: <root>/<mod>/*.h plus the headers at the root.
function(zul_collect_headers root out_var)
  file(GLOB_RECURSE hdrs CONFIGURE_DEPENDS "${root}/*.h")
  list(FILTER hdrs EXCLUDE REGEX "/impl/")
  set(${out_var} "${hdrs}" PARENT_SCOPE)
endfunction()

function(zul_library_defaults target)
  set_target_properties(${target} PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    C_VISIBILITY_PRESET hidden
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR})
  if(WIN32)
    # ZULFNDUTI_CoreUtils.dll, not libZULFNDUTI_CoreUtils.dll
    set_target_properties(${target} PROPERTIES PREFIX "" IMPORT_PREFIX "")
  endif()
endfunction()

# One of the two shared libraries: sources and headers of a tree, ZULFNDUTI::<export_name>,
# include directory for the build and the install, and the define that selects dllexport.
function(zul_add_library target tree export_name building_define)
  zul_collect_sources(${tree} sources)
  zul_collect_headers(${tree} headers)
  add_library(${target} SHARED ${sources} ${headers})
  add_library(ZULFNDUTI::${export_name} ALIAS ${target})
  zul_library_defaults(${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${export_name})
  target_compile_definitions(${target} PRIVATE ${building_define})
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${tree}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ZULFNDUTI>)
endfunction()
