// The rings between the host's frame counts and the internal block.
#include "plugin/ChannelRing.h"

#include <algorithm>

void ChannelRing::Allocate(int B) {
  blockSize = B;
  ringSize = 2 * B;
  input.assign(static_cast<size_t>(ringSize), 0.0f);
  output.assign(static_cast<size_t>(ringSize), 0.0f);
  writePos = 0;
  blockPos = 0;
}

void ChannelRing::Clear() {
  std::fill(input.begin(), input.end(), 0.0f);
  std::fill(output.begin(), output.end(), 0.0f);
}

void ChannelRing::WriteInput(const double* in, int frames) {
  const auto toFloat = [](double x) { return static_cast<float>(x); };
  const int end = (writePos + frames) % ringSize;
  if (end > writePos) {
    std::transform(in, in + frames, input.data() + writePos, toFloat);
  } else {
    const int first = ringSize - writePos;
    std::transform(in, in + first, input.data() + writePos, toFloat);
    std::transform(in + first, in + first + end, input.data(), toFloat);
  }
}

bool ChannelRing::HasBlock(int frames) const {
  return (writePos + frames + ringSize - blockPos) % ringSize >= blockSize;
}

void ChannelRing::TakeBlock(float* block) const {
  const float* ring = input.data();
  const int end = (blockPos + blockSize) % ringSize;
  if (end > blockPos) {
    std::copy(ring + blockPos, ring + end, block);
  } else {
    std::copy(ring, ring + end, std::copy(ring + blockPos, ring + ringSize, block));
  }
}

void ChannelRing::PutBlock(const float* block) {
  float* ring = output.data();
  const int first = std::min(blockSize, ringSize - blockPos);
  std::copy(block, block + first, ring + blockPos);
  std::copy(block + first, block + blockSize, ring);
  blockPos = (blockPos + blockSize) % ringSize;
}

void ChannelRing::ReadOutput(double* out, int frames) {
  const float* ring = output.data();
  const int start = (writePos + ringSize - blockSize) % ringSize;
  const int end = (start + frames) % ringSize;
  if (end > start) {
    std::copy(ring + start, ring + start + frames, out);
  } else {
    std::copy(ring, ring + end, std::copy(ring + start, ring + ringSize, out));
  }
  writePos = (writePos + frames) % ringSize;
}
