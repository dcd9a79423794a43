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

if(ZEL_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  if(ZEL_FUZZ)
    # What is fuzzed reports its coverage to the fuzzer; elsewhere the sanitizer's runtime ignores it.
    add_compile_options(-fsanitize=fuzzer-no-link)
  endif()
elseif(ZEL_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(ZEL_SANITIZE)
  message(FATAL_ERROR "ZEL_SANITIZE is 'address', 'thread' or empty, not '${ZEL_SANITIZE}'")
endif()

if(ZEL_LINT)
  find_program(ZEL_CLANG_TIDY NAMES clang-tidy clang-tidy-14 REQUIRED)
  # Objective-C++ is left out: clang-tidy does not know the GNUstep runtime's headers well enough.
  set(CMAKE_CXX_CLANG_TIDY ${ZEL_CLANG_TIDY} --quiet)
endif()
