# find_package(HalvexTools) defines the target HalvexTools::HalvexTools and halvex_add_menu_extra.
include(${CMAKE_CURRENT_LIST_DIR}/HalvexToolsTargets.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/MenuExtraBundle.cmake)
