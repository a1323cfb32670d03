# Warnings are errors everywhere in our own code.
function(nq_set_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror -Wno-missing-field-initializers)
endfunction()
