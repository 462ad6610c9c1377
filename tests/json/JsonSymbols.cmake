# sorvanto_check_json_symbols(TARGET): a test that fails when the program defines a JSON class in the global namespace,
# where it would stand in for the toolkit's own class of that name, inside the toolkit's libraries too.
function(sorvanto_check_json_symbols target)
    add_test(NAME json_symbols_${target} COMMAND sh "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/check_symbols.sh" "${CMAKE_NM}" "$<TARGET_FILE:${target}>")
    set_tests_properties(json_symbols_${target} PROPERTIES LABELS json)
endfunction()
