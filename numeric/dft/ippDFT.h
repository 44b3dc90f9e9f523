// The real DFT engine's operations: any length, single precision, all memory handed in.
#pragma once

using Ipp32f = float;
using Ipp8u = unsigned char;
using IppStatus = int;  // signed, 32 bits: 0 success, above 0 a warning, below 0 an error

// Opaque block in memory owned by the caller: the identifier, the length, the scaling, the tables.
struct IppsDFTSpec_R_32f;

enum : IppStatus {
  ippStsNonIntelCpu = 20,  // warning of ippInit: another maker's processor
  ippStsNoErr = 0,
  ippStsSizeErr = -6,          // length below 1, or too large for the method
  ippStsNullPtrErr = -8,       // a required pointer is null
  ippStsFftOrderErr = -15,     // power of two above 2^29
  ippStsFftFlagErr = -16,      // flag not one of the four values
  ippStsContextMatchErr = -17  // the block does not carry the identifier
};

// Which direction is divided by what.
enum : int {
  IPP_FFT_DIV_FWD_BY_N = 1,
  IPP_FFT_DIV_INV_BY_N = 2,
  IPP_FFT_DIV_BY_SQRTN = 4,  // both, by the root of n
  IPP_FFT_NODIV_BY_ANY = 8
};

enum : int { ippAlgHintAccurate = 2 };  // recorded only: the method depends on the length alone

// Bytes of the spec block, of the block that only the set-up needs, and of the block that each
// transform needs. A size may be 0; a size above 0 has room for the engine to align the block.
IppStatus ippsDFTGetSize_R_32f(int length, int flag, int hint, int* spec_size, int* init_size,
                               int* work_size);

// Builds the spec block; `init` may be null when its size is 0 and is not needed afterwards.
IppStatus ippsDFTInit_R_32f(int length, int flag, int hint, IppsDFTSpec_R_32f* spec, Ipp8u* init);

// The transforms, between n floats and n / 2 + 1 interleaved complex bins (CCS): even n takes
// n + 2 floats, odd n takes n + 1. Imaginary parts that are 0 by symmetry are written by the
// forward transform and ignored by the inverse. src and dst may be the same array, else src keeps
// its contents; no alignment is required. They allocate nothing and take no lock. One spec block
// may serve several threads, each with its own work block, which may be null if its size is 0.
IppStatus ippsDFTFwd_RToCCS_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* spec,
                                Ipp8u* work);
IppStatus ippsDFTInv_CCSToR_32f(const Ipp32f* src, Ipp32f* dst, const IppsDFTSpec_R_32f* spec,
                                Ipp8u* work);

// A block of `count` elements aligned to 64 bytes; null if count is below 1, if it would take
// 2^31 bytes or more, or if there is no memory. `ippFree` accepts null.
Ipp32f* ippsMalloc_32f(int count);
Ipp8u* ippsMalloc_8u(int count);
void ippFree(void* p);
