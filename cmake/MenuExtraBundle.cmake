# halvex_add_menu_extra(NAME
#   SOURCES file...            the item's code; it links libHalvexTools only
#   IDENTIFIER id              CFBundleIdentifier
#   PRINCIPAL_CLASS class      the class passed to HALVEX_MENU_EXTRA
#   VERSION version            CFBundleVersion and CFBundleShortVersionString
#   [INFO_PLIST template]      default: MenuExtra-Info.plist.in beside this file
#   [DISPLAY_NAME name]        CFBundleName; default: NAME
#   [FOLDER folder]            parent folder of the bundle in the build tree
#   [RESOURCES file...]
#   [TRANSLATIONS file...])    see halvex_add_translations
#
# Creates the bundle FOLDER/NAME.menu with Contents/Info.plist, Contents/Linux/NAME and
# Contents/Resources. Sets the target properties MENU_EXTRA_BUNDLE (the bundle's folder) and
# MENU_EXTRA_FILES (its files except the code).
#
# Available in this tree, after add_subdirectory, and after find_package(HalvexTools).
function(halvex_add_menu_extra name)
  set(exports ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/plugin-exports.map)
  cmake_parse_arguments(extra "" "IDENTIFIER;PRINCIPAL_CLASS;VERSION;INFO_PLIST;DISPLAY_NAME;FOLDER"
                        "SOURCES;RESOURCES;TRANSLATIONS" ${ARGN})
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
  # No run path: the host that loads the bundle has loaded libHalvexTools already. Only the entry
  # point is exported.
  target_link_options(${name} PRIVATE LINKER:--version-script=${exports})
  # Makes undefined symbols link errors. The sanitizers' symbols are defined by the program.
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
  halvex_add_translations(${name} ${extra_TRANSLATIONS})
endfunction()

# halvex_add_translations(NAME file...)
# Compiles translations, such as po/de.po, into the bundle of the item NAME with msgfmt from GNU gettext:
# Contents/Resources/locale/LANGUAGE/LC_MESSAGES/NAME.mo. A file's name without ".po" is its language.
# Called by halvex_add_menu_extra; call it in the same folder to add generated files.
function(halvex_add_translations name)
  if(NOT ARGN)
    return()
  endif()
  get_target_property(bundle ${name} MENU_EXTRA_BUNDLE)
  halvex_compile_texts(${name} ${name} ${bundle}/Contents/Resources/locale ${ARGN})
  get_target_property(catalogues ${name} TEXT_CATALOGUES)
  set_property(TARGET ${name} APPEND PROPERTY MENU_EXTRA_FILES ${catalogues})
endfunction()

# halvex_compile_texts(TARGET DOMAIN FOLDER file...)
# Compiles each translation LANGUAGE.po to FOLDER/LANGUAGE/LC_MESSAGES/DOMAIN.mo together with TARGET, whose
# property TEXT_CATALOGUES it sets to the results.
function(halvex_compile_texts target domain folder)
  set(catalogues)
  foreach(translation IN LISTS ARGN)
    find_program(HALVEX_MSGFMT msgfmt REQUIRED)
    cmake_path(ABSOLUTE_PATH translation)
    cmake_path(GET translation STEM LAST_ONLY language)
    set(catalogue ${folder}/${language}/LC_MESSAGES/${domain}.mo)
    file(MAKE_DIRECTORY ${folder}/${language}/LC_MESSAGES)
    add_custom_command(OUTPUT ${catalogue}
      COMMAND ${HALVEX_MSGFMT} --output-file=${catalogue} ${translation}
      DEPENDS ${translation}
      VERBATIM)
    list(APPEND catalogues ${catalogue})
  endforeach()
  target_sources(${target} PRIVATE ${catalogues})
  set_target_properties(${target} PROPERTIES TEXT_CATALOGUES "${catalogues}")
endfunction()

# halvex_install_bundle(BUNDLE FOLDER)
# Installs a bundle into FOLDER, with modes that do not depend on the umask: the bar refuses bundles
# that others can write to.
function(halvex_install_bundle bundle folder)
  set(readable OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
  set(executable ${readable} OWNER_EXECUTE GROUP_EXECUTE WORLD_EXECUTE)
  install(DIRECTORY ${bundle} DESTINATION ${folder}
    FILE_PERMISSIONS ${readable}
    DIRECTORY_PERMISSIONS ${executable}
    REGEX "/Contents/Linux/[^/]+$" PERMISSIONS ${executable})
endfunction()
