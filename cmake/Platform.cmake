# What the sources are compiled against: Apple's frameworks on macOS, GNUstep elsewhere.
if(APPLE)
  add_library(Platform::Foundation INTERFACE IMPORTED)
  target_link_libraries(Platform::Foundation INTERFACE
    "-framework CoreFoundation" "-framework Foundation" "-framework CoreServices"
    "-framework ApplicationServices")
  add_library(Platform::AppKit INTERFACE IMPORTED)
  target_link_libraries(Platform::AppKit INTERFACE "-framework AppKit" Platform::Foundation)
else()
  include(${CMAKE_CURRENT_LIST_DIR}/GNUstep.cmake)
  find_package(X11 REQUIRED)
  add_library(Platform::Foundation ALIAS GNUstep::Base)
  add_library(Platform::AppKit ALIAS GNUstep::GUI)
endif()
