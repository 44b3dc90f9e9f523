# The transform engine's kernels are written once and compiled once per instruction set, each in a
# source of its own with flags of its own; the engine picks one at its first use. numeric/dft/x86
# holds those of x86-64, numeric/dft/scalar the one of all other builds.
set(TOLMARA_DFT_VARIANTS numeric/dft/scalar)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|amd64" AND NOT TOLMARA_SCALAR)
  set(TOLMARA_DFT_VARIANTS numeric/dft/x86)
  set_source_files_properties(numeric/dft/x86/EngineAvx2.cpp PROPERTIES
    COMPILE_OPTIONS "-mavx2;-mfma")
  set_source_files_properties(numeric/dft/x86/EngineAvx512.cpp PROPERTIES
    COMPILE_OPTIONS "-mavx2;-mfma;-mavx512f;-mavx512dq;-mavx512bw;-mavx512vl;-mavx512cd")
endif()
