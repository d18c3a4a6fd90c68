# Compiler settings shared by every target of the project's own code.

# Sources are UTF-8; the system's texts are code-page 936 bytes at run time.
# clang has no -fexec-charset for other code pages, so its builds (the fuzzers)
# keep UTF-8 literals; nothing they check depends on those texts.
set(TAVLET_CHARSET_FLAGS)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(TAVLET_CHARSET_FLAGS -finput-charset=UTF-8 -fexec-charset=GBK)
endif()

if(TAVLET_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(TAVLET_FUZZ)
  # Everything the fuzzers link is instrumented for coverage and checked.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer
                      -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(MINGW)
  # The module must not depend on the compiler's runtime DLLs being on the path.
  add_link_options(-static -static-libgcc -static-libstdc++)
endif()

function(tavlet_project_flags target)
  target_compile_options(${target} PRIVATE -Wall -Wextra ${TAVLET_CHARSET_FLAGS})
  if(WIN32)
    target_compile_definitions(${target} PRIVATE WINVER=0x0601 _WIN32_WINNT=0x0601)
  endif()
endfunction()
