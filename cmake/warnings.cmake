# Warnings are errors, for every target of the project (not for third-party code built alongside).
set(ISPTUNE_C_WARNINGS -Wall -Wextra -Wpedantic -Wshadow -Wstrict-prototypes -Wmissing-prototypes
    -Wformat=2 -Wcast-align -Wpointer-arith -Werror)
set(ISPTUNE_CXX_WARNINGS -Wall -Wextra -Wshadow -Wformat=2 -Werror)

function(isptune_warnings target)
  target_compile_options(${target} PRIVATE
    $<$<COMPILE_LANGUAGE:C>:${ISPTUNE_C_WARNINGS}>
    $<$<COMPILE_LANGUAGE:CXX>:${ISPTUNE_CXX_WARNINGS}>)
endfunction()
