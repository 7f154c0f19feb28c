# Warnings are errors; sanitizers apply to everything that is built.
if(TARVIK_SANITIZE)
  add_compile_options(-fsanitize=${TARVIK_SANITIZE} -fno-omit-frame-pointer
                      -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TARVIK_SANITIZE})
endif()

function(tarvik_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wshadow -Wno-unused-parameter
                         -Wnon-virtual-dtor -Woverloaded-virtual)
  if(TARVIK_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
