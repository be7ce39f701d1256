# Installs libHalvexTools, and in the component Development the files that find_package(HalvexTools)
# needs to build menu extras.
include(CMakePackageConfigHelpers)
set(package ${HALVEX_LIBRARY_FOLDER}/cmake/HalvexTools)

install(TARGETS HalvexTools EXPORT HalvexTools
  LIBRARY DESTINATION ${HALVEX_LIBRARY_FOLDER} NAMELINK_COMPONENT Development
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/HalvexTools COMPONENT Development)
install(TARGETS HalvexTesting EXPORT HalvexTools
  FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/HalvexTools COMPONENT Development)
install(EXPORT HalvexTools
  FILE HalvexToolsTargets.cmake
  NAMESPACE HalvexTools::
  DESTINATION ${package}
  COMPONENT Development)

write_basic_package_version_file(${PROJECT_BINARY_DIR}/HalvexToolsConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_BINARY_DIR}/HalvexToolsConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/HalvexToolsConfig.cmake
  ${CMAKE_CURRENT_LIST_DIR}/MenuExtraBundle.cmake
  ${CMAKE_CURRENT_LIST_DIR}/MenuExtra-Info.plist.in
  ${CMAKE_CURRENT_LIST_DIR}/plugin-exports.map
  DESTINATION ${package}
  COMPONENT Development)
