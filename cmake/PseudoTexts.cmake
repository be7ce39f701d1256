# halvex_make_pseudo_texts(RESULT TEMPLATE)
# Translates the template po/NAME.pot into the invented languages of scripts/make-pseudo-texts, which are used
# with LANGUAGE=en@accented and LANGUAGE=en@mirrored. Sets the variable RESULT to the translations.
function(halvex_make_pseudo_texts result template)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(script ${PROJECT_SOURCE_DIR}/scripts/make-pseudo-texts)
  cmake_path(ABSOLUTE_PATH template)
  foreach(language IN ITEMS en@accented en@mirrored)
    set(translation ${CMAKE_CURRENT_BINARY_DIR}/${language}.po)
    add_custom_command(OUTPUT ${translation}
      COMMAND ${Python3_EXECUTABLE} -B ${script} ${template} ${language} ${translation}
      DEPENDS ${script} ${PROJECT_SOURCE_DIR}/scripts/texts.py ${template}
      VERBATIM)
    list(APPEND translations ${translation})
  endforeach()
  set(${result} ${translations} PARENT_SCOPE)
endfunction()

# halvex_add_pseudo_texts(NAME)
# Adds the item NAME in the invented languages, from po/NAME.pot, to its bundle.
function(halvex_add_pseudo_texts name)
  halvex_make_pseudo_texts(translations po/${name}.pot)
  halvex_add_translations(${name} ${translations})
endfunction()
