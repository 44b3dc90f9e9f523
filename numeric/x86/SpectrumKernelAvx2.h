// The sum of products for processors with AVX2, for one channel and for two.
#pragma once

void sum_products_avx2(float* const* y, const float* const* x, const float* h, int blocks, int rows,
                       int head);
void sum_products_pair_avx2(float* const* y, const float* const* x, const float* h, int blocks,
                            int rows, int head);
