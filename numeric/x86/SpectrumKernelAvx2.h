// The sum of products for processors with AVX2.
#pragma once

void sum_products_avx2(float* y, const float* x, const float* h, int blocks, int rows, int head);
