# Compiler options and output folders. A build tree has the same folders as an installation, so
# programs find their items in the same way in both.

# Options for the code of items, exported with the library. GCC's "unique" symbols would prevent a plug-in
# from being unloaded.
set(HALVEX_ITEM_OPTIONS $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-gnu-unique>)

add_library(halvex_compiler_options INTERFACE)
target_compile_features(halvex_compiler_options INTERFACE cxx_std_20)
target_compile_options(halvex_compiler_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # GCC 12 warns of overlapping copies inside std::string's own operator+.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  ${HALVEX_ITEM_OPTIONS})
if(HALVEX_WARNINGS_AS_ERRORS)
  target_compile_options(halvex_compiler_options INTERFACE -Werror)
endif()
target_include_directories(halvex_compiler_options INTERFACE ${PROJECT_SOURCE_DIR})

if(HALVEX_SANITIZE)
  add_compile_options(-fsanitize=${HALVEX_SANITIZE} -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${HALVEX_SANITIZE})
  if(HALVEX_SANITIZE MATCHES undefined)
    add_compile_options(-fno-sanitize-recover=undefined)
    # The vptr check needs type information that Qt's classes are built without.
    add_compile_options(-fno-sanitize=vptr)
  endif()
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

find_program(HALVEX_CCACHE ccache)
if(HALVEX_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${HALVEX_CCACHE})
endif()

# halvex_precompile(TARGET header...)
# Compiles headers that most sources of a target include only once. Saves a third of the compile time.
# Does nothing with ccache, which would miss in every other build tree.
function(halvex_precompile target)
  if(NOT HALVEX_CCACHE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

set(HALVEX_LIBRARY_FOLDER lib)
set(HALVEX_PRIVATE_FOLDER lib/halvex)
set(HALVEX_OWN_ITEMS_FOLDER ${HALVEX_PRIVATE_FOLDER}/MenuExtras)
set(HALVEX_PANES_FOLDER /Library/PreferencePanes CACHE PATH
    "Where the preference pane is installed; the library looks for it in /Library/PreferencePanes")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${HALVEX_LIBRARY_FOLDER})
# The run path is the same in both. Otherwise CMake would pad that of the build tree with colons, and the
# dynamic loader searches the current folder for each empty entry.
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${HALVEX_LIBRARY_FOLDER}")
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
