// The variants for x86-64 processors.
#pragma once

#include "numeric/dft/Engine.h"

namespace dft {

extern const Engine kEngineSse2;
extern const Engine kEngineAvx2;
extern const Engine kEngineAvx512;

}  // namespace dft
