# Language, warning and sanitizer settings of every target.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

add_compile_options(-Wall -Wextra -Wshadow -Wno-unused-parameter
  $<$<COMPILE_LANGUAGE:CXX>:-Wthread-safety>
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)
if(ZEL_WERROR)
  add_compile_options(-Werror)
endif()

if(ZEL_SANITIZE)
  # What reports need, and quicker to build than the build type's own; what is fuzzed runs millions of times.
  add_compile_options($<IF:$<BOOL:${ZEL_FUZZ}>,-O2,-O1> -gline-tables-only -fno-omit-frame-pointer)
endif()
if(ZEL_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
  if(ZEL_FUZZ)
    # What is fuzzed reports its coverage to the fuzzer; elsewhere the sanitizer's runtime ignores it.
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
elseif(ZEL_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread)
  add_link_options(-fsanitize=thread)
  if(NOT APPLE)
    # The runtime lies in the program, and what instrumented libraries that are loaded later call of it (for
    # -dealloc of Objective-C) has to be found there, also when the program itself does without.
    add_link_options(LINKER:--export-dynamic-symbol=__tsan_ignore_thread_begin
                     LINKER:--export-dynamic-symbol=__tsan_ignore_thread_end)
  endif()
elseif(ZEL_SANITIZE)
  message(FATAL_ERROR "ZEL_SANITIZE is 'address', 'thread' or empty, not '${ZEL_SANITIZE}'")
endif()

if(ZEL_COVERAGE)
  # Every process adds its counts to a file for each program and library, wherever it runs and whatever
  # environment it has been left with; see scripts/coverage.sh.
  add_compile_options("-fprofile-instr-generate=${PROJECT_BINARY_DIR}/counts/%2m.profraw" -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

if(ZEL_LINT)
  find_program(ZEL_CLANG_TIDY NAMES clang-tidy clang-tidy-14 REQUIRED)
  # Objective-C++ is left out: clang-tidy does not know the GNUstep runtime's headers well enough.
  set(CMAKE_CXX_CLANG_TIDY ${ZEL_CLANG_TIDY} --quiet)
endif()
