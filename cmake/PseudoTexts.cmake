# halvex_add_pseudo_texts(NAME)
# Translates po/NAME.pot of the item NAME into the invented languages of scripts/make-pseudo-texts, and
# adds them to its bundle. They are used with LANGUAGE=en@accented and LANGUAGE=en@mirrored.
function(halvex_add_pseudo_texts name)
  find_package(Python3 REQUIRED COMPONENTS Interpreter)
  set(script ${PROJECT_SOURCE_DIR}/scripts/make-pseudo-texts)
  set(template ${CMAKE_CURRENT_SOURCE_DIR}/po/${name}.pot)
  foreach(language IN ITEMS en@accented en@mirrored)
    set(translation ${CMAKE_CURRENT_BINARY_DIR}/${language}.po)
    add_custom_command(OUTPUT ${translation}
      COMMAND ${Python3_EXECUTABLE} -B ${script} ${template} ${language} ${translation}
      DEPENDS ${script} ${PROJECT_SOURCE_DIR}/scripts/texts.py ${template}
      VERBATIM)
    halvex_add_translations(${name} ${translation})
  endforeach()
endfunction()
