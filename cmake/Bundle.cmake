# The bundle around the module: Tolmara.vst as macOS has it, or Tolmara.bundle as GNUstep finds it.
file(GLOB pictures CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/resources/img/*.png)
if(APPLE)
  target_sources(Tolmara PRIVATE ${pictures})
  set_source_files_properties(${pictures} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
  set(exports ${CMAKE_SOURCE_DIR}/cmake/macos-exports.txt)
  # Older hosts look for `main`, which the linker makes of the other entry point.
  target_link_options(Tolmara PRIVATE
    -Wl,-exported_symbols_list,${exports} -Wl,-alias,_VSTPluginMain,_main)
  set_target_properties(Tolmara PROPERTIES BUNDLE TRUE BUNDLE_EXTENSION vst LINK_DEPENDS ${exports}
    MACOSX_BUNDLE_INFO_PLIST ${CMAKE_SOURCE_DIR}/cmake/Info.plist.in)
  install(TARGETS Tolmara LIBRARY DESTINATION .)
else()
  set(bundle ${CMAKE_BINARY_DIR}/Tolmara.bundle)
  set_target_properties(Tolmara PROPERTIES SUFFIX "" LIBRARY_OUTPUT_DIRECTORY ${bundle})
  configure_file(${CMAKE_SOURCE_DIR}/cmake/Info-gnustep.plist.in
                 ${bundle}/Resources/Info-gnustep.plist)
  foreach(picture ${pictures})
    configure_file(${picture} ${bundle}/Resources COPYONLY)
  endforeach()
endif()
