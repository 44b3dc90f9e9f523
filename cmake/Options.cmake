# Flags that every target shares. Contraction to fused multiply-add stays off: many results are
# defined by each single rounding.
add_library(tolmara_options INTERFACE)
target_compile_features(tolmara_options INTERFACE cxx_std_20)
target_include_directories(tolmara_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(tolmara_options INTERFACE
  -ffp-contract=off -fvisibility=hidden -fvisibility-inlines-hidden -fPIC
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_CXX_FLAGS_DEBUG "-O0 -g")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1 -fno-omit-frame-pointer")

if(TOLMARA_WERROR)
  target_compile_options(tolmara_options INTERFACE -Werror)
endif()
if(TOLMARA_SCALAR)
  target_compile_definitions(tolmara_options INTERFACE TOLMARA_SCALAR=1)
endif()
if(TOLMARA_SANITIZE)
  target_compile_options(tolmara_options INTERFACE
    -fsanitize=${TOLMARA_SANITIZE} -fno-sanitize-recover=all)
  target_link_options(tolmara_options INTERFACE -fsanitize=${TOLMARA_SANITIZE})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # In instrumented code g++ 12 sees overflows of standard containers that are not there.
    target_compile_options(tolmara_options INTERFACE
      -Wno-stringop-overflow -Wno-array-bounds -Wno-maybe-uninitialized)
  endif()
endif()
if(TOLMARA_FUZZ)
  target_compile_options(tolmara_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What the code is built for, which on macOS need not be what it is built on.
set(TOLMARA_PROCESSOR ${CMAKE_SYSTEM_PROCESSOR})
if(APPLE AND CMAKE_OSX_ARCHITECTURES)
  set(TOLMARA_PROCESSOR ${CMAKE_OSX_ARCHITECTURES})
endif()
