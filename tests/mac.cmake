# The tests of the Cocoa layer: two programs, each run as a whole because every start of GNUstep
# takes time. The second one loads the bundle, so it must not hold the same classes itself.
pkg_check_modules(xcb_xtest REQUIRED IMPORTED_TARGET xcb-xtest)
tolmara_folder(graphics/x11/server PACKAGES xcb xcb-shm xcb-randr)
file(GLOB mac_tests CONFIGURE_DEPENDS graphics/mac/*.mm)
add_executable(graphics_mac_tests ${mac_tests} graphics/mac/module/Main.mm
               graphics/Fixture.cpp)
tolmara_link(graphics_mac_tests graphics/mac iplug/vst2)
add_executable(mac_module_tests graphics/mac/module/ModuleTest.mm graphics/mac/module/Main.mm
               graphics/x11/XServer.cpp)
tolmara_link(mac_module_tests graphics/x11/server graphics/lice)
target_link_libraries(mac_module_tests PRIVATE PkgConfig::xcb_xtest)
add_dependencies(mac_module_tests Tolmara tolmara)
foreach(target graphics_mac_tests mac_module_tests)
  target_link_libraries(${target} PRIVATE tolmara_options tolmara_cocoa GTest::gtest
                        Threads::Threads ${CMAKE_DL_LIBS})
  target_compile_definitions(${target} PRIVATE
    TOLMARA_SOURCE_DIR="${CMAKE_SOURCE_DIR}" TOLMARA_BINARY_DIR="${CMAKE_BINARY_DIR}")
endforeach()
