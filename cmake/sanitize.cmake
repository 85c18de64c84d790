# Tests and fuzzers share one build: the sanitizers look at both, and the fuzzers need their counters in the code.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "The sanitizers are clang's: CXX=clang++")
endif()

add_compile_options(-O1 -fno-omit-frame-pointer -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all)
# As a library they leave room for one that is loaded before them, which makes the system's functions fail.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-runtime-dir OUTPUT_VARIABLE runtime
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
add_link_options(-fsanitize=address,undefined -shared-libasan LINKER:-rpath,${runtime})
