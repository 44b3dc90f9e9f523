# The window layer for Cocoa, in Objective-C++. On macOS it is the product's; elsewhere it is built
# with GNUstep, which has the same classes, to be tested. Nothing else is written in that language.
if(NOT CMAKE_OBJCXX_COMPILER)
  set(CMAKE_OBJCXX_COMPILER ${CMAKE_CXX_COMPILER})
endif()
enable_language(OBJCXX)
foreach(config RELEASE DEBUG RELWITHDEBINFO)
  set(CMAKE_OBJCXX_FLAGS_${config} "${CMAKE_CXX_FLAGS_${config}}")
endforeach()

set(TOLMARA_BUNDLE_ID "com.Halden Merrow.vst.Tolmara")  # that the editor asks for

add_library(tolmara_cocoa INTERFACE)
# Methods cannot leave the names of arguments out.
set(objcxx -std=c++20 -Wno-unused-parameter)
if(APPLE)
  # clang-format takes out the blank between arguments without a name that the warning asks for.
  list(APPEND objcxx -fno-objc-arc -Wno-missing-selector-name)
  target_link_libraries(tolmara_cocoa INTERFACE "-framework Cocoa")
  set(other_source CocoaPlatformGNUstep.mm)
else()
  # The flags that GNUstep's own makefiles pass. g++ takes `id`, a type there, for shadowed by
  # arguments of that name.
  list(APPEND objcxx -fobjc-exceptions -fconstant-string-class=NSConstantString
                     -fno-strict-aliasing -pthread -Wno-shadow)
  target_compile_definitions(tolmara_cocoa INTERFACE
    "$<$<COMPILE_LANGUAGE:OBJCXX>:GNUSTEP;GNUSTEP_BASE_LIBRARY=1;GNU_GUI_LIBRARY=1;GNU_RUNTIME=1;_NATIVE_OBJC_EXCEPTIONS>")
  target_include_directories(tolmara_cocoa SYSTEM INTERFACE
    $<$<COMPILE_LANGUAGE:OBJCXX>:/usr/include/GNUstep>)
  target_link_libraries(tolmara_cocoa INTERFACE gnustep-gui gnustep-base objc)
  set(other_source CocoaPlatformApple.mm)
endif()
target_compile_options(tolmara_cocoa INTERFACE "$<$<COMPILE_LANGUAGE:OBJCXX>:${objcxx}>")
tolmara_folder(graphics/mac WITHOUT ${other_source} LINKS tolmara_cocoa)
