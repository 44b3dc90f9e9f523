// The engine's operations: checks, alignment of the blocks, and the way to the kernels.
#include "numeric/dft/ippDFT.h"

#include <bit>
#include <climits>
#include <cmath>
#include <cstdint>

#include "numeric/dft/Engine.h"
#include "numeric/dft/Setup.h"
#include "numeric/dft/SmallReal.h"

namespace {

using dft::Spec;

static_assert(sizeof(Spec) >= 768, "callers count on spec blocks of at least that");

constexpr std::uintptr_t kAlignment = 64;
constexpr int kLargestOrder = 29;  // of a power of two
constexpr int kTooLong = 1 << 27;  // for any other length

template <class T>
T* align(void* block) {
  const auto address = reinterpret_cast<std::uintptr_t>(block);
  return reinterpret_cast<T*>((address + kAlignment - 1) & ~(kAlignment - 1));
}

const Spec* align(const IppsDFTSpec_R_32f* block) {
  return align<const Spec>(const_cast<IppsDFTSpec_R_32f*>(block));
}

std::int64_t with_slack(std::int64_t bytes) {
  const std::int64_t step = kAlignment;
  return bytes == 0 ? 0 : (bytes + step - 1) / step * step + step;
}

float scale_of(int length, int flag, int direction) {
  if (flag == direction) return static_cast<float>(1.0 / length);
  if (flag == IPP_FFT_DIV_BY_SQRTN) return static_cast<float>(1.0 / std::sqrt(length));
  return 1.0F;
}

// The plan of a length, with the sizes of its blocks as the caller has to provide them.
IppStatus set_up(int length, int flag, int hint, dft::Setup& setup) {
  if (length < 1) return ippStsSizeErr;
  if (flag != IPP_FFT_DIV_FWD_BY_N && flag != IPP_FFT_DIV_INV_BY_N &&
      flag != IPP_FFT_DIV_BY_SQRTN && flag != IPP_FFT_NODIV_BY_ANY) {
    return ippStsFftFlagErr;
  }
  if (std::has_single_bit(static_cast<unsigned>(length))) {
    if (length > 1 << kLargestOrder) return ippStsFftOrderErr;
  } else if (length >= kTooLong) {
    return ippStsSizeErr;
  }
  if (length > dft::kLargestSmall) {
    setup = dft::plan(length);
  } else {
    setup = {{}, sizeof(Spec), 0, 0};
    setup.spec.identifier = dft::kIdentifier;
    setup.spec.length = length;
  }
  setup.spec.flag = flag;
  setup.spec.hint = hint;
  setup.spec.forward_scale = scale_of(length, flag, IPP_FFT_DIV_FWD_BY_N);
  setup.spec.inverse_scale = scale_of(length, flag, IPP_FFT_DIV_INV_BY_N);
  // Among others an odd length from 2^26 on that needs a convolution ends here.
  for (std::int64_t* bytes : {&setup.spec_bytes, &setup.init_bytes, &setup.work_bytes}) {
    *bytes = with_slack(*bytes);
    if (*bytes > INT_MAX) return ippStsSizeErr;
  }
  return ippStsNoErr;
}

// One direction: the kernels for short and for all other lengths, and the scale.
struct Direction {
  const dft::SmallKernels& small;
  void (*dft::Engine::*run)(const Spec&, const float*, float*, float*);
  float Spec::*scale;
};

IppStatus transform(const Direction& direction, const float* src, float* dst,
                    const IppsDFTSpec_R_32f* block, Ipp8u* work) {
  if (!src || !dst || !block) return ippStsNullPtrErr;
  const Spec& spec = *align(block);
  if (spec.identifier != dft::kIdentifier) return ippStsContextMatchErr;
  if (spec.length <= dft::kLargestSmall) {
    direction.small[static_cast<unsigned>(spec.length)](src, dst, spec.*direction.scale);
    return ippStsNoErr;
  }
  if (!work) return ippStsNullPtrErr;
  (dft::engine().*direction.run)(spec, src, dst, align<float>(work));
  return ippStsNoErr;
}

}  // namespace

IppStatus ippsDFTGetSize_R_32f(int length, int flag, int hint, int* spec_size, int* init_size,
                               int* work_size) {
  if (!spec_size || !init_size || !work_size) return ippStsNullPtrErr;
  dft::Setup setup;
  if (const auto status = set_up(length, flag, hint, setup); status != ippStsNoErr) return status;
  *spec_size = static_cast<int>(setup.spec_bytes);
  *init_size = static_cast<int>(setup.init_bytes);
  *work_size = static_cast<int>(setup.work_bytes);
  return ippStsNoErr;
}

IppStatus ippsDFTInit_R_32f(int length, int flag, int hint, IppsDFTSpec_R_32f* spec, Ipp8u* init) {
  if (!spec) return ippStsNullPtrErr;
  dft::Setup setup;
  if (const auto status = set_up(length, flag, hint, setup); status != ippStsNoErr) return status;
  if (!init && setup.init_bytes > 0) return ippStsNullPtrErr;
  dft::build(setup, align<Spec>(spec), align<Ipp8u>(init));
  return ippStsNoErr;
}

IppStatus ippsDFTFwd_RToCCS_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* spec,
                                Ipp8u* work) {
  static constexpr Direction kForward = {dft::small_forward, &dft::Engine::forward,
                                         &Spec::forward_scale};
  return transform(kForward, src, dst, spec, work);
}

IppStatus ippsDFTInv_CCSToR_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* spec,
                                Ipp8u* work) {
  static constexpr Direction kInverse = {dft::small_inverse, &dft::Engine::inverse,
                                         &Spec::inverse_scale};
  return transform(kInverse, src, dst, spec, work);
}
