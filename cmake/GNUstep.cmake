# GNUstep as imported targets: GNUstep::Base and GNUstep::GUI (Linux).
execute_process(COMMAND gnustep-config --variable=GNUSTEP_SYSTEM_HEADERS OUTPUT_VARIABLE _gs_headers OUTPUT_STRIP_TRAILING_WHITESPACE)
execute_process(COMMAND gcc -print-file-name=include OUTPUT_VARIABLE _gcc_include OUTPUT_STRIP_TRAILING_WHITESPACE)
if(NOT EXISTS "${_gs_headers}/Foundation/Foundation.h" OR NOT EXISTS "${_gcc_include}/objc/objc.h")
  message(FATAL_ERROR "libgnustep-gui-dev and libobjc-12-dev are needed")
endif()
# Flags of gnustep-config --objc-flags that matter for clang++; GNUstep's headers as system headers (no
# warnings from them); GCC's own include folder last, only for <objc/...>.
add_library(GNUstep::Base INTERFACE IMPORTED GLOBAL)
target_compile_options(GNUstep::Base INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-runtime=gcc;-fexceptions;-fobjc-exceptions;-fconstant-string-class=NSConstantString;-pthread>
  "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-isystem ${_gs_headers}>"
  "$<$<COMPILE_LANGUAGE:OBJCXX>:SHELL:-idirafter ${_gcc_include}>")
target_compile_definitions(GNUstep::Base INTERFACE
  $<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP=1;GNUSTEP_BASE_LIBRARY=1;GNU_GUI_LIBRARY=1;GNU_RUNTIME=1;_NATIVE_OBJC_EXCEPTIONS=1>)
target_link_libraries(GNUstep::Base INTERFACE gnustep-base objc pthread dl)
add_library(GNUstep::GUI INTERFACE IMPORTED GLOBAL)
target_link_libraries(GNUstep::GUI INTERFACE gnustep-gui GNUstep::Base)
