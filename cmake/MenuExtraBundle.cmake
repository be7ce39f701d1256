# halvex_add_menu_extra(NAME
#   SOURCES file...            the item's code; it links libHalvexTools alone
#   IDENTIFIER id              CFBundleIdentifier
#   PRINCIPAL_CLASS class      the class that HALVEX_MENU_EXTRA exports
#   VERSION version            CFBundleVersion and CFBundleShortVersionString
#   [INFO_PLIST template]      instead of cmake/MenuExtra-Info.plist.in
#   [DISPLAY_NAME name]        CFBundleName; NAME without it
#   [FOLDER folder]            where the bundle is put in the build tree
#   [RESOURCES file...])
#
# Makes the bundle FOLDER/NAME.menu: Contents/Info.plist, Contents/Linux/NAME, Contents/Resources.
# The bundle's folder is the target property MENU_EXTRA_BUNDLE, the files in it but its code are
# MENU_EXTRA_FILES.
#
# For this tree, for one that has it as a subdirectory, and, installed, for find_package(HalvexTools).
function(halvex_add_menu_extra name)
  set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/plugin-exports.map)
  cmake_parse_arguments(extra "" "IDENTIFIER;PRINCIPAL_CLASS;VERSION;INFO_PLIST;DISPLAY_NAME;FOLDER"
                        "SOURCES;RESOURCES" ${ARGN})
  if(NOT extra_DISPLAY_NAME)
    set(extra_DISPLAY_NAME ${name})
  endif()
  if(NOT extra_INFO_PLIST)
    set(extra_INFO_PLIST ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/MenuExtra-Info.plist.in)
  endif()
  if(NOT extra_FOLDER)
    set(extra_FOLDER ${PROJECT_BINARY_DIR}/extras)
  endif()
  set(bundle ${extra_FOLDER}/${name}.menu)

  add_library(${name} MODULE ${extra_SOURCES})
  target_link_libraries(${name} PRIVATE HalvexTools::HalvexTools)
  # No run path: wherever the bundle lies, the host that loads it has libHalvexTools already.
  # Only the entry point is seen from outside; the classes stay the bundle's own.
  target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
  # A function that nobody defines is an error now, and not when the bar loads the item; but for
  # those of the sanitizers, which come with the program.
  if(NOT HALVEX_SANITIZE)
    target_link_options(${name} PRIVATE LINKER:-z,defs)
  endif()
  set_target_properties(${name} PROPERTIES
    PREFIX "" SUFFIX ""
    LIBRARY_OUTPUT_DIRECTORY ${bundle}/Contents/Linux
    LINK_DEPENDS ${exports}
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH ""
    MENU_EXTRA_BUNDLE ${bundle})
  configure_file(${extra_INFO_PLIST} ${bundle}/Contents/Info.plist @ONLY)
  file(MAKE_DIRECTORY ${bundle}/Contents/Resources)
  set(files ${bundle}/Contents/Info.plist)
  foreach(resource IN LISTS extra_RESOURCES)
    configure_file(${resource} ${bundle}/Contents/Resources COPYONLY)
    cmake_path(GET resource FILENAME file)
    list(APPEND files ${bundle}/Contents/Resources/${file})
  endforeach()
  set_target_properties(${name} PROPERTIES MENU_EXTRA_FILES "${files}")
endfunction()

# halvex_install_bundle(BUNDLE FOLDER)
# Installs a bundle's folder into FOLDER. The modes do not depend on the builder's umask: the bar
# loads nothing that others could write.
function(halvex_install_bundle bundle folder)
  set(readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  set(executable ${readable} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
  install(DIRECTORY ${bundle} DESTINATION ${folder}
    FILE_PERMISSIONS ${readable}
    DIRECTORY_PERMISSIONS ${executable}
    REGEX "/Contents/Linux/[^/]+$" PERMISSIONS ${executable})
endfunction()
