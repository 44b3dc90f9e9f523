# The inner loops of a render are written once and compiled once per instruction set, each in a
# source of its own with flags of its own; the jump index of the transform engine picks one.
# dsp/x86 holds those of x86-64, dsp/scalar the one of all other builds.
set(TOLMARA_DSP_VARIANTS dsp/scalar)
if(TOLMARA_PROCESSOR MATCHES "x86_64|AMD64|amd64" AND NOT TOLMARA_SCALAR)
  set(TOLMARA_DSP_VARIANTS dsp/x86)
  # Loops with a choice between two values become vectors only if the exception flags of the
  # processor do not count. There is no fused multiply-add: all variants give the same bits.
  set(loops -fno-trapping-math)
  set_source_files_properties(dsp/x86/RenderKernelsSse2.cpp PROPERTIES
    COMPILE_OPTIONS "${loops}")
  set_source_files_properties(dsp/x86/RenderKernelsAvx2.cpp PROPERTIES
    COMPILE_OPTIONS "${loops};-mavx2")
endif()
