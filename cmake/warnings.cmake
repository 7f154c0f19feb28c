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

# Reports coverage to a fuzzer and checks addresses and undefined behaviour in the folders that
# readers run through; the kernels stay plain, so that a fuzz build is soon done.
function(tarvik_instrument_shell)
  foreach(folder base env model attr io)
    file(GLOB_RECURSE sources ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
    set_property(SOURCE ${sources} APPEND PROPERTY COMPILE_OPTIONS
                 -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
                 -fno-omit-frame-pointer)
  endforeach()
  add_link_options(-fsanitize=address,undefined)
endfunction()
