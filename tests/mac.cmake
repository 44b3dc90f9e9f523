# The tests of the Cocoa layer: one program, run as a whole, because each start of GNUstep takes time.
file(GLOB mac_tests CONFIGURE_DEPENDS graphics/mac/*.mm)
add_executable(graphics_mac_tests ${mac_tests} graphics/Fixture.cpp)
tolmara_link(graphics_mac_tests graphics/mac iplug/vst2)
target_link_libraries(graphics_mac_tests PRIVATE tolmara_options tolmara_cocoa GTest::gtest
                      Threads::Threads ${CMAKE_DL_LIBS})
target_compile_definitions(graphics_mac_tests PRIVATE TOLMARA_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
