# The kernels of the transform engine and of the sums of spectra are written once and compiled once
# per instruction set, each in a source of its own with flags of its own; the engine picks one at
# its first use. The folders x86 hold those of x86-64, the folders scalar the one of other builds.
set(TOLMARA_DFT_VARIANTS numeric/dft/scalar numeric/scalar)
if(TOLMARA_PROCESSOR MATCHES "x86_64|AMD64|amd64" AND NOT TOLMARA_SCALAR)
  set(TOLMARA_DFT_VARIANTS numeric/dft/x86 numeric/x86)
  # Left to itself the compiler copies pairs of pointers as vectors, which stalls short transforms:
  # a vector load waits for the two narrow stores before it.
  set(kernels -fno-tree-slp-vectorize -mtune=haswell)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The kernels are many small functions that must end in one; by default GCC stops when a source
    # has grown by 40 %.
    list(APPEND kernels --param=inline-unit-growth=1000)
  endif()
  if(TOLMARA_SANITIZE)
    # Checks of what never leaves the registers, which multiply the time to compile by four.
    list(APPEND kernels -fno-sanitize-address-use-after-scope -fno-sanitize=null)
  endif()
  set(avx2 -mavx2 -mfma)
  set(avx512 ${avx2} -mavx512f -mavx512dq -mavx512bw -mavx512vl -mavx512cd)
  set_source_files_properties(numeric/dft/x86/EngineSse2.cpp PROPERTIES
    COMPILE_OPTIONS "${kernels}")
  set_source_files_properties(numeric/dft/x86/EngineAvx2.cpp PROPERTIES
    COMPILE_OPTIONS "${kernels};${avx2}")
  set_source_files_properties(numeric/dft/x86/EngineAvx512.cpp PROPERTIES
    COMPILE_OPTIONS "${kernels};${avx512}")
  # No fused multiply-add: the sums keep the bits of the 128-bit form.
  set_source_files_properties(numeric/x86/SpectrumKernelAvx2.cpp PROPERTIES
    COMPILE_OPTIONS -mavx2)
endif()
