# The module that hosts load, with no symbol visible but its two entry points, and the bitmaps with
# it: a shared object with a folder beside it on Linux, a bundle with Cocoa.
add_library(Tolmara MODULE)
target_sources(Tolmara PRIVATE ${CMAKE_SOURCE_DIR}/plugin/EntryPoints.cpp)
target_link_libraries(Tolmara PRIVATE tolmara_options)
set_target_properties(Tolmara PROPERTIES PREFIX "" LINKER_LANGUAGE CXX
  LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR})
tolmara_link(Tolmara plugin ${TOLMARA_WINDOWS})
if(NOT APPLE)
  target_link_options(Tolmara PRIVATE
    -Wl,--version-script=${CMAKE_SOURCE_DIR}/plugin/exports.map -Wl,-Bsymbolic -Wl,-z,nodelete)
  set_target_properties(Tolmara PROPERTIES LINK_DEPENDS ${CMAKE_SOURCE_DIR}/plugin/exports.map)
  if(NOT TOLMARA_SANITIZE)
    target_link_options(Tolmara PRIVATE -Wl,-z,defs)
  endif()
endif()
if(TOLMARA_COCOA)
  include(Bundle)
  return()
endif()
add_custom_command(TARGET Tolmara POST_BUILD
  COMMAND ${CMAKE_COMMAND} -E copy_directory
          ${CMAKE_SOURCE_DIR}/resources/img ${CMAKE_BINARY_DIR}/resources/img)
install(TARGETS Tolmara LIBRARY DESTINATION Tolmara)
install(DIRECTORY resources/img DESTINATION Tolmara/resources)
